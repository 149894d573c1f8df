#include "platform/posix/posix_clock.h"

#include <ctime>

namespace kvdm {

DateTime PosixClock::Now() {
  constexpr int kYearZero = 1900;
  const std::time_t seconds = std::time(nullptr);
  std::tm local{};
  localtime_r(&seconds, &local);
  return {local.tm_year + kYearZero,
          local.tm_mon + 1,
          local.tm_mday,
          local.tm_hour,
          local.tm_min,
          local.tm_sec};
}

}  // namespace kvdm
