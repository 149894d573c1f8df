// Hash index over the children of one element: from tag, attribute and its value to the child.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/xml/records.h"

namespace kvdm::xml {

// A table for a pair of tag and attribute is made when it is first asked for, and from then on kept
// up to date. It knows where the values are, and has no copy of them: where they are moved, all
// tables are to go. Tables can be remade at any time, so there are never more than a few, and none
// after memory ran out.
class ChildIndex {
 public:
  // The first child, in document order, with the tag and with `key` as the attribute's value; 0
  // when there is none.
  Number Find(Records& records, Number parent, Number tag, Number attribute, std::string_view key);

  // To be called after a child was added as the last one, and before one is removed.
  void Add(Records& records, Number child) noexcept;
  void Remove(Records& records, Number child) noexcept;
  // To be called after an attribute of a child was added, and before one is removed; a changed one
  // is removed and added.
  void AddAttribute(Records& records, Number attribute) noexcept;
  void RemoveAttribute(Records& records, Number attribute) noexcept;

  Number next = 0;  // of those that are free

 private:
  // One for each value: the first element that has it, the attributes of the others follow in the
  // ring of its own, and where the value is, so that a look-up need not go by the attribute.
  struct Entry {
    std::uint32_t hash = 0;
    Number owner = 0;
    Piece key;
  };

  // Open addressing: an entry stands where its hash says or in the next place that was free.
  class Table {
   public:
    Table(Number tag, Number attribute) : tag_(tag), attribute_(attribute), entries_(kLeast) {}

    [[nodiscard]] bool IsOf(Number tag, Number attribute) const {
      return tag_ == tag && attribute_ == attribute;
    }
    // The first element with the value; 0 when there is none.
    [[nodiscard]] Number Find(const Records& records, std::string_view key) const;
    // The attribute comes after all with the same value.
    void Insert(Records& records, Number attribute);
    void Erase(Records& records, Number attribute) noexcept;

   private:
    static constexpr std::size_t kLeast = 64;  // a power of two, as all sizes are

    // Where the value is, or is to be.
    [[nodiscard]] std::size_t PlaceOf(const Records& records, std::uint32_t hash,
                                      std::string_view key) const;
    [[nodiscard]] std::size_t Home(std::uint32_t hash) const {
      return hash & (entries_.size() - 1);
    }
    [[nodiscard]] std::size_t Next(std::size_t place) const {
      return (place + 1) & (entries_.size() - 1);
    }
    void Grow();
    void Clear(std::size_t place) noexcept;

    Number tag_;
    Number attribute_;
    std::size_t used_ = 0;
    std::vector<Entry> entries_;
  };

  Table& TableFor(Records& records, Number parent, Number tag, Number attribute);
  Table* TableOf(const Records& records, Number attribute);
  void Insert(Records& records, Table& table, Number attribute) noexcept;

  std::vector<Table> tables_;
};

// Children are indexed where there are more than `count`, which is 32 unless a test sets it.
void IndexMoreChildrenThan(std::size_t count);
[[nodiscard]] std::size_t FewChildren();

}  // namespace kvdm::xml
