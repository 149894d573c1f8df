// Calls by name: IDispatch::Invoke on operations that the type library describes.
#pragma once

#include "com/object_type.h"
#include "platform/windows/com_headers.h"

namespace kvdm::com {

// The arguments of IDispatch::Invoke.
struct LateCall {
  DISPID id;
  WORD flags;
  const DISPPARAMS& parameters;
  VARIANT* result;
  EXCEPINFO* exception;
  UINT* wrong_argument;
};

// The operation that `call` means; of two the first. Null when there is none: a method is called,
// and never read.
[[nodiscard]] const Operation* FindOperation(const ObjectType& type, const LateCall& call);

// Calls the operation by its slot in `object`, which is its interface. Answers as
// IDispatch::Invoke does. Arguments may be passed by reference.
[[nodiscard]] HRESULT Invoke(const Operation& operation, IUnknown* object, const LateCall& call);

}  // namespace kvdm::com
