// Proxies of the objects that clients bring: the host, its streams, layer metadata, value sets, and
// listeners.
//
// An object is called through its interface of that kind (IHost, IVariantStream, ILayerMetadata,
// INamedValueSet, ICatalogueListener), or else by the names of that interface's operations, so that
// scripts can be hosts too.
#pragma once

#include <memory>
#include <utility>

#include <kvdm/platform/gis_core.h>
#include <kvdm/platform/host.h>

#include "platform/windows/com_headers.h"

namespace kvdm::com {

// A client's object, as the component calls it.
class ClientObject {
 public:
  explicit ClientObject(Microsoft::WRL::ComPtr<IUnknown> object) : object_(std::move(object)) {}
  virtual ~ClientObject() = default;

  [[nodiscard]] const Microsoft::WRL::ComPtr<IUnknown>& TheObject() const { return object_; }

 private:
  Microsoft::WRL::ComPtr<IUnknown> object_;
};

// The client's object as a `T`. Nothing for a null pointer; run-time error 13 for an object of
// another kind that can't be called by name either.
template <class T>
[[nodiscard]] std::shared_ptr<T> FromClient(IUnknown* object);
template <>
std::shared_ptr<Host> FromClient<Host>(IUnknown* object);
template <>
std::shared_ptr<VariantStream> FromClient<VariantStream>(IUnknown* object);
template <>
std::shared_ptr<LayerMetadata> FromClient<LayerMetadata>(IUnknown* object);
template <>
std::shared_ptr<NamedValueSet> FromClient<NamedValueSet>(IUnknown* object);
template <>
std::shared_ptr<CatalogueListener> FromClient<CatalogueListener>(IUnknown* object);

}  // namespace kvdm::com
