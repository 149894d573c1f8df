#include "host/services.h"

#include "host/os.h"
#include "host/project_file.h"
#include "platform/posix/posix_platform.h"
#include "platform/posix/sqlite_registry.h"
#include "util/registry_strings.h"

namespace kvdm {

Services MakeServices(const std::map<char, std::string>& drives, Output& out) {
  PosixOptions options;
  options.drives = drives;
  options.message_box = [&out](std::string_view text, std::string_view, MessageStyle) {
    out.Message(text);
  };
  options.log = [&out](std::string_view line) { out.Note(line); };
  Services services{MakePosixPlatform(options), nullptr, nullptr};
  const auto store = std::dynamic_pointer_cast<SqliteRegistry>(services.platform.registry);
  services.registry = std::make_shared<WatchedRegistry>(store);
  services.platform.registry = services.registry;
  services.preserved_catalogues = [store] {
    std::vector<PreservedCatalogue> copies;
    for (const auto& copy :
         store->Preserved(RegistryRoot::kLocalMachine, kRegistryKey, kStudyAreaCollectionValue)) {
      copies.push_back({copy.when, copy.value.data});
    }
    return copies;
  };
  return services;
}

std::string RegistryPlace() { return DefaultRegistryPath(); }

std::string RegistryAdvice() { return "Run the command with --debug to see why."; }

std::filesystem::path RegistryLockFile() { return Beside(os::Absolute(RegistryPlace()), ".lock"); }

}  // namespace kvdm
