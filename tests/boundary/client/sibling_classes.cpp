#include "tests/boundary/client/sibling_classes.h"

// Need the types of <windows.h>.
#include <oaidl.h>

#include <array>
#include <utility>

#include "platform/windows/automation.h"
#include "tests/boundary/client/com_object.h"

namespace kvdm::client {
namespace {

constexpr DISPID kOperation = 1;

constexpr CLSID kDatasetManager = {
    0x8C0E6F51, 0x7B3D, 0x4A92, {0x86, 0x1E, 0x52, 0xC9, 0x04, 0xAD, 0x37, 0x60}};
constexpr CLSID kResourceFinder = {
    0x8C0E6F52, 0x7B3D, 0x4A92, {0x86, 0x1E, 0x52, 0xC9, 0x04, 0xAD, 0x37, 0x60}};

// An object whose one operation is called by name.
class Sibling final : public ComObject<IDispatch> {
 public:
  Sibling(std::wstring name, SiblingClass::Operation operation)
      : name_(std::move(name)), operation_(std::move(operation)) {}

  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
    ids[0] = names[0] == name_ ? kOperation : DISPID_UNKNOWN;
    return names[0] == name_ ? S_OK : DISP_E_UNKNOWNNAME;
  }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT* result,
                      EXCEPINFO*, UINT*) override {
    const std::string argument =
        parameters->cArgs == 0 ? "" : kvdm::ToText(FromVariant(parameters->rgvarg[0]));
    ToVariant(operation_(argument), result);
    return S_OK;
  }

 private:
  std::wstring name_;
  SiblingClass::Operation operation_;
};

class SiblingFactory final : public ComObject<IClassFactory> {
 public:
  SiblingFactory(std::wstring name, SiblingClass::Operation operation)
      : name_(std::move(name)), operation_(std::move(operation)) {}

  STDMETHODIMP CreateInstance(IUnknown*, REFIID iid, void** out) override {
    return Owned(new Sibling(name_, operation_)).CopyTo(iid, out);
  }
  STDMETHODIMP LockServer(BOOL) override { return S_OK; }

 private:
  std::wstring name_;
  SiblingClass::Operation operation_;
};

HKEY MachineClasses() {
  HKEY classes = nullptr;
  Check(HRESULT_FROM_WIN32(::RegCreateKeyW(HKEY_LOCAL_MACHINE, L"Software\\Classes", &classes)));
  return classes;
}

std::wstring Text(const CLSID& clsid) {
  std::array<wchar_t, 39> text{};  // 38 characters and a NUL.
  ::StringFromGUID2(clsid, text.data(), static_cast<int>(text.size()));
  return text.data();
}

}  // namespace

SiblingClass::SiblingClass(const wchar_t* name, const CLSID& clsid, const wchar_t* operation_name,
                           const Operation& operation)
    : classes_(MachineClasses()), name_(name) {
  const std::wstring text = Text(clsid);
  const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
  Check(HRESULT_FROM_WIN32(::RegSetKeyValueW(classes_, (name_ + L"\\CLSID").c_str(), nullptr,
                                             REG_SZ, text.c_str(), size)));
  const auto factory = Owned(new SiblingFactory(operation_name, operation));
  Check(::CoRegisterClassObject(clsid, factory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                                &registration_));
}

SiblingClass::~SiblingClass() {
  ::CoRevokeClassObject(registration_);
  ::RegDeleteTreeW(classes_, name_.c_str());
  ::RegCloseKey(classes_);
}

SiblingClasses::SiblingClasses(const SiblingClass::Operation& find_text)
    : dataset_manager_(std::make_unique<SiblingClass>(
          L"QSObjectModel.QSManager", kDatasetManager, L"Initialize",
          [this](const std::string&) { return std::to_string(++initialized_); })),
      resource_finder_(std::make_unique<SiblingClass>(L"KVDMRes.clsFindResource", kResourceFinder,
                                                      L"FindString", find_text)) {}

}  // namespace kvdm::client
