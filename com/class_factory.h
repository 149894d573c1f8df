// What creates the objects of a class for clients.
#pragma once

#include "com/classes.h"
#include "platform/windows/com_headers.h"

namespace kvdm::com {

[[nodiscard]] Microsoft::WRL::ComPtr<IClassFactory> MakeClassFactory(const Class& of);

}  // namespace kvdm::com
