#include "platform/portable/value_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace kvdm {
namespace {

TEST(ValueTextTest, WritesDatesWithAllTheirDigits) {
  EXPECT_EQ(DateText({26, 1, 31, 9, 0, 5}, 'T'), "0026-01-31T09:00:05");
}

TEST(ValueTextTest, ReadsDatesAsTheyWereWritten) {
  const DateTime time = {2026, 11, 15, 7, 35, 30};
  for (const char between : {'T', ' '}) EXPECT_EQ(DateIn(DateText(time, between), between), time);
}

TEST(ValueTextTest, RefusesTextsThatAreNoDates) {
  for (const char* text :
       {"", "2026", "2026-01-31", "2026/01/31 09:00:00", "2026-01-31T09:00:00",
        "2026-01-31 09-00-00", "2026-01-31 09:00:00 ", " 2026-01-31 09:00:00", "x-1-1 0:0:0"}) {
    EXPECT_FALSE(DateIn(text, ' ')) << text;
  }
}

TEST(ValueTextTest, ReadsNumbersThatAreTheWholeText) {
  EXPECT_EQ(NumberIn<std::int32_t>("-2147483648"), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(NumberIn<double>("1e+300"), 1e300);
  for (const char* text : {"", "1 ", "+1", "0x1", "2147483648"}) {
    EXPECT_FALSE(NumberIn<std::int32_t>(text)) << text;
  }
}

}  // namespace
}  // namespace kvdm
