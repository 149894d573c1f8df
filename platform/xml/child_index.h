// Finds children by tag and attribute value without walking through all of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/xml/node.h"

namespace kvdm::xml {

// A table for a pair of tag and attribute is made when it is first asked for, and from then on kept
// up to date. Tables can be remade at any time, so there are never more than a few, and none after
// memory ran out.
class ChildIndex {
 public:
  // The first child, in document order, with the tag and with `key` as the attribute's value, or
  // with any attributes when `attribute` is ""; null when there is none. `first_child` is the first
  // of the children that are indexed.
  Element* First(const std::string& tag, const std::string& attribute, const std::string& key,
                 Node* first_child);
  // All children with the tag, in document order.
  std::vector<Element*> All(const std::string& tag, Node* first_child);

  // To be called after a child was added, and before one is removed.
  void Add(Node& child);
  void Remove(Node& child);
  // To be called after an attribute was added, and before one is removed; a changed one is removed
  // and added.
  void AddAttribute(Element& child, const Attribute& attribute);
  void RemoveAttribute(Element& child, const Attribute& attribute);

 private:
  // Ordered by the children's sequence numbers.
  using Matches = std::map<std::uint64_t, Element*>;

  struct Table {
    std::string tag;
    std::string attribute;
    std::unordered_map<std::string, Matches> matches_by_key;

    void Insert(const std::string& key, Element& child);
    void Erase(const std::string& key, Element& child);
    // Calls `change` with the key that `child` has in this table, if it has one.
    template <class Change>
    void WithKeyOf(Element& child, const Change& change);
  };

  const Matches* Find(const std::string& tag, const std::string& attribute, const std::string& key,
                      Node* first_child);
  Table& TableFor(const std::string& tag, const std::string& attribute, Node* first_child);
  using Action = void (Table::*)(const std::string& key, Element& child);
  template <class Change>
  void Update(const Change& change);
  void UpdateChild(Node& child, Action action);
  void UpdateAttribute(Element& child, const Attribute& attribute, Action action);

  std::vector<Table> tables_;
};

// Children are indexed where there are more than `count`, which is 8 unless a test sets it.
void IndexMoreChildrenThan(std::size_t count);

}  // namespace kvdm::xml
