#include "platform/portable/value_set.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvdm {
namespace {

using testing::ElementsAre;

TEST(ValueSetTest, APathWithSeveralValuesIsListedOnceForEach) {
  ValueSet set;
  set.PutValue("a", 1);
  set.AddValue("b", 2);
  set.AddValue("a", 3);
  EXPECT_THAT(set.GetValues("a"), ElementsAre(Value(1), Value(3)));
  EXPECT_THAT(set.ListAll().names, ElementsAre("a", "a", "b"));
  EXPECT_THAT(set.ListAll().values, ElementsAre(Value(1), Value(3), Value(2)));
  EXPECT_EQ(set.EntryCount(), 3);
}

TEST(ValueSetTest, PuttingReplacesAllValuesOfThePath) {
  ValueSet set;
  set.AddValue("a", 1);
  set.AddValue("a", 2);
  set.PutValue("a", 3);
  EXPECT_THAT(set.GetValues("a"), ElementsAre(Value(3)));
  EXPECT_EQ(set.EntryCount(), 1);
}

TEST(ValueSetTest, CopiesAreApart) {
  ValueSet set;
  set.PutValue("a", 1);
  ValueSet copy = set;
  copy.PutValue("a", 2);
  copy.PutValue("b", 3);
  EXPECT_THAT(set.ListAll().values, ElementsAre(Value(1)));
}

}  // namespace
}  // namespace kvdm
