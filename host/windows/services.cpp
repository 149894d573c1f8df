// Services of Windows, and what the host says of them.
#include "host/services.h"

#include <fmt/format.h>

#include <kvdm/platform/portable/portable_services.h>

#include "host/manual.h"
#include "host/os.h"
#include "platform/windows/com_siblings.h"
#include "platform/windows/windows_platform.h"
#include "safety/result.h"
#include "util/registry_strings.h"

namespace kvdm {
namespace {

// The sibling libraries that are registered on this machine, and stand-ins for the others.
class AvailableSiblings : public Siblings {
 public:
  std::shared_ptr<DatasetManager> CreateDatasetManager() override {
    return FirstOf(&Siblings::CreateDatasetManager);
  }
  std::shared_ptr<ResourceFinder> CreateResourceFinder() override {
    return FirstOf(&Siblings::CreateResourceFinder);
  }

 private:
  template <class Sibling>
  std::shared_ptr<Sibling> FirstOf(std::shared_ptr<Sibling> (Siblings::*create)()) {
    try {
      return (registered_.*create)();
    } catch (const RuntimeError& error) {
      if (error.number() != kCannotCreateObject) throw;
      return ((*stand_ins_).*create)();
    }
  }

  ComSiblings registered_;
  std::shared_ptr<Siblings> stand_ins_ = MakePortableSiblings();
};

}  // namespace

Services MakeServices(const std::map<char, std::string>& drives, Access access, Output& out) {
  WindowsOptions options;
  options.message_box = [&out](std::string_view text, std::string_view, MessageStyle) {
    out.Message(text);
  };
  options.log = [&out](std::string_view line) { out.Note(line); };
  options.siblings = std::make_shared<AvailableSiblings>();
  if (!drives.empty()) out.Note("The project's folders for drives are not used on Windows.");
  return Watching(MakeWindowsPlatform(options), access);
}

std::string RegistryPlace() { return fmt::format("HKEY_LOCAL_MACHINE\\{}", kRegistryKey); }
std::optional<std::string> SetRegistryAside(Output&) { return std::nullopt; }

std::optional<std::filesystem::path> RegistryLockFile() {
  const std::string folder = os::Environment("LOCALAPPDATA");
  if (folder.empty()) {
    throw Failure(ExitCode::kRefused,
                  "The environment variable LOCALAPPDATA is not set; set it to a folder of yours.");
  }
  return os::ToPath(folder) / "kvdm" / "registry.lock";
}

SystemManual ThisSystemsManual() {
  return {R"(.TP
.I HKEY_LOCAL_MACHINE\eSoftware\eVelk\eKelvaro
The registry key of the study areas, which all projects share, and of the aliases.
)",
          R"(.TP
.B LOCALAPPDATA
The folder of
.IR kvdm\eregistry.lock ,
which is locked while a command changes them.
)"};
}

}  // namespace kvdm
