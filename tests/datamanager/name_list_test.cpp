#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kvdm/datamanager/name_list.h>

#include "tests/throws_number.h"

namespace kvdm {
namespace {

NameList List(std::initializer_list<Value> values) {
  NameList list;
  for (const auto& value : values) list.Add(value);
  return list;
}

TEST(NameListTest, StartsEmpty) {
  EXPECT_EQ(NameList().Count(), 0);
  EXPECT_EQ(NameList().begin(), NameList().end());
}

TEST(NameListTest, CountsItsItemsFromOneInTheOrderAdded) {
  const auto list = List({"North", "South", "North"});
  EXPECT_EQ(list.Count(), 3);
  EXPECT_EQ(list.Item(1), Value("North"));
  EXPECT_EQ(list.Item(2), Value("South"));
  EXPECT_EQ(list.Item(3), Value("North"));
  EXPECT_THAT(std::vector<Value>(list.begin(), list.end()),
              testing::ElementsAre("North", "South", "North"));
}

TEST(NameListTest, HoldsANullForAMissingName) { EXPECT_TRUE(List({Null()}).Item(1).IsNull()); }

TEST(NameListTest, HasNothingOutsideItsPositions) {
  const auto list = List({"North"});
  for (const int position : {0, 2, -1}) {
    EXPECT_RUNTIME_ERROR(static_cast<void>(list.Item(position)), kSubscriptOutOfRange);
  }
}

}  // namespace
}  // namespace kvdm
