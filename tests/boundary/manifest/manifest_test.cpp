// The component without registration: this program's manifest names the assembly KVDM, whose
// manifest and DLL lie beside it.
#include <gtest/gtest.h>

#include "com/kvdm.h"
#include "platform/windows/automation.h"
#include "platform/windows/com_headers.h"

namespace kvdm {
namespace {

using Microsoft::WRL::ComPtr;

const wchar_t* const kClasses[] = {L"KVDM.KVDataManager",
                                   L"KVDM.KVStudyAreaCollection",
                                   L"KVDM.KVStudyArea",
                                   L"KVDM.KVTablesManager",
                                   L"KVDM.KVFileInfo",
                                   L"KVDM.KVAnalysisCollection",
                                   L"KVDM.KVStoreLayerCollection",
                                   L"KVDM.KVCustLayerCollection",
                                   L"KVDM.KVDataCollection",
                                   L"KVDM.KVAnalysis",
                                   L"KVDM.KVCustLayer",
                                   L"KVDM.KVStoreLayer",
                                   L"KVDM.KVDataItem"};

class ManifestTest : public testing::Test {
 protected:
  ManifestTest() { ::CoInitialize(nullptr); }
  ~ManifestTest() override { ::CoUninitialize(); }
};

template <class Interface>
ComPtr<Interface> Create(const wchar_t* name) {
  CLSID clsid{};
  ComPtr<Interface> object;
  EXPECT_EQ(S_OK, ::CLSIDFromProgID(name, &clsid));
  EXPECT_EQ(S_OK, ::CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&object)));
  return object;
}

TEST_F(ManifestTest, NothingIsRegistered) {
  HKEY key = nullptr;
  EXPECT_EQ(ERROR_FILE_NOT_FOUND, ::RegOpenKeyW(HKEY_CLASSES_ROOT, L"KVDM.KVDataManager", &key));
}

TEST_F(ManifestTest, EveryClassIsFoundByItsName) {
  for (const auto* name : kClasses) EXPECT_NE(nullptr, Create<IDispatch>(name).Get());
}

TEST_F(ManifestTest, AClassIsFoundByItsVersionsName) {
  EXPECT_NE(nullptr, Create<IDispatch>(L"KVDM.KVDataManager.1").Get());
}

TEST_F(ManifestTest, ObjectsAreCalledThroughTheirSlots) {
  const auto info = Create<IKVFileInfo>(L"KVDM.KVFileInfo");
  Bstr path(R"(D:\Data\Roads.shp)");
  EXPECT_EQ(S_OK, info->put_FullPath(path.address()));
  Bstr name;
  EXPECT_EQ(S_OK, info->get_FileName(name.address()));
  EXPECT_EQ("Roads", ToText(name.get()));
}

TEST_F(ManifestTest, ObjectsAreCalledByName) {
  const LateObject manager(Create<IDispatch>(L"KVDM.KVDataManager"));
  EXPECT_EQ(Value(""), FromVariant(manager.Call("WorkingDirectory").get()));
  EXPECT_EQ(VT_DISPATCH, V_VT(&manager.Call("AnalysisCollection").get()));
}

// For this the manifest names the interfaces.
TEST_F(ManifestTest, ObjectsCanBePassedToOtherApartments) {
  const auto info = Create<IKVFileInfo>(L"KVDM.KVFileInfo");
  ComPtr<IStream> stream;
  EXPECT_EQ(S_OK, ::CoMarshalInterThreadInterfaceInStream(IID_IKVFileInfo, info.Get(),
                                                          stream.GetAddressOf()));
  ASSERT_NE(nullptr, stream.Get());
  EXPECT_EQ(S_OK, ::CoReleaseMarshalData(stream.Get()));
}

}  // namespace
}  // namespace kvdm
