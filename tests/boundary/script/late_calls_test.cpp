// Calls by name: the forms of arguments, the kinds of calls, results and errors.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>

#include "com/kvdm.h"
#include "platform/windows/text.h"
#include "tests/boundary/script/late_object.h"

namespace kvdm::boundary {
namespace {

constexpr char kFolder[] = "D:\\KVDM late\\";

constexpr HRESULT kInvalidCallResult = static_cast<HRESULT>(0x800A0005);
constexpr HRESULT kOutOfRangeResult = static_cast<HRESULT>(0x800A0009);
constexpr HRESULT kNotSupportedResult = static_cast<HRESULT>(0x800A01B6);

// A data manager with a study area and a customer layer.
class LateCallsTest : public testing::Test {
 protected:
  LateCallsTest() : manager_(CLSID_KVDataManager) {
    std::filesystem::remove_all(kFolder);
    EXPECT_EQ(S_OK, manager_.Let(L"WorkingDirectory", Arg(kFolder)).code);
    EXPECT_EQ("-1", Areas().Text(L"CreateStudyArea", {Arg("North")}));
    EXPECT_EQ("-1", Layers().Text(L"CreateCustLayer", {Arg("Customers")}));
  }
  ~LateCallsTest() override { std::filesystem::remove_all(kFolder); }

  [[nodiscard]] LateObject Areas() const { return manager_.Object(L"StudyAreaCollection"); }
  [[nodiscard]] LateObject Area() const { return Areas().Object(L"GetStudyArea", {Arg("North")}); }
  [[nodiscard]] LateObject Layers() const { return manager_.Object(L"CustLayerCollection"); }
  [[nodiscard]] LateObject Layer() const {
    return Layers().Object(L"GetCustLayer", {Arg("Customers")});
  }
  // What an argument is taken for where a text is wanted; the other way it is wanted as a value.
  void ExpectTaken(const char* expected, VARIANT argument) const {
    EXPECT_EQ(S_OK, Layer().Let(L"IDField", argument).code);
    EXPECT_EQ(expected, Layer().Text(L"IDField"));
    EXPECT_EQ("-1", Area().Text(L"SetProperty", {Arg("TYPE"), argument}));
    EXPECT_EQ(expected, Area().Text(L"GetProperty", {Arg("TYPE")}));
  }

  Apartment apartment_;
  LateObject manager_;
};

TEST_F(LateCallsTest, TextsAreTakenAsTheyAre) { ExpectTaken("A text", Arg("A text")); }

TEST_F(LateCallsTest, NumbersAreTakenAsTexts) { ExpectTaken("5", Arg(5)); }

TEST_F(LateCallsTest, VariablesOfEveryTypeAreTaken) {
  struct Row {
    const char* expected;
    VARTYPE type;
    std::int64_t bits;
  };
  for (const auto& [expected, type, bits] :
       {Row{"-5", VT_I1, -5}, Row{"200", VT_UI1, 200}, Row{"-300", VT_I2, -300},
        Row{"60000", VT_UI2, 60000}, Row{"-70000", VT_I4, -70000},
        Row{"3000000000", VT_UI4, 3000000000}, Row{"5000000000", VT_I8, 5000000000},
        Row{"5000000000", VT_UI8, 5000000000}, Row{"12.5", VT_CY, 125000}, Row{"7", VT_INT, 7},
        Row{"8", VT_UINT, 8}}) {
    SCOPED_TRACE(type);
    VARIANT value{};
    V_VT(&value) = type;
    V_I8(&value) = bits;
    ExpectTaken(expected, value);
    ExpectTaken(expected, ByReference(value));
    ExpectTaken(expected, PlaceOf(value));
  }
}

TEST_F(LateCallsTest, FractionsAreTaken) {
  VARIANT value{};
  V_VT(&value) = VT_R8;
  V_R8(&value) = 2.5;
  ExpectTaken("2.5", PlaceOf(value));
  V_VT(&value) = VT_R4;
  V_R4(&value) = 1.5F;
  ExpectTaken("1.5", PlaceOf(value));
  ASSERT_EQ(S_OK, ::VarDecFromR8(-3.5, &V_DECIMAL(&value)));
  V_VT(&value) = VT_DECIMAL;
  ExpectTaken("-3.5", PlaceOf(value));
}

TEST_F(LateCallsTest, TextsAreTakenFromVariables) {
  VARIANT value = Arg("A variable");
  ExpectTaken("A variable", ByReference(value));
  ExpectTaken("A variable", PlaceOf(value));
  EXPECT_EQ("A variable", ToText(V_BSTR(&value))) << "not modified";
}

TEST_F(LateCallsTest, AnEmptyVariableIsAnEmptyText) {
  VARIANT value{};
  ExpectTaken("", ByReference(value));
  EXPECT_EQ(VT_EMPTY, V_VT(&value)) << "not modified";
}

TEST_F(LateCallsTest, BooleansAreTakenInEveryForm) {
  const LateObject layer = Layer();
  VARIANT yes{};
  V_VT(&yes) = VT_BOOL;
  V_BOOL(&yes) = VARIANT_TRUE;
  for (const VARIANT& given : {yes, ByReference(yes), PlaceOf(yes), Arg(1), Arg("True")}) {
    EXPECT_EQ(S_OK, layer.Let(L"IsInternalData", Arg(0)).code);
    EXPECT_EQ("0", layer.Text(L"IsInternalData"));
    EXPECT_EQ(S_OK, layer.Let(L"IsInternalData", given).code);
    EXPECT_EQ("-1", layer.Text(L"IsInternalData"));
  }
}

TEST_F(LateCallsTest, PositionsAreTakenInEveryForm) {
  const LateObject list = Layers().Object(L"CustLayersList");
  VARIANT first = Arg(1);
  VARIANT short_first{};
  V_VT(&short_first) = VT_I2;
  V_I2(&short_first) = 1;
  for (const VARIANT& given : {first, ByReference(first), PlaceOf(first), short_first,
                               ByReference(short_first), PlaceOf(short_first), Arg("1")}) {
    EXPECT_EQ("Customers", list.Text(L"Item", {given}));
  }
}

TEST_F(LateCallsTest, ObjectsAndArraysAreNoTexts) {
  VARIANT object{};
  V_VT(&object) = VT_DISPATCH;
  V_DISPATCH(&object) = &manager_.Names();
  Variant array;
  V_VT(array.address()) = VT_ARRAY | VT_VARIANT;
  V_ARRAY(array.address()) = ::SafeArrayCreateVector(VT_VARIANT, 0, 1);
  for (const VARIANT& given : {object, ByReference(object), array.get()}) {
    EXPECT_EQ(DISP_E_TYPEMISMATCH, Layer().Let(L"IDField", given).code);
  }
}

// Arguments are counted from the last one.
TEST_F(LateCallsTest, TheArgumentThatIsRefusedIsNamed) {
  const LateObject layers = Layers();
  const LateObject list = layers.Object(L"CustLayersList");
  VARIANT null{};
  V_VT(&null) = VT_NULL;
  VARIANT missing{};
  V_VT(&missing) = VT_ERROR;
  V_ERROR(&missing) = DISP_E_PARAMNOTFOUND;
  struct Row {
    const LateObject& object;
    const wchar_t* name;
    std::vector<VARIANT> arguments;
    HRESULT code;
    UINT wrong_argument;
  };
  const LateObject layer = Layer();
  for (const Row& row :
       {Row{layers, L"CreateCustLayer", {null}, DISP_E_TYPEMISMATCH, 0},
        Row{layers, L"CreateCustLayer", {missing}, DISP_E_PARAMNOTOPTIONAL, 0},
        Row{layers, L"CreateCustLayer", {ByReference(missing)}, DISP_E_PARAMNOTOPTIONAL, 0},
        Row{layer, L"SetParameter", {null, Arg("5")}, DISP_E_TYPEMISMATCH, 1},
        Row{layer, L"SetParameter", {Arg("Radius"), null}, DISP_E_TYPEMISMATCH, 0},
        Row{layer, L"SetParameter", {Arg("Radius")}, DISP_E_BADPARAMCOUNT, kNoArgument},
        Row{layer, L"ClearParametersList", {Arg(1)}, DISP_E_BADPARAMCOUNT, kNoArgument},
        Row{manager_, L"DMInitialize", {Arg("host")}, DISP_E_TYPEMISMATCH, 0},
        Row{manager_, L"CleanTemp", {Arg(1)}, DISP_E_BADPARAMCOUNT, kNoArgument},
        Row{list, L"Item", {Arg("first")}, DISP_E_TYPEMISMATCH, 0},
        Row{list, L"Item", {Arg("3000000000")}, DISP_E_OVERFLOW, 0},
        Row{list, L"Add", {missing}, DISP_E_PARAMNOTOPTIONAL, 0}}) {
    SCOPED_TRACE(ToUtf8(row.name));
    const Outcome outcome = row.object.Call(row.name, row.arguments);
    EXPECT_EQ(row.code, outcome.code);
    EXPECT_EQ(row.wrong_argument, outcome.wrong_argument);
    ComPtr<IErrorInfo> error;
    EXPECT_EQ(S_FALSE, ::GetErrorInfo(0, &error)) << "IDispatch has no error objects";
  }
  EXPECT_EQ("1", list.Text(L"Count"));
  EXPECT_EQ("0", layer.Object(L"ParametersList").Text(L"Count"));
}

TEST_F(LateCallsTest, NothingIsTakenInEveryForm) {
  VARIANT nothing{};
  V_VT(&nothing) = VT_DISPATCH;
  VARIANT unknown{};
  V_VT(&unknown) = VT_UNKNOWN;
  VARIANT empty{};
  VARIANT null{};
  V_VT(&null) = VT_NULL;
  IDispatch* typed = nullptr;
  VARIANT typed_variable{};
  V_VT(&typed_variable) = VT_BYREF | VT_DISPATCH;
  V_DISPATCHREF(&typed_variable) = &typed;
  for (const VARIANT& given : {nothing, ByReference(nothing), unknown, empty, ByReference(empty),
                               null, ByReference(null), typed_variable}) {
    EXPECT_EQ(S_OK, manager_.Call(L"DMInitialize", {given}).code);
  }
}

TEST_F(LateCallsTest, AnObjectVariableIsFilled) {
  const LateObject analysis(CLSID_KVAnalysis);
  VARIANT variable{};
  EXPECT_EQ("-1", analysis.Text(L"WriteToPropertySet", {ByReference(variable)}));
  ASSERT_EQ(VT_DISPATCH, V_VT(&variable));
  const LateObject set{ComPtr<IDispatch>(V_DISPATCH(&variable))};
  EXPECT_EQ("2", set.Text(L"EntryCount"));
  EXPECT_EQ("-1", analysis.Text(L"ReadFromPropertySet", {variable}));
  ::VariantClear(&variable);
}

TEST_F(LateCallsTest, ATypedObjectVariableIsFilled) {
  const LateObject analysis(CLSID_KVAnalysis);
  IDispatch* typed = nullptr;
  VARIANT variable{};
  V_VT(&variable) = VT_BYREF | VT_DISPATCH;
  V_DISPATCHREF(&variable) = &typed;
  EXPECT_EQ("-1", analysis.Text(L"WriteToPropertySet", {variable}));
  ASSERT_NE(nullptr, typed);
  EXPECT_EQ("2", LateObject{ComPtr<IDispatch>(typed)}.Text(L"EntryCount"));
  typed->Release();
}

TEST_F(LateCallsTest, TheNumberOfArgumentsMustBeRight) {
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, Areas().Call(L"CreateStudyArea").code);
  EXPECT_EQ(DISP_E_BADPARAMCOUNT,
            Areas().Call(L"CreateStudyArea", {Arg("South"), Arg("East")}).code);
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, manager_.Call(L"Flush", {Arg(1)}).code);
  EXPECT_EQ("1", Areas().Object(L"StudyAreasList").Text(L"Count"));
}

TEST_F(LateCallsTest, NamedArgumentsAreRefused) {
  const LateObject areas = Areas();
  VARIANT name = Arg("South");
  DISPID position = 0;
  DISPPARAMS parameters{&name, &position, 1, 1};
  EXPECT_EQ(DISP_E_NONAMEDARGS,
            areas.Names().Invoke(areas.IdOf(L"CreateStudyArea"), GUID{}, LOCALE_USER_DEFAULT,
                                 DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr));
  EXPECT_EQ("1", areas.Object(L"StudyAreasList").Text(L"Count"));
}

TEST_F(LateCallsTest, APropertyIsReadHoweverItIsCalled) {
  for (const WORD flags :
       {DISPATCH_METHOD, DISPATCH_PROPERTYGET, DISPATCH_METHOD | DISPATCH_PROPERTYGET}) {
    EXPECT_EQ(S_OK, manager_.Invoke(L"WorkingDirectory", flags).code) << flags;
  }
}

// Many clients that do not know what a name is read it first.
TEST_F(LateCallsTest, AMethodIsNotCarriedOutByReadingIt) {
  const LateObject layer = Layer();
  EXPECT_EQ("-1", layer.Text(L"SetParameter", {Arg("Radius"), Arg("5")}));
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, layer.Get(L"ClearParametersList").code);
  EXPECT_EQ("5", layer.Text(L"GetParameter", {Arg("Radius")}));
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, manager_.Get(L"TmpFilePath").code);
  for (const WORD flags : {DISPATCH_METHOD, DISPATCH_METHOD | DISPATCH_PROPERTYGET}) {
    EXPECT_EQ(S_OK, layer.Invoke(L"ClearParametersList", flags).code);
  }
  EXPECT_EQ("", layer.Text(L"GetParameter", {Arg("Radius")}));
}

TEST_F(LateCallsTest, VariablesAreFilledWithLists) {
  const LateObject analysis(CLSID_KVAnalysis);
  VARIANT set{};
  EXPECT_EQ("-1", analysis.Text(L"WriteToPropertySet", {ByReference(set)}));
  VARIANT names = Arg("what was there");
  V_BSTR(&names) = ::SysAllocString(L"what was there");
  VARIANT values{};
  ASSERT_EQ(VT_DISPATCH, V_VT(&set));
  const LateObject values_set{ComPtr<IDispatch>(V_DISPATCH(&set))};
  EXPECT_EQ(S_OK, values_set.Call(L"ListAll", {ByReference(names), ByReference(values)}).code);
  EXPECT_EQ(2U, FromArray(names).size());
  EXPECT_EQ(2U, FromArray(values).size());
  for (VARIANT* each : {&set, &names, &values}) ::VariantClear(each);
}

TEST_F(LateCallsTest, WhatIsOnlyReadCannotBeSet) {
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, Layers().Let(L"CustLayersDir", Arg("D:\\")).code);
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, manager_.Let(L"DatasetManager", Arg("")).code);
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, manager_.Let(L"Flush", Arg("")).code);
}

TEST_F(LateCallsTest, ObjectsAreNotAssigned) {
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND,
            manager_.Invoke(L"WorkingDirectory", DISPATCH_PROPERTYPUTREF, {Arg("D:\\")}).code);
}

TEST_F(LateCallsTest, AnUnknownIdentifierIsNoMember) {
  DISPPARAMS none{};
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND,
            manager_.Names().Invoke(4711, GUID{}, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none,
                                    nullptr, nullptr, nullptr));
}

TEST_F(LateCallsTest, ResultsMayBeIgnored) {
  DISPPARAMS none{};
  EXPECT_EQ(S_OK, manager_.Names().Invoke(manager_.IdOf(L"AnalysisCollection"), GUID{},
                                          LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr,
                                          nullptr, nullptr));
}

TEST_F(LateCallsTest, NothingIsAnObjectOfNoType) {
  const Outcome outcome = Areas().Call(L"GetStudyArea", {Arg("West")});
  EXPECT_EQ(S_OK, outcome.code);
  EXPECT_EQ(VT_DISPATCH, V_VT(&outcome.result.get()));
  EXPECT_EQ(nullptr, V_DISPATCH(&outcome.result.get()));
}

TEST_F(LateCallsTest, AnErrorOfTheComponentIsAnException) {
  const Outcome outcome = LateObject(CLSID_KVFileInfo).Get(L"FileName");
  EXPECT_EQ(DISP_E_EXCEPTION, outcome.code);
  EXPECT_EQ(kInvalidCallResult, outcome.error);
  EXPECT_EQ("KVDM.KVFileInfo", outcome.source);
  EXPECT_EQ("Invalid procedure call or argument", outcome.description);
  EXPECT_EQ(VT_EMPTY, V_VT(&outcome.result.get()));
}

TEST_F(LateCallsTest, AReportThatCannotBeDeliveredIsAnException) {
  const Outcome outcome = manager_.Object(L"DataCollection").Call(L"DataItemsList");
  EXPECT_EQ(DISP_E_EXCEPTION, outcome.code);
  EXPECT_EQ(kNotSupportedResult, outcome.error);
  EXPECT_EQ("KVDM", outcome.source);
}

// Lists have the identifiers that collections have everywhere.
TEST_F(LateCallsTest, ListsAreCollections) {
  const LateObject list = Layers().Object(L"CustLayersList");
  EXPECT_EQ(DISPID_VALUE, list.IdOf(L"Item"));
  EXPECT_EQ(1, list.IdOf(L"Add"));
  EXPECT_EQ(2, list.IdOf(L"Count"));
  EXPECT_EQ(DISPID_NEWENUM, list.IdOf(L"_NewEnum"));
  const Outcome enumerator = list.Get(L"_NewEnum");
  EXPECT_EQ(S_OK, enumerator.code);
  ASSERT_EQ(VT_UNKNOWN, V_VT(&enumerator.result.get()));
  ComPtr<IEnumVARIANT> items;
  EXPECT_EQ(S_OK, V_UNKNOWN(&enumerator.result.get())->QueryInterface(IID_PPV_ARGS(&items)));
  EXPECT_EQ(kOutOfRangeResult, list.Call(L"Item", {Arg(2)}).error);
  EXPECT_EQ(S_OK, list.Call(L"Add", {Arg(5)}).code);
  EXPECT_EQ("5", list.Text(L"Item", {Arg(2)}));
}

// Through the interface that is both: called by name, and by its slots.
TEST_F(LateCallsTest, AListsOwnInterfaceCanBeCalledByName) {
  const LateObject list = Layers().Object(L"CustLayersList");
  ComPtr<INameList> slots;
  ASSERT_EQ(S_OK, list.Names().QueryInterface(IID_PPV_ARGS(&slots)));
  const LateObject dual{ComPtr<IDispatch>(slots)};
  EXPECT_EQ("Customers", dual.Text(L"Item", {Arg(1)}));
  EXPECT_EQ("1", dual.Text(L"Count"));
}

}  // namespace
}  // namespace kvdm::boundary
