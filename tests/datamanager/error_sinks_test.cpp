#include "items/error_sinks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/test_world.h"
#include "tests/throws_number.h"
#include "util/error_chain.h"
#include "util/guard.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<RuntimeError> ChainOf(const ErrorSink& sink) {
  try {
    guard::Reported(sink, "Couldn't find it", [] { throw RuntimeError(kPathNotFound); });
  } catch (const std::exception& error) {
    return ErrorChain(error);
  }
  return {};
}

TEST(LateBoundSinkTest, EndsInError438AndShowsNothing) {
  const TestWorld world;
  EXPECT_RUNTIME_ERROR(LateBoundSink(world.manager).Report("x"), kMemberNotSupported);
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(LateBoundSinkTest, EndsInError91WithoutADataManager) {
  EXPECT_RUNTIME_ERROR(LateBoundSink(nullptr).Report("x"), kObjectNotSet);
}

TEST(LateBoundSinkTest, CarriesTheUnsentMessageAndTheCause) {
  const TestWorld world;
  const auto chain = ChainOf(LateBoundSink(world.manager));
  ASSERT_EQ(chain.size(), 2U);
  EXPECT_EQ(chain[0].number(), kMemberNotSupported);
  EXPECT_EQ(chain[0].source(), "KVDM");
  EXPECT_STREQ(chain[0].what(), "Object doesn't support this property or method");
  EXPECT_EQ(chain[0].unsent_message(), "Couldn't find it");
  EXPECT_EQ(chain[1].number(), kPathNotFound);
}

TEST(LateBoundSinkTest, CarriesTheCauseWithoutADataManagerToo) {
  const auto chain = ChainOf(LateBoundSink(nullptr));
  ASSERT_EQ(chain.size(), 2U);
  EXPECT_EQ(chain[0].number(), kObjectNotSet);
  EXPECT_STREQ(chain[0].what(), "Object variable or With block variable not set");
  EXPECT_EQ(chain[0].unsent_message(), "Couldn't find it");
}

TEST(LateBoundIfBoundSinkTest, EndsInError438WithADataManagerOnly) {
  const TestWorld world;
  EXPECT_RUNTIME_ERROR(LateBoundIfBoundSink(world.manager).Report("x"), kMemberNotSupported);
  EXPECT_NO_THROW(LateBoundIfBoundSink(nullptr).Report("x"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(DirectSinkTest, ShowsTheMessage) {
  const TestWorld world;
  DirectSink(world.manager).Report("Couldn't find it");
  EXPECT_THAT(world.platform.box->Messages(),
              ElementsAre(ShownMessage{"Couldn't find it", "Kelvaro", MessageStyle::kExclamation}));
}

TEST(DirectSinkTest, EndsInError91WithoutADataManager) {
  EXPECT_RUNTIME_ERROR(DirectSink(nullptr).Report("x"), kObjectNotSet);
}

TEST(DirectIfBoundSinkTest, ShowsTheMessageWithADataManagerOnly) {
  const TestWorld world;
  DirectIfBoundSink(world.manager).Report("Couldn't find it");
  EXPECT_NO_THROW(DirectIfBoundSink(nullptr).Report("dropped"));
  EXPECT_THAT(world.Messages(), ElementsAre("Couldn't find it"));
}

TEST(MakeSinkTest, MakesASinkForTheGivenDataManager) {
  const TestWorld world;
  const SinkFactory make_sink = &MakeSink<DirectSink>;
  make_sink(world.manager)->Report("shown");
  EXPECT_THAT(world.Messages(), ElementsAre("shown"));
  EXPECT_RUNTIME_ERROR(make_sink(nullptr)->Report("x"), kObjectNotSet);
}

}  // namespace
}  // namespace kvdm
