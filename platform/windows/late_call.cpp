#include "platform/windows/late_call.h"

// Needs the types of <windows.h>.
#include <dispex.h>
#include <oleauto.h>

#include <algorithm>

#include "platform/windows/hresult.h"
#include "platform/windows/utf16.h"

namespace kvdm {
namespace {

// What an operation told of its failure; its texts are this one's to free.
class Exception {
 public:
  Exception() = default;
  ~Exception() {
    ::SysFreeString(info_.bstrSource);
    ::SysFreeString(info_.bstrDescription);
    ::SysFreeString(info_.bstrHelpFile);
  }
  Exception(const Exception&) = delete;
  Exception& operator=(const Exception&) = delete;

  EXCEPINFO* address() { return &info_; }

  [[noreturn]] void Throw() {
    constexpr HRESULT kOwnNumbers = static_cast<HRESULT>(0x800A0000);
    if (info_.pfnDeferredFillIn != nullptr) info_.pfnDeferredFillIn(&info_);
    const HRESULT result = info_.scode != 0 ? info_.scode : kOwnNumbers + info_.wCode;
    const RuntimeError error = ErrorOf(result, ToText(info_.bstrSource));
    if (info_.bstrDescription == nullptr) throw error;
    throw RuntimeError(error.number(), error.source(), ToText(info_.bstrDescription));
  }

 private:
  EXCEPINFO info_{};
};

constexpr WORD kCallOrRead = DISPATCH_METHOD | DISPATCH_PROPERTYGET;

HRESULT Invoke(IDispatch& object, std::string_view name, DISPPARAMS& parameters, Variant& result,
               Exception& exception) {
  std::wstring text = ToUtf16(name);
  LPOLESTR names = text.data();
  DISPID id = DISPID_UNKNOWN;
  Check(object.GetIDsOfNames(GUID{}, &names, 1, LOCALE_USER_DEFAULT, &id));
  return object.Invoke(id, GUID{}, LOCALE_USER_DEFAULT, kCallOrRead, &parameters, result.address(),
                       exception.address(), nullptr);
}

// The objects of scripts. Some engines answer names in this way only.
HRESULT Invoke(IDispatchEx& object, std::string_view name, DISPPARAMS& parameters, Variant& result,
               Exception& exception) {
  const Bstr text(name);
  DISPID id = DISPID_UNKNOWN;
  Check(object.GetDispID(text.get(), fdexNameCaseInsensitive, &id));
  return object.InvokeEx(id, LOCALE_USER_DEFAULT, kCallOrRead, &parameters, result.address(),
                         exception.address(), nullptr);
}

}  // namespace

Variant LateObject::Call(std::string_view name, std::vector<VARIANT> arguments) const {
  ::SetErrorInfo(0, nullptr);  // An earlier call's error is no answer to this one.
  std::ranges::reverse(arguments);
  DISPPARAMS parameters{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
  Variant result;
  Exception exception;
  Microsoft::WRL::ComPtr<IDispatchEx> script;
  const HRESULT code = SUCCEEDED(object_.As(&script))
                           ? Invoke(*script.Get(), name, parameters, result, exception)
                           : Invoke(*object_.Get(), name, parameters, result, exception);
  if (code == DISP_E_EXCEPTION) exception.Throw();
  Check(code);
  return result;
}

IUnknown* ObjectIn(const VARIANT& value) {
  switch (V_VT(&value)) {
    case VT_EMPTY:
    case VT_NULL:
      return nullptr;
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return V_UNKNOWN(&value);
    case VT_BYREF | VT_DISPATCH:
    case VT_BYREF | VT_UNKNOWN:
      return *V_UNKNOWNREF(&value);
    case VT_BYREF | VT_VARIANT:
      return ObjectIn(*V_VARIANTREF(&value));
    default:
      throw RuntimeError(kTypeMismatch);
  }
}

Variant ObjectValue(IUnknown* object) {
  Variant value;
  V_VT(value.address()) = VT_DISPATCH;
  if (object == nullptr || SUCCEEDED(object->QueryInterface(&V_DISPATCH(value.address())))) {
    return value;
  }
  V_VT(value.address()) = VT_UNKNOWN;
  V_UNKNOWN(value.address()) = object;
  object->AddRef();
  return value;
}

VARIANT Passed(const Bstr& text) {
  VARIANT argument{};
  V_VT(&argument) = VT_BSTR;
  V_BSTR(&argument) = text.get();
  return argument;
}

VARIANT Passed(const Variant& value) { return value.get(); }

VARIANT PassedByReference(Variant& variable) {
  VARIANT argument{};
  V_VT(&argument) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(&argument) = variable.address();
  return argument;
}

}  // namespace kvdm
