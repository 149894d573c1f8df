#include "com/objects.h"

#include <kvdm/datamanager/component.h>

#include "com/classes.h"
#include "com/client_objects.h"
#include "com/gis_core_faces.h"
#include "com/name_list_face.h"
#include "com/object.h"
#include "platform/windows/com_siblings.h"
#include "platform/windows/windows_platform.h"

namespace kvdm::com {
namespace {

using Microsoft::WRL::ComPtr;

ComPtr<IUnknown> ObjectOf(const Class& of, const std::shared_ptr<Unknown>& core) {
  const ComPtr<Object> object = Object::Make(of.identity);
  of.add_faces(*object.Get(), core);
  return static_cast<IDispatch*>(object.Get());
}

// An object with one interface, which stands in for a library's.
template <class Face>
ComPtr<IUnknown> StandIn(const char* identity, const std::shared_ptr<typename Face::Core>& core) {
  if (!core) return nullptr;
  const ComPtr<Object> object = Object::Make(identity);
  object->Add<Face>(core);
  return static_cast<IDispatch*>(object.Get());
}

}  // namespace

ComPtr<IUnknown> NewObject(const std::shared_ptr<Unknown>& core, std::type_index interface_type) {
  return core ? ObjectOf(ClassAnswering(interface_type), core) : nullptr;
}

ComPtr<IUnknown> ToClient(const std::shared_ptr<NameList>& list) {
  return StandIn<NameListFace>("KVDM.NameList", list);
}

ComPtr<IUnknown> ToClient(const std::shared_ptr<Identifier>& identifier) {
  return StandIn<IdentifierFace>("KVDM.Identifier", identifier);
}

ComPtr<IUnknown> ToClient(const std::shared_ptr<NamedValueSet>& set) {
  const auto clients = std::dynamic_pointer_cast<ClientObject>(set);
  return clients ? clients->TheObject() : StandIn<NamedValueSetFace>("KVDM.NamedValueSet", set);
}

ComPtr<IUnknown> ToClient(const std::shared_ptr<DatasetManager>& manager) {
  const auto siblings = std::dynamic_pointer_cast<ComDatasetManager>(manager);
  return siblings ? siblings->Object() : nullptr;
}

ComPtr<IUnknown> CreateInstance(const Class& of) {
  return ObjectOf(of, CreateObject(of.identity, MakeWindowsPlatform({})));
}

}  // namespace kvdm::com
