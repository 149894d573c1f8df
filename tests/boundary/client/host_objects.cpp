#include "tests/boundary/client/host_objects.h"

#include <atomic>

#include "com/kvdm.h"
#include "platform/windows/automation.h"
#include "tests/boundary/client/com_object.h"
#include "tests/boundary/client/objects.h"

namespace kvdm::client {
namespace {

using Microsoft::WRL::ComPtr;

// The COM interface `Interface` of the test's object `core`.
template <class Interface, class CoreInterface>
class Face : public ComObject<Interface> {
 public:
  explicit Face(std::shared_ptr<CoreInterface> core) : core_(std::move(core)) {}

 protected:
  // Calls `body` with the test's object. What it throws becomes the result and the error object.
  template <class Body>
  HRESULT With(const Body& body) {
    try {
      body(*core_);
      return S_OK;
    } catch (...) {
      return RaiseCurrentError("Test.Host", __uuidof(Interface));
    }
  }

  std::shared_ptr<CoreInterface> core_;
};

template <class FaceClass, class Core>
auto FaceFor(const std::shared_ptr<Core>& core) {
  return Owned(core ? new FaceClass(core) : nullptr);
}

class PropertySetFace final : public Face<::IHostPropertySet, HostPropertySet> {
 public:
  using Face::Face;

  STDMETHODIMP GetProperty(BSTR* name, VARIANT* result) override {
    return With([&](auto& set) { ToVariant(set.GetProperty(ToText(*name)), result); });
  }
  STDMETHODIMP SetProperty(BSTR* name, VARIANT* value) override {
    return With([&](auto& set) { set.SetProperty(ToText(*name), FromVariant(*value)); });
  }
};

class HostFace final : public Face<::IHost, Host> {
 public:
  using Face::Face;

  STDMETHODIMP get_CurrentState(::IHostPropertySet** result) override {
    return With(
        [&](auto& host) { *result = FaceFor<PropertySetFace>(host.CurrentState()).Detach(); });
  }
  STDMETHODIMP Reserved() override { return E_NOTIMPL; }
  STDMETHODIMP get_Settings(::IHostPropertySet** result) override {
    return With([&](auto& host) { *result = FaceFor<PropertySetFace>(host.Settings()).Detach(); });
  }
};

class StreamFace final : public Face<::IVariantStream, VariantStream> {
 public:
  using Face::Face;

  STDMETHODIMP Write(VARIANT* value) override {
    return With([&](auto& stream) { stream.Write(FromVariant(*value)); });
  }
  STDMETHODIMP Read(VARIANT* result) override {
    return With([&](auto& stream) { ToVariant(stream.Read(), result); });
  }
};

// Answers an interface that nobody else knows, so that the test knows its own.
constexpr IID kOwnValueSet = {
    0x5D8E54C7, 0x3A1B, 0x4E0C, {0x9B, 0x61, 0x0D, 0x2F, 0x6A, 0x7C, 0x15, 0xE8}};

class ValueSetFace final : public Face<::INamedValueSet, NamedValueSet> {
 public:
  using Face::Face;

  [[nodiscard]] const std::shared_ptr<NamedValueSet>& Core() const { return core_; }

  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    if (!::IsEqualIID(iid, kOwnValueSet)) return Face::QueryInterface(iid, out);
    *out = this;
    AddRef();
    return S_OK;
  }

  STDMETHODIMP GetValues(BSTR* path, VARIANT* result) override {
    return With([&](auto& set) { PutArray(set.GetValues(ToText(*path)), result); });
  }
  STDMETHODIMP PutValue(BSTR* path, VARIANT* value) override {
    return With([&](auto& set) { set.PutValue(ToText(*path), FromVariant(*value)); });
  }
  STDMETHODIMP ListAll(VARIANT* names, VARIANT* values) override {
    return With([&](auto& set) {
      const NamedValueSet::Listing all = set.ListAll();
      PutArray({all.names.begin(), all.names.end()}, names);
      PutArray(all.values, values);
    });
  }
  STDMETHODIMP EntryCount(long* result) override {
    return With([&](auto& set) { *result = set.EntryCount(); });
  }
  STDMETHODIMP PrepareForUpdate() override {
    return With([](auto& set) { set.PrepareForUpdate(); });
  }
};

class MetadataFace final : public Face<::ILayerMetadata, LayerMetadata> {
 public:
  using Face::Face;

  STDMETHODIMP ReadDocument(IUnknown** result) override {
    return With([&](auto& metadata) { *result = ToDll(metadata.ReadDocument()).Detach(); });
  }
  STDMETHODIMP WriteDocument(IUnknown* document) override {
    return With([&](auto& metadata) {
      const std::shared_ptr<NamedValueSet> set = DllObject(document);
      metadata.WriteDocument(set);
    });
  }
};

class ListenerFace final : public Face<::ICatalogueListener, CatalogueListener> {
 public:
  using Face::Face;

  STDMETHODIMP CatalogueChanged() override {
    return With([](auto& listener) { listener.CatalogueChanged(); });
  }
};

}  // namespace

ComPtr<IUnknown> ToDll(const std::shared_ptr<Host>& host) { return FaceFor<HostFace>(host); }

ComPtr<IUnknown> ToDll(const std::shared_ptr<VariantStream>& stream) {
  return FaceFor<StreamFace>(stream);
}

ComPtr<IUnknown> ToDll(const std::shared_ptr<LayerMetadata>& data) {
  return FaceFor<MetadataFace>(data);
}

ComPtr<IUnknown> ToDll(const std::shared_ptr<CatalogueListener>& listener) {
  return FaceFor<ListenerFace>(listener);
}

ComPtr<IUnknown> HostObject(const std::shared_ptr<NamedValueSet>& set) {
  return FaceFor<ValueSetFace>(set);
}

std::shared_ptr<NamedValueSet> OwnValueSet(IUnknown* object) {
  void* found = nullptr;
  if (object == nullptr || FAILED(object->QueryInterface(kOwnValueSet, &found))) return nullptr;
  return Owned(static_cast<ValueSetFace*>(found))->Core();
}

}  // namespace kvdm::client
