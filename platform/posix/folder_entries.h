// What is in an open folder of the system. Links are never followed here. Errors are
// std::system_error.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/posix/file_descriptor.h"

namespace kvdm {

// Opens `name` in `folder`; `flags` as for open(2), close-on-exec added.
[[nodiscard]] FileDescriptor OpenAt(int folder, const std::string& name, int flags);

// The names of all entries but "." and "..", in the order of a listing. Empty for a folder that was
// removed meanwhile.
[[nodiscard]] std::vector<std::string> EntryNames(int folder);

// The name of the entry that `name` means; nothing when there is none. In a folder that may not be
// listed only the very name is found.
[[nodiscard]] std::optional<std::string> FindEntry(int folder, std::string_view name);

// What is known of an entry. Everything that is no folder counts as a file.
struct EntryFacts {
  bool is_folder = false;
  bool is_regular_file = false;
  bool is_link = false;
  bool is_seen = true;  // Neither hidden nor system.
  bool is_read_only = false;
  mode_t permissions = 0;
  uid_t owner = 0;
  gid_t group = 0;
  unsigned attributes = 0;  // The FileAttribute bits that are stored with it.
};

// Nothing when the entry is missing.
[[nodiscard]] std::optional<EntryFacts> ExamineEntry(int folder, const std::string& name);

}  // namespace kvdm
