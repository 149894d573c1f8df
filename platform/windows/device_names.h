// The names that mean a device instead of a file in any folder.
#pragma once

#include <string_view>

namespace kvdm {

// Whether programs take `name` for a device: "nul", "AUX.txt", "com1 .log". A file that had such a
// name could hardly be opened or deleted again.
[[nodiscard]] bool IsDeviceName(std::string_view name);

}  // namespace kvdm
