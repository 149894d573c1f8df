// The test's own objects, as COM objects that the DLL calls.
#pragma once

#include <memory>

#include <kvdm/platform/gis_core.h>

#include "platform/windows/com_headers.h"

namespace kvdm::client {

// A new COM object for `set`. Nothing for Nothing.
[[nodiscard]] Microsoft::WRL::ComPtr<IUnknown> HostObject(
    const std::shared_ptr<NamedValueSet>& set);

// The set behind an object that HostObject made; Nothing for others.
[[nodiscard]] std::shared_ptr<NamedValueSet> OwnValueSet(IUnknown* object);

}  // namespace kvdm::client
