// Class factory and entry points of the DLL.
#include <bit>

#include "com/abi.h"
#include "com/classes.h"
#include "com/counted.h"
#include "com/module.h"
#include "com/wrappers.h"

namespace kvdm::com {
namespace {

using Microsoft::WRL::ComPtr;

class ClassFactory final : public Counted<IClassFactory> {
 public:
  explicit ClassFactory(const Class& of) : class_(of) {}

  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return abi::Guarded(class_.identity, iid, [&] { return NewInstance(class_).CopyTo(iid, out); });
  }
  STDMETHODIMP LockServer(BOOL lock) override {
    LockModule(lock != FALSE);
    return S_OK;
  }

 private:
  const Class& class_;
};

ComPtr<IClassFactory> MakeClassFactory(const Class& of) {
  ComPtr<IClassFactory> factory;
  *factory.GetAddressOf() = new ClassFactory(of);
  return factory;
}

// Answers the codes that registering programs know.
HRESULT SelfRegister(bool install, Scope scope) {
  constexpr HRESULT kNoRights = std::bit_cast<HRESULT>(0x800A0000 + kPermissionDenied);
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
  kvdm::com::PinModule();
  return kvdm::com::abi::Guarded(
      found->identity, iid, [&] { return kvdm::com::MakeClassFactory(*found).CopyTo(iid, out); });
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
