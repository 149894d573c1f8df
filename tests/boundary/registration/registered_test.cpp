// What registration is for: run while the component is registered, for the machine or for the user.
#include <gtest/gtest.h>

#include <string>

#include "com/kvdm.h"
#include "platform/windows/com_headers.h"

namespace kvdm {
namespace {

using Microsoft::WRL::ComPtr;

struct NamedClass {
  std::wstring name;
  const CLSID& clsid;
};

const NamedClass kClasses[] = {
    {L"KVDM.KVDataManager", CLSID_KVDataManager},
    {L"KVDM.KVStudyAreaCollection", CLSID_KVStudyAreaCollection},
    {L"KVDM.KVStudyArea", CLSID_KVStudyArea},
    {L"KVDM.KVTablesManager", CLSID_KVTablesManager},
    {L"KVDM.KVFileInfo", CLSID_KVFileInfo},
    {L"KVDM.KVAnalysisCollection", CLSID_KVAnalysisCollection},
    {L"KVDM.KVStoreLayerCollection", CLSID_KVStoreLayerCollection},
    {L"KVDM.KVCustLayerCollection", CLSID_KVCustLayerCollection},
    {L"KVDM.KVDataCollection", CLSID_KVDataCollection},
    {L"KVDM.KVAnalysis", CLSID_KVAnalysis},
    {L"KVDM.KVCustLayer", CLSID_KVCustLayer},
    {L"KVDM.KVStoreLayer", CLSID_KVStoreLayer},
    {L"KVDM.KVDataItem", CLSID_KVDataItem},
};

class Com {
 public:
  Com() { ::CoInitialize(nullptr); }
  ~Com() { ::CoUninitialize(); }
  Com(const Com&) = delete;
  Com& operator=(const Com&) = delete;
};

class RegisteredTest : public testing::Test {
 private:
  Com com_;
};

void ExpectFound(const NamedClass& of, const std::wstring& name) {
  CLSID clsid{};
  EXPECT_EQ(S_OK, ::CLSIDFromProgID(name.c_str(), &clsid));
  EXPECT_TRUE(::IsEqualCLSID(of.clsid, clsid));
}

TEST_F(RegisteredTest, ClassesAreFoundByTheirNames) {
  for (const auto& each : kClasses) {
    ExpectFound(each, each.name);
    ExpectFound(each, each.name + L".1");
  }
}

TEST_F(RegisteredTest, ClassesHaveTheirNames) {
  for (const auto& each : kClasses) {
    LPOLESTR name = nullptr;
    EXPECT_EQ(S_OK, ::ProgIDFromCLSID(each.clsid, &name));
    EXPECT_EQ(each.name + L".1", name);
    ::CoTaskMemFree(name);
  }
}

TEST_F(RegisteredTest, ClassesCreateObjects) {
  for (const auto& each : kClasses) {
    ComPtr<IUnknown> object;
    EXPECT_EQ(S_OK,
              ::CoCreateInstance(each.clsid, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&object)));
  }
}

TEST_F(RegisteredTest, TheTypeLibraryIsFound) {
  ComPtr<ITypeLib> library;
  ASSERT_EQ(S_OK, ::LoadRegTypeLib(LIBID_KVDM, 1, 0, LOCALE_NEUTRAL, &library));
  ComPtr<ITypeInfo> type;
  EXPECT_EQ(S_OK, library->GetTypeInfoOfGuid(IID_IKVDataManager, &type));
}

// Objects of single-threaded apartments are not created in the others.
TEST(RegisteredThreadingTest, ObjectsLiveInSingleThreadedApartments) {
  ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  {
    ComPtr<IUnknown> object;
    ComPtr<IClientSecurity> proxy;
    ASSERT_EQ(S_OK, ::CoCreateInstance(CLSID_KVFileInfo, nullptr, CLSCTX_INPROC_SERVER,
                                       IID_PPV_ARGS(&object)));
    EXPECT_EQ(S_OK, object.As(&proxy));
  }
  ::CoUninitialize();
}

// Registered for the user, and for nobody else.
TEST(RegisteredForUserTest, ClassesAreFound) {
  const Com com;
  const bool under_wine =
      ::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
  CLSID clsid{};
  // Wine's classes are those of the machine alone.
  EXPECT_EQ(under_wine ? CO_E_CLASSSTRING : S_OK, ::CLSIDFromProgID(L"KVDM.KVDataManager", &clsid));
}

}  // namespace
}  // namespace kvdm
