#include "util/reporter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kvdm/platform/error.h>

#include "tests/test_world.h"
#include "tests/throws_number.h"
#include "util/guard.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

Reporter ReporterOf(ReportStyle style, const TestWorld& world) {
  return {style, world.manager->Reference().get()};
}

std::vector<RuntimeError> ChainOf(const Reporter& reporter) {
  try {
    guard::Reported(reporter, "Couldn't find it", [] { throw RuntimeError(kPathNotFound); });
  } catch (const std::exception& error) {
    return ErrorChain(error);
  }
  return {};
}

TEST(ReporterTest, AReportThatIsShownIsAMessage) {
  const TestWorld world;
  ReporterOf(ReportStyle::kShown, world).Report("Couldn't find it");
  EXPECT_THAT(world.platform.box->Messages(),
              ElementsAre(ShownMessage{"Couldn't find it", "Kelvaro", MessageStyle::kExclamation}));
  ReporterOf(ReportStyle::kShownIfBound, world).Report("Again");
  EXPECT_THAT(world.Messages(), ElementsAre("Couldn't find it", "Again"));
}

TEST(ReporterTest, AReportByNameEndsInError438AndShowsNothing) {
  const TestWorld world;
  for (const auto style : {ReportStyle::kByName, ReportStyle::kByNameIfBound}) {
    EXPECT_RUNTIME_ERROR(ReporterOf(style, world).Report("x"), kMemberNotSupported);
  }
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(ReporterTest, WithoutATargetAReportEndsInError91OrIsDropped) {
  EXPECT_RUNTIME_ERROR((Reporter{ReportStyle::kShown, nullptr}.Report("x")), kObjectNotSet);
  EXPECT_RUNTIME_ERROR((Reporter{ReportStyle::kByName, nullptr}.Report("x")), kObjectNotSet);
  EXPECT_NO_THROW((Reporter{ReportStyle::kShownIfBound, nullptr}.Report("x")));
  EXPECT_NO_THROW((Reporter{ReportStyle::kByNameIfBound, nullptr}.Report("x")));
}

TEST(ReporterTest, TheErrorCarriesTheUnsentMessageAndTheCause) {
  const TestWorld world;
  const auto chain = ChainOf(ReporterOf(ReportStyle::kByName, world));
  ASSERT_EQ(chain.size(), 2U);
  EXPECT_EQ(chain[0].number(), kMemberNotSupported);
  EXPECT_EQ(chain[0].source(), "KVDM");
  EXPECT_STREQ(chain[0].what(), "Object doesn't support this property or method");
  EXPECT_EQ(chain[0].unsent_message(), "Couldn't find it");
  EXPECT_EQ(chain[1].number(), kPathNotFound);

  const auto unbound = ChainOf({ReportStyle::kByName, nullptr});
  ASSERT_EQ(unbound.size(), 2U);
  EXPECT_EQ(unbound[0].number(), kObjectNotSet);
  EXPECT_EQ(unbound[0].unsent_message(), "Couldn't find it");
}

TEST(ReporterTest, AnErrorThatIsNotTheCauseIsNotNested) {
  try {
    throw RuntimeError(kOverflow);
  } catch (const RuntimeError&) {
    try {
      Reporter{ReportStyle::kByName, nullptr}.Report("x");
    } catch (const std::exception& error) {
      EXPECT_EQ(ErrorChain(error).size(), 1U);
    }
  }
}

}  // namespace
}  // namespace kvdm
