#include "host/session.h"

#include <fmt/format.h>

#include <system_error>

#include "host/os.h"
#include "host/project_file.h"

namespace kvdm {
namespace {

std::filesystem::path RegistryLockFile() {
  const auto registry = os::ToPath(RegistryFile());
  // A folder that can't be made shows when the lock is taken.
  std::error_code failed;
  std::filesystem::create_directories(registry.parent_path(), failed);
  return Beside(registry, ".lock");
}

HostedComponent Start(const std::filesystem::path& file, const Project& project, Output& out) {
  try {
    return HostedComponent(project, out);
  } catch (const Failure& failure) {
    FailToOpen(file, failure);
  }
}

}  // namespace

ChangeLock::ChangeLock(const std::filesystem::path& project_file)
    : project_(WaitForLock(Beside(project_file, ".lock"),
                           fmt::format("The project {}", os::ToText(project_file)))),
      registry_(WaitForLock(RegistryLockFile(),
                            fmt::format("The list of study areas in {}", RegistryFile()))) {}

Session::Session(const std::filesystem::path& file, Output& out)
    : file_(file), project_(ReadProjectFile(file_)), component_(Start(file_, project_, out)) {}

bool Session::Save() {
  component_.SaveTo(project_);
  return WriteProjectFile(file_, project_);
}

}  // namespace kvdm
