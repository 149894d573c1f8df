#include "util/guard.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/file_names.h"
#include "platform/memory/memory_platform.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RecordingTarget final : public ReportTarget {
 public:
  void KVDMHandleError(std::string_view message) override { messages.emplace_back(message); }
  [[nodiscard]] Log* ErrorLog() const override { return log.get(); }
  std::vector<std::string> messages;
  std::shared_ptr<RecordingLog> log = std::make_shared<RecordingLog>();
};

// Every report fails.
constexpr Reporter kBroken{ReportStyle::kByName, nullptr};

[[noreturn]] void Fail() { throw RuntimeError(kPathNotFound); }

TEST(ReportedTest, PassesTheResultOnAndReportsNothing) {
  RecordingTarget sink;
  EXPECT_EQ(guard::Reported(Reporter{ReportStyle::kShown, &sink}, "failed", [] { return 7; }), 7);
  EXPECT_THAT(sink.messages, IsEmpty());
}

TEST(ReportedTest, ReportsAFailureOnceAndReturnsTheNeutralResult) {
  RecordingTarget sink;
  EXPECT_FALSE(
      guard::Reported(Reporter{ReportStyle::kShown, &sink}, "bool", []() -> bool { Fail(); }));
  EXPECT_EQ(guard::Reported(Reporter{ReportStyle::kShown, &sink}, "text",
                            []() -> std::string { Fail(); }),
            "");
  EXPECT_EQ(
      guard::Reported(Reporter{ReportStyle::kShown, &sink}, "number", []() -> int { Fail(); }), 0);
  EXPECT_EQ(guard::Reported(Reporter{ReportStyle::kShown, &sink}, "object",
                            []() -> std::shared_ptr<int> { Fail(); }),
            nullptr);
  guard::Reported(Reporter{ReportStyle::kShown, &sink}, "nothing", [] { Fail(); });
  EXPECT_THAT(sink.messages, ElementsAre("bool", "text", "number", "object", "nothing"));
}

TEST(ReportedTest, ReportsFailuresOfEveryKind) {
  RecordingTarget sink;
  guard::Reported(Reporter{ReportStyle::kShown, &sink}, "standard",
                  [] { throw std::runtime_error("x"); });
  guard::Reported(Reporter{ReportStyle::kShown, &sink}, "memory", [] { throw std::bad_alloc(); });
  guard::Reported(Reporter{ReportStyle::kShown, &sink}, "foreign", [] { throw 1; });
  EXPECT_THAT(sink.messages, ElementsAre("standard", "memory", "foreign"));
}

TEST(ReportedTest, AFailingReportIsTheCallersError) {
  EXPECT_RUNTIME_ERROR(guard::Reported(kBroken, "x", [] { Fail(); }), kObjectNotSet);
}

TEST(ReportedTest, AFailingReportIsAFailureOfTheOperationAround) {
  RecordingTarget outer;
  EXPECT_FALSE(guard::Reported(Reporter{ReportStyle::kShown, &outer}, "outer", [] {
    guard::Reported(kBroken, "inner", [] { Fail(); });
    return true;
  }));
  EXPECT_THAT(outer.messages, ElementsAre("outer"));
}

TEST(ReportedTest, AnInnerReportLetsTheOuterOperationGoOn) {
  RecordingTarget sink;
  EXPECT_TRUE(guard::Reported(Reporter{ReportStyle::kShown, &sink}, "outer", [&] {
    guard::Reported(Reporter{ReportStyle::kShown, &sink}, "inner", [] { Fail(); });
    return true;
  }));
  EXPECT_THAT(sink.messages, ElementsAre("inner"));
}

TEST(QuietTest, TrapsAFailureAndReturnsTheNeutralResult) {
  EXPECT_EQ(guard::Quiet(nullptr, []() -> std::string { Fail(); }), "");
  EXPECT_EQ(guard::Quiet(nullptr, [] { return std::string("done"); }), "done");
}

TEST(SkippingTest, TellsWhetherTheStepWasDone) {
  EXPECT_FALSE(guard::Skipping(nullptr, [] { Fail(); }));
  EXPECT_TRUE(guard::Skipping(nullptr, [] {}));
}

TEST(HandledTest, HandsTheErrorWithNumberAndDescriptionToTheHandler) {
  std::vector<std::string> seen;
  const auto note = [&](const RuntimeError& error) {
    seen.push_back(std::to_string(error.number()) + " " + error.what());
  };
  guard::Handled(nullptr, note, [] { throw RuntimeError(kPermissionDenied, "KVDM", "locked"); });
  guard::Handled(nullptr, note, [] { throw std::bad_alloc(); });
  guard::Handled(nullptr, note, [] { throw std::runtime_error("disk gone"); });
  guard::Handled(nullptr, note, [] { throw 1; });
  EXPECT_THAT(seen, ElementsAre("70 locked", "7 Out of memory", "-2147467259 disk gone",
                                "-2147467259 Automation error"));
}

TEST(PassedTest, LetsErrorsThroughAndMakesForeignOnesAutomationFailures) {
  EXPECT_RUNTIME_ERROR(guard::Passed([] { Fail(); }), kPathNotFound);
  EXPECT_THROW(guard::Passed([] { throw std::bad_alloc(); }), std::bad_alloc);
  EXPECT_RUNTIME_ERROR(guard::Passed([] { throw 1; }), kAutomationFailure);
  EXPECT_EQ(guard::Passed([] { return 7; }), 7);
}

TEST(NoteTest, EachTrappedFailureIsNotedOnceWithItsCause) {
  RecordingTarget target;
  const Reporter reporter{ReportStyle::kByName, &target};
  EXPECT_FALSE(guard::Skipping(target.ErrorLog(), [&] {
    guard::Reported(reporter, "Couldn't do it", [] { throw PathError(kPathNotFound, "D:\\x"); });
  }));
  EXPECT_THAT(target.log->Lines(),
              ElementsAre("Couldn't do it: Path not found: D:\\x (76)",
                          "Object doesn't support this property or method: Couldn't do it (438)"));
}

TEST(NoteTest, WhatSucceedsIsNotNoted) {
  RecordingTarget target;
  guard::Quiet(target.ErrorLog(), [] { return 1; });
  EXPECT_THAT(target.log->Lines(), IsEmpty());
}

}  // namespace
}  // namespace kvdm
