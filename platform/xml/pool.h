// Records in blocks that stay where they are, told apart by 32-bit numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace kvdm::xml {

// Of a record; 0 is none.
using Number = std::uint32_t;

// The member `next` of a record links those that are free.
template <class Record>
class Pool {
 public:
  Record& operator[](Number number) { return blocks_[number / kBlock][number % kBlock]; }
  const Record& operator[](Number number) const {
    return blocks_[number / kBlock][number % kBlock];
  }

  // Fetches a record in the meantime.
  void WillNeed(Number number) const { __builtin_prefetch(&(*this)[number], 1); }

  // A record as it is at first. std::bad_alloc leaves all as it was.
  Number Take() {
    if (free_ == 0) return Make();
    const Number taken = free_;
    free_ = (*this)[taken].next;
    (*this)[taken] = Record();
    return taken;
  }

  void Give(Number number) noexcept {
    (*this)[number] = Record();
    (*this)[number].next = free_;
    free_ = number;
  }

  // All numbers are below this one.
  [[nodiscard]] Number End() const { return end_; }

 private:
  static constexpr std::size_t kBlock = 128;

  Number Make() {
    if (end_ / kBlock == blocks_.size()) blocks_.push_back(std::make_unique<Record[]>(kBlock));
    return end_++;
  }

  std::vector<std::unique_ptr<Record[]>> blocks_;
  Number end_ = 1;
  Number free_ = 0;
};

}  // namespace kvdm::xml
