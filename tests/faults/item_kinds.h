// The five kinds of items behind one form, as loops try the same on each of them.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/kvdm.h>

namespace kvdm::faults {

// One item. All of its operations are the component's own.
struct Item {
  std::function<std::string()> name;
  std::function<std::string()> guid;
  // A file that belongs to this item alone: in its folder, or its layer.
  std::function<std::string()> file;
  std::function<void(std::string_view)> rename;
  // A parameter; of a study area a property.
  std::function<bool(std::string_view name, std::string_view value)> set;
  std::function<std::string(std::string_view name)> get;
};

struct ItemKind {
  const char* word;
  bool has_folder;  // which is made and deleted with the item
  std::function<bool(IKVDataManager&, std::string_view name)> create;
  std::function<bool(IKVDataManager&, std::string_view name)> exists;
  std::function<bool(IKVDataManager&, std::string_view name)> remove;
  std::function<bool(IKVDataManager&, std::string_view guid)> remove_by_guid;
  std::function<std::optional<Item>(IKVDataManager&, std::string_view name)> find;
  std::function<std::optional<Item>(IKVDataManager&, std::string_view guid)> find_by_guid;
  std::function<std::vector<std::string>(IKVDataManager&)> names;
};

[[nodiscard]] const std::vector<ItemKind>& ItemKinds();

}  // namespace kvdm::faults
