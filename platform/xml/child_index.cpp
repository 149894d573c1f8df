#include "platform/xml/child_index.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace kvdm::xml {
namespace {

constexpr std::size_t kMaxTables = 16;

std::size_t few_children = 32;

// Multiplies eight bytes at a time into the hash, the last ones with some of those before.
std::uint32_t HashOf(std::string_view text) {
  constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15U;
  constexpr std::size_t kWord = sizeof(std::uint64_t);
  std::uint64_t hash = text.size() * kFactor;
  const auto mix = [&hash](std::uint64_t word) {
    hash = (hash ^ word) * kFactor;
    hash ^= hash >> 29U;
  };
  const auto mix_at = [&](std::size_t place) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data() + place, kWord);
    mix(word);
  };
  if (text.size() < kWord) {
    std::uint64_t word = 0;
    for (const char character : text) word = word << kWord | static_cast<unsigned char>(character);
    mix(word);
  } else {
    for (std::size_t at = 0; at + kWord < text.size(); at += kWord) mix_at(at);
    mix_at(text.size() - kWord);
  }
  return static_cast<std::uint32_t>(hash >> kWord);
}

}  // namespace

void IndexMoreChildrenThan(std::size_t count) { few_children = count; }
std::size_t FewChildren() { return few_children; }

std::size_t ChildIndex::Table::PlaceOf(const Records& records, std::uint32_t hash,
                                       std::string_view key) const {
  std::size_t place = Home(hash);
  for (;; place = Next(place)) {
    const Entry& entry = entries_[place];
    if (entry.owner == 0) return place;
    if (entry.hash != hash) continue;
    records.nodes.WillNeed(entry.owner);
    if (records.texts[entry.key] == key) return place;
  }
}

Number ChildIndex::Table::Find(const Records& records, std::string_view key) const {
  return entries_[PlaceOf(records, HashOf(key), key)].owner;
}

void ChildIndex::Table::Insert(Records& records, Number attribute) {
  if (4 * used_ >= 3 * entries_.size()) Grow();
  AttributeRecord& record = records.attributes[attribute];
  const std::string_view key = records.texts[record.value];
  const std::uint32_t hash = HashOf(key);
  Entry& entry = entries_[PlaceOf(records, hash, key)];
  if (entry.owner == 0) {
    entry = {hash, record.owner, record.value};
    ++used_;
    record.next_alike = record.previous_alike = attribute;
    return;
  }
  const Number alike = records.FindAttribute(entry.owner, attribute_);
  AttributeRecord& first = records.attributes[alike];
  record.next_alike = alike;
  record.previous_alike = first.previous_alike;
  records.attributes[first.previous_alike].next_alike = attribute;
  first.previous_alike = attribute;
}

void ChildIndex::Table::Erase(Records& records, Number attribute) noexcept {
  const AttributeRecord& record = records.attributes[attribute];
  const std::string_view key = records.texts[record.value];
  const std::size_t place = PlaceOf(records, HashOf(key), key);
  if (record.next_alike == attribute) return Clear(place);
  Entry& entry = entries_[place];
  if (entry.owner == record.owner) {
    const AttributeRecord& second = records.attributes[record.next_alike];
    entry.owner = second.owner;
    entry.key = second.value;
  }
  records.attributes[record.next_alike].previous_alike = record.previous_alike;
  records.attributes[record.previous_alike].next_alike = record.next_alike;
}

void ChildIndex::Table::Grow() {
  std::vector<Entry> entries(2 * entries_.size());
  entries_.swap(entries);
  for (const Entry& entry : entries) {
    if (entry.owner == 0) continue;
    std::size_t place = Home(entry.hash);
    while (entries_[place].owner != 0) place = Next(place);
    entries_[place] = entry;
  }
}

// Entries after a free place are not found from places before it: those that belong there move up.
void ChildIndex::Table::Clear(std::size_t place) noexcept {
  --used_;
  for (std::size_t later = Next(place); entries_[later].owner != 0; later = Next(later)) {
    const std::size_t home = Home(entries_[later].hash);
    const bool stays =
        place < later ? place < home && home <= later : place < home || home <= later;
    if (stays) continue;
    entries_[place] = entries_[later];
    place = later;
  }
  entries_[place] = {};
}

Number ChildIndex::Find(Records& records, Number parent, Number tag, Number attribute,
                        std::string_view key) {
  return TableFor(records, parent, tag, attribute).Find(records, key);
}

ChildIndex::Table& ChildIndex::TableFor(Records& records, Number parent, Number tag,
                                        Number attribute) {
  for (Table& table : tables_) {
    if (table.IsOf(tag, attribute)) return table;
  }
  Table table(tag, attribute);
  for (Number child = records.nodes[parent].first; child != 0; child = records.nodes[child].next) {
    const NodeRecord& node = records.nodes[child];
    if (node.type != NodeType::kElement || node.name != tag) continue;
    if (const Number own = records.FindAttribute(child, attribute)) table.Insert(records, own);
  }
  if (tables_.size() == kMaxTables) tables_.clear();
  return tables_.emplace_back(std::move(table));
}

ChildIndex::Table* ChildIndex::TableOf(const Records& records, Number attribute) {
  const AttributeRecord& record = records.attributes[attribute];
  const Number tag = records.nodes[record.owner].name;
  const auto found = std::ranges::find_if(
      tables_, [&](const Table& table) { return table.IsOf(tag, record.name); });
  return found == tables_.end() ? nullptr : &*found;
}

void ChildIndex::Insert(Records& records, Table& table, Number attribute) noexcept {
  try {
    table.Insert(records, attribute);
  } catch (const std::bad_alloc&) {
    tables_.clear();
  }
}

void ChildIndex::Add(Records& records, Number child) noexcept {
  const NodeRecord& node = records.nodes[child];
  if (node.type != NodeType::kElement) return;
  for (Number own = node.attributes; own != 0; own = records.attributes[own].next) {
    if (Table* table = TableOf(records, own)) Insert(records, *table, own);
  }
}

void ChildIndex::Remove(Records& records, Number child) noexcept {
  const NodeRecord& node = records.nodes[child];
  if (node.type != NodeType::kElement) return;
  for (Number own = node.attributes; own != 0; own = records.attributes[own].next) {
    RemoveAttribute(records, own);
  }
}

// Where others before and after have the value too, the table is made anew when it is asked for.
void ChildIndex::AddAttribute(Records& records, Number attribute) noexcept {
  Table* table = TableOf(records, attribute);
  if (table == nullptr) return;
  const AttributeRecord& record = records.attributes[attribute];
  const bool is_last = records.nodes[record.owner].next == 0;
  if (is_last || table->Find(records, records.texts[record.value]) == 0) {
    return Insert(records, *table, attribute);
  }
  tables_.erase(tables_.begin() + (table - tables_.data()));
}

void ChildIndex::RemoveAttribute(Records& records, Number attribute) noexcept {
  if (Table* table = TableOf(records, attribute)) table->Erase(records, attribute);
}

}  // namespace kvdm::xml
