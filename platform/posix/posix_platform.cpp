#include <sys/random.h>

#include <array>
#include <cerrno>
#include <ctime>

#include <kvdm/platform/error.h>
#include <kvdm/platform/portable/portable_services.h>
#include <kvdm/platform/posix/posix_platform.h>

#include "platform/posix/posix_file_system.h"
#include "platform/posix/sqlite_registry.h"
#include "platform/xml_parser.h"

namespace kvdm {
namespace {

class PosixClock final : public Clock {
 public:
  DateTime Now() override {
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
};

// A new version-4 identifier in registry form.
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

}  // namespace

Platform MakePosixPlatform(const PosixOptions& options) {
  const auto log = std::make_shared<CallbackLog>(options.log);
  Platform platform;
  platform.files = MakePosixFileSystem({options.drives});
  platform.registry = std::make_shared<SqliteRegistry>(
      SqliteRegistryOptions{options.registry_path, options.code_page}, log);
  platform.message_box =
      std::make_shared<CallbackMessageBox>(options.message_box, options.code_page);
  platform.xml_parser = MakeXmlParser();
  platform.clock = std::make_shared<PosixClock>();
  platform.gis_core = MakePortableGisCore(RandomGuid);
  platform.siblings = MakePortableSiblings();
  platform.log = log;
  return platform;
}

}  // namespace kvdm
