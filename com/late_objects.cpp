#include "com/late_objects.h"

#include <kvdm/platform/error.h>

#include "com/objects.h"
#include "com/value_arrays.h"
#include "platform/windows/automation.h"

namespace kvdm::com {
namespace {

using Microsoft::WRL::ComPtr;

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

}  // namespace

std::shared_ptr<HostPropertySet> LateHost::CurrentState() {
  return PropertySetIn(Names().Call("CurrentState"));
}

std::shared_ptr<HostPropertySet> LateHost::Settings() {
  return PropertySetIn(Names().Call("Settings"));
}

void LateStream::Write(const Value& value) {
  const Variant given(value);
  Names().Call("Write", {Passed(given)});
}

Value LateStream::Read() { return FromVariant(Names().Call("Read").get()); }

std::vector<Value> LateValueSet::GetValues(std::string_view path) {
  const Bstr text(path);
  return FromArray(Names().Call("GetValues", {Passed(text)}).get());
}

void LateValueSet::PutValue(std::string_view path, const Value& value) {
  const Bstr text(path);
  const Variant given(value);
  Names().Call("PutValue", {Passed(text), Passed(given)});
}

NamedValueSet::Listing LateValueSet::ListAll() {
  Variant names;
  Variant values;
  Names().Call("ListAll", {PassedByReference(names), PassedByReference(values)});
  return ListingOf(names.get(), values.get());
}

int LateValueSet::EntryCount() {
  const Value count = FromVariant(Names().Call("EntryCount").get());
  const auto* number = std::get_if<std::int32_t>(&count.storage());
  if (number == nullptr) throw RuntimeError(kTypeMismatch);
  return *number;
}

void LateValueSet::PrepareForUpdate() { Names().Call("PrepareForUpdate"); }

std::shared_ptr<NamedValueSet> LateMetadata::ReadDocument() {
  const Variant document = Names().Call("ReadDocument");
  return FromClient<NamedValueSet>(ObjectIn(document.get()));
}

void LateMetadata::WriteDocument(const std::shared_ptr<NamedValueSet>& document) {
  const Variant given = ObjectValue(ToClient(document).Get());
  Names().Call("WriteDocument", {Passed(given)});
}

NamedValueSet::Listing ListingOf(const VARIANT& names, const VARIANT& values) {
  NamedValueSet::Listing listing;
  for (const Value& name : FromArray(names)) listing.names.push_back(ToText(name));
  listing.values = FromArray(values);
  if (listing.names.size() != listing.values.size()) throw RuntimeError(kTypeMismatch);
  return listing;
}

}  // namespace kvdm::com
