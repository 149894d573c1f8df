#include <gtest/gtest.h>

#include "platform/windows/automation.h"
#include "tests/platform/windows/fake_dispatch.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using Microsoft::WRL::ComPtr;

// An object with one operation.
LateObject With(const std::string& name, FakeDispatch::Operation operation) {
  return LateObject(FakeDispatch::Create({{name, std::move(operation)}}));
}

TEST(LateCallTest, AnswersWhatTheOperationAnswers) {
  const LateObject object = With("FindString", Answering("Shops"));
  EXPECT_EQ(FromVariant(object.Call("FindString").get()), Value("Shops"));
}

TEST(LateCallTest, ArgumentsArriveInOrder) {
  std::vector<Value> received;
  const LateObject object =
      With("PutValue", [&](const auto& arguments, VARIANT* /*result*/, EXCEPINFO* /*exception*/) {
        for (const VARIANT& argument : arguments) received.push_back(FromVariant(argument));
        return S_OK;
      });
  const Bstr name("name");
  const Variant value(Value(5));
  object.Call("PutValue", {Passed(name), Passed(value)});
  EXPECT_EQ(received, (std::vector<Value>{"name", 5}));
}

TEST(LateCallTest, AnOperationMaySetWhatIsPassedByReference) {
  const LateObject object =
      With("Read", [](const auto& arguments, VARIANT* /*result*/, EXCEPINFO* /*exception*/) {
        ToVariant("set", V_VARIANTREF(&arguments[0]));
        return S_OK;
      });
  Variant variable;
  object.Call("Read", {PassedByReference(variable)});
  EXPECT_EQ(FromVariant(variable.get()), Value("set"));
}

TEST(LateCallTest, AnUnknownNameIsNotSupported) {
  EXPECT_RUNTIME_ERROR(With("One", Answering(1)).Call("Two"), kMemberNotSupported);
}

TEST(LateCallTest, FailuresHaveTheirNumber) {
  EXPECT_RUNTIME_ERROR(With("One", FailingWith(E_ACCESSDENIED)).Call("One"), kPermissionDenied);
  EXPECT_RUNTIME_ERROR(With("One", FailingWith(DISP_E_TYPEMISMATCH)).Call("One"), kTypeMismatch);
}

TEST(LateCallTest, ExceptionsTellNumberSourceAndDescription) {
  const LateObject object =
      With("One", [](const auto& /*arguments*/, VARIANT* /*result*/, EXCEPINFO* exception) {
        exception->scode = static_cast<SCODE>(0x800A0044);
        exception->bstrSource = Bstr("Host.One").Release();
        exception->bstrDescription = Bstr("It is not there").Release();
        return DISP_E_EXCEPTION;
      });
  try {
    object.Call("One");
    FAIL() << "no error";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.number(), kDeviceUnavailable);
    EXPECT_EQ(error.source(), "Host.One");
    EXPECT_STREQ(error.what(), "It is not there");
  }
}

TEST(LateCallTest, ExceptionsMayTellOfThemselvesLater) {
  const LateObject object =
      With("One", [](const auto& /*arguments*/, VARIANT* /*result*/, EXCEPINFO* exception) {
        exception->pfnDeferredFillIn = [](EXCEPINFO* info) {
          info->wCode = 53;
          return S_OK;
        };
        return DISP_E_EXCEPTION;
      });
  EXPECT_RUNTIME_ERROR(object.Call("One"), kFileNotFound);
}

TEST(LateCallTest, AnObjectIsAValueForCallersByName) {
  const auto object = FakeDispatch::Create({});
  const Variant value = ObjectValue(object.Get());
  EXPECT_EQ(V_VT(&value.get()), VT_DISPATCH);
  EXPECT_EQ(V_DISPATCH(&value.get()), object.Get());
  const Variant nothing = ObjectValue(nullptr);
  EXPECT_EQ(V_VT(&nothing.get()), VT_DISPATCH);
  EXPECT_EQ(V_DISPATCH(&nothing.get()), nullptr);
}

}  // namespace
}  // namespace kvdm
