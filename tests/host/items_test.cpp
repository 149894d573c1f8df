#include "host/items.h"

#include <gtest/gtest.h>

namespace kvdm {
namespace {

TEST(ItemsTest, RefusesTextsThatAreNoIdentifiers) {
  for (const char* text :
       {"", "North", "{}", "{0000000-00000-0000-0000-000000000000}",
        "{00000000-0000-0000-0000-00000000000a}", "{00000000-0000-0000-0000-000000000000} "}) {
    EXPECT_THROW(RequireGuid(text), Failure) << text;
  }
}

TEST(ItemsTest, TakesIdentifiers) {
  EXPECT_NO_THROW(RequireGuid("{01234567-89AB-CDEF-0000-000000000000}"));
}

TEST(ItemsTest, MakesEveryLineEndALineFeed) {
  EXPECT_EQ(WithPlainLineEnds("a\r\nb\rc\nd\r\r\ne\r"), "a\nb\nc\nd\ne\n");
}

}  // namespace
}  // namespace kvdm
