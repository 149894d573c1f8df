#include "host/session.h"

#include <fmt/format.h>

#include <system_error>

#include "host/os.h"
#include "host/project_file.h"
#include "util/guard.h"

namespace kvdm {
namespace {

HostedComponent Start(const std::filesystem::path& file, const Project& project, Access access,
                      Output& out) {
  try {
    return HostedComponent(project, access, out);
  } catch (const Failure& failure) {
    FailToOpen(file, failure);
  }
}

// None where there can't be one: then the registry can't be written either, which is the concern of
// those who need it.
std::shared_ptr<void> LockRegistry() {
  const auto file = RegistryLockFile();
  if (!file) return nullptr;
  try {
    os::CreateFolders(file->parent_path());
    static_cast<void>(os::TryLock(*file));
  } catch (const std::system_error&) {
    return nullptr;
  }
  return WaitForLock(*file, fmt::format("The list of study areas in {}", RegistryPlace()));
}

}  // namespace

ChangeLock::ChangeLock(const std::filesystem::path& project_file, Access access)
    : project_(WaitForLock(WithSuffix(project_file, ".lock"),
                           fmt::format("The project {}", os::ToText(project_file)))),
      registry_(access == Access::kChangeRegistry ? LockRegistry() : nullptr) {}

Session::Session(const std::filesystem::path& file, Access access, Output& out)
    : file_(file),
      project_(ReadProjectFile(file_)),
      component_(Start(file_, project_, access, out)) {}

Session::~Session() {
  for (const auto& undo : undos_) guard::Skipping(nullptr, undo);
}

bool Session::Save() {
  component_.SaveTo(project_);
  try {
    const bool written = WriteProjectFile(file_, project_);
    undos_.clear();
    is_saved_ = true;
    return written;
  } catch (const Unconfirmed&) {
    undos_.clear();
    throw;
  }
}

}  // namespace kvdm
