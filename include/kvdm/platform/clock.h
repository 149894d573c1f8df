// The local time of day.
#pragma once

#include <kvdm/export.h>
#include <kvdm/platform/value.h>

namespace kvdm {

class KVDM_EXPORT Clock {
 public:
  virtual ~Clock() = default;

  // The current local date and time, to the second.
  virtual DateTime Now() = 0;
};

}  // namespace kvdm
