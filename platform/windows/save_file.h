// Replacing a file as a whole.
#pragma once

#include <string_view>

#include "platform/windows/windows_paths.h"

namespace kvdm {

// Writes `bytes` to a new file in the folder of `place` and lets it take that place, with the
// attributes and access rights of what is there. After a failure (std::system_error) everything is
// as before.
void SaveFile(const WindowsPlace& place, std::string_view bytes);

}  // namespace kvdm
