// What all collections share: one element, the data manager, and how items are listed, found, named
// and removed.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "items/friends.h"
#include "platform/xml/node.h"
#include "util/guard.h"

namespace kvdm {

// What differs between the collections, side by side.
struct CollectionRules {
  const char* tag;  // of an item
  ReportStyle reports;
  const char* list_failed = nullptr;
  const char* create_failed = nullptr;
  const char* delete_failed = nullptr;
  const char* get_failed = nullptr;
};

// Operations without a guard: errors reach the caller, which names the policy. A view without an
// element finds nothing.
class CollectionView {
 public:
  CollectionView(const CollectionRules& rules, std::shared_ptr<GisCore> gis_core)
      : rules_(rules), gis_core_(std::move(gis_core)) {}

  void SetNode(xml::Element node) { node_ = std::move(node); }
  void SetDataManager(DataManagerRef data_manager) { data_manager_ = std::move(data_manager); }

  [[nodiscard]] const CollectionRules& rules() const { return rules_; }
  [[nodiscard]] const xml::Element& node() const { return node_; }
  [[nodiscard]] const DataManagerRef& data_manager() const { return data_manager_; }
  // Neither an element nor a data manager: as created directly by a client.
  [[nodiscard]] bool Unbound() const { return !node_ && !data_manager_; }
  [[nodiscard]] const std::shared_ptr<GisCore>& gis_core() const { return gis_core_; }
  [[nodiscard]] Reporter reporter() const { return {rules_.reports, data_manager_.get()}; }
  [[nodiscard]] Log* log() const { return reporter().log(); }
  // The data manager's services. Run-time error 91 without one.
  [[nodiscard]] const Platform& services() const { return Required(data_manager_).Services(); }

  // The items' names or identifiers, unwrapped, in document order. Reports the failure when an item
  // lacks the attribute; Nothing without an element.
  [[nodiscard]] NameListRef List(std::string_view attribute) const;

  // The first item that has `key` as the value of `attribute`; Nothing when there is none.
  [[nodiscard]] xml::Element Find(const char* attribute, std::string_view key) const;

  // A new view of the item that Find finds; Nothing when there is none. Reports failures.
  template <class Item, class Bind>
  [[nodiscard]] std::shared_ptr<Item> Get(const char* attribute, std::string_view key,
                                          Bind&& bind) const {
    return guard::Reported(reporter(), rules_.get_failed, [&]() -> std::shared_ptr<Item> {
      const auto element = Find(attribute, key);
      return element ? std::forward<Bind>(bind)(element) : nullptr;
    });
  }

  // Takes the item that Find finds out of the collection and returns it; Nothing when there is
  // none.
  [[nodiscard]] xml::Element Remove(const char* attribute, std::string_view key) const;

  // A new element for an item, with its name as stored and a new identifier. Not appended yet.
  [[nodiscard]] xml::Element NewItem(std::string_view stored_name) const;

  // The current local time in its stored form.
  [[nodiscard]] Value CreationTime() const { return services().clock->Now(); }

  // The first folder name that is free in the folder that `parent_folder` gives, with a closing
  // "\": `base`, then `base` followed by 1, 2, 3 ... The folder is asked for before each look.
  // "" without a data manager. Reports failures.
  [[nodiscard]] std::string GenerateNewDirName(const std::function<std::string()>& parent_folder,
                                               std::string_view base) const;

  // Deletes the folder that belongs to a removed item. An empty path names no folder; a refusal is
  // ignored.
  void DeleteFolder(const std::string& folder) const;

 private:
  const CollectionRules& rules_;
  std::shared_ptr<GisCore> gis_core_;
  xml::Element node_;
  DataManagerRef data_manager_;
};

// A collection on top of a view.
template <class Interface>
class Collection : public Interface {
 public:
  Collection(const CollectionRules& rules, std::shared_ptr<GisCore> gis_core)
      : view_(rules, std::move(gis_core)) {}

  // Bound by the data manager right after creation.
  void SetDataManager(DataManagerRef data_manager) {
    view_.SetDataManager(std::move(data_manager));
  }
  void SetNode(xml::Element node) { view_.SetNode(std::move(node)); }

 protected:
  CollectionView view_;
};

// The folder of the current study area, with a trailing "\"; the working directory when none is
// open or the one named is not there. Errors reach the caller; run-time error 91 without a host.
[[nodiscard]] std::string CurrentFolder(DataManagerFriend& data_manager);

}  // namespace kvdm
