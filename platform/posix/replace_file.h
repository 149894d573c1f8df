// Replacing a file as a whole.
#pragma once

#include <string>
#include <string_view>

#include "platform/posix/folder_entries.h"

namespace kvdm {

// Writes `bytes` to a new file in `folder` and lets it take the place of `name`, with the
// permissions and attributes of `old`. After a failure (std::system_error) everything is as before.
void ReplaceFile(int folder, const std::string& name, std::string_view bytes,
                 const std::optional<EntryFacts>& old);

}  // namespace kvdm
