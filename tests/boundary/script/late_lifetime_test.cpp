// A client that lets go of an object while the object is called.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "com/kvdm.h"
#include "tests/boundary/script/late_object.h"
#include "tests/platform/windows/fake_dispatch.h"

namespace kvdm::boundary {
namespace {

// Calls DMInitialize with a host that lets go of the data manager when it is asked for its
// settings. Answers what the call answered.
HRESULT SaveAndLetGo(bool by_name) {
  ComPtr<IDispatch> manager = NewObject(CLSID_KVDataManager);
  const auto stream =
      FakeDispatch::Create({{"Write", [&](const std::vector<VARIANT>&, VARIANT*, EXCEPINFO*) {
                               manager.Reset();
                               return S_OK;
                             }}});
  if (!by_name) {
    ComPtr<::IPersistVariant> persist;
    EXPECT_EQ(S_OK, manager.As(&persist));
    ::IPersistVariant* const slots = persist.Get();
    slots->AddRef();
    persist.Reset();
    slots->Release();  // The data manager's own reference is the last one.
    const HRESULT result = slots->Save(stream.Get());
    EXPECT_EQ(nullptr, manager.Get());
    return result;
  }
  std::wstring name = L"Save";
  LPOLESTR names = name.data();
  DISPID id = DISPID_UNKNOWN;
  EXPECT_EQ(S_OK, manager->GetIDsOfNames(GUID{}, &names, 1, 0, &id));
  VARIANT argument{};
  V_VT(&argument) = VT_DISPATCH;
  V_DISPATCH(&argument) = stream.Get();
  DISPPARAMS parameters{&argument, nullptr, 1, 0};
  IDispatch* const slots = manager.Get();
  const HRESULT result =
      slots->Invoke(id, GUID{}, 0, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr);
  EXPECT_EQ(nullptr, manager.Get());
  return result;
}

TEST(LateLifetimeTest, AnObjectOutlivesACallBySlot) {
  const Apartment apartment;
  EXPECT_EQ(S_OK, SaveAndLetGo(false));
}

TEST(LateLifetimeTest, AnObjectOutlivesACallByName) {
  const Apartment apartment;
  EXPECT_EQ(S_OK, SaveAndLetGo(true));
}

}  // namespace
}  // namespace kvdm::boundary
