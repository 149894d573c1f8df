/// @file
/// Clock service: the local time of day.
#pragma once

#include <kvdm/export.h>
#include <kvdm/platform/value.h>

namespace kvdm {

/// Tells the time at which something is created.
class KVDM_EXPORT Clock {
 public:
  virtual ~Clock() = default;

  /// The current local date and time, to the second.
  virtual DateTime Now() = 0;
};

}  // namespace kvdm
