#include "safety/times.h"

#include <gtest/gtest.h>

#include <utility>

namespace kvdm {
namespace {

TEST(TimesTest, StoredAndIsoFormsLeadToEachOther) {
  const std::pair<const char*, const char*> cases[] = {
      {"11/15/2026 7:35:30 AM", "2026-11-15T07:35:30"},
      {"1/31/2026 12:00:00 AM", "2026-01-31T00:00:00"},
      {"1/31/2026 12:05:00 PM", "2026-01-31T12:05:00"},
      {"2/29/2028 11:59:59 PM", "2028-02-29T23:59:59"}};
  for (const auto& [stored, iso] : cases) {
    EXPECT_EQ(IsoTime(stored), iso);
    EXPECT_EQ(StoredTime(iso), stored);
  }
}

TEST(TimesTest, DateAloneIsItsMidnight) {
  EXPECT_EQ(StoredTime("2026-01-31"), "1/31/2026 12:00:00 AM");
  EXPECT_EQ(StoredTime("2026-01-31T09:05"), "1/31/2026 9:05:00 AM");
}

TEST(TimesTest, WhatIsNoTimeHasNoForm) {
  for (const char* text :
       {"", "gestern", "2026-02-30", "2026-13-01", "2026-01-31T25:00:00", "2026-01-31T09:00:00Z",
        "31.1.2026", "2026-1-", "20260131", "99999-01-01", "2026-01-31 "}) {
    EXPECT_EQ(StoredTime(text), std::nullopt) << text;
  }
  for (const char* text : {"", "1/31/2026", "1/31/2026 9:00:00", "31/1/2026 9:00:00 AM",
                           "1/31/2026 13:00:00 PM", "1/31/2026 0:00:00 AM", " AM"}) {
    EXPECT_EQ(IsoTime(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace kvdm
