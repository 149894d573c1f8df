// Objects that cross the boundary between a test and the DLL.
#pragma once

#include <memory>
#include <typeindex>
#include <utility>

#include <kvdm/datamanager/name_list.h>
#include <kvdm/datamanager/unknown.h>
#include <kvdm/platform/gis_core.h>
#include <kvdm/platform/host.h>
#include <kvdm/platform/siblings.h>

#include "platform/windows/com_headers.h"

namespace kvdm::client {

// The DLL's object as the component's interface `interface_type`; Nothing when it does not have it.
[[nodiscard]] std::shared_ptr<Unknown> FacetOf(IUnknown* object, std::type_index interface_type);

// The DLL's object for one of the test's, or the very object that stands behind one of the DLL's.
// Nothing for Nothing.
[[nodiscard]] Microsoft::WRL::ComPtr<IUnknown> ToDll(const std::shared_ptr<Host>& host);
[[nodiscard]] Microsoft::WRL::ComPtr<IUnknown> ToDll(const std::shared_ptr<VariantStream>& stream);
[[nodiscard]] Microsoft::WRL::ComPtr<IUnknown> ToDll(const std::shared_ptr<LayerMetadata>& data);
[[nodiscard]] Microsoft::WRL::ComPtr<IUnknown> ToDll(const std::shared_ptr<NamedValueSet>& set);
[[nodiscard]] Microsoft::WRL::ComPtr<IUnknown> ToDll(
    const std::shared_ptr<CatalogueListener>& listener);

// An object that the DLL answers, as the type to which it is converted. A value set that came from
// the test is that very set again; a list is copied.
class DllObject {
 public:
  explicit DllObject(Microsoft::WRL::ComPtr<IUnknown> object) : object_(std::move(object)) {}

  template <class Interface>
  operator std::shared_ptr<Interface>() const {  // NOLINT(google-explicit-constructor)
    return std::dynamic_pointer_cast<Interface>(FacetOf(object_.Get(), typeid(Interface)));
  }
  operator std::shared_ptr<NameList>() const;        // NOLINT(google-explicit-constructor)
  operator std::shared_ptr<Identifier>() const;      // NOLINT(google-explicit-constructor)
  operator std::shared_ptr<NamedValueSet>() const;   // NOLINT(google-explicit-constructor)
  operator std::shared_ptr<DatasetManager>() const;  // NOLINT(google-explicit-constructor)

 private:
  Microsoft::WRL::ComPtr<IUnknown> object_;
};

}  // namespace kvdm::client
