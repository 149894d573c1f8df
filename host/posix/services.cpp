#include "host/services.h"

#include <kvdm/platform/posix/posix_platform.h>

#include "host/os.h"
#include "host/project_file.h"
#include "platform/posix/sqlite_registry.h"

namespace kvdm {

Services MakeServices(const std::map<char, std::string>& drives, Output& out) {
  PosixOptions options;
  options.drives = drives;
  options.message_box = [&out](std::string_view text, std::string_view, MessageStyle) {
    out.Message(text);
  };
  options.log = [&out](std::string_view line) { out.Note(line); };
  return Watching(MakePosixPlatform(options));
}

std::string RegistryPlace() { return DefaultRegistryPath(); }

std::optional<std::string> SetRegistryAside(Output& out) {
  const auto log = std::make_shared<CallbackLog>([&out](std::string_view line) { out.Note(line); });
  return SqliteRegistry({}, log).SetAside();
}

std::optional<std::filesystem::path> RegistryLockFile() {
  const std::string place = RegistryPlace();
  if (!NamesRegistryFile(place)) return std::nullopt;
  return Beside(os::Absolute(place), ".lock");
}

}  // namespace kvdm
