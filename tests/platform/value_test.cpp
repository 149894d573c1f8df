#include <gtest/gtest.h>

#include <new>
#include <string>
#include <utility>
#include <vector>

#include <kvdm/platform/value.h>

#include "tests/failing_new.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

TEST(DateTextTest, HasTwelveHoursAndNoLeadingZerosInMonthDayAndHour) {
  const std::vector<std::pair<DateTime, std::string>> rows = {
      {{2026, 11, 15, 7, 35, 30}, "11/15/2026 7:35:30 AM"},
      {{2026, 1, 2, 3, 4, 5}, "1/2/2026 3:04:05 AM"},
      {{2026, 1, 2, 11, 59, 59}, "1/2/2026 11:59:59 AM"},
      {{2026, 1, 2, 12, 0, 0}, "1/2/2026 12:00:00 PM"},
      {{2026, 1, 2, 13, 0, 9}, "1/2/2026 1:00:09 PM"},
      {{2026, 12, 31, 23, 59, 59}, "12/31/2026 11:59:59 PM"},
  };
  for (const auto& [time, text] : rows) EXPECT_EQ(DateText(time), text);
}

TEST(DateTextTest, HasTheTimeAtMidnightToo) {
  EXPECT_EQ(DateText({2026, 11, 15, 0, 0, 0}), "11/15/2026 12:00:00 AM");
}

TEST(ValueTest, ConvertsToText) {
  const std::vector<std::pair<Value, std::string>> rows = {
      {Value(), ""},
      {Value(true), "-1"},
      {Value(false), "0"},
      {Value(5), "5"},
      {Value(-2147467259), "-2147467259"},
      {Value(1.5), "1.5"},
      {Value(0.1), "0.1"},
      {Value(3.0), "3"},
      {Value(DateTime{2026, 11, 15, 7, 35, 30}), "11/15/2026 7:35:30 AM"},
      {Value(" kept \r\n"), " kept \r\n"},
  };
  for (const auto& [value, text] : rows) EXPECT_EQ(ToText(value), text);
}

TEST(ValueTest, NullHasNoText) {
  EXPECT_RUNTIME_ERROR(static_cast<void>(ToText(Null())), kInvalidUseOfNull);
}

TEST(ValueTest, ConvertsToBoolean) {
  const std::vector<std::pair<Value, bool>> rows = {
      {Value(), false},    {Value(true), true}, {Value(0), false},     {Value(-1), true},
      {Value(0.0), false}, {Value(0.5), true},  {Value("TRUE"), true}, {Value("false"), false},
      {Value("-1"), true}, {Value("0"), false}, {Value("0.0"), false},
  };
  for (const auto& [value, expected] : rows) {
    EXPECT_EQ(ToBoolean(value), expected) << ToText(value);
  }
}

TEST(ValueTest, WhatIsNoBooleanIsATypeMismatch) {
  for (const char* text : {"", "yes", "1x", " 1"}) {
    SCOPED_TRACE(text);
    EXPECT_RUNTIME_ERROR(static_cast<void>(ToBoolean(text)), kTypeMismatch);
  }
  EXPECT_RUNTIME_ERROR(static_cast<void>(ToBoolean(Null())), kInvalidUseOfNull);
}

TEST(ValueTest, ATextIsNeverTakenForABoolean) { EXPECT_TRUE(Value("x").IsText()); }

// The list's own allocation fails, and that of the text in it.
TEST(ValueTest, ACopyThatFailsLeavesAListAsItWas) {
  const Value text(std::string(100, 'x'));
  for (const auto nth : {1, 2}) {
    std::vector<Value> list = {text};
    failing_new::Arm(nth);
    EXPECT_THROW(list.push_back(text), std::bad_alloc) << nth;
    failing_new::Disarm();
    ASSERT_EQ(list.size(), 1U) << nth;
    EXPECT_EQ(list.front(), text);
  }
}

TEST(ValueTest, AnAssignmentThatFailsLeavesTheValueAsItWas) {
  const Value text(std::string(100, 'x'));
  Value value("before");
  failing_new::Arm(1);
  EXPECT_THROW(value = text, std::bad_alloc);
  failing_new::Disarm();
  EXPECT_EQ(value, Value("before"));
}

}  // namespace
}  // namespace kvdm
