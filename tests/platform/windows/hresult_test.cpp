#include <gtest/gtest.h>

#include "platform/windows/automation.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using Microsoft::WRL::ComPtr;

constexpr auto kNumbered = static_cast<HRESULT>(0x800A0000);

void LeaveErrorInfo(std::string_view description, std::string_view source) {
  ComPtr<ICreateErrorInfo> maker;
  ComPtr<IErrorInfo> info;
  ASSERT_EQ(::CreateErrorInfo(&maker), S_OK);
  maker->SetDescription(Bstr(description).get());
  maker->SetSource(Bstr(source).get());
  ASSERT_EQ(maker->QueryInterface(IID_PPV_ARGS(&info)), S_OK);
  ::SetErrorInfo(0, info.Get());
}

TEST(HresultTest, ResultsHaveRunTimeErrorNumbers) {
  const std::pair<HRESULT, std::int32_t> rows[] = {
      {kNumbered + 91, 91},         {kNumbered + 0xFFFF, 0xFFFF},
      {kNumbered, kNumbered},       {E_NOTIMPL, 445},
      {E_NOINTERFACE, 430},         {DISP_E_UNKNOWNNAME, 438},
      {DISP_E_MEMBERNOTFOUND, 438}, {DISP_E_UNKNOWNINTERFACE, 438},
      {DISP_E_TYPEMISMATCH, 13},    {TYPE_E_TYPEMISMATCH, 13},
      {DISP_E_OVERFLOW, 6},         {DISP_E_BADINDEX, 9},
      {DISP_E_BADPARAMCOUNT, 450},  {E_INVALIDARG, 5},
      {E_OUTOFMEMORY, 7},           {E_ACCESSDENIED, 70},
      {REGDB_E_CLASSNOTREG, 429},   {CO_E_CLASSSTRING, 429},
      {E_FAIL, -2147467259},        {static_cast<HRESULT>(0xC00CE556), -1072896682}};
  for (const auto& [result, number] : rows) {
    EXPECT_EQ(ErrorOf(result).number(), number) << std::hex << result;
  }
}

TEST(HresultTest, ErrorsAreDescribedByTheirNumber) {
  const RuntimeError error = ErrorOf(kNumbered + 91, "KVDM.Item");
  EXPECT_STREQ(error.what(), "Object variable or With block variable not set");
  EXPECT_EQ(error.source(), "KVDM.Item");
}

TEST(HresultTest, WhatTheCalleeSaysOfTheErrorComesFirstAndOnce) {
  LeaveErrorInfo("The layer is locked \u00FC", "Host.Layer");
  const RuntimeError error = ErrorOf(E_FAIL, "KVDM.Item");
  EXPECT_STREQ(error.what(), "The layer is locked \u00FC");
  EXPECT_EQ(error.source(), "Host.Layer");
  EXPECT_STREQ(ErrorOf(E_FAIL).what(), "Automation error");
}

TEST(HresultTest, WhatTheCalleeLeavesOpenIsTheNumbersOwn) {
  LeaveErrorInfo("", "");
  const RuntimeError error = ErrorOf(kNumbered + 5, "KVDM.Item");
  EXPECT_STREQ(error.what(), "Invalid procedure call or argument");
  EXPECT_EQ(error.source(), "KVDM.Item");
}

TEST(HresultTest, NumbersHaveResults) {
  EXPECT_EQ(ResultOf(RuntimeError(91)), kNumbered + 91);
  EXPECT_EQ(ResultOf(RuntimeError(0xFFFF)), kNumbered + 0xFFFF);
  EXPECT_EQ(ResultOf(RuntimeError(kAutomationFailure)), E_FAIL);
  EXPECT_EQ(ResultOf(RuntimeError(-1072896682)), static_cast<HRESULT>(0xC00CE556));
}

TEST(HresultTest, NumbersWithoutAResultFailAllTheSame) {
  EXPECT_EQ(ResultOf(RuntimeError(0)), E_FAIL);
  EXPECT_EQ(ResultOf(RuntimeError(0x10000)), E_FAIL);
}

TEST(HresultTest, CheckThrowsForFailuresOnly) {
  EXPECT_NO_THROW(Check(S_OK));
  EXPECT_NO_THROW(Check(S_FALSE));
  EXPECT_RUNTIME_ERROR(Check(E_ACCESSDENIED), kPermissionDenied);
}

}  // namespace
}  // namespace kvdm
