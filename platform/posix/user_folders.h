// Where a user's files are.
#pragma once

#include <string>

namespace kvdm {

// $XDG_DATA_HOME when it is an absolute path, else .local/share in the home folder.
[[nodiscard]] std::string UserDataFolder();

}  // namespace kvdm
