// The system's clock in the local time zone.
#pragma once

#include <kvdm/platform/clock.h>

namespace kvdm {

class PosixClock : public Clock {
 public:
  DateTime Now() override;
};

}  // namespace kvdm
