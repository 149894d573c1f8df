// Paths of the component, and the folders of the system that they lead to.
#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/posix/posix_file_system.h"
#include "platform/system_error.h"

namespace kvdm {
namespace {

constexpr char kSystemDrive = 'C';
constexpr char kRootDrive = 'Z';

// Names of the system may hold a backslash, so they are taken one by one.
DrivePath CurrentFolder() {
  DrivePath current{kRootDrive, {}};
  for (const auto& name : std::filesystem::current_path().relative_path()) {
    current.names.push_back(name.string());
  }
  return current;
}

bool IsFolder(int parent, const std::string& name) {
  struct stat status {};
  if (::fstatat(parent, name.c_str(), &status, 0) == 0) return S_ISDIR(status.st_mode);
  if (MeansMissing(errno)) return false;
  ThrowLastError();
}

// The folder of the very name, if it is there.
FileDescriptor FolderOfName(int parent, const std::string& name) {
  constexpr int kFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;
  return FileDescriptor(IsEntryName(name) ? ::openat(parent, name.c_str(), kFlags) : -1);
}

std::string HomeFolder() {
  const char* home = std::getenv("HOME");
  if (home != nullptr && *home != '\0') return home;
  std::array<char, 4096> buffer{};
  passwd entry{};
  passwd* found = nullptr;
  getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found);
  return found == nullptr ? "" : found->pw_dir;
}

}  // namespace

PosixPaths::PosixPaths(const PosixFileOptions& options) : drives_(options.drives) {
  drives_.try_emplace(kSystemDrive, UserDataFolder() + "/kvdm/drive_c");
  drives_[kRootDrive] = "/";
}

DrivePath PosixPaths::Resolve(std::string_view path) {
  const PathParts parts = SplitPath(path);
  const bool relative = parts.start == PathStart::kCurrentFolder ||
                        (parts.start == PathStart::kDriveFolder && parts.drive == kRootDrive);
  auto resolved = ResolvePath(parts, relative ? CurrentFolder() : DrivePath{kRootDrive, {}});
  if (!resolved) ThrowSystemError(ENOENT);
  return *std::move(resolved);
}

FileDescriptor PosixPaths::Open(DrivePath& path, int no_folder, NameFinder find) const {
  FileDescriptor folder = OpenRoot(path.drive);
  for (std::string& name : path.names) {
    if (FileDescriptor inside = FolderOfName(folder.get(), name); inside.get() >= 0) {
      folder = std::move(inside);
      continue;
    }
    auto entry = names_.Find(folder.get(), name, find);
    if (!entry) ThrowSystemError(ENOENT);
    name = *std::move(entry);
    const bool last = &name == &path.names.back();
    if (!IsFolder(folder.get(), name)) ThrowSystemError(last ? no_folder : ENOENT);
    folder = OpenAt(folder.get(), name, O_PATH | O_DIRECTORY);
  }
  return folder;
}

PosixPlace PosixPaths::PlaceOf(std::string_view path, int root_error) const {
  DrivePath resolved = Resolve(path);
  if (resolved.names.empty()) {
    [[maybe_unused]] const FileDescriptor root = OpenRoot(resolved.drive);
    ThrowSystemError(root_error);
  }
  const std::string name = std::move(resolved.names.back());
  resolved.names.pop_back();
  FileDescriptor folder = Open(resolved, ENOENT);
  auto entry = names_.Find(folder.get(), name, FindName);
  return {std::move(folder), name, std::move(entry)};
}

std::string PosixPaths::RootOf(char drive) const {
  const auto found = drives_.find(drive);
  return found == drives_.end() ? "" : found->second;
}

FileDescriptor PosixPaths::OpenRoot(char drive) const {
  const std::string root = RootOf(drive);
  if (root.empty()) ThrowSystemError(ENOENT);
  if (drive == kSystemDrive) {
    std::error_code ignored;  // Opening it says what is wrong.
    std::filesystem::create_directories(root, ignored);
  }
  return OpenAt(AT_FDCWD, root, O_PATH | O_DIRECTORY);
}

std::string UserDataFolder() {
  const char* chosen = std::getenv("XDG_DATA_HOME");
  if (chosen != nullptr && *chosen == '/') return chosen;
  return HomeFolder() + "/.local/share";
}

}  // namespace kvdm
