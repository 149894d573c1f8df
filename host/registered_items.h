// The data manager's own registry of study areas and layers, of which the component's interfaces
// show nothing.
#pragma once

#include "datamanager/area_registry.h"
#include "host/session.h"

namespace kvdm {

// Lives as long as the session. Its failures are messages.
[[nodiscard]] AreaRegistry& RegistryOf(Session& session);

}  // namespace kvdm
