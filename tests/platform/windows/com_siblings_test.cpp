#include "platform/windows/com_siblings.h"

#include <gtest/gtest.h>
#include <objbase.h>

#include <stdexcept>

#include "tests/platform/windows/com_environment.h"
#include "tests/platform/windows/fake_dispatch.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using Microsoft::WRL::ComPtr;

// Hands out one object again and again.
class OneObjectFactory final : public IClassFactory {
 public:
  explicit OneObjectFactory(IUnknown* object) : object_(object) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    *object = iid == IID_IUnknown || iid == IID_IClassFactory ? this : nullptr;
    return *object == nullptr ? E_NOINTERFACE : S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP CreateInstance(IUnknown* /*outer*/, REFIID iid, void** object) override {
    return object_->QueryInterface(iid, object);
  }
  STDMETHODIMP LockServer(BOOL /*lock*/) override { return S_OK; }

 private:
  IUnknown* object_;
};

// A class of this process, found by its name for as long as this lives.
class RegisteredClass {
 public:
  RegisteredClass(const std::wstring& name, IUnknown* object) : name_(name), factory_(object) {
    GUID id{};
    HKEY key = nullptr;
    DWORD disposition = 0;
    const std::wstring path = name + L"\\CLSID";
    if (::CoCreateGuid(&id) != S_OK ||
        ::RegCreateKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE,
                          KEY_ALL_ACCESS, nullptr, &key, &disposition) != ERROR_SUCCESS ||
        disposition != REG_CREATED_NEW_KEY) {
      throw std::runtime_error("the class is registered on this machine, or can't be");
    }
    wchar_t text[39];
    ::StringFromGUID2(id, text, 39);
    ::RegSetValueExW(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(text), sizeof(text));
    ::RegCloseKey(key);
    ::CoRegisterClassObject(id, &factory_, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie_);
  }
  RegisteredClass(const RegisteredClass&) = delete;
  RegisteredClass& operator=(const RegisteredClass&) = delete;
  ~RegisteredClass() {
    ::CoRevokeClassObject(cookie_);
    ::RegDeleteTreeW(HKEY_CLASSES_ROOT, name_.c_str());
  }

 private:
  std::wstring name_;
  OneObjectFactory factory_;
  DWORD cookie_ = 0;
};

constexpr wchar_t kManager[] = L"QSObjectModel.QSManager";
constexpr wchar_t kFinder[] = L"KVDMRes.clsFindResource";

TEST(ComSiblingsTest, ClassesThatAreNotRegisteredCantBeCreated) {
  EXPECT_RUNTIME_ERROR(ComSiblings().CreateDatasetManager(), kCannotCreateObject);
  EXPECT_RUNTIME_ERROR(ComSiblings().CreateResourceFinder(), kCannotCreateObject);
}

TEST(ComSiblingsTest, TheDatasetManagerIsInitialisedByName) {
  const auto object = FakeDispatch::Create({{"initialize", Answering(true)}});
  const RegisteredClass registered(kManager, object.Get());
  EXPECT_EQ(ComSiblings().CreateDatasetManager()->Initialize(), Value(true));
}

TEST(ComSiblingsTest, TheDatasetManagerIsTheVeryObject) {
  const auto object = FakeDispatch::Create({});
  const RegisteredClass registered(kManager, object.Get());
  const auto manager = ComSiblings().CreateDatasetManager();
  EXPECT_EQ(dynamic_cast<ComDatasetManager&>(*manager).Object(), object.Get());
}

TEST(ComSiblingsTest, AManagerThatCantBeInitialisedSaysSo) {
  const auto object = FakeDispatch::Create({{"Initialize", FailingWith(E_FAIL)}});
  const RegisteredClass registered(kManager, object.Get());
  const auto manager = ComSiblings().CreateDatasetManager();
  EXPECT_RUNTIME_ERROR(manager->Initialize(), kAutomationFailure);
}

TEST(ComSiblingsTest, TheFinderIsAskedForTextsByName) {
  const auto object = FakeDispatch::Create(
      {{"FindString", [](const auto& arguments, VARIANT* result, EXCEPINFO* /*exception*/) {
          ToVariant("text " + ToText(FromVariant(arguments.at(0))), result);
          return S_OK;
        }}});
  const RegisteredClass registered(kFinder, object.Get());
  EXPECT_EQ(ComSiblings().CreateResourceFinder()->FindString("101"), "text 101");
}

TEST(ComSiblingsTest, AFinderWithoutAnswerFails) {
  const auto object = FakeDispatch::Create({{"FindString", Answering(Null{})}});
  const RegisteredClass registered(kFinder, object.Get());
  EXPECT_RUNTIME_ERROR(ComSiblings().CreateResourceFinder()->FindString("101"), kInvalidUseOfNull);
}

}  // namespace
}  // namespace kvdm
