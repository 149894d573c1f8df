// Replacing a file as a whole. Errors are std::system_error.
#pragma once

#include <string>
#include <string_view>

#include "platform/posix/folder_entries.h"

namespace kvdm {

// Writes `bytes` to a new file in `folder`, reads them again, and lets it take the place of `name`
// in one step, with the permissions, attributes and, as far as the process may, the owner of `old`.
// What is there stays as `previous`, unless that is "". A link in the place is replaced itself.
// After a failure `name` is as before. False when the disk did not confirm the change: a loss of
// power may bring back what was there.
bool ReplaceFile(int folder, const std::string& name, std::string_view bytes,
                 const std::optional<EntryFacts>& old, const std::string& previous = {});

// What is left to read of an open file, but no more than `most` bytes.
[[nodiscard]] std::string ReadAll(int file, std::size_t most = std::string::npos);

}  // namespace kvdm
