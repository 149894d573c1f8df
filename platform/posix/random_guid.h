// Identifiers from the system's random numbers.
#pragma once

#include <string>

namespace kvdm {

// A new version-4 identifier in registry form. Fails with an automation failure when the system
// has no random numbers.
[[nodiscard]] std::string RandomGuid();

}  // namespace kvdm
