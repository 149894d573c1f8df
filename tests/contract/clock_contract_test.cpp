// What every clock does.
#include <gtest/gtest.h>

#include "platform/memory/memory_platform.h"
#include "tests/contract/implementations.h"

namespace kvdm {
namespace {

class ClockContractTest : public testing::TestWithParam<Implementation<Clock>> {};

INSTANTIATE_TEST_SUITE_P(All, ClockContractTest,
                         testing::Values(Implementation<Clock>{"Memory",
                                                               []() -> std::shared_ptr<Clock> {
                                                                 return MemoryPlatform().clock;
                                                               }},
                                         Implementation<Clock>{
                                             SystemName(), [] { return SystemPlatform().clock; }}),
                         kByName);

TEST_P(ClockContractTest, AnswersADateOfTheCalendar) {
  const DateTime now = GetParam().make()->Now();
  EXPECT_GE(now.year, 2024);
  EXPECT_TRUE(now.month >= 1 && now.month <= 12) << now.month;
  EXPECT_TRUE(now.day >= 1 && now.day <= 31) << now.day;
  EXPECT_TRUE(now.hour >= 0 && now.hour <= 23) << now.hour;
  EXPECT_TRUE(now.minute >= 0 && now.minute <= 59) << now.minute;
  EXPECT_TRUE(now.second >= 0 && now.second <= 60) << now.second;
}

}  // namespace
}  // namespace kvdm
