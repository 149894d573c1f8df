// Replacement of files as a whole, and the temporary files that it leaves behind when it is killed.
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <tuple>

#include <kvdm/platform/file_system.h>

#include "platform/posix/files.h"
#include "platform/system_error.h"

namespace kvdm {
namespace {

constexpr mode_t kNewFilePermissions = 0666;

// A new file, which is removed at the end unless it was moved to its place.
class TemporaryFile {
 public:
  // For the place of `old`; never readable by more users than that.
  TemporaryFile(int folder, const std::optional<FileStatus>& old) : folder_(folder), file_(-1) {
    constexpr int kFlags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    const mode_t permissions = old ? old->permissions & S_IRWXU : kNewFilePermissions;
    do {
      name_ = TemporaryFileName();
      file_ = FileDescriptor(::openat(folder, name_.c_str(), kFlags, permissions));
    } while (file_.get() < 0 && errno == EEXIST);
    if (file_.get() < 0) ThrowLastError();
    // One without a lock is stale, and goes with its folder. Not all systems have locks.
    ::flock(file_.get(), LOCK_EX | LOCK_NB);
    if (old) KeepProperties(*old);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (!moved_) ::unlinkat(folder_, name_.c_str(), 0);
  }

  // On return the bytes are on the disk, and can be read again.
  void Write(std::string_view bytes) {
    for (std::string_view rest = bytes; !rest.empty();) {
      const ssize_t written = ::write(file_.get(), rest.data(), rest.size());
      if (written < 0 && errno != EINTR) ThrowLastError();
      if (written > 0) rest.remove_prefix(static_cast<std::size_t>(written));
    }
    if (::fsync(file_.get()) != 0) ThrowLastError();
    if (::lseek(file_.get(), 0, SEEK_SET) != 0) ThrowLastError();
    if (ReadAll(file_.get(), bytes.size() + 1) != bytes) ThrowSystemError(EIO);
  }

  void MoveTo(const std::string& name) {
    if (::renameat(folder_, name_.c_str(), folder_, name.c_str()) != 0) ThrowLastError();
    moved_ = true;
  }

 private:
  // The owner, or else the group, stays where this process may give the file away. Where the file
  // system has no permissions or attributes of its own, the content is still saved.
  void KeepProperties(const FileStatus& old) {
    constexpr auto kAnyOwner = static_cast<uid_t>(-1);
    if (::fchown(file_.get(), old.owner, old.group) != 0) {
      std::ignore = ::fchown(file_.get(), kAnyOwner, old.group);
    }
    ::fchmod(file_.get(), old.permissions);
    if (old.attributes != 0) WriteDosAttributes(file_.get(), old.attributes);
  }

  int folder_;
  std::string name_;
  FileDescriptor file_;
  bool moved_ = false;
};

// Gives a file a second name; where files can't have two, a copy does.
void LinkOrCopy(int folder, const std::string& name, const FileStatus& status,
                const std::string& second) {
  const std::string link = TemporaryFileName();
  if (::linkat(folder, name.c_str(), folder, link.c_str(), 0) != 0) {
    TemporaryFile copy(folder, status);
    copy.Write(ReadAll(OpenAt(folder, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK).get()));
    return copy.MoveTo(second);
  }
  const int moved = ::renameat(folder, link.c_str(), folder, second.c_str());
  const int error = errno;
  // Two names of one file stay two when one is moved to the other.
  ::unlinkat(folder, link.c_str(), 0);
  if (moved != 0) ThrowSystemError(error);
}

// Makes the new name outlast a power failure; False when it may not. Not every folder can be asked
// for that.
bool SyncFolder(int folder) {
  const FileDescriptor readable(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (readable.get() < 0) return errno == EACCES;
  return ::fsync(readable.get()) == 0 || errno == EINVAL || errno == ENOTSUP;
}

constexpr std::string_view kDigits = "0123456789";

bool IsOf(std::string_view text, std::string_view characters) {
  return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

// The part of a temporary file's name between ".kvdm-" and ".tmp"; nothing for other names.
std::optional<std::string_view> OwnPart(std::string_view name) {
  constexpr std::string_view kBefore = ".kvdm-";
  constexpr std::string_view kAfter = ".tmp";
  if (!name.starts_with(kBefore) || !name.ends_with(kAfter)) return std::nullopt;
  name.remove_prefix(kBefore.size());
  name.remove_suffix(std::min(kAfter.size(), name.size()));
  return name;
}

// Whether the process with this number is there; a number that is too large names none.
bool Runs(std::string_view process) {
  pid_t number = 0;
  const auto read = std::from_chars(process.begin(), process.end(), number);
  return read.ec == std::errc() && (::kill(number, 0) == 0 || errno != ESRCH);
}

// Whether a temporary file's writer is gone. Its name is the process and a count, or 16 random
// digits; then the writer holds a lock.
bool IsStale(int folder, const std::string& name) {
  const auto own = OwnPart(name);
  if (!own) return false;
  const std::size_t dash = own->find('-');
  if (dash != std::string_view::npos) {
    const auto process = own->substr(0, dash);
    return IsOf(process, kDigits) && IsOf(own->substr(dash + 1), kDigits) && !Runs(process);
  }
  constexpr std::size_t kChanceDigits = 16;
  if (own->size() != kChanceDigits || !IsOf(*own, "0123456789abcdef")) return false;
  const FileDescriptor file(
      ::openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  return file.get() >= 0 && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0;
}

}  // namespace

std::string ReadAll(int file, std::size_t most) {
  std::string content;
  std::array<char, 65536> buffer;
  while (content.size() < most) {
    const std::size_t wanted = std::min(buffer.size(), most - content.size());
    const ssize_t size = ::read(file, buffer.data(), wanted);
    if (size == 0) break;
    if (size < 0 && errno != EINTR) ThrowLastError();
    if (size > 0) content.append(buffer.data(), static_cast<std::size_t>(size));
  }
  return content;
}

bool ReplaceFile(int folder, const std::string& name, std::string_view bytes,
                 const std::optional<FileStatus>& old, const std::string& previous) {
  const auto kept = old && !old->is_link ? old : std::nullopt;
  TemporaryFile temporary(folder, kept);
  temporary.Write(bytes);
  if (kept && !previous.empty()) LinkOrCopy(folder, name, *kept, previous);
  temporary.MoveTo(name);
  return SyncFolder(folder);
}

void DeleteOwnFiles(int folder) {
  for (const std::string& name : EntryNames(folder)) {
    const auto status = StatusOf(folder, name);
    const bool is_own = name == kRecoveryFile || IsStale(folder, name);
    if (status && status->is_regular_file && is_own) {
      ::unlinkat(folder, name.c_str(), 0);
    }
  }
}

}  // namespace kvdm
