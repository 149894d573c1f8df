#include "platform/posix/random_guid.h"

#include <sys/random.h>

#include <array>
#include <cerrno>

#include <kvdm/platform/error.h>
#include <kvdm/platform/portable/portable_services.h>

namespace kvdm {

std::string RandomGuid() {
  std::array<unsigned char, 16> bytes{};
  ssize_t count = 0;
  do {
    count = getrandom(bytes.data(), bytes.size(), 0);
  } while (count < 0 && errno == EINTR);
  // So few bytes always arrive together.
  if (count != static_cast<ssize_t>(bytes.size())) {
    throw RuntimeError(kAutomationFailure, {}, "The system has no random numbers");
  }
  return GuidText(bytes);
}

}  // namespace kvdm
