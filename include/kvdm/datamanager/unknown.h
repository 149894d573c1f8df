/// @file
/// Base of every interface: an object that can be asked for its other interfaces.
#pragma once

#include <memory>
#include <typeindex>

#include <kvdm/export.h>

/// The component and the services that it stands on.
namespace kvdm {

/// An object of the component. Objects are held by `std::shared_ptr` and never copied.
class KVDM_EXPORT Unknown : public std::enable_shared_from_this<Unknown> {
 public:
  Unknown() = default;
  virtual ~Unknown() = default;
  Unknown(const Unknown&) = delete;
  Unknown& operator=(const Unknown&) = delete;

  /// The part of this object that answers an interface which its class does not implement itself;
  /// Nothing for others. For Query.
  virtual std::shared_ptr<Unknown> Facet(std::type_index) { return nullptr; }
};

/// The interface `Interface` of an object; Nothing when it does not have it, or for Nothing.
///
///     auto edit = Query<IKVLayerEdit>(analysis);
template <class Interface>
[[nodiscard]] std::shared_ptr<Interface> Query(const std::shared_ptr<Unknown>& object) {
  if (!object) return nullptr;
  if (auto found = std::dynamic_pointer_cast<Interface>(object)) return found;
  return std::dynamic_pointer_cast<Interface>(object->Facet(typeid(Interface)));
}

}  // namespace kvdm
