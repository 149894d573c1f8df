// The local time of day.
#pragma once

#include "platform/value.h"

namespace kvdm {

class Clock {
 public:
  virtual ~Clock() = default;

  // The current local date and time, to the second.
  virtual DateTime Now() = 0;
};

}  // namespace kvdm
