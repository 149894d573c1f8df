#include "com/object.h"

#include <algorithm>

namespace kvdm::com {

using Microsoft::WRL::ComPtr;

ComPtr<Object> Object::Make(const char* identity) {
  ComPtr<Object> object;
  *object.GetAddressOf() = new Object(identity);
  return object;
}

WrapperBase* Object::Find(REFIID iid) const {
  const auto found = std::ranges::find_if(
      wrappers_, [&](const auto& wrapper) { return ::IsEqualIID(wrapper->Iid(), iid) != FALSE; });
  return found == wrappers_.end() ? nullptr : found->get();
}

STDMETHODIMP Object::QueryInterface(REFIID iid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (::IsEqualIID(iid, IID_IUnknown) || ::IsEqualIID(iid, IID_IDispatch)) {
    *out = static_cast<IDispatch*>(this);
  } else if (::IsEqualIID(iid, IID_ISupportErrorInfo)) {
    *out = static_cast<ISupportErrorInfo*>(this);
  } else if (WrapperBase* wrapper = Find(iid)) {
    *out = wrapper->Interface();
  } else {
    return E_NOINTERFACE;
  }
  AddRef();
  return S_OK;
}

STDMETHODIMP_(ULONG) Object::AddRef() { return ++references_; }

STDMETHODIMP_(ULONG) Object::Release() {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

STDMETHODIMP Object::InterfaceSupportsErrorInfo(REFIID iid) {
  return Find(iid) != nullptr ? S_OK : S_FALSE;
}

LateBinding& Object::Late() {
  if (late_) return *late_;
  LateBinding late;
  for (const auto& wrapper : wrappers_) late.Add(wrapper->Iid(), wrapper->Interface());
  return late_.emplace(std::move(late));
}

// There is no type information: no one type describes all interfaces.
STDMETHODIMP Object::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 0;
  return S_OK;
}

STDMETHODIMP Object::GetTypeInfo(UINT, LCID, ITypeInfo** type) {
  if (type == nullptr) return E_POINTER;
  *type = nullptr;
  return DISP_E_BADINDEX;
}

STDMETHODIMP Object::GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  if (names == nullptr || ids == nullptr) return E_POINTER;
  if (!::IsEqualIID(iid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  const ComPtr<IDispatch> alive(this);
  std::fill_n(ids, count, DISPID_UNKNOWN);
  if (count == 0) return S_OK;
  return abi::Guarded(identity_, IID_IDispatch, [&]() -> HRESULT {
    const auto id = Late().IdOf(names[0]);
    if (id) ids[0] = *id;
    // Arguments have no names here.
    return id && count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
  });
}

STDMETHODIMP Object::Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                            VARIANT* result, EXCEPINFO* exception, UINT* wrong_argument) {
  if (parameters == nullptr) return E_POINTER;
  if (!::IsEqualIID(iid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  const ComPtr<IDispatch> alive(this);
  abi::ForgetErrors();
  if (result != nullptr) ::VariantInit(result);
  const LateCall call{id, locale, flags, *parameters, result, exception, wrong_argument};
  return abi::Guarded(identity_, IID_IDispatch, [&] { return Late().Invoke(call); });
}

}  // namespace kvdm::com
