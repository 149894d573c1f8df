#include "util/guard.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/throws_number.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RecordingSink : public ErrorSink {
 public:
  void Report(std::string_view message) const override { messages.emplace_back(message); }
  mutable std::vector<std::string> messages;
};

class BrokenSink : public ErrorSink {
 public:
  void Report(std::string_view) const override { throw RuntimeError(kMemberNotSupported); }
};

[[noreturn]] void Fail() { throw RuntimeError(kPathNotFound); }

TEST(ReportedTest, PassesTheResultOnAndReportsNothing) {
  const RecordingSink sink;
  EXPECT_EQ(guard::Reported(sink, "failed", [] { return 7; }), 7);
  EXPECT_THAT(sink.messages, IsEmpty());
}

TEST(ReportedTest, ReportsAFailureOnceAndReturnsTheNeutralResult) {
  const RecordingSink sink;
  EXPECT_FALSE(guard::Reported(sink, "bool", []() -> bool { Fail(); }));
  EXPECT_EQ(guard::Reported(sink, "text", []() -> std::string { Fail(); }), "");
  EXPECT_EQ(guard::Reported(sink, "number", []() -> int { Fail(); }), 0);
  EXPECT_EQ(guard::Reported(sink, "object", []() -> std::shared_ptr<int> { Fail(); }), nullptr);
  guard::Reported(sink, "nothing", [] { Fail(); });
  EXPECT_THAT(sink.messages, ElementsAre("bool", "text", "number", "object", "nothing"));
}

TEST(ReportedTest, ReportsFailuresOfEveryKind) {
  const RecordingSink sink;
  guard::Reported(sink, "standard", [] { throw std::runtime_error("x"); });
  guard::Reported(sink, "memory", [] { throw std::bad_alloc(); });
  guard::Reported(sink, "foreign", [] { throw 1; });
  EXPECT_THAT(sink.messages, ElementsAre("standard", "memory", "foreign"));
}

TEST(ReportedTest, AFailingReportIsTheCallersError) {
  EXPECT_RUNTIME_ERROR(guard::Reported(BrokenSink(), "x", [] { Fail(); }), kMemberNotSupported);
}

TEST(ReportedTest, AFailingReportIsAFailureOfTheOperationAround) {
  const RecordingSink outer;
  EXPECT_FALSE(guard::Reported(outer, "outer", [] {
    guard::Reported(BrokenSink(), "inner", [] { Fail(); });
    return true;
  }));
  EXPECT_THAT(outer.messages, ElementsAre("outer"));
}

TEST(ReportedTest, AnInnerReportLetsTheOuterOperationGoOn) {
  const RecordingSink sink;
  EXPECT_TRUE(guard::Reported(sink, "outer", [&] {
    guard::Reported(sink, "inner", [] { Fail(); });
    return true;
  }));
  EXPECT_THAT(sink.messages, ElementsAre("inner"));
}

TEST(QuietTest, TrapsAFailureAndReturnsTheNeutralResult) {
  EXPECT_EQ(guard::Quiet([]() -> std::string { Fail(); }), "");
  EXPECT_EQ(guard::Quiet([] { return std::string("done"); }), "done");
}

TEST(SkippingTest, TellsWhetherTheStepWasDone) {
  EXPECT_FALSE(guard::Skipping([] { Fail(); }));
  EXPECT_TRUE(guard::Skipping([] {}));
}

TEST(HandledTest, HandsTheErrorWithNumberAndDescriptionToTheHandler) {
  std::vector<std::string> seen;
  const auto note = [&](const RuntimeError& error) {
    seen.push_back(std::to_string(error.number()) + " " + error.what());
  };
  guard::Handled(note, [] { throw RuntimeError(kPermissionDenied, "KVDM", "locked"); });
  guard::Handled(note, [] { throw std::bad_alloc(); });
  guard::Handled(note, [] { throw std::runtime_error("disk gone"); });
  guard::Handled(note, [] { throw 1; });
  EXPECT_THAT(seen, ElementsAre("70 locked", "7 Out of memory", "-2147467259 disk gone",
                                "-2147467259 Automation error"));
}

TEST(PassedTest, LetsErrorsThroughAndMakesForeignOnesAutomationFailures) {
  EXPECT_RUNTIME_ERROR(guard::Passed([] { Fail(); }), kPathNotFound);
  EXPECT_THROW(guard::Passed([] { throw std::bad_alloc(); }), std::bad_alloc);
  EXPECT_RUNTIME_ERROR(guard::Passed([] { throw 1; }), kAutomationFailure);
  EXPECT_EQ(guard::Passed([] { return 7; }), 7);
}

}  // namespace
}  // namespace kvdm
