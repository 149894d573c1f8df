/// @file
/// Variant stream in memory.
#pragma once

#include <utility>
#include <vector>

#include <kvdm/export.h>
#include <kvdm/platform/gis_core.h>

namespace kvdm {

/// A stream that holds its values: what a host saves, and what it loads from.
class KVDM_EXPORT VariantList : public VariantStream {
 public:
  VariantList() = default;

  /// Starts with these values; the first is the next to be read.
  explicit VariantList(std::vector<Value> values) : values_(std::move(values)) {}

  /// Appends; reading goes on where it was.
  void Write(const Value& value) override { values_.push_back(value); }

  /// Run-time error 62 when there is no value left.
  Value Read() override;

  /// All values, those already read included.
  [[nodiscard]] const std::vector<Value>& Values() const { return values_; }

  /// Makes the first value the next to be read.
  void Rewind() { next_ = 0; }

 private:
  std::vector<Value> values_;
  std::size_t next_ = 0;
};

}  // namespace kvdm
