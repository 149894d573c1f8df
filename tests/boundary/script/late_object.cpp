#include "tests/boundary/script/late_object.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <list>

#include "com/kvdm.h"

namespace kvdm::boundary {
namespace {

constexpr wchar_t kDll[] = L"KVDM.dll";

HMODULE Dll() {
  static const HMODULE module = ::LoadLibraryW(kDll);
  return module;
}

void ClearRegistry() { ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Velk\\Kelvaro"); }

std::string Taken(BSTR text) {
  std::string taken = ToText(text);
  ::SysFreeString(text);
  return taken;
}

}  // namespace

Apartment::Apartment() {
  ::CoInitialize(nullptr);
  ClearRegistry();
}

Apartment::~Apartment() {
  ClearRegistry();
  ::CoUninitialize();
}

ComPtr<IDispatch> NewObject(const CLSID& clsid) {
  using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
  const auto get_class_object = reinterpret_cast<GetClassObject>(
      reinterpret_cast<void*>(::GetProcAddress(Dll(), "DllGetClassObject")));
  ComPtr<IClassFactory> factory;
  ComPtr<IDispatch> object;
  EXPECT_EQ(S_OK, get_class_object(clsid, IID_PPV_ARGS(&factory)));
  EXPECT_EQ(S_OK, factory->CreateInstance(nullptr, IID_PPV_ARGS(&object)));
  return object;
}

ComPtr<ITypeLib> Library() {
  std::wstring path(MAX_PATH, L'\0');
  path.resize(::GetModuleFileNameW(Dll(), path.data(), static_cast<DWORD>(path.size())));
  ComPtr<ITypeLib> library;
  EXPECT_EQ(S_OK, ::LoadTypeLibEx(path.c_str(), REGKIND_NONE, &library));
  return library;
}

TYPEATTR AttributesOf(ITypeInfo& type) {
  TYPEATTR* attributes = nullptr;
  EXPECT_EQ(S_OK, type.GetTypeAttr(&attributes));
  const TYPEATTR copy = *attributes;
  type.ReleaseTypeAttr(attributes);
  return copy;
}

std::wstring NameOf(ITypeInfo& type, MEMBERID member) {
  Bstr name;
  EXPECT_EQ(S_OK, type.GetDocumentation(member, name.address(), nullptr, nullptr, nullptr));
  return {name.get(), ::SysStringLen(name.get())};
}

DISPID LateObject::IdOf(std::wstring name) const {
  LPOLESTR names = name.data();
  DISPID id = DISPID_UNKNOWN;
  object_->GetIDsOfNames(GUID{}, &names, 1, LOCALE_USER_DEFAULT, &id);
  return id;
}

Outcome LateObject::Invoke(const wchar_t* name, WORD flags, std::vector<VARIANT> arguments) const {
  std::ranges::reverse(arguments);
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
  if ((flags & DISPATCH_PROPERTYPUT) != 0) {
    parameters.rgdispidNamedArgs = &put;
    parameters.cNamedArgs = 1;
  }
  Outcome outcome;
  EXCEPINFO exception{};
  outcome.code = object_->Invoke(IdOf(name), GUID{}, LOCALE_USER_DEFAULT, flags, &parameters,
                                 outcome.result.address(), &exception, &outcome.wrong_argument);
  outcome.error = exception.scode;
  outcome.source = Taken(exception.bstrSource);
  outcome.description = Taken(exception.bstrDescription);
  ::SysFreeString(exception.bstrHelpFile);
  return outcome;
}

Outcome LateObject::Call(const wchar_t* name, std::vector<VARIANT> arguments) const {
  return Invoke(name, DISPATCH_METHOD, std::move(arguments));
}

Outcome LateObject::Get(const wchar_t* name) const { return Invoke(name, DISPATCH_PROPERTYGET); }

Outcome LateObject::Let(const wchar_t* name, VARIANT value) const {
  return Invoke(name, DISPATCH_PROPERTYPUT, {value});
}

std::string LateObject::Text(const wchar_t* name, std::vector<VARIANT> arguments) const {
  const Outcome outcome = Call(name, std::move(arguments));
  EXPECT_EQ(S_OK, outcome.code);
  return kvdm::ToText(FromVariant(outcome.result.get()));
}

LateObject LateObject::Object(const wchar_t* name, std::vector<VARIANT> arguments) const {
  const Outcome outcome = Call(name, std::move(arguments));
  EXPECT_EQ(S_OK, outcome.code);
  EXPECT_EQ(VT_DISPATCH, V_VT(&outcome.result.get()));
  return LateObject(outcome.result);
}

VARIANT Arg(std::string_view text) {
  static std::list<Bstr> texts;
  VARIANT argument{};
  V_VT(&argument) = VT_BSTR;
  V_BSTR(&argument) = texts.emplace_back(text).get();
  return argument;
}

VARIANT Arg(int number) {
  VARIANT argument{};
  V_VT(&argument) = VT_I4;
  V_I4(&argument) = number;
  return argument;
}

VARIANT ByReference(VARIANT& value) {
  VARIANT argument{};
  V_VT(&argument) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(&argument) = &value;
  return argument;
}

VARIANT PlaceOf(VARIANT& value) {
  VARIANT argument{};
  V_VT(&argument) = static_cast<VARTYPE>(V_VT(&value) | VT_BYREF);
  V_BYREF(&argument) = V_VT(&value) == VT_DECIMAL ? static_cast<void*>(&V_DECIMAL(&value))
                                                  : static_cast<void*>(&V_NONE(&value));
  return argument;
}

}  // namespace kvdm::boundary
