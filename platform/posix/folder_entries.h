// What is in an open folder of the system. Links are never followed here. Errors are
// std::system_error.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_names.h"
#include "platform/posix/file_descriptor.h"

namespace kvdm {

// Opens `name` in `folder`; `flags` as for open(2), close-on-exec added.
[[nodiscard]] FileDescriptor OpenAt(int folder, const std::string& name, int flags);

// The names of all entries but "." and "..", in the order of a listing. Empty for a folder that was
// removed meanwhile.
[[nodiscard]] std::vector<std::string> EntryNames(int folder);

// The name of the entry that `name` means, by `find`; nothing when there is none. In a folder that
// may not be listed only the very name is found.
[[nodiscard]] std::optional<std::string> FindEntry(int folder, std::string_view name,
                                                   NameFinder find);

// Which file or folder of the system it is, whatever its name.
struct FileIdentity {
  dev_t device = 0;
  ino_t number = 0;

  bool operator==(const FileIdentity&) const = default;
};
[[nodiscard]] FileIdentity IdentityOf(int file);

// Opens the folder `name` itself, for listing. Throws ENOTDIR or ELOOP for whatever is no folder, a
// link to one too, and EBUSY for one that begins another file system.
[[nodiscard]] FileDescriptor OpenFolderIn(int folder, const std::string& name);

// What is known of an entry. Everything that is no folder counts as a file.
struct EntryFacts {
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

// Nothing when the entry is missing.
[[nodiscard]] std::optional<EntryFacts> ExamineEntry(int folder, const std::string& name);

}  // namespace kvdm
