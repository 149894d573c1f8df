// Which study area the host has open.
#pragma once

#include <string>

#include "items/friends.h"

namespace kvdm {

// The host's property that names the current study area.
inline constexpr char kStudyAreaNameProperty[] = "Study Area Name";

// The folder of the current study area, with a trailing "\"; the working directory when none is
// open or the one named is not there. Errors reach the caller; run-time error 91 without a host.
[[nodiscard]] std::string CurrentFolder(DataManagerFriend& data_manager);

}  // namespace kvdm
