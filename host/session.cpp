#include "host/session.h"

#include <fmt/format.h>

#include "host/os.h"
#include "host/project_file.h"
#include "util/guard.h"

namespace kvdm {
namespace {

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
                            fmt::format("The list of study areas in {}", RegistryPlace()))) {}

Session::Session(const std::filesystem::path& file, Output& out)
    : file_(file), project_(ReadProjectFile(file_)), component_(Start(file_, project_, out)) {}

Session::~Session() {
  for (const auto& undo : undos_) guard::Skipping(undo);
}

bool Session::Save() {
  component_.SaveTo(project_);
  const bool written = WriteProjectFile(file_, project_);
  undos_.clear();
  return written;
}

}  // namespace kvdm
