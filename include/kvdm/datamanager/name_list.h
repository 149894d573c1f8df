/// @file
/// List that every operation for a list returns.
#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include <kvdm/platform/error.h>
#include <kvdm/platform/value.h>

namespace kvdm {

/// An ordered collection counted from 1. Its values are texts; Null stands for a name that is
/// missing in the document.
class NameList {
 public:
  /// The number of values.
  [[nodiscard]] int Count() const { return static_cast<int>(values_.size()); }

  /// The value at `position`, 1 to Count. Run-time error 9 outside.
  [[nodiscard]] const Value& Item(int position) const {
    if (position < 1 || position > Count()) throw RuntimeError(kSubscriptOutOfRange);
    return values_[static_cast<std::size_t>(position) - 1];
  }

  /// Appends a value.
  void Add(Value value) { values_.push_back(std::move(value)); }

  /// The first value, for loops over all of them.
  [[nodiscard]] auto begin() const { return values_.begin(); }

  /// The end of such loops.
  [[nodiscard]] auto end() const { return values_.end(); }

 private:
  std::vector<Value> values_;
};

/// A list, or Nothing.
using NameListRef = std::shared_ptr<NameList>;

}  // namespace kvdm
