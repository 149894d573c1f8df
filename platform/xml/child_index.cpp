#include "platform/xml/child_index.h"

#include <algorithm>
#include <new>
#include <utility>

namespace kvdm::xml {
namespace {

constexpr std::size_t kMaxTables = 16;

}  // namespace

void ChildIndex::Table::Insert(const std::string& key, Element& child) {
  matches_by_key[key].emplace(child.sequence_, &child);
}

void ChildIndex::Table::Erase(const std::string& key, Element& child) {
  const auto found = matches_by_key.find(key);
  found->second.erase(child.sequence_);
  if (found->second.empty()) matches_by_key.erase(found);
}

template <class Change>
void ChildIndex::Table::WithKeyOf(Element& child, const Change& change) {
  if (child.Tag() != tag) return;
  if (attribute.empty()) return change(std::string());
  const auto& attributes = child.Attributes();
  const auto found = std::ranges::find(attributes, attribute, &Attribute::name);
  if (found != attributes.end()) change(found->value);
}

Element* ChildIndex::First(const std::string& tag, const std::string& attribute,
                           const std::string& key, Node* first_child) {
  const Matches* matches = Find(tag, attribute, key, first_child);
  return matches == nullptr ? nullptr : matches->begin()->second;
}

std::vector<Element*> ChildIndex::All(const std::string& tag, Node* first_child) {
  std::vector<Element*> all;
  if (const Matches* matches = Find(tag, {}, {}, first_child)) {
    for (const auto& [sequence, child] : *matches) all.push_back(child);
  }
  return all;
}

const ChildIndex::Matches* ChildIndex::Find(const std::string& tag, const std::string& attribute,
                                            const std::string& key, Node* first_child) {
  const auto& matches_by_key = TableFor(tag, attribute, first_child).matches_by_key;
  const auto found = matches_by_key.find(key);
  return found == matches_by_key.end() ? nullptr : &found->second;
}

ChildIndex::Table& ChildIndex::TableFor(const std::string& tag, const std::string& attribute,
                                        Node* first_child) {
  const auto found = std::ranges::find_if(tables_, [&](const Table& table) {
    return table.tag == tag && table.attribute == attribute;
  });
  if (found != tables_.end()) return *found;

  Table table{tag, attribute, {}};
  for (Node* child = first_child; child != nullptr; child = child->next_.get()) {
    if (child->Type() != NodeType::kElement) continue;
    auto& element = static_cast<Element&>(*child);
    table.WithKeyOf(element, [&](const std::string& key) { table.Insert(key, element); });
  }
  if (tables_.size() == kMaxTables) tables_.clear();
  return tables_.emplace_back(std::move(table));
}

template <class Change>
void ChildIndex::Update(const Change& change) {
  try {
    for (Table& table : tables_) change(table);
  } catch (const std::bad_alloc&) {
    tables_.clear();
  }
}

void ChildIndex::UpdateChild(Node& child, Action action) {
  if (child.Type() != NodeType::kElement) return;
  auto& element = static_cast<Element&>(child);
  Update([&](Table& table) {
    table.WithKeyOf(element, [&](const std::string& key) { (table.*action)(key, element); });
  });
}

void ChildIndex::UpdateAttribute(Element& child, const Attribute& attribute, Action action) {
  Update([&](Table& table) {
    if (table.tag == child.Tag() && table.attribute == attribute.name) {
      (table.*action)(attribute.value, child);
    }
  });
}

void ChildIndex::Add(Node& child) { UpdateChild(child, &Table::Insert); }
void ChildIndex::Remove(Node& child) { UpdateChild(child, &Table::Erase); }
void ChildIndex::AddAttribute(Element& child, const Attribute& attribute) {
  UpdateAttribute(child, attribute, &Table::Insert);
}
void ChildIndex::RemoveAttribute(Element& child, const Attribute& attribute) {
  UpdateAttribute(child, attribute, &Table::Erase);
}

}  // namespace kvdm::xml
