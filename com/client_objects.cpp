#include "com/client_objects.h"

#include <string_view>
#include <vector>

#include <kvdm/platform/error.h>

#include "com/kvdm.h"
#include "com/wrappers.h"
#include "platform/windows/automation.h"

namespace kvdm::com {
namespace {

using Microsoft::WRL::ComPtr;

// A listing from the two arrays that ListAll fills.
NamedValueSet::Listing ListingOf(const VARIANT& names, const VARIANT& values) {
  NamedValueSet::Listing listing;
  for (const Value& name : FromArray(names)) listing.names.push_back(ToText(name));
  listing.values = FromArray(values);
  if (listing.names.size() != listing.values.size()) throw RuntimeError(kTypeMismatch);
  return listing;
}

// An object that is called through the vtable of `Interface`.
template <class Interface>
class SlotObject : public ClientObject {
 public:
  explicit SlotObject(const ComPtr<Interface>& object) : ClientObject(object), object_(object) {}

 protected:
  // For one call; clears the error object, which may be left from an earlier one.
  Interface& Slots() {
    ::SetErrorInfo(0, nullptr);
    return *object_.Get();
  }

 private:
  ComPtr<Interface> object_;
};

// The variant that a client's operation answers.
template <class Operation>
Variant Answer(const Operation& operation) {
  Variant answer;
  Check(operation(answer.address()));
  return answer;
}

class SlotPropertySet final : public HostPropertySet, public SlotObject<::IHostPropertySet> {
 public:
  using SlotObject::SlotObject;

  Value GetProperty(std::string_view name) override {
    Bstr text(name);
    return FromVariant(
        Answer([&](VARIANT* out) { return Slots().GetProperty(text.address(), out); }).get());
  }
  void SetProperty(std::string_view name, const Value& value) override {
    Bstr text(name);
    Variant given(value);
    Check(Slots().SetProperty(text.address(), given.address()));
  }
};

class SlotHost final : public Host, public SlotObject<::IHost> {
 public:
  using SlotObject::SlotObject;

  std::shared_ptr<HostPropertySet> CurrentState() override {
    ComPtr<::IHostPropertySet> set;
    Check(Slots().get_CurrentState(&set));
    return PropertySet(set);
  }
  std::shared_ptr<HostPropertySet> Settings() override {
    ComPtr<::IHostPropertySet> set;
    Check(Slots().get_Settings(&set));
    return PropertySet(set);
  }

 private:
  static std::shared_ptr<HostPropertySet> PropertySet(const ComPtr<::IHostPropertySet>& set) {
    return set ? std::make_shared<SlotPropertySet>(set) : nullptr;
  }
};

class SlotStream final : public VariantStream, public SlotObject<::IVariantStream> {
 public:
  using SlotObject::SlotObject;

  void Write(const Value& value) override {
    Variant given(value);
    Check(Slots().Write(given.address()));
  }
  Value Read() override {
    return FromVariant(Answer([&](VARIANT* out) { return Slots().Read(out); }).get());
  }
};

class SlotValueSet final : public NamedValueSet, public SlotObject<::INamedValueSet> {
 public:
  using SlotObject::SlotObject;

  std::vector<Value> GetValues(std::string_view path) override {
    Bstr text(path);
    return FromArray(
        Answer([&](VARIANT* out) { return Slots().GetValues(text.address(), out); }).get());
  }
  void PutValue(std::string_view path, const Value& value) override {
    Bstr text(path);
    Variant given(value);
    Check(Slots().PutValue(text.address(), given.address()));
  }
  Listing ListAll() override {
    Variant names;
    Variant values;
    Check(Slots().ListAll(names.address(), values.address()));
    return ListingOf(names.get(), values.get());
  }
  int EntryCount() override {
    long count = 0;
    Check(Slots().EntryCount(&count));
    return static_cast<int>(count);
  }
  void PrepareForUpdate() override { Check(Slots().PrepareForUpdate()); }
};

class SlotMetadata final : public LayerMetadata, public SlotObject<::ILayerMetadata> {
 public:
  using SlotObject::SlotObject;

  std::shared_ptr<NamedValueSet> ReadDocument() override {
    ComPtr<IUnknown> document;
    Check(Slots().ReadDocument(&document));
    return FromClient<NamedValueSet>(document.Get());
  }
  void WriteDocument(const std::shared_ptr<NamedValueSet>& document) override {
    Check(Slots().WriteDocument(ToClient(document).Get()));
  }
};

class SlotListener final : public CatalogueListener, public SlotObject<::ICatalogueListener> {
 public:
  using SlotObject::SlotObject;

  void CatalogueChanged() override { Check(Slots().CatalogueChanged()); }
};

// An object that is called by name (late binding).
class LateClient : public ClientObject {
 public:
  explicit LateClient(const ComPtr<IDispatch>& object) : ClientObject(object), names_(object) {}

 protected:
  [[nodiscard]] const LateObject& Names() const { return names_; }

 private:
  LateObject names_;
};

class LatePropertySet final : public HostPropertySet, public LateClient {
 public:
  using LateClient::LateClient;

  Value GetProperty(std::string_view name) override {
    const Bstr text(name);
    return FromVariant(Names().Call("GetProperty", {Passed(text)}).get());
  }
  void SetProperty(std::string_view name, const Value& value) override {
    const Bstr text(name);
    const Variant given(value);
    Names().Call("SetProperty", {Passed(text), Passed(given)});
  }
};

std::shared_ptr<HostPropertySet> PropertySetIn(const Variant& answer) {
  const ComPtr<IUnknown> object(ObjectIn(answer.get()));
  if (!object) return nullptr;
  ComPtr<IDispatch> names;
  if (FAILED(object.As(&names))) throw RuntimeError(kTypeMismatch);
  return std::make_shared<LatePropertySet>(names);
}

class LateHost final : public Host, public LateClient {
 public:
  using LateClient::LateClient;
  std::shared_ptr<HostPropertySet> CurrentState() override {
    return PropertySetIn(Names().Call("CurrentState"));
  }
  std::shared_ptr<HostPropertySet> Settings() override {
    return PropertySetIn(Names().Call("Settings"));
  }
};

class LateStream final : public VariantStream, public LateClient {
 public:
  using LateClient::LateClient;
  void Write(const Value& value) override {
    const Variant given(value);
    Names().Call("Write", {Passed(given)});
  }
  Value Read() override { return FromVariant(Names().Call("Read").get()); }
};

class LateValueSet final : public NamedValueSet, public LateClient {
 public:
  using LateClient::LateClient;
  std::vector<Value> GetValues(std::string_view path) override {
    const Bstr text(path);
    return FromArray(Names().Call("GetValues", {Passed(text)}).get());
  }
  void PutValue(std::string_view path, const Value& value) override {
    const Bstr text(path);
    const Variant given(value);
    Names().Call("PutValue", {Passed(text), Passed(given)});
  }
  Listing ListAll() override {
    Variant names;
    Variant values;
    Names().Call("ListAll", {PassedByReference(names), PassedByReference(values)});
    return ListingOf(names.get(), values.get());
  }
  int EntryCount() override {
    const Value count = FromVariant(Names().Call("EntryCount").get());
    const auto* number = std::get_if<std::int32_t>(&count.storage());
    if (number == nullptr) throw RuntimeError(kTypeMismatch);
    return *number;
  }
  void PrepareForUpdate() override { Names().Call("PrepareForUpdate"); }
};

class LateMetadata final : public LayerMetadata, public LateClient {
 public:
  using LateClient::LateClient;
  std::shared_ptr<NamedValueSet> ReadDocument() override {
    const Variant document = Names().Call("ReadDocument");
    return FromClient<NamedValueSet>(ObjectIn(document.get()));
  }
  void WriteDocument(const std::shared_ptr<NamedValueSet>& document) override {
    const Variant given = ObjectValue(ToClient(document).Get());
    Names().Call("WriteDocument", {Passed(given)});
  }
};

class LateListener final : public CatalogueListener, public LateClient {
 public:
  using LateClient::LateClient;

  void CatalogueChanged() override { Names().Call("CatalogueChanged"); }
};

// `object` as a Slots object if it has the interface, else as a Late one.
template <class T, class Interface, class Slots, class Late>
std::shared_ptr<T> Adapted(IUnknown* object) {
  if (object == nullptr) return nullptr;
  ComPtr<IUnknown> client(object);
  ComPtr<Interface> slots;
  if (SUCCEEDED(client.As(&slots))) return std::make_shared<Slots>(slots);
  ComPtr<IDispatch> names;
  if (SUCCEEDED(client.As(&names))) return std::make_shared<Late>(names);
  throw RuntimeError(kTypeMismatch);
}

}  // namespace

template <>
std::shared_ptr<Host> FromClient<Host>(IUnknown* object) {
  return Adapted<Host, ::IHost, SlotHost, LateHost>(object);
}

template <>
std::shared_ptr<VariantStream> FromClient<VariantStream>(IUnknown* object) {
  return Adapted<VariantStream, ::IVariantStream, SlotStream, LateStream>(object);
}

template <>
std::shared_ptr<LayerMetadata> FromClient<LayerMetadata>(IUnknown* object) {
  return Adapted<LayerMetadata, ::ILayerMetadata, SlotMetadata, LateMetadata>(object);
}

template <>
std::shared_ptr<NamedValueSet> FromClient<NamedValueSet>(IUnknown* object) {
  return Adapted<NamedValueSet, ::INamedValueSet, SlotValueSet, LateValueSet>(object);
}

template <>
std::shared_ptr<CatalogueListener> FromClient<CatalogueListener>(IUnknown* object) {
  return Adapted<CatalogueListener, ::ICatalogueListener, SlotListener, LateListener>(object);
}

}  // namespace kvdm::com
