// The list of names that operations answer.
#pragma once

#include <kvdm/datamanager/name_list.h>

#include "com/kvdm.h"
#include "com/object.h"

namespace kvdm::com {

// Calls by name go the object's way.
class NameListFace final : public FaceOf<::INameList, NameList> {
 public:
  using FaceOf::FaceOf;

  STDMETHODIMP get_Item(long position, VARIANT* result) override;
  STDMETHODIMP Add(VARIANT* value) override;
  STDMETHODIMP get_Count(long* result) override { return Call(&Core::Count, result); }
  STDMETHODIMP get__NewEnum(IUnknown** result) override;

  STDMETHODIMP GetTypeInfoCount(UINT* count) override { return object_.GetTypeInfoCount(count); }
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** type) override {
    return object_.GetTypeInfo(index, locale, type);
  }
  STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                             DISPID* ids) override {
    return object_.GetIDsOfNames(iid, names, count, locale, ids);
  }
  STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                      VARIANT* result, EXCEPINFO* exception, UINT* wrong_argument) override {
    return object_.Invoke(id, iid, locale, flags, parameters, result, exception, wrong_argument);
  }
};

}  // namespace kvdm::com
