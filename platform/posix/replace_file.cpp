#include "platform/posix/replace_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <tuple>

#include "platform/file_names.h"
#include "platform/posix/dos_attributes.h"
#include "platform/system_error.h"

namespace kvdm {
namespace {

constexpr mode_t kNewFilePermissions = 0666;

// A new file, which is removed at the end unless it was moved to its place.
class TemporaryFile {
 public:
  // For the place of `old`, which nobody may read meanwhile who may not read that.
  TemporaryFile(int folder, const std::optional<EntryFacts>& old) : folder_(folder), file_(-1) {
    constexpr int kFlags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    const mode_t permissions = old ? old->permissions & S_IRWXU : kNewFilePermissions;
    do {
      name_ = TemporaryFileName();
      file_ = FileDescriptor(::openat(folder, name_.c_str(), kFlags, permissions));
    } while (file_.get() < 0 && errno == EEXIST);
    if (file_.get() < 0) ThrowLastError();
    // One that nobody holds was left behind, and goes with its folder. Not all systems have locks.
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
  void KeepProperties(const EntryFacts& old) {
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

// Where files can't have two names, a copy does.
void KeepAs(int folder, const std::string& name, const EntryFacts& facts,
            const std::string& second) {
  const std::string link = TemporaryFileName();
  if (::linkat(folder, name.c_str(), folder, link.c_str(), 0) != 0) {
    TemporaryFile copy(folder, facts);
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
                 const std::optional<EntryFacts>& old, const std::string& previous) {
  const auto kept = old && !old->is_link ? old : std::nullopt;
  TemporaryFile temporary(folder, kept);
  temporary.Write(bytes);
  if (kept && !previous.empty()) KeepAs(folder, name, *kept, previous);
  temporary.MoveTo(name);
  return SyncFolder(folder);
}

}  // namespace kvdm
