// Clients in another apartment than the component's objects. All their calls go through proxies.
#pragma once

#include <functional>

#include "com/kvdm.h"
#include "platform/windows/com_headers.h"

namespace kvdm::boundary {

using Microsoft::WRL::ComPtr;

// What a client does with its data manager.
using Session = std::function<void(const ComPtr<::IKVDataManager>& manager)>;

// On a thread of the multi-threaded apartment. It creates the data manager, which COM puts into a
// single-threaded apartment of its own.
void RunInMultiThreadedApartment(const Session& session);

// On a thread with a single-threaded apartment. It is handed a data manager of this thread's.
void RunInOtherApartment(const Session& session);

// A new object of the class, which is registered.
template <class Interface>
ComPtr<Interface> Create(const CLSID& clsid) {
  ComPtr<Interface> object;
  ::CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&object));
  return object;
}

// Another interface of an object; null when it has none.
template <class Interface, class From>
ComPtr<Interface> As(const ComPtr<From>& object) {
  ComPtr<Interface> other;
  object.As(&other);
  return other;
}

}  // namespace kvdm::boundary
