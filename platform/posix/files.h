// Open files and folders of the system: handles, entries, file status and attributes, replacement.
// Links are never followed here. Errors are std::system_error.
#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/file_names.h"

namespace kvdm {

class FileDescriptor {
 public:
  explicit FileDescriptor(int value) : value_(value) {}
  FileDescriptor(FileDescriptor&& other) noexcept : value_(std::exchange(other.value_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  ~FileDescriptor() {
    if (value_ >= 0) ::close(value_);
  }

  [[nodiscard]] int get() const { return value_; }

  // Hands over the descriptor, still open.
  int Release() { return std::exchange(value_, -1); }

 private:
  int value_;
};

// Opens `name` in `folder`; `flags` as for open(2), close-on-exec added.
[[nodiscard]] FileDescriptor OpenAt(int folder, const std::string& name, int flags);

// Calls `visit` with name and type (a DT_ value) of each entry but "." and "..", in no order.
// Nothing is there in a folder that was removed meanwhile.
using EntryVisitor = std::function<void(const char* name, unsigned char type)>;
void ListEntries(int folder, const EntryVisitor& visit);

// The same for a folder that is open for listing, by that handle; the first time at its start.
void ListOpenFolder(int folder, const EntryVisitor& visit);

// The names of all entries but "." and "..", in the order of a listing.
[[nodiscard]] std::vector<std::string> EntryNames(int folder);

// Whether a name can be that of an entry.
[[nodiscard]] bool IsEntryName(std::string_view name);

// Whether an entry of the very name is there.
[[nodiscard]] bool HasEntry(int folder, const std::string& name);

// The name of the entry that `name` means, by `find`; nothing when there is none. In a folder that
// may not be listed only the very name is found.
[[nodiscard]] std::optional<std::string> FindEntry(int folder, std::string_view name,
                                                   NameFinder find);

// The one of the entries that `list` visits that `name` means, by `find`; nothing where it throws
// EACCES.
[[nodiscard]] std::optional<std::string> FindListed(
    std::string_view name, NameFinder find, const std::function<void(const EntryVisitor&)>& list);

// Device and inode of a file or folder.
struct FileIdentity {
  dev_t device = 0;
  ino_t number = 0;

  bool operator==(const FileIdentity&) const = default;
};
[[nodiscard]] FileIdentity IdentityOf(int file);

// The identity of an entry itself, a link too. Nothing when it is missing.
[[nodiscard]] std::optional<FileIdentity> IdentityIn(int folder, const std::string& name);

// A folder, and the file system through which it was reached: one folder may be in the tree at
// several places.
struct FolderIdentity {
  FileIdentity folder;
  std::uint64_t mount = 0;  // Older systems tell the device alone.

  [[nodiscard]] bool IsOnOneFileSystemWith(const FolderIdentity& other) const {
    return folder.device == other.folder.device && mount == other.mount;
  }
};
[[nodiscard]] FolderIdentity FolderIdentityOf(int folder);

// Opens the folder `name` itself, for listing. Throws ENOTDIR or ELOOP for whatever is no folder, a
// link to one too.
[[nodiscard]] FileDescriptor OpenFolderIn(int folder, const std::string& name);

// The status of a file or folder. Everything that is no folder counts as a file.
struct FileStatus {
  bool is_folder = false;
  bool is_regular_file = false;
  bool is_link = false;
  bool is_seen = true;   // Neither hidden nor system.
  bool has_dot = false;  // Not seen for the leading dot of its name alone.
  bool is_read_only = false;
  mode_t permissions = 0;
  uid_t owner = 0;
  gid_t group = 0;
  unsigned attributes = 0;  // The FileAttribute bits that are stored with it.
  FileIdentity identity;
};

// The status of an entry itself, a link too. Nothing when the entry is missing.
[[nodiscard]] std::optional<FileStatus> StatusOf(int folder, const std::string& name);

// Hidden and system attributes on file systems that have only permissions: the extended attribute
// "user.DOSATTRIB", which file servers and other programs share.

// The FileAttribute bits in a value of the extended attribute, which is a text such as "0x12" or a
// small record. 0 for anything else.
[[nodiscard]] unsigned ParseDosAttributes(std::string_view value);

// The record that holds `attributes`.
[[nodiscard]] std::string FormatDosAttributes(unsigned attributes);

// The attributes of an open file or folder; 0 when it has none.
[[nodiscard]] unsigned ReadDosAttributes(int file);

// Sets the attributes of an open file or folder; does nothing on a file system without extended
// attributes.
void WriteDosAttributes(int file, unsigned attributes);

// Writes `bytes` to a new file in `folder`, reads them again, and lets it take the place of `name`
// in one step, with the permissions, attributes and, as far as the process may, the owner of `old`.
// What is there stays as `previous`, unless that is "". A link in the place is replaced itself.
// After a failure `name` is as before. False when the disk did not confirm the change: a loss of
// power may bring back what was there.
bool ReplaceFile(int folder, const std::string& name, std::string_view bytes,
                 const std::optional<FileStatus>& old, const std::string& previous = {});

// What is left to read of an open file, but no more than `most` bytes.
[[nodiscard]] std::string ReadAll(int file, std::size_t most = std::string::npos);

// Deletes, in an open folder, the recovery file, and the temporary files of replacements whose
// process was killed. What
// can't be deleted stays.
void DeleteOwnFiles(int folder);

}  // namespace kvdm
