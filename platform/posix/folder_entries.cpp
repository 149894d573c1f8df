#include "platform/posix/folder_entries.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdint>
#include <memory>

#include "platform/file_names.h"
#include "platform/posix/dos_attributes.h"
#include "platform/system_error.h"

namespace kvdm {
namespace {

struct FolderCloser {
  void operator()(DIR* folder) const { ::closedir(folder); }
};
using FolderStream = std::unique_ptr<DIR, FolderCloser>;

FolderStream OpenStream(FileDescriptor folder) {
  FolderStream stream(::fdopendir(folder.get()));
  if (!stream) ThrowLastError();
  folder.Release();
  return stream;
}

bool IsEntryName(std::string_view name) {
  constexpr std::string_view kNeverInNames("/\0", 2);
  return !name.empty() && name != "." && name != ".." &&
         name.find_first_of(kNeverInNames) == std::string_view::npos;
}

std::optional<struct stat> StatusOf(int folder, const std::string& name) {
  struct stat status {};
  if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) return status;
  if (errno == ENOENT) return std::nullopt;
  ThrowLastError();
}

// Attributes that the system does not let us read, or of an entry that has just changed its kind,
// count as none. When they can't be read for want of resources, a hidden file must not pass for an
// ordinary one.
unsigned StoredAttributes(int folder, const std::string& name) {
  const int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  const FileDescriptor file(::openat(folder, name.c_str(), flags));
  if (file.get() >= 0) return ReadDosAttributes(file.get());
  if (errno == ENOENT || errno == EACCES || errno == ELOOP) return 0;
  ThrowLastError();
}

// A place where a file system begins in the tree, and its device: one folder may be in the tree at
// several places. Older systems tell the device alone.
struct Mount {
  std::uint64_t place = 0;
  dev_t device = 0;

  bool operator==(const Mount&) const = default;
};

Mount MountOf(int folder) {
  struct statx facts {};
  const bool told = ::statx(folder, "", AT_EMPTY_PATH, STATX_MNT_ID, &facts) == 0 &&
                    (facts.stx_mask & STATX_MNT_ID) != 0;
  return {told ? facts.stx_mnt_id : 0, IdentityOf(folder).device};
}

std::vector<std::string> NamesForSearch(int folder) {
  try {
    return EntryNames(folder);
  } catch (const std::system_error& error) {
    if (error.code().value() == EACCES) return {};
    throw;
  }
}

}  // namespace

FileDescriptor OpenAt(int folder, const std::string& name, int flags) {
  int file = -1;
  do {
    file = ::openat(folder, name.c_str(), flags | O_CLOEXEC);
  } while (file < 0 && errno == EINTR);
  if (file < 0) ThrowLastError();
  return FileDescriptor(file);
}

std::vector<std::string> EntryNames(int folder) {
  const int own = ::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (own < 0 && errno == ENOENT) return {};
  if (own < 0) ThrowLastError();
  const FolderStream stream = OpenStream(FileDescriptor(own));
  std::vector<std::string> names;
  while (true) {
    errno = 0;
    const dirent* entry = ::readdir(stream.get());
    if (entry == nullptr && errno != 0) ThrowLastError();
    if (entry == nullptr) break;
    if (IsEntryName(entry->d_name)) names.emplace_back(entry->d_name);
  }
  SortNames(names);
  return names;
}

std::optional<std::string> FindEntry(int folder, std::string_view name, NameFinder find) {
  if (!IsEntryName(name)) return std::nullopt;
  std::string exact(name);
  if (StatusOf(folder, exact)) return exact;
  return find(NamesForSearch(folder), name);
}

FileIdentity IdentityOf(int file) {
  struct stat status {};
  if (::fstat(file, &status) != 0) ThrowLastError();
  return {status.st_dev, status.st_ino};
}

FileDescriptor OpenFolderIn(int folder, const std::string& name) {
  FileDescriptor inside = OpenAt(folder, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
  if (MountOf(inside.get()) != MountOf(folder)) ThrowSystemError(EBUSY);
  return inside;
}

std::optional<EntryFacts> ExamineEntry(int folder, const std::string& name) {
  const auto status = StatusOf(folder, name);
  if (!status) return std::nullopt;
  EntryFacts facts;
  facts.is_folder = S_ISDIR(status->st_mode);
  facts.is_regular_file = S_ISREG(status->st_mode);
  facts.is_link = S_ISLNK(status->st_mode);
  facts.permissions = status->st_mode & 0777U;
  facts.owner = status->st_uid;
  facts.group = status->st_gid;
  facts.is_read_only = (facts.permissions & 0222U) == 0;
  if (facts.is_folder || facts.is_regular_file) facts.attributes = StoredAttributes(folder, name);
  const bool is_hidden = (facts.attributes & (kHiddenAttribute | kSystemAttribute)) != 0;
  facts.has_dot = name.starts_with('.') && !is_hidden;
  facts.is_seen = !name.starts_with('.') && !is_hidden;
  facts.identity = {status->st_dev, status->st_ino};
  return facts;
}

}  // namespace kvdm
