// How an error reaches a client: as a result code and the error object of the calling thread.
#pragma once

#include <windows.h>

namespace kvdm::com {

// Puts the exception that is being handled into the calling thread's error object, with its
// description, with its source or else `class_identity`, and with the interface `iid`; answers its
// result code. To be called in a catch clause. Never throws.
HRESULT RaiseCurrentError(const char* class_identity, const IID& iid) noexcept;

}  // namespace kvdm::com
