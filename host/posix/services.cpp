// Services of POSIX systems, and what the host says of them.
#include "host/services.h"

#include <kvdm/platform/posix/posix_platform.h>

#include "host/commands/groups.h"
#include "host/manual.h"
#include "host/os.h"
#include "host/project_file.h"
#include "platform/posix/sqlite_registry.h"

namespace kvdm {

Services MakeServices(const std::map<char, std::string>& drives, Access access, Output& out) {
  PosixOptions options;
  options.drives = drives;
  options.message_box = [&out](std::string_view text, std::string_view, MessageStyle) {
    out.Message(text);
  };
  options.log = [&out](std::string_view line) { out.Note(line); };
  return Watching(MakePosixPlatform(options), access);
}

std::string RegistryPlace() { return DefaultRegistryPath(); }

std::optional<std::string> SetRegistryAside(Output& out) {
  const auto log = std::make_shared<CallbackLog>([&out](std::string_view line) { out.Note(line); });
  return SqliteRegistry({}, log).SetAside();
}

std::optional<std::filesystem::path> RegistryLockFile() {
  const std::string place = RegistryPlace();
  if (!NamesRegistryFile(place)) return std::nullopt;
  return WithSuffix(os::Absolute(place), ".lock");
}

void AddSystemCommands(const CommandGroup&) {}

SystemManual ThisSystemsManual() {
  return {R"(.TP
.I ~/.local/share/kvdm/registry.db
The study areas, which all projects share, and the aliases.
)",
          R"(.TP
.B KVDM_REGISTRY
The file to use in place of
.IR registry.db .
.TP
.B XDG_DATA_HOME
The folder to use in place of
.IR ~/.local/share .
)"};
}

}  // namespace kvdm
