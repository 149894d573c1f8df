// Type information: what clients learn about an object is what they can do with it.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include <kvdm/datamanager/component.h>

#include "com/kvdm.h"
#include "platform/windows/text.h"
#include "tests/boundary/client/import_hook.h"
#include "tests/boundary/script/late_object.h"

namespace kvdm::boundary {
namespace {

const CLSID* const kClasses[] = {
    &CLSID_KVDataManager,
    &CLSID_KVStudyAreaCollection,
    &CLSID_KVStudyArea,
    &CLSID_KVTablesManager,
    &CLSID_KVFileInfo,
    &CLSID_KVAnalysisCollection,
    &CLSID_KVStoreLayerCollection,
    &CLSID_KVCustLayerCollection,
    &CLSID_KVDataCollection,
    &CLSID_KVAnalysis,
    &CLSID_KVCustLayer,
    &CLSID_KVStoreLayer,
    &CLSID_KVDataItem,
};

ComPtr<ITypeInfo> TypeOf(const LateObject& object) {
  UINT count = 0;
  ComPtr<ITypeInfo> type;
  EXPECT_EQ(S_OK, object.Names().GetTypeInfoCount(&count));
  EXPECT_EQ(1U, count);
  EXPECT_EQ(S_OK, object.Names().GetTypeInfo(0, LOCALE_USER_DEFAULT, &type));
  return type;
}

// The class that an object says it is of.
ComPtr<ITypeInfo> ClassOf(const LateObject& object) {
  ComPtr<IProvideClassInfo> provider;
  ComPtr<ITypeInfo> type;
  EXPECT_EQ(S_OK, object.Names().QueryInterface(IID_PPV_ARGS(&provider)));
  EXPECT_EQ(S_OK, provider->GetClassInfo(&type));
  return type;
}

// Each operation that the type describes is what a caller by name finds: "get Name" -> identifier.
std::map<std::wstring, DISPID> Members(ITypeInfo& type) {
  std::map<std::wstring, DISPID> members;
  for (UINT i = 0; i < AttributesOf(type).cFuncs; ++i) {
    FUNCDESC* operation = nullptr;
    EXPECT_EQ(S_OK, type.GetFuncDesc(i, &operation));
    const wchar_t* kind = operation->invkind == INVOKE_PROPERTYGET   ? L"get "
                          : operation->invkind == INVOKE_PROPERTYPUT ? L"let "
                                                                     : L"call ";
    members[kind + NameOf(type, operation->memid)] = operation->memid;
    type.ReleaseFuncDesc(operation);
  }
  return members;
}

class LateTypesTest : public testing::Test {
 protected:
  Apartment apartment_;
};

TEST_F(LateTypesTest, AnObjectTellsItsClass) {
  for (const CLSID* clsid : kClasses) {
    const LateObject object(*clsid);
    const ComPtr<ITypeInfo> type = ClassOf(object);
    EXPECT_EQ(TKIND_COCLASS, AttributesOf(*type.Get()).typekind);
    EXPECT_TRUE(::IsEqualGUID(*clsid, AttributesOf(*type.Get()).guid));
    EXPECT_EQ(L"_" + NameOf(*type.Get()), NameOf(*TypeOf(object).Get()));
  }
}

TEST_F(LateTypesTest, ItsTypeIsADispatchInterfaceThatItHas) {
  for (const CLSID* clsid : kClasses) {
    const LateObject object(*clsid);
    const TYPEATTR type = AttributesOf(*TypeOf(object).Get());
    EXPECT_EQ(TKIND_DISPATCH, type.typekind);
    ComPtr<IUnknown> view;
    EXPECT_EQ(S_OK, object.Names().QueryInterface(type.guid, &view));
    ComPtr<ITypeLib> library;
    UINT index = 0;
    EXPECT_EQ(S_OK, TypeOf(object)->GetContainingTypeLib(&library, &index));
  }
}

TEST_F(LateTypesTest, EveryMemberIsWhatTheTypeSays) {
  for (const CLSID* clsid : kClasses) {
    const LateObject object(*clsid);
    const auto members = Members(*TypeOf(object).Get());
    EXPECT_FALSE(members.empty());
    for (const auto& [member, id] : members) {
      SCOPED_TRACE(ToUtf8(member));
      const std::wstring kind = member.substr(0, member.find(L' '));
      const std::wstring name = member.substr(kind.size() + 1);
      EXPECT_EQ(id, object.IdOf(name));
      // Reading a method, and setting what is only read, does nothing.
      const bool is_read = members.contains(L"get " + name);
      const bool is_set = members.contains(L"let " + name);
      EXPECT_EQ(!is_read, object.Get(name.c_str()).code == DISP_E_MEMBERNOTFOUND);
      EXPECT_EQ(!is_set, object.Let(name.c_str(), {}).code == DISP_E_MEMBERNOTFOUND);
    }
  }
}

TEST_F(LateTypesTest, AListIsItsOwnDispatchInterface) {
  const LateObject areas = LateObject(CLSID_KVDataManager).Object(L"StudyAreaCollection");
  const ComPtr<ITypeInfo> type = TypeOf(areas.Object(L"StudyAreasList"));
  EXPECT_EQ(L"INameList", NameOf(*type.Get()));
  EXPECT_EQ(TKIND_DISPATCH, AttributesOf(*type.Get()).typekind);
  EXPECT_EQ(L"KVStudyAreaCollection", NameOf(*ClassOf(areas).Get()));
}

TEST_F(LateTypesTest, AnObjectWithoutAClassTellsNone) {
  const LateObject identifier = LateObject(CLSID_KVDataManager).Object(L"ID");
  EXPECT_EQ(L"_Identifier", NameOf(*TypeOf(identifier).Get()));
  ComPtr<IProvideClassInfo> provider;
  EXPECT_EQ(E_NOINTERFACE, identifier.Names().QueryInterface(IID_PPV_ARGS(&provider)));
}

TEST_F(LateTypesTest, ThereIsOneType) {
  const LateObject object(CLSID_KVFileInfo);
  ComPtr<ITypeInfo> type;
  EXPECT_EQ(DISP_E_BADINDEX, object.Names().GetTypeInfo(1, LOCALE_USER_DEFAULT, &type));
  EXPECT_EQ(nullptr, type.Get());
  EXPECT_EQ(E_POINTER, object.Names().GetTypeInfoCount(nullptr));
  EXPECT_EQ(E_POINTER, object.Names().GetTypeInfo(0, LOCALE_USER_DEFAULT, nullptr));
}

int loads = 0;

HRESULT STDAPICALLTYPE CountedLoad(LPCOLESTR file, REGKIND kind, ITypeLib** library) {
  ++loads;
  return ::LoadTypeLibEx(file, kind, library);
}

// The first call by name on an object is as quick as any other.
TEST_F(LateTypesTest, TheLibraryIsReadOnceForAllObjectsOfAClass) {
  const LateObject first(CLSID_KVFileInfo);
  EXPECT_NE(DISPID_UNKNOWN, first.IdOf(L"FullPath"));
  const client::ImportHook hook(::GetModuleHandleW(L"KVDM.dll"), "OLEAUT32.dll", "LoadTypeLibEx",
                                &CountedLoad);
  loads = 0;
  for (int i = 0; i < 200; ++i) {
    EXPECT_EQ(S_OK, LateObject(CLSID_KVFileInfo).Let(L"FullPath", Arg("D:\\a.b")).code);
  }
  EXPECT_EQ(0, loads);
}

}  // namespace
}  // namespace kvdm::boundary
