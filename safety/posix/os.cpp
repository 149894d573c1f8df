#include "safety/os.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <system_error>

#include "platform/posix/files.h"
#include "platform/posix/posix_file_system.h"
#include "platform/system_error.h"

namespace kvdm::os {
namespace {

[[noreturn]] void Fail(const std::filesystem::path& path, int error = errno) {
  throw std::system_error(error, std::generic_category(), path.string());
}

// Calls `body`; a system error in it becomes one that names `path`.
template <class Body>
auto Naming(const std::filesystem::path& path, Body body) {
  try {
    return body();
  } catch (const std::system_error& error) {
    Fail(path, error.code().value());
  }
}

FileDescriptor Open(const std::filesystem::path& path, int flags) {
  constexpr mode_t kMode = 0666;
  FileDescriptor file(::open(path.c_str(), flags | O_CLOEXEC, kMode));
  if (file.get() < 0) Fail(path);
  return file;
}

// Opens a regular file; never waits for the other end of a pipe.
FileDescriptor OpenRegular(const std::filesystem::path& path, int flags) {
  FileDescriptor file = Open(path, flags | O_NONBLOCK | O_NOCTTY);
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) Fail(path);
  if (!S_ISREG(status.st_mode)) Fail(path, S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
  return file;
}

std::vector<std::filesystem::path> ListedFiles(const std::filesystem::path& folder,
                                               std::error_code& failed) {
  std::vector<std::filesystem::path> files;
  std::filesystem::directory_iterator entry(folder, failed);
  for (; !failed && entry != end(entry); entry.increment(failed)) {
    std::error_code unknown;
    const bool is_file = entry->is_regular_file(unknown);
    if (is_file || (unknown && !MeansMissing(unknown.value()))) files.push_back(entry->path());
  }
  return files;
}

std::optional<std::string> Found(const Drives& drives, std::string_view path, NameFinder find) {
  try {
    DrivePath resolved = PosixPaths::Resolve(path);
    const FileDescriptor folder = PosixPaths({drives}).Open(resolved, ENOTDIR, find);
    return resolved.Text();
  } catch (const std::system_error& error) {
    if (MeansMissing(error.code().value())) return std::nullopt;
    Fail(ToPath(path), error.code().value());
  }
}

// Not all file systems have this for folders.
void Sync(int folder) {
  const FileDescriptor readable = OpenAt(folder, ".", O_RDONLY | O_DIRECTORY);
  if (::fsync(readable.get()) != 0 && errno != EINVAL && errno != ENOTSUP) ThrowLastError();
}

void EmptyTree(int folder);

void DeleteEntry(int parent, const std::string& name) {
  const auto facts = StatusOf(parent, name);
  if (!facts) return;
  if (facts->is_folder) {
    // Its owner may have closed it to everybody.
    constexpr mode_t kAll = S_IRWXU;
    if ((facts->permissions & kAll) != kAll) {
      const FileDescriptor closed = OpenAt(parent, name, O_PATH | O_DIRECTORY | O_NOFOLLOW);
      ::chmod(("/proc/self/fd/" + std::to_string(closed.get())).c_str(), kAll);
    }
    EmptyTree(OpenFolderIn(parent, name).get());
  }
  if (::unlinkat(parent, name.c_str(), facts->is_folder ? AT_REMOVEDIR : 0) != 0 &&
      errno != ENOENT) {
    Fail(name);
  }
}

void EmptyTree(int folder) {
  for (const std::string& name : EntryNames(folder)) DeleteEntry(folder, name);
}

// What is at `name`. It must be a regular file.
std::optional<FileStatus> RegularFile(int folder, const std::string& name) {
  const auto facts = StatusOf(folder, name);
  if (facts && facts->is_link) ThrowSystemError(ELOOP);
  if (facts && !facts->is_regular_file) ThrowSystemError(facts->is_folder ? EISDIR : EINVAL);
  return facts;
}

// The name that `name` has in a folder; nothing where that has no such entry, or can't be told.
std::optional<std::string> EntryOf(const std::filesystem::path& folder, const std::string& name) {
  try {
    const FileDescriptor open = OpenAt(AT_FDCWD, folder, O_PATH | O_DIRECTORY);
    return FindEntry(open.get(), name, FindName);
  } catch (const std::system_error&) {
    return std::nullopt;
  }
}

// Adds what is in the folder `name` of the open folder `parent`.
void AddSize(int parent, const std::string& name, TreeSize& size) {
  try {
    const FileDescriptor folder = OpenAt(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
    for (const std::string& entry : EntryNames(folder.get())) {
      struct stat status {};
      if (::fstatat(folder.get(), entry.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        size.is_whole = size.is_whole && MeansMissing(errno);
      } else if (S_ISDIR(status.st_mode)) {
        AddSize(folder.get(), entry, size);
      } else if (entry != kRecoveryFile) {
        ++size.files;
        size.bytes += status.st_size;
      }
    }
  } catch (const std::system_error&) {
    size.is_whole = false;
  }
}

}  // namespace

bool Exists(const std::filesystem::path& path) {
  std::error_code failed;
  const auto status = std::filesystem::symlink_status(path, failed);
  if (failed && !MeansMissing(failed.value())) Fail(path, failed.value());
  return status.type() != std::filesystem::file_type::not_found;
}

std::filesystem::path Absolute(const std::filesystem::path& path) {
  return std::filesystem::absolute(path).lexically_normal();
}

std::filesystem::path Canonical(const std::filesystem::path& path) {
  std::error_code failed;
  auto canonical = std::filesystem::canonical(path, failed);
  if (failed) Fail(path, failed.value());
  return canonical;
}

std::vector<std::filesystem::path> FilesIn(const std::filesystem::path& folder) {
  std::error_code failed;
  do {
    auto files = ListedFiles(folder, failed);
    if (!failed) return files;
  } while (failed == std::errc::interrupted);
  Fail(folder, failed.value());
}

void CreateFolders(const std::filesystem::path& folder) {
  std::error_code failed;
  std::filesystem::create_directories(folder, failed);
  if (failed) Fail(folder, failed.value());
}

void SyncFolder(const std::filesystem::path& folder) {
  Naming(folder, [&] { Sync(Open(folder, O_PATH | O_DIRECTORY).get()); });
}

std::string ReadBytes(const std::filesystem::path& file, std::size_t most) {
  const FileDescriptor source = OpenRegular(file, O_RDONLY);
  std::string bytes = Naming(file, [&] { return ReadAll(source.get(), most + 1); });
  if (bytes.size() > most) Fail(file, EFBIG);
  return bytes;
}

bool Replace(const std::filesystem::path& file, std::string_view bytes,
             const std::filesystem::path& previous) {
  const std::filesystem::path absolute = Absolute(file);
  const FileDescriptor folder =
      Naming(file, [&] { return OpenAt(AT_FDCWD, absolute.parent_path(), O_PATH | O_DIRECTORY); });
  const std::string kept = previous.filename();
  Naming(previous, [&] {
    const auto facts = kept.empty() ? std::nullopt : StatusOf(folder.get(), kept);
    if (facts && facts->is_folder) ThrowSystemError(EISDIR);
  });
  return Naming(file, [&] {
    const auto old = RegularFile(folder.get(), absolute.filename());
    if (old && old->is_read_only) ThrowSystemError(EACCES);
    return kvdm::ReplaceFile(folder.get(), absolute.filename(), bytes, old, kept);
  });
}

void Rename(const std::filesystem::path& from, const std::filesystem::path& to) {
  if (::rename(from.c_str(), to.c_str()) != 0) Fail(from);
}

void RemoveFile(const std::filesystem::path& file) {
  if (::unlink(file.c_str()) != 0 && errno != ENOENT) Fail(file);
}

void RemoveFolder(const std::filesystem::path& folder) {
  const bool stays = ::rmdir(folder.c_str()) != 0;
  if (stays && errno != ENOENT && errno != ENOTEMPTY && errno != EEXIST) Fail(folder);
}

void DeleteTree(const std::filesystem::path& folder) {
  const FileDescriptor parent = Open(folder.parent_path(), O_PATH | O_DIRECTORY);
  Naming(folder, [&] { DeleteEntry(parent.get(), folder.filename()); });
}

bool IsReadOnly(const std::filesystem::path& file) {
  const auto facts = Naming(file, [&] { return StatusOf(AT_FDCWD, file); });
  return facts && facts->is_read_only;
}

std::optional<std::string> FindFolder(const Drives& drives, std::string_view path) {
  return Found(drives, path, FindName);
}

std::optional<std::string> FindSameFolder(const Drives& drives, std::string_view path) {
  return Found(drives, path, FindSameName);
}

std::vector<std::string> FoldersIn(const Drives& drives, std::string_view path,
                                   std::string_view prefix) {
  if (!FindFolder(drives, path)) return {};
  return Naming(ToPath(path), [&] {
    DrivePath resolved = PosixPaths::Resolve(path);
    const FileDescriptor folder = PosixPaths({drives}).Open(resolved, ENOTDIR);
    std::vector<std::string> names = EntryNames(folder.get());
    std::erase_if(names, [&](const std::string& name) {
      if (!name.starts_with(prefix)) return true;
      const auto facts = StatusOf(folder.get(), name);
      return !facts || !facts->is_folder;
    });
    return names;
  });
}

void MoveFolder(const Drives& drives, std::string_view from, std::string_view to) {
  const PosixPaths paths({drives});
  const PosixPlace source = paths.PlaceOf(from, EBUSY);
  const PosixPlace target = paths.PlaceOf(to, EBUSY);
  const std::string name = source.entry.value_or(source.name);
  const auto facts = StatusOf(source.folder.get(), name);
  if (!facts || !facts->is_folder) ThrowSystemError(ENOTDIR);
  if (::renameat(source.folder.get(), name.c_str(), target.folder.get(), target.name.c_str()) !=
      0) {
    ThrowLastError();
  }
  Sync(target.folder.get());
  Sync(source.folder.get());
}

std::shared_ptr<void> TryLock(const std::filesystem::path& file) {
  // A file that this user may only read can be locked all the same.
  const int access =
      Exists(file) && ::access(file.c_str(), W_OK) != 0 ? O_RDONLY : O_RDWR | O_CREAT;
  const auto lock = std::make_shared<FileDescriptor>(OpenRegular(file, access | O_NOFOLLOW));
  if (::flock(lock->get(), LOCK_EX | LOCK_NB) == 0) return lock;
  if (errno != EWOULDBLOCK && errno != EINTR) Fail(file);
  return nullptr;
}

std::optional<std::filesystem::path> NativePlace(const Drives& drives, std::string_view path) {
  const PathStart start = SplitPath(path).start;
  if (start != PathStart::kDrive && start != PathStart::kCurrentDrive) return std::nullopt;
  const DrivePath resolved = PosixPaths::Resolve(path);
  std::filesystem::path native = PosixPaths({drives}).RootOf(resolved.drive);
  if (native.empty()) return std::nullopt;
  bool is_there = true;
  for (const std::string& name : resolved.names) {
    const auto found = is_there ? EntryOf(native, name) : std::nullopt;
    is_there = found.has_value();
    native /= found.value_or(name);
  }
  return native;
}

bool AreSame(const std::filesystem::path& a, const std::filesystem::path& b) { return a == b; }

bool IsLink(const std::filesystem::path& path) {
  const auto facts = Naming(path, [&] { return StatusOf(AT_FDCWD, path); });
  return facts && facts->is_link;
}

TreeSize SizeOfTree(const std::filesystem::path& folder) {
  TreeSize size;
  AddSize(AT_FDCWD, folder, size);
  return size;
}

void Hide(const std::filesystem::path& /*folder*/) {}

std::string Person() {
  // The system's list of users may be far away, and ends a program that has no memory left for it.
  const char* name = std::getenv("LOGNAME");
  if (name != nullptr && *name != '\0') return name;
  const passwd* entry = ::getpwuid(::getuid());
  return entry == nullptr ? std::to_string(::getuid()) : entry->pw_name;
}

std::string Machine() {
  utsname names{};
  return ::uname(&names) == 0 ? names.nodename : "";
}

std::filesystem::path HomeFolder() {
  const char* home = std::getenv("HOME");
  if (home != nullptr && *home == '/') return home;
  const passwd* entry = ::getpwuid(::getuid());
  return entry == nullptr ? "" : entry->pw_dir;
}

std::string ToText(const std::filesystem::path& path) { return path.string(); }
std::filesystem::path ToPath(std::string_view text) { return {text}; }

std::string ComponentPath(const std::filesystem::path& absolute) {
  std::string path = "Z:" + Absolute(absolute).string();
  std::replace(path.begin(), path.end(), '/', '\\');
  return path;
}

std::string NativePath(std::string_view path) {
  if (!path.starts_with("Z:") && !path.starts_with("z:")) return std::string(path);
  std::string native(path.substr(2));
  std::ranges::replace(native, '\\', '/');
  return native.empty() ? "/" : native;
}

}  // namespace kvdm::os
