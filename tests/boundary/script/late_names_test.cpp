// Every operation of every class has an identifier by its name, and nothing else has.
#include <gtest/gtest.h>

#include <cwctype>
#include <map>

#include "com/kvdm.h"
#include "platform/windows/text.h"
#include "tests/boundary/script/late_object.h"

namespace kvdm::boundary {
namespace {

class LateNamesTest : public testing::Test {
 private:
  Apartment apartment_;
};

std::vector<std::wstring> OperationsOf(ITypeInfo& type) {
  std::vector<std::wstring> names;
  for (UINT i = 0; i < AttributesOf(type).cFuncs; ++i) {
    FUNCDESC* operation = nullptr;
    EXPECT_EQ(S_OK, type.GetFuncDesc(i, &operation));
    names.push_back(NameOf(type, operation->memid));
    type.ReleaseFuncDesc(operation);
  }
  return names;
}

struct ClassNames {
  CLSID clsid;
  std::vector<std::wstring> operations;
};

ClassNames NamesOfClass(ITypeInfo& type) {
  ClassNames names{AttributesOf(type).guid, {}};
  for (UINT i = 0; i < AttributesOf(type).cImplTypes; ++i) {
    HREFTYPE reference = 0;
    ComPtr<ITypeInfo> implemented;
    EXPECT_EQ(S_OK, type.GetRefTypeOfImplType(i, &reference));
    EXPECT_EQ(S_OK, type.GetRefTypeInfo(reference, &implemented));
    for (auto& name : OperationsOf(*implemented.Get())) names.operations.push_back(name);
  }
  return names;
}

// The class's name, and what its objects are called with.
std::map<std::wstring, ClassNames> AllClasses() {
  const ComPtr<ITypeLib> library = Library();
  std::map<std::wstring, ClassNames> classes;
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    ComPtr<ITypeInfo> type;
    EXPECT_EQ(S_OK, library->GetTypeInfo(i, &type));
    if (AttributesOf(*type.Get()).typekind != TKIND_COCLASS) continue;
    classes.emplace(NameOf(*type.Get()), NamesOfClass(*type.Get()));
  }
  return classes;
}

std::wstring InOtherLetters(std::wstring name) {
  for (auto& letter : name) {
    letter = std::iswupper(letter) ? std::towlower(letter) : std::towupper(letter);
  }
  return name;
}

TEST_F(LateNamesTest, EveryOperationOfEveryClassHasAnIdentifierInAnyLetterCase) {
  const auto classes = AllClasses();
  EXPECT_EQ(13U, classes.size());
  for (const auto& [name, of] : classes) {
    const LateObject object(of.clsid);
    const LateObject other(of.clsid);
    for (const auto& operation : of.operations) {
      SCOPED_TRACE(ToUtf8(name + L"." + operation));
      const DISPID id = object.IdOf(operation);
      EXPECT_NE(DISPID_UNKNOWN, id);
      EXPECT_EQ(id, object.IdOf(InOtherLetters(operation)));
      EXPECT_EQ(id, other.IdOf(operation)) << "identifiers are the class's";
    }
  }
}

TEST_F(LateNamesTest, DifferentNamesHaveDifferentIdentifiers) {
  for (const auto& [name, of] : AllClasses()) {
    const LateObject object(of.clsid);
    std::map<DISPID, std::wstring> names;
    for (const auto& operation : of.operations) {
      const auto [known, added] = names.emplace(object.IdOf(operation), operation);
      EXPECT_EQ(operation, known->second) << ToUtf8(name);
    }
  }
}

TEST_F(LateNamesTest, APropertyOfTwoInterfacesHasOneIdentifier) {
  const LateObject area(CLSID_KVStudyArea);
  EXPECT_EQ(S_OK, area.Get(L"LayerFile").code);
  EXPECT_EQ(S_OK, area.Let(L"LayerFile", Arg("D:\\North.lyr")).code);
}

TEST_F(LateNamesTest, WhatIsNoOperationHasNone) {
  for (const auto& [name, of] : AllClasses()) {
    const LateObject object(of.clsid);
    for (const auto* unknown :
         {L"", L"NoSuchOperation", L"QueryInterface", L"AddRef", L"Release", L"Invoke", L"get_Name",
          L"put_Name", L"SetNode", L"AttachNode", L"SetDataManager", L"AttachDataManager",
          L"AttachOwner", L"HostObject", L"KVDMHandleError", L"GenerateFolderName"}) {
      EXPECT_EQ(DISPID_UNKNOWN, object.IdOf(unknown)) << ToUtf8(name) << " " << ToUtf8(unknown);
    }
  }
}

TEST_F(LateNamesTest, AnUnknownNameIsToldSo) {
  const LateObject object(CLSID_KVFileInfo);
  std::wstring name = L"NoSuchOperation";
  LPOLESTR names = name.data();
  DISPID id = 7;
  EXPECT_EQ(DISP_E_UNKNOWNNAME,
            object.Names().GetIDsOfNames(GUID{}, &names, 1, LOCALE_USER_DEFAULT, &id));
  EXPECT_EQ(DISPID_UNKNOWN, id);
}

TEST_F(LateNamesTest, ArgumentsHaveNoNames) {
  const LateObject area(CLSID_KVStudyArea);
  std::wstring operation = L"SetProperty";
  std::wstring argument = L"value";
  LPOLESTR names[] = {operation.data(), argument.data()};
  DISPID ids[] = {7, 7};
  EXPECT_EQ(DISP_E_UNKNOWNNAME,
            area.Names().GetIDsOfNames(GUID{}, names, 2, LOCALE_USER_DEFAULT, ids));
  EXPECT_EQ(area.IdOf(operation), ids[0]);
  EXPECT_EQ(DISPID_UNKNOWN, ids[1]);
}

TEST_F(LateNamesTest, MissingPointersAndOtherInterfacesAreRefused) {
  const LateObject object(CLSID_KVFileInfo);
  std::wstring name = L"FullPath";
  LPOLESTR names = name.data();
  DISPID id = 7;
  EXPECT_EQ(E_POINTER, object.Names().GetIDsOfNames(GUID{}, nullptr, 1, 0, &id));
  EXPECT_EQ(E_POINTER, object.Names().GetIDsOfNames(GUID{}, &names, 1, 0, nullptr));
  EXPECT_EQ(DISP_E_UNKNOWNINTERFACE,
            object.Names().GetIDsOfNames(IID_IKVFileInfo, &names, 1, 0, &id));
  DISPPARAMS none{};
  EXPECT_EQ(DISP_E_UNKNOWNINTERFACE, object.Names().Invoke(id, IID_IKVFileInfo, 0, DISPATCH_METHOD,
                                                           &none, nullptr, nullptr, nullptr));
  EXPECT_EQ(E_POINTER, object.Names().Invoke(id, GUID{}, 0, DISPATCH_METHOD, nullptr, nullptr,
                                             nullptr, nullptr));
}

}  // namespace
}  // namespace kvdm::boundary
