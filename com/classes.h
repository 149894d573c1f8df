// Class table of the DLL: identity, CLSID and interfaces of each class.
#pragma once

#include <windows.h>

#include <memory>
#include <span>
#include <typeindex>

#include <kvdm/datamanager/unknown.h>

namespace kvdm::com {

class Object;

struct Class {
  const char* identity;  // "KVDM.KVDataManager"
  const CLSID* clsid;
  // The interface through which the component's operations answer objects of the class.
  std::type_index answered_as;
  // Gives `object` the interfaces of the class, in order.
  void (*add_wrappers)(Object& object, const std::shared_ptr<Unknown>& core);
};

[[nodiscard]] std::span<const Class> Classes();

// Null for an identifier of no class.
[[nodiscard]] const Class* FindClass(const CLSID& clsid);

// The class whose objects are answered as `interface_type`.
[[nodiscard]] const Class& ClassAnswering(std::type_index interface_type);

}  // namespace kvdm::com
