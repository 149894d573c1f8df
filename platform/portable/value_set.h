// The set of values that describes a layer, held in memory.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <kvdm/platform/gis_core.h>

namespace kvdm {

class ValueSet : public NamedValueSet {
 public:
  std::vector<Value> GetValues(std::string_view path) override;
  // Takes constant time, however many paths there are.
  void PutValue(std::string_view path, const Value& value) override;
  Listing ListAll() override;
  int EntryCount() override { return entry_count_; }
  void PrepareForUpdate() override {}

  // Stores one value more under `path`, after those that are there.
  void AddValue(std::string_view path, const Value& value);

 private:
  struct Entry {
    std::string path;
    std::vector<Value> values;
  };
  struct Hash : std::hash<std::string_view> {
    using is_transparent = void;
  };

  // The values under `path`, which is put last when it is new.
  std::vector<Value>& ValuesAt(std::string_view path);

  std::vector<Entry> entries_;
  std::unordered_map<std::string, std::size_t, Hash, std::equal_to<>> positions_;
  int entry_count_ = 0;
};

}  // namespace kvdm
