// The stream in memory.
#include <gtest/gtest.h>

#include <kvdm/platform/portable/variant_list.h>

#include "tests/throws_number.h"

namespace kvdm {
namespace {

VariantList Saved(const std::vector<Value>& values) {
  VariantList stream;
  for (const Value& value : values) stream.Write(value);
  return stream;
}

TEST(VariantListTest, ReadsValuesInOrder) {
  auto stream = Saved({"one", 2, true});
  EXPECT_EQ(stream.Read(), Value("one"));
  EXPECT_EQ(stream.Read(), Value(2));
  EXPECT_EQ(stream.Read(), Value(true));
}

TEST(VariantListTest, ReadingPastTheEndFails) {
  auto stream = Saved({"one"});
  stream.Read();
  EXPECT_RUNTIME_ERROR(stream.Read(), kInputPastEnd);
}

TEST(VariantListTest, ReadsAgainAfterRewinding) {
  auto stream = Saved({"one", 2});
  stream.Read();
  stream.Rewind();
  EXPECT_EQ(stream.Read(), Value("one"));
}

}  // namespace
}  // namespace kvdm
