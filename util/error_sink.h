// Where an operation reports its failure.
#pragma once

#include <string_view>

namespace kvdm {

class ErrorSink {
 public:
  virtual ~ErrorSink() = default;

  // Delivers the report of a failure. May fail itself; then that error is the caller's.
  virtual void Report(std::string_view message) const = 0;
};

}  // namespace kvdm
