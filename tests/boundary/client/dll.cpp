#include "tests/boundary/client/dll.h"

// Need the types of <windows.h>.
#include <oleauto.h>
#include <wrl/client.h>

#include <array>
#include <map>
#include <string>

#include <kvdm/datamanager/component.h>
#include <kvdm/platform/error.h>

#include "platform/windows/automation.h"
#include "tests/boundary/client/objects.h"

namespace kvdm {
namespace client {
namespace {

using Microsoft::WRL::ComPtr;

std::wstring DllPath() {
  std::array<wchar_t, MAX_PATH> path{};
  ::GetModuleFileNameW(Dll(), path.data(), MAX_PATH);
  return path.data();
}

using Classes = std::map<std::string, CLSID, std::less<>>;

// Adds the type number `index` of the library if it is a class.
void AddClass(ITypeLib& library, UINT index, Classes& classes) {
  TYPEKIND kind = TKIND_MAX;
  Check(library.GetTypeInfoType(index, &kind));
  if (kind != TKIND_COCLASS) return;
  ComPtr<ITypeInfo> type;
  Check(library.GetTypeInfo(index, &type));
  Bstr name;
  Check(type->GetDocumentation(MEMBERID_NIL, name.address(), nullptr, nullptr, nullptr));
  TYPEATTR* attributes = nullptr;
  Check(type->GetTypeAttr(&attributes));
  classes["KVDM." + ToText(name.get())] = attributes->guid;
  type->ReleaseTypeAttr(attributes);
}

// The classes by identity, as the DLL's type library has them.
const Classes& AllClasses() {
  static const Classes all = [] {
    ComPtr<ITypeLib> library;
    Check(::LoadTypeLibEx(DllPath().c_str(), REGKIND_NONE, &library));
    Classes classes;
    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) AddClass(*library.Get(), i, classes);
    return classes;
  }();
  return all;
}

// An object of which nothing but its facets is known.
class AnyObject final : public Unknown {
 public:
  explicit AnyObject(const ComPtr<IUnknown>& object) : object_(object) {}

  std::shared_ptr<Unknown> Facet(std::type_index interface_type) override {
    return FacetOf(object_.Get(), interface_type);
  }

 private:
  ComPtr<IUnknown> object_;
};

// A function that the DLL exports.
template <class Function>
Function* Exported(const char* name) {
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(::GetProcAddress(Dll(), name)));
}

ComPtr<IUnknown> Create(const CLSID& clsid) {
  using GetClassObject = HRESULT STDAPICALLTYPE(REFCLSID, REFIID, void**);
  static auto* const get_class_object = Exported<GetClassObject>("DllGetClassObject");
  ComPtr<IClassFactory> factory;
  Check(get_class_object(clsid, IID_PPV_ARGS(&factory)));
  ComPtr<IUnknown> object;
  Check(factory->CreateInstance(nullptr, IID_PPV_ARGS(&object)));
  return object;
}

}  // namespace

HMODULE Dll() {
  static const HMODULE dll = ::LoadLibraryW(L"KVDM.dll");
  if (dll == nullptr) throw RuntimeError(kFileNotFound, {}, "KVDM.dll can't be loaded");
  return dll;
}

bool IsDllInUse() {
  using CanUnloadNow = HRESULT STDAPICALLTYPE();
  return Exported<CanUnloadNow>("DllCanUnloadNow")() != S_OK;
}

Apartment::Apartment() { Check(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)); }
Apartment::~Apartment() { ::CoUninitialize(); }

}  // namespace client

// The DLL's objects stand on the services of the system, whatever `platform` is.
std::shared_ptr<Unknown> CreateObject(std::string_view class_identity, const Platform&) {
  const auto found = client::AllClasses().find(class_identity);
  if (found == client::AllClasses().end()) throw RuntimeError(kCannotCreateObject);
  return std::make_shared<client::AnyObject>(client::Create(found->second));
}

std::vector<std::string_view> ClassIdentities() {
  std::vector<std::string_view> identities;
  for (const auto& [identity, clsid] : client::AllClasses()) identities.push_back(identity);
  return identities;
}

}  // namespace kvdm
