#include "platform/posix/replace_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>

#include "platform/posix/dos_attributes.h"
#include "platform/posix/posix_error.h"

namespace kvdm {
namespace {

constexpr mode_t kNewFilePermissions = 0666;

std::string TemporaryName() {
  static std::atomic<unsigned> count = 0;
  return ".kvdm-" + std::to_string(::getpid()) + "-" + std::to_string(++count) + ".tmp";
}

// A new file, which is removed at the end unless it was moved to its place.
class TemporaryFile {
 public:
  TemporaryFile(int folder, mode_t permissions) : folder_(folder), file_(-1) {
    constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    do {
      name_ = TemporaryName();
      file_ = FileDescriptor(::openat(folder, name_.c_str(), kFlags, permissions));
    } while (file_.get() < 0 && errno == EEXIST);
    if (file_.get() < 0) ThrowSystemError(errno);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (!moved_) ::unlinkat(folder_, name_.c_str(), 0);
  }

  [[nodiscard]] int file() const { return file_.get(); }

  void Write(std::string_view bytes) {
    while (!bytes.empty()) {
      const ssize_t written = ::write(file(), bytes.data(), bytes.size());
      if (written < 0 && errno != EINTR) ThrowSystemError(errno);
      if (written > 0) bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    if (::fsync(file()) != 0) ThrowSystemError(errno);
  }

  void MoveTo(const std::string& name) {
    if (::renameat(folder_, name_.c_str(), folder_, name.c_str()) != 0) ThrowSystemError(errno);
    moved_ = true;
  }

 private:
  int folder_;
  std::string name_;
  FileDescriptor file_;
  bool moved_ = false;
};

// Where the file system has no permissions or attributes of its own, the content is still saved.
void KeepProperties(int file, const EntryFacts& old) {
  ::fchmod(file, old.permissions);
  if (old.attributes != 0) WriteDosAttributes(file, old.attributes);
}

// Makes the new name outlast a power failure. The file is in its place by now whatever comes of it.
void SyncFolder(int folder) {
  const FileDescriptor readable(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (readable.get() >= 0) ::fsync(readable.get());
}

}  // namespace

void ReplaceFile(int folder, const std::string& name, std::string_view bytes,
                 const std::optional<EntryFacts>& old) {
  const bool keeps = old && !old->is_link;
  TemporaryFile temporary(folder, keeps ? old->permissions : kNewFilePermissions);
  if (keeps) KeepProperties(temporary.file(), *old);
  temporary.Write(bytes);
  temporary.MoveTo(name);
  SyncFolder(folder);
}

}  // namespace kvdm
