// What creates the objects of a class for clients.
#pragma once

#include <windows.h>
// Needs the types of the former.
#include <unknwn.h>
#include <wrl/client.h>

#include "com/classes.h"

namespace kvdm::com {

[[nodiscard]] Microsoft::WRL::ComPtr<IClassFactory> MakeClassFactory(const Class& of);

}  // namespace kvdm::com
