#include "host/services.h"

#include "host/os.h"
#include "host/project_file.h"
#include "host/stored_services.h"
#include "platform/posix/posix_platform.h"
#include "platform/posix/sqlite_registry.h"

namespace kvdm {

Services MakeServices(const std::map<char, std::string>& drives, Output& out) {
  PosixOptions options;
  options.drives = drives;
  options.message_box = [&out](std::string_view text, std::string_view, MessageStyle) {
    out.Message(text);
  };
  options.log = [&out](std::string_view line) { out.Note(line); };
  return ServicesOn<SqliteRegistry>(MakePosixPlatform(options));
}

std::string RegistryPlace() { return DefaultRegistryPath(); }

std::string RegistryAdvice() { return "Run the command with --debug to see why."; }

std::filesystem::path RegistryLockFile() { return Beside(os::Absolute(RegistryPlace()), ".lock"); }

}  // namespace kvdm
