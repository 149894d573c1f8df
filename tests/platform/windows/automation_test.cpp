#include "platform/windows/automation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/platform/windows/com_environment.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

constexpr double kSecond = 1.0 / 86400;

VARIANT OfType(VARTYPE type) {
  VARIANT value{};
  V_VT(&value) = type;
  return value;
}

VARIANT OfDate(DATE date) {
  VARIANT value = OfType(VT_DATE);
  V_DATE(&value) = date;
  return value;
}

// To be called for its failure.
void Converted(const VARIANT& value) { static_cast<void>(FromVariant(value)); }

DATE DateOf(const DateTime& time) { return V_DATE(&Variant(Value(time)).get()); }

TEST(BstrTest, HoldsEveryCharacterAndNuls) {
  const std::string text("a\0\u00FC\u65E5\U0001F600", 11);
  const Bstr bstr(text);
  EXPECT_EQ(::SysStringLen(bstr.get()), 6U);
  EXPECT_EQ(ToText(bstr.get()), text);
}

TEST(BstrTest, NullIsTheEmptyText) { EXPECT_EQ(ToText(Bstr().get()), ""); }

TEST(BstrTest, TheEmptyTextIsNotNull) { EXPECT_NE(Bstr("").get(), nullptr); }

TEST(BstrTest, HandsItsTextOver) {
  Bstr bstr("text");
  BSTR text = bstr.Release();
  EXPECT_EQ(bstr.get(), nullptr);
  EXPECT_EQ(ToText(text), "text");
  ::SysFreeString(text);
}

TEST(AutomationTest, ValuesKeepTypeAndContent) {
  using Longs = std::numeric_limits<std::int32_t>;
  const Value values[] = {Value(),
                          Null{},
                          true,
                          false,
                          Longs::min(),
                          Longs::max(),
                          0.1,
                          -0.0,
                          "",
                          "\u00FC\U0001F600",
                          std::string("a\0b", 3),
                          DateTime{2026, 11, 15, 7, 35, 30}};
  for (const Value& value : values) {
    const Variant variant(value);
    EXPECT_EQ(FromVariant(variant.get()), value) << V_VT(&variant.get());
  }
}

TEST(AutomationTest, ABooleanIsMinusOneOrZero) {
  EXPECT_EQ(V_BOOL(&Variant(Value(true)).get()), VARIANT_TRUE);
  EXPECT_EQ(V_BOOL(&Variant(Value(false)).get()), VARIANT_FALSE);
}

TEST(AutomationTest, WholeNumbersAreLongsOrElseDoubles) {
  struct Row {
    VARTYPE type;
    std::uint32_t bits;
    Value value;
  };
  const Row rows[] = {{VT_I1, 0xFF, -1},
                      {VT_UI1, 0xFF, 255},
                      {VT_I2, 0xFFFF, -1},
                      {VT_UI2, 0xFFFF, 65535},
                      {VT_I4, 0xFFFFFFFF, -1},
                      {VT_INT, 0xFFFFFFFF, -1},
                      {VT_UI4, 7, 7},
                      {VT_UINT, 7, 7},
                      {VT_UI4, 0x80000000, 2147483648.0},
                      {VT_UINT, 0xFFFFFFFF, 4294967295.0}};
  for (const auto& [type, bits, value] : rows) {
    VARIANT variant = OfType(type);
    V_UI4(&variant) = bits;
    EXPECT_EQ(FromVariant(variant), value) << type;
  }
}

TEST(AutomationTest, OtherNumbersAreDoubles) {
  VARIANT large = OfType(VT_I8);
  V_I8(&large) = -5'000'000'000;
  EXPECT_EQ(FromVariant(large), Value(-5e9));
  VARIANT single = OfType(VT_R4);
  V_R4(&single) = 0.5F;
  EXPECT_EQ(FromVariant(single), Value(0.5));
  VARIANT currency = OfType(VT_CY);
  V_CY(&currency).int64 = 12500;
  EXPECT_EQ(FromVariant(currency), Value(1.25));
  VARIANT decimal{};
  ASSERT_EQ(::VarDecFromR8(-2.5, &V_DECIMAL(&decimal)), S_OK);
  V_VT(&decimal) = VT_DECIMAL;
  EXPECT_EQ(FromVariant(decimal), Value(-2.5));
}

TEST(AutomationTest, ValuesByReferenceAreWhatTheyReferTo) {
  Variant text(Value("text"));
  EXPECT_EQ(FromVariant(PassedByReference(text)), Value("text"));
  short number = 5;
  VARIANT variant = OfType(VT_BYREF | VT_I2);
  V_I2REF(&variant) = &number;
  EXPECT_EQ(FromVariant(variant), Value(5));
}

TEST(AutomationTest, AMissingArgumentIsEmpty) {
  VARIANT missing = OfType(VT_ERROR);
  V_ERROR(&missing) = DISP_E_PARAMNOTFOUND;
  EXPECT_EQ(FromVariant(missing), Value());
}

TEST(AutomationTest, WhatIsNoValueIsRefused) {
  VARIANT error = OfType(VT_ERROR);
  V_ERROR(&error) = E_FAIL;
  for (const VARIANT& value : {error, OfType(VT_DISPATCH), OfType(VT_UNKNOWN),
                               OfType(VT_ARRAY | VT_I4), OfType(VT_BYREF | VT_ARRAY | VT_I4)}) {
    EXPECT_RUNTIME_ERROR(Converted(value), kTypeMismatch);
  }
}

// --- Dates

struct DateRow {
  DATE date;
  DateTime time;
};

TEST(AutomationDateTest, KnownDates) {
  const DateRow rows[] = {{0, {}},
                          {0.25, {1899, 12, 30, 6, 0, 0}},
                          {1.25, {1899, 12, 31, 6, 0, 0}},
                          {-1.25, {1899, 12, 29, 6, 0, 0}},
                          {-1.75, {1899, 12, 29, 18, 0, 0}},
                          {-1, {1899, 12, 29, 0, 0, 0}},
                          {60, {1900, 2, 28, 0, 0, 0}},
                          {36585.5, {2000, 2, 29, 12, 0, 0}},
                          {46341 + 27330 * kSecond, {2026, 11, 15, 7, 35, 30}},
                          {-657434, {100, 1, 1, 0, 0, 0}},
                          {-657434 - 86399 * kSecond, {100, 1, 1, 23, 59, 59}},
                          {2958465 + 86399 * kSecond, {9999, 12, 31, 23, 59, 59}}};
  for (const auto& [date, time] : rows) {
    EXPECT_EQ(FromVariant(OfDate(date)), Value(time)) << date;
    EXPECT_DOUBLE_EQ(DateOf(time), date);
  }
}

TEST(AutomationDateTest, DatesOfAllYearsKeepTheirSeconds) {
  for (int year = 100; year <= 9999; ++year) {
    for (const DateTime time : {DateTime{year, 1, 1, 0, 0, 0}, DateTime{year, 2, 28, 23, 59, 59},
                                DateTime{year, 12, 31, 12, 34, 56}}) {
      ASSERT_EQ(FromVariant(OfDate(DateOf(time))), Value(time)) << DateText(time);
    }
  }
}

TEST(AutomationDateTest, EverySecondOfADayIsKept) {
  for (const int year : {1899, 2026}) {
    for (int second = 0; second < 86400; ++second) {
      const DateTime time{year, 11, 15, second / 3600, second / 60 % 60, second % 60};
      ASSERT_EQ(FromVariant(OfDate(DateOf(time))), Value(time)) << DateText(time);
    }
  }
}

TEST(AutomationDateTest, TheSystemHasTheSameDates) {
  for (int year = 1601; year <= 9999; year += 7) {
    SYSTEMTIME parts{};
    ASSERT_TRUE(::VariantTimeToSystemTime(DateOf({year, 3, 1, 22, 58, 59}), &parts));
    EXPECT_EQ(parts.wYear, year);
    EXPECT_EQ(parts.wMonth, 3);
    EXPECT_EQ(parts.wDay, 1);
    EXPECT_EQ(parts.wHour, 22);
    EXPECT_EQ(parts.wMinute, 58);
    EXPECT_EQ(parts.wSecond, 59);
  }
}

TEST(AutomationDateTest, HalfSecondsAreRoundedIntoTheNextDayAsWell) {
  EXPECT_EQ(FromVariant(OfDate(10.9999999)), Value(DateTime{1900, 1, 10, 0, 0, 0}));
  EXPECT_EQ(FromVariant(OfDate(-10.9999999)), Value(DateTime{1899, 12, 21, 0, 0, 0}));
}

TEST(AutomationDateTest, DatesOutsideTheCalendarAreRefused) {
  for (const DATE date : {-657435.0, 2958466.0, 1e300, std::nan("")}) {
    EXPECT_RUNTIME_ERROR(Converted(OfDate(date)), kTypeMismatch);
  }
}

}  // namespace
}  // namespace kvdm
