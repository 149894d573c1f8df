/// @file
/// Log service: where the component notes what callers do not see.
#pragma once

#include <string_view>

#include <kvdm/export.h>

namespace kvdm {

/// Takes notes for whoever looks for the cause of a failure. Nothing depends on them.
class KVDM_EXPORT Log {
 public:
  virtual ~Log() = default;

  /// Notes one line of UTF-8 text, which ends when the call returns. Must not fail: it is called
  /// while a failure is handled.
  virtual void Note(std::string_view line) = 0;
};

}  // namespace kvdm
