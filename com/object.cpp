#include "com/object.h"

#include <algorithm>

#include "com/late_binding.h"

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
    return QueryByType(iid, out);
  }
  AddRef();
  return S_OK;
}

// What the type library has to be read for.
HRESULT Object::QueryByType(REFIID iid, void** out) {
  return GuardedQuietly([&]() -> HRESULT {
    if (::IsEqualIID(iid, Type().view_iid)) {
      *out = static_cast<IDispatch*>(this);
    } else if (::IsEqualIID(iid, IID_IProvideClassInfo) && Type().class_info) {
      *out = static_cast<IProvideClassInfo*>(this);
    } else {
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  });
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

const ObjectType& Object::Type() {
  if (type_ == nullptr) {
    std::vector<IID> interfaces;
    for (const auto& wrapper : wrappers_) interfaces.push_back(wrapper->Iid());
    type_ = &TypeOf(identity_, interfaces);
  }
  return *type_;
}

template <class Body>
HRESULT Object::GuardedQuietly(const Body& body) {
  const HRESULT result = abi::Guarded(identity_, IID_IDispatch, body);
  if (FAILED(result)) abi::ForgetErrors();
  return result;
}

STDMETHODIMP Object::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 1;
  return S_OK;
}

STDMETHODIMP Object::GetTypeInfo(UINT index, LCID, ITypeInfo** type) {
  if (type == nullptr) return E_POINTER;
  *type = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  return GuardedQuietly([&] { return Type().view.CopyTo(type); });
}

STDMETHODIMP Object::GetClassInfo(ITypeInfo** type) {
  if (type == nullptr) return E_POINTER;
  *type = nullptr;
  return GuardedQuietly([&] { return Type().class_info.CopyTo(type); });
}

STDMETHODIMP Object::GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  if (names == nullptr || ids == nullptr) return E_POINTER;
  if (!::IsEqualIID(iid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  std::fill_n(ids, count, DISPID_UNKNOWN);
  if (count == 0) return S_OK;
  return GuardedQuietly([&] {
    ids[0] = Type().IdOf(names[0]);
    // Arguments have no names here.
    return ids[0] != DISPID_UNKNOWN && count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
  });
}

STDMETHODIMP Object::Invoke(DISPID id, REFIID iid, LCID, WORD flags, DISPPARAMS* parameters,
                            VARIANT* result, EXCEPINFO* exception, UINT* wrong_argument) {
  if (parameters == nullptr) return E_POINTER;
  if (!::IsEqualIID(iid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  const ComPtr<IDispatch> alive(this);
  abi::ForgetErrors();
  if (result != nullptr) ::VariantInit(result);
  return GuardedQuietly([&] {
    const LateCall call{id, flags, *parameters, result, exception, wrong_argument};
    const Operation* operation = FindOperation(Type(), call);
    if (operation == nullptr) return DISP_E_MEMBERNOTFOUND;
    return com::Invoke(*operation, wrappers_[operation->interface_index]->Interface(), call);
  });
}

}  // namespace kvdm::com
