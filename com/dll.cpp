// What the DLL exports.

#include "com/abi.h"
#include "com/class_factory.h"
#include "com/module.h"
#include "com/registration.h"
#include "platform/windows/com_headers.h"

namespace kvdm::com {
namespace {

// Answers the codes that registering programs know.
HRESULT SelfRegister(bool install, Scope scope) {
  constexpr HRESULT kNoRights = static_cast<HRESULT>(0x800A0000 + kPermissionDenied);
  const HRESULT result =
      abi::Guarded("KVDM", IID_NULL, [&] { install ? Register(scope) : Unregister(scope); });
  if (SUCCEEDED(result)) return S_OK;
  return result == kNoRights ? E_ACCESSDENIED : SELFREG_E_CLASS;
}

}  // namespace
}  // namespace kvdm::com

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  const kvdm::com::Class* found = kvdm::com::FindClass(clsid);
  if (found == nullptr) return CLASS_E_CLASSNOTAVAILABLE;
  HRESULT result = S_OK;
  const HRESULT made = kvdm::com::abi::Guarded(
      found->identity, iid, [&] { result = kvdm::com::MakeClassFactory(*found).CopyTo(iid, out); });
  return FAILED(made) ? made : result;
}

STDAPI DllCanUnloadNow() { return kvdm::com::IsModuleLocked() ? S_FALSE : S_OK; }

STDAPI DllRegisterServer() { return kvdm::com::SelfRegister(true, kvdm::com::Scope::kMachine); }

STDAPI DllUnregisterServer() { return kvdm::com::SelfRegister(false, kvdm::com::Scope::kMachine); }

// The command line says for whom: "user", or nothing for all users of the machine.
STDAPI DllInstall(BOOL install, LPCWSTR command_line) {
  using kvdm::com::Scope;
  const bool user = command_line != nullptr && ::lstrcmpiW(command_line, L"user") == 0;
  const bool machine = command_line == nullptr || *command_line == L'\0';
  if (!user && !machine) return E_INVALIDARG;
  return kvdm::com::SelfRegister(install != FALSE, user ? Scope::kUser : Scope::kMachine);
}
