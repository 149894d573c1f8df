// Registration of classes and type library.

#include <array>
#include <string>
#include <vector>

#include "com/classes.h"
#include "com/kvdm.h"
#include "com/module.h"
#include "platform/windows/automation.h"
#include "platform/windows/com_headers.h"
#include "platform/windows/text.h"

namespace kvdm::com {
namespace {

using Microsoft::WRL::ComPtr;

constexpr wchar_t kVersion[] = L"1.0";
constexpr wchar_t kVersionSuffix[] = L".1";
// The system's own, which pass calls between apartments: by slot as the type library tells, and by
// name.
constexpr wchar_t kSlotMarshaller[] = L"{00020424-0000-0000-C000-000000000046}";
constexpr wchar_t kDispatchMarshaller[] = L"{00020420-0000-0000-C000-000000000046}";
constexpr bool kIs64Bit = sizeof(void*) == 8;

void CheckCode(LSTATUS code) { Check(HRESULT_FROM_WIN32(static_cast<DWORD>(code))); }

std::wstring GuidText(const GUID& guid) {
  std::array<wchar_t, 39> text{};
  ::StringFromGUID2(guid, text.data(), static_cast<int>(text.size()));
  return text.data();
}

constexpr wchar_t kClassesKey[] = L"Software\\Classes";

class ClassesKey {
 public:
  explicit ClassesKey(Scope scope)
      : root_(scope == Scope::kUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE) {
    CheckCode(::RegCreateKeyW(root_, kClassesKey, &key_));
  }
  ~ClassesKey() { ::RegCloseKey(key_); }
  ClassesKey(const ClassesKey&) = delete;
  ClassesKey& operator=(const ClassesKey&) = delete;

  // Sets a value of a key; the key's own value without a `name`.
  void Set(const std::wstring& key, const wchar_t* name, const std::wstring& text) const {
    const auto bytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    CheckCode(::RegSetKeyValueW(key_, key.c_str(), name, REG_SZ, text.c_str(), bytes));
  }

  void Remove(const std::wstring& key) const {
    const LSTATUS code = ::RegDeleteTreeW(key_, key.c_str());
    if (code != ERROR_FILE_NOT_FOUND) CheckCode(code);
  }

  // Whether programs of the other word size find a key. Only a path from the root leads to theirs.
  [[nodiscard]] bool OtherWordSizeHas(const std::wstring& key) const {
    constexpr REGSAM kOther = kIs64Bit ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;
    const std::wstring path = kClassesKey + (L"\\" + key);
    HKEY found = nullptr;
    if (::RegOpenKeyExW(root_, path.c_str(), 0, KEY_READ | kOther, &found) != ERROR_SUCCESS) {
      return false;
    }
    ::RegCloseKey(found);
    return true;
  }

 private:
  HKEY root_;
  HKEY key_ = nullptr;
};

std::wstring ClassKey(const Class& of) { return L"CLSID\\" + GuidText(*of.clsid); }

void RegisterClass(const ClassesKey& classes, const Class& of, const std::wstring& path) {
  const std::wstring name = ToUtf16(of.identity);
  const std::wstring key = ClassKey(of);
  classes.Set(key, nullptr, name);
  classes.Set(key + L"\\InprocServer32", nullptr, path);
  classes.Set(key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
  classes.Set(key + L"\\ProgID", nullptr, name + kVersionSuffix);
  classes.Set(key + L"\\VersionIndependentProgID", nullptr, name);
  classes.Set(key + L"\\TypeLib", nullptr, GuidText(LIBID_KVDM));
  classes.Set(key + L"\\Version", nullptr, kVersion);
  for (const std::wstring& program : {name, name + kVersionSuffix}) {
    classes.Set(program, nullptr, name);
    classes.Set(program + L"\\CLSID", nullptr, GuidText(*of.clsid));
  }
  classes.Set(name + L"\\CurVer", nullptr, name + kVersionSuffix);
}

// The names belong to the DLLs of both word sizes.
void UnregisterClass(const ClassesKey& classes, const Class& of) {
  const std::wstring name = ToUtf16(of.identity);
  classes.Remove(ClassKey(of));
  if (classes.OtherWordSizeHas(ClassKey(of))) return;
  classes.Remove(name);
  classes.Remove(name + kVersionSuffix);
}

struct Interface {
  std::wstring key;
  std::wstring name;
  const wchar_t* marshaller;
};

const wchar_t* MarshallerOf(const TYPEATTR& type) {
  const bool has_slots = (type.wTypeFlags & TYPEFLAG_FDUAL) != 0;
  return type.typekind == TKIND_DISPATCH && !has_slots ? kDispatchMarshaller : kSlotMarshaller;
}

std::vector<Interface> Interfaces(ITypeLib& library) {
  std::vector<Interface> interfaces;
  for (UINT i = 0; i < library.GetTypeInfoCount(); ++i) {
    ComPtr<ITypeInfo> type;
    Check(library.GetTypeInfo(i, &type));
    Bstr name;
    Check(library.GetDocumentation(static_cast<INT>(i), name.address(), nullptr, nullptr, nullptr));
    TYPEATTR* attributes = nullptr;
    Check(type->GetTypeAttr(&attributes));
    if (attributes->typekind != TKIND_COCLASS) {
      interfaces.push_back(
          {L"Interface\\" + GuidText(attributes->guid), name.get(), MarshallerOf(*attributes)});
    }
    type->ReleaseTypeAttr(attributes);
  }
  return interfaces;
}

ComPtr<ITypeLib> LoadLibraryIn(const std::wstring& path) {
  ComPtr<ITypeLib> library;
  Check(::LoadTypeLibEx(path.c_str(), REGKIND_NONE, &library));
  return library;
}

std::wstring LibraryKey() { return L"TypeLib\\" + GuidText(LIBID_KVDM); }

std::wstring PlatformKey() {
  return LibraryKey() + L"\\" + kVersion + (kIs64Bit ? L"\\0\\win64" : L"\\0\\win32");
}

// The system's own function would write for all users, also when it is meant for one.
void RegisterLibrary(const ClassesKey& classes, const std::wstring& path) {
  const ComPtr<ITypeLib> library = LoadLibraryIn(path);
  Bstr name;
  constexpr INT kLibraryItself = -1;
  Check(library->GetDocumentation(kLibraryItself, nullptr, name.address(), nullptr, nullptr));
  const std::wstring key = LibraryKey() + L"\\" + kVersion;
  classes.Set(key, nullptr, name.get());
  classes.Set(PlatformKey(), nullptr, path);
  classes.Set(key + L"\\FLAGS", nullptr, L"0");
  for (const Interface& each : Interfaces(*library.Get())) {
    classes.Set(each.key, nullptr, each.name);
    classes.Set(each.key + L"\\ProxyStubClsid32", nullptr, each.marshaller);
    classes.Set(each.key + L"\\TypeLib", nullptr, GuidText(LIBID_KVDM));
    classes.Set(each.key + L"\\TypeLib", L"Version", kVersion);
  }
}

// Each word size has interfaces of its own; the library belongs to both.
void UnregisterLibrary(const ClassesKey& classes, const std::wstring& path) {
  for (const Interface& each : Interfaces(*LoadLibraryIn(path).Get())) classes.Remove(each.key);
  classes.Remove(PlatformKey());
  if (!classes.OtherWordSizeHas(ClassKey(Classes().front()))) classes.Remove(LibraryKey());
}

}  // namespace

void Register(Scope scope) {
  const ClassesKey classes(scope);
  const std::wstring path = ModulePath();
  for (const Class& each : Classes()) RegisterClass(classes, each, path);
  RegisterLibrary(classes, path);
}

void Unregister(Scope scope) {
  const ClassesKey classes(scope);
  for (const Class& each : Classes()) UnregisterClass(classes, each);
  UnregisterLibrary(classes, ModulePath());
}

}  // namespace kvdm::com
