// Wrappers: the COM objects that stand for the component's.
#pragma once

#include <memory>
#include <typeindex>

#include <kvdm/datamanager/name_list.h>
#include <kvdm/datamanager/unknown.h>
#include <kvdm/platform/gis_core.h>
#include <kvdm/platform/siblings.h>

#include "com/classes.h"
#include "platform/windows/com_headers.h"

namespace kvdm::com {

// A new object for `core`, which an operation answered as its interface `interface_type`.
[[nodiscard]] Microsoft::WRL::ComPtr<IUnknown> NewObject(const std::shared_ptr<Unknown>& core,
                                                         std::type_index interface_type);

// The object that a client is given for one of the component's. An object that came from the client
// is that very object again. Nothing for Nothing.
template <class Interface>
[[nodiscard]] Microsoft::WRL::ComPtr<IUnknown> ToClient(const std::shared_ptr<Interface>& core) {
  return NewObject(core, typeid(Interface));
}
[[nodiscard]] Microsoft::WRL::ComPtr<IUnknown> ToClient(const std::shared_ptr<NameList>& list);
[[nodiscard]] Microsoft::WRL::ComPtr<IUnknown> ToClient(
    const std::shared_ptr<Identifier>& identifier);
[[nodiscard]] Microsoft::WRL::ComPtr<IUnknown> ToClient(const std::shared_ptr<NamedValueSet>& set);
[[nodiscard]] Microsoft::WRL::ComPtr<IUnknown> ToClient(
    const std::shared_ptr<DatasetManager>& manager);

// A new object of the class, on the services of this system.
[[nodiscard]] Microsoft::WRL::ComPtr<IUnknown> NewInstance(const Class& of);

}  // namespace kvdm::com
