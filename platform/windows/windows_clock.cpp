#include "platform/windows/windows_clock.h"

#include <windows.h>

namespace kvdm {

DateTime WindowsClock::Now() {
  SYSTEMTIME now{};
  ::GetLocalTime(&now);
  return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
}

}  // namespace kvdm
