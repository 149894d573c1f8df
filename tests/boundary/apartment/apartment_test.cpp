// The component called from other apartments than that of its objects. It is registered, and so are
// the sibling libraries.
#include <gtest/gtest.h>

#include <filesystem>

#include "platform/windows/automation.h"
#include "tests/boundary/apartment/clients.h"
#include "tests/boundary/apartment/host.h"

namespace kvdm::boundary {
namespace {

constexpr char kFolder[] = "D:\\KVDM apartment\\";

bool UnderWine() {
  return ::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

using Client = void (*)(const Session&);

class ApartmentTest : public testing::TestWithParam<Client> {
 protected:
  ApartmentTest() { Clear(); }
  ~ApartmentTest() override { Clear(); }

  // The data manager has a working directory.
  static void Run(const Session& session) {
    GetParam()([&](const ComPtr<::IKVDataManager>& manager) {
      ASSERT_NE(nullptr, manager.Get());
      Bstr folder(kFolder);
      EXPECT_EQ(S_OK, manager->put_WorkingDirectory(folder.address()));
      session(manager);
    });
  }

 private:
  static void Clear() {
    std::filesystem::remove_all(kFolder);
    ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Velk\\Kelvaro");
  }
};

// Results of calls that succeed. `call` is given the place of the result.

template <class Call>
std::string Text(const Call& call) {
  Bstr text;
  EXPECT_EQ(S_OK, call(text.address()));
  return ToText(text.get());
}

template <class Call>
bool Yes(const Call& call) {
  VARIANT_BOOL answer = VARIANT_FALSE;
  EXPECT_EQ(S_OK, call(&answer));
  return answer == VARIANT_TRUE;
}

template <class Interface, class Call>
ComPtr<Interface> Get(const Call& call) {
  ComPtr<Interface> object;
  EXPECT_EQ(S_OK, call(object.GetAddressOf()));
  EXPECT_NE(nullptr, object.Get());
  return object;
}

ComPtr<::IKVStudyAreaCollection> AreasOf(const ComPtr<::IKVDataManager>& manager) {
  return Get<::IKVStudyAreaCollection>(
      [&](auto** out) { return manager->StudyAreaCollection(out); });
}

ComPtr<::IKVStudyArea> NewArea(const ComPtr<::IKVDataManager>& manager, const char* named) {
  const auto areas = AreasOf(manager);
  Bstr name(named);
  EXPECT_TRUE(Yes([&](auto* out) { return areas->CreateStudyArea(name.address(), out); }));
  return Get<::IKVStudyArea>([&](auto** out) { return areas->GetStudyArea(name.address(), out); });
}

TEST_P(ApartmentTest, CallsGoThroughAProxy) {
  Run([](const auto& manager) {
    EXPECT_NE(nullptr, As<IClientSecurity>(manager).Get());
    EXPECT_NE(nullptr, As<IClientSecurity>(AreasOf(manager)).Get());
  });
}

TEST_P(ApartmentTest, TextsPassBothWays) {
  Run([](const auto& manager) {
    EXPECT_EQ(kFolder, Text([&](auto* out) { return manager->get_WorkingDirectory(out); }));
    const auto area = NewArea(manager, "Norte \u00F1");
    EXPECT_EQ("Norte \u00F1", Text([&](auto* out) { return area->get_Name(out); }));
    Bstr comments("First \u4E2D");
    EXPECT_EQ(S_OK, area->put_Comments(comments.address()));
    EXPECT_EQ("First \u4E2D", ToText(comments.get())) << "not modified";
    EXPECT_EQ("First \u4E2D", Text([&](auto* out) { return area->get_Comments(out); }));
  });
}

TEST_P(ApartmentTest, AnObjectHasItsInterfacesThere) {
  Run([](const auto& manager) {
    const auto area = NewArea(manager, "North");
    const auto edit = As<::IKVLayerEdit>(area);
    ASSERT_NE(nullptr, edit.Get());
    Bstr file("D:\\North.lyr");
    EXPECT_EQ(S_OK, edit->put_LayerFile(file.address()));
    EXPECT_EQ("D:\\North.lyr", Text([&](auto* out) { return area->get_LayerFile(out); }));
    EXPECT_EQ(nullptr, As<::IKVAnalysis>(area).Get());
    EXPECT_EQ(As<IUnknown>(area).Get(), As<IUnknown>(edit).Get());
  });
}

TEST_P(ApartmentTest, ValuesPassBothWays) {
  Run([](const auto& manager) {
    const auto set = As<::IKVPropertySet>(NewArea(manager, "North"));
    Bstr name("TYPE");
    for (const Value& value : {Value("A text"), Value(5), Value(2.5), Value(true), Value()}) {
      Variant given(value);
      EXPECT_TRUE(
          Yes([&](auto* out) { return set->SetProperty(name.address(), given.address(), out); }));
      Variant read;
      EXPECT_EQ(S_OK, set->GetProperty(name.address(), read.address()));
      EXPECT_EQ(Value(ToText(value)), FromVariant(read.get()));
    }
    long count = 7;
    EXPECT_EQ(S_OK, set->get_Count(&count));
    EXPECT_EQ(0, count);
  });
}

TEST_P(ApartmentTest, BooleansPassBothWays) {
  Run([](const auto& manager) {
    const auto layers = Get<::IKVCustLayerCollection>(
        [&](auto** out) { return manager->CustLayerCollection(out); });
    Bstr name("Customers");
    EXPECT_TRUE(Yes([&](auto* out) { return layers->CreateCustLayer(name.address(), out); }));
    EXPECT_FALSE(Yes([&](auto* out) { return layers->CreateCustLayer(name.address(), out); }));
    const auto layer =
        Get<::IKVCustLayer>([&](auto** out) { return layers->GetCustLayer(name.address(), out); });
    EXPECT_EQ(S_OK, layer->put_IsInternalData(VARIANT_TRUE));
    EXPECT_TRUE(Yes([&](auto* out) { return layer->get_IsInternalData(out); }));
  });
}

TEST_P(ApartmentTest, ListsAreReadByPositionAndInTurn) {
  Run([](const auto& manager) {
    NewArea(manager, "North");
    NewArea(manager, "South");
    const auto areas = AreasOf(manager);
    const auto list = Get<::INameList>([&](auto** out) { return areas->StudyAreasList(out); });
    Variant second;
    EXPECT_EQ(S_OK, list->get_Item(2, second.address()));
    EXPECT_EQ(Value("South"), FromVariant(second.get()));
    const auto items =
        As<IEnumVARIANT>(Get<IUnknown>([&](auto** out) { return list->get__NewEnum(out); }));
    ASSERT_NE(nullptr, items.Get());
    VARIANT values[3] = {};
    ULONG fetched = 0;
    EXPECT_EQ(S_FALSE, items->Next(3, values, &fetched));
    ASSERT_EQ(2U, fetched);
    EXPECT_EQ(Value("North"), FromVariant(values[0]));
    for (auto& value : values) ::VariantClear(&value);
  });
}

TEST_P(ApartmentTest, NothingIsANullPointer) {
  Run([](const auto& manager) {
    Bstr name("West");
    ComPtr<::IKVStudyArea> area;
    EXPECT_EQ(S_OK, AreasOf(manager)->GetStudyArea(name.address(), area.GetAddressOf()));
    EXPECT_EQ(nullptr, area.Get());
  });
}

// Its operations are called back from the component's apartment.
TEST_P(ApartmentTest, AHostMayBeInTheClientsApartment) {
  Run([](const auto& manager) {
    const ComPtr<::IHost> host = new Host("D:\\KVDM apartment\\");
    const auto initialize = As<::IKVDMInitialize>(manager);
    Bstr elsewhere("D:\\KVDM apartment\\Elsewhere");
    EXPECT_EQ(S_OK, manager->put_WorkingDirectory(elsewhere.address()));
    EXPECT_EQ(S_OK, initialize->DMInitialize(host.Get()));
    EXPECT_EQ(kFolder, Text([&](auto* out) { return manager->get_WorkingDirectory(out); }));
    const auto tables =
        Get<::IKVTablesManager>([&](auto** out) { return manager->TablesManager(out); });
    EXPECT_EQ(std::string(kFolder) + "Tables",
              Text([&](auto* out) { return tables->get_TablesDir(out); }));
    EXPECT_EQ(S_OK, initialize->DMInitialize(nullptr));
  });
}

TEST_P(ApartmentTest, AVariableIsFilledWithAnObject) {
  Run([](const auto& manager) {
    const auto analyses =
        Get<::IKVAnalysisCollection>([&](auto** out) { return manager->AnalysisCollection(out); });
    const ComPtr<::IHost> host = new Host(kFolder);
    EXPECT_EQ(S_OK, As<::IKVDMInitialize>(manager)->DMInitialize(host.Get()));
    Bstr name("Sales");
    EXPECT_TRUE(Yes([&](auto* out) { return analyses->CreateAnalysis(name.address(), out); }));
    const auto analysis =
        Get<::IKVAnalysis>([&](auto** out) { return analyses->GetAnalysis(name.address(), out); });
    ComPtr<IUnknown> variable;
    EXPECT_TRUE(
        Yes([&](auto* out) { return analysis->WriteToPropertySet(variable.GetAddressOf(), out); }));
    ASSERT_NE(nullptr, variable.Get());
    const auto set = As<::INamedValueSet>(variable);
    ASSERT_NE(nullptr, set.Get());
    Variant names;
    Variant values;
    EXPECT_EQ(S_OK, set->ListAll(names.address(), values.address()));
    EXPECT_EQ(VT_ARRAY | VT_VARIANT, V_VT(&names.get()));
    EXPECT_TRUE(Yes([&](auto* out) { return analysis->ReadFromPropertySet(variable.Get(), out); }));
    EXPECT_EQ(S_OK, As<::IKVDMInitialize>(manager)->DMInitialize(nullptr));
  });
}

TEST_P(ApartmentTest, ObjectsAreCalledByName) {
  Run([](const auto& manager) {
    const LateObject names(As<IDispatch>(manager));
    EXPECT_EQ(Value(kFolder), FromVariant(names.Call("WorkingDirectory").get()));
    EXPECT_EQ(VT_DISPATCH, V_VT(&names.Call("StudyAreaCollection").get()));
  });
}

TEST_P(ApartmentTest, ErrorsPass) {
  constexpr HRESULT kNotSupported = static_cast<HRESULT>(0x800A01B6);
  Run([&](const auto& manager) {
    const auto items =
        Get<::IKVDataCollection>([&](auto** out) { return manager->DataCollection(out); });
    ComPtr<::INameList> list;
    ::SetErrorInfo(0, nullptr);
    EXPECT_EQ(kNotSupported, items->DataItemsList(list.GetAddressOf()));
    EXPECT_EQ(nullptr, list.Get());
    ComPtr<IErrorInfo> error;
    // Wine's proxies pass the result code on, but not the error object.
    EXPECT_EQ(UnderWine() ? S_FALSE : S_OK, ::GetErrorInfo(0, &error));
  });
}

INSTANTIATE_TEST_SUITE_P(Clients, ApartmentTest,
                         testing::Values(&RunInMultiThreadedApartment, &RunInOtherApartment),
                         [](const auto& client) {
                           return client.index == 0 ? "MultiThreaded" : "OtherApartment";
                         });

}  // namespace
}  // namespace kvdm::boundary
