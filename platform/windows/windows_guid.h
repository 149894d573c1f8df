// Identifiers of the system.
#pragma once

#include <string>

namespace kvdm {

// A new version-4 identifier in registry form. Fails with the system's error when it has none.
[[nodiscard]] std::string WindowsGuid();

}  // namespace kvdm
