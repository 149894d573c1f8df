// The interfaces of the objects that stand in for the GIS core library's.
#pragma once

#include <kvdm/platform/gis_core.h>

#include "com/kvdm.h"
#include "com/object.h"
#include "com/value_arrays.h"

namespace kvdm::com {

class IdentifierFace final : public FaceOf<::IIdentifier, Identifier> {
 public:
  using FaceOf::FaceOf;

  STDMETHODIMP Generate() override { return Call(&Core::Generate); }
  STDMETHODIMP GetValue(BSTR* result) override { return Call(&Core::GetValue, result); }
  STDMETHODIMP PutValue(BSTR* text) override { return Call(&Core::PutValue, text); }
};

class NamedValueSetFace final : public FaceOf<::INamedValueSet, NamedValueSet> {
 public:
  using FaceOf::FaceOf;

  STDMETHODIMP GetValues(BSTR* path, VARIANT* result) override {
    return Call(&Core::GetValues, path, result);
  }
  STDMETHODIMP PutValue(BSTR* path, VARIANT* value) override {
    return Call(&Core::PutValue, path, value);
  }
  STDMETHODIMP ListAll(VARIANT* names, VARIANT* values) override {
    for (VARIANT* list : {names, values}) {
      if (list != nullptr) ::VariantInit(list);
    }
    if (names == nullptr || values == nullptr) return E_POINTER;
    return Guarded([&] {
      const NamedValueSet::Listing all = core_->ListAll();
      Variant all_names;
      Variant all_values;
      PutArray({all.names.begin(), all.names.end()}, all_names.address());
      PutArray(all.values, all_values.address());
      *names = all_names.Release();
      *values = all_values.Release();
    });
  }
  STDMETHODIMP EntryCount(long* result) override { return Call(&Core::EntryCount, result); }
  STDMETHODIMP PrepareForUpdate() override { return Call(&Core::PrepareForUpdate); }
};

}  // namespace kvdm::com
