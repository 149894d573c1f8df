#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <regex>
#include <set>
#include <sstream>

#include "tests/error_policy/policy_table.h"

namespace kvdm {

void PrintTo(const PolicyRow& row, std::ostream* stream) { *stream << row.operation; }

namespace {

using ::testing::Contains;

std::vector<PolicyRow> AllRows() {
  std::vector<PolicyRow> all;
  for (const auto& rows : {DataManagerRows(), StudyAreaRows(), CollectionRows(),
                           LayerCollectionRows(), AnalysisRows(), LayerRows()}) {
    all.insert(all.end(), rows.begin(), rows.end());
  }
  return all;
}

struct Outcome {
  std::string result;
  std::optional<RuntimeError> error;
  std::vector<std::string> shown;
  std::vector<std::string> noted;
};

Outcome Perform(const PolicyRow& row, PolicyWorld& world) {
  Outcome outcome;
  try {
    outcome.result = row.act(world);
  } catch (const RuntimeError& error) {
    outcome.error = error;
  }
  for (const auto& message : world.memory.box->Messages()) outcome.shown.push_back(message.text);
  outcome.noted = world.memory.log->Lines();
  return outcome;
}

// Checks one outcome against the row's policy and adds the reports that were seen to `seen`.
void CheckOutcome(const PolicyRow& row, const Outcome& outcome, std::set<std::string>& seen) {
  if (row.policy != Policy::kByName && row.policy != Policy::kErrors) {
    ASSERT_FALSE(outcome.error) << outcome.error->number() << " " << outcome.error->what();
  }
  if (row.policy != Policy::kShown) {
    EXPECT_THAT(outcome.shown, ::testing::IsEmpty());
  }
  if (!outcome.shown.empty()) {
    EXPECT_EQ(outcome.result, row.neutral);
  }
  for (const auto& message : outcome.shown) {
    EXPECT_THAT(row.messages, Contains(message));
    seen.insert(message);
  }
  if (row.policy == Policy::kByName && outcome.error) {
    EXPECT_EQ(outcome.error->number(), kMemberNotSupported) << outcome.error->what();
    EXPECT_THAT(row.messages, Contains(outcome.error->unsent_message()));
    EXPECT_THAT(outcome.noted,
                Contains(::testing::StartsWith(outcome.error->unsent_message() + ": ")));
    seen.insert(outcome.error->unsent_message());
  }
  if (row.policy == Policy::kQuiet && outcome.result == row.neutral) seen.insert("neutral");
  if (row.policy == Policy::kErrors && outcome.error) seen.insert("error");
}

class ErrorPolicyTest : public ::testing::TestWithParam<PolicyRow> {};

TEST_P(ErrorPolicyTest, HoldsWhicheverPlatformCallFails) {
  const PolicyRow& row = GetParam();
  std::set<std::string> seen;
  bool reached = true;
  for (int n = 0; reached; ++n) {
    SCOPED_TRACE(std::string(row.operation) + ", platform call " + std::to_string(n) + " fails");
    PolicyWorld world;
    world.FailAt(n);
    CheckOutcome(row, Perform(row, world), seen);
    reached = world.Failed();
    EXPECT_TRUE(world.DocumentsAreSound());
    ASSERT_FALSE(HasFatalFailure());
  }
  for (const auto& message : row.messages) EXPECT_THAT(seen, Contains(message));
  if (row.policy == Policy::kQuiet) {
    EXPECT_THAT(seen, Contains("neutral"));
  }
  if (row.policy == Policy::kErrors) {
    EXPECT_THAT(seen, Contains("error"));
  }
}

std::string TestName(const ::testing::TestParamInfo<PolicyRow>& info) {
  std::string name = info.param.operation;
  std::ranges::replace(name, '.', '_');
  return name + "_" + std::to_string(info.index);
}

INSTANTIATE_TEST_SUITE_P(Rows, ErrorPolicyTest, ::testing::ValuesIn(AllRows()), TestName);

TEST(ErrorPolicyTableTest, HasARowForEveryPublicOperationAndNoOther) {
  std::stringstream headers;
  for (const auto& header : std::filesystem::directory_iterator(
           std::filesystem::path(KVDM_SOURCE_DIR) / "include/kvdm/datamanager")) {
    headers << std::ifstream(header.path()).rdbuf();
  }
  const std::regex interface_line(R"(^class KVDM_EXPORT (\w+))");
  const std::regex operation_line(R"(^  virtual .*?(\w+)\()");
  std::set<std::string> declared;
  std::string interface_name;
  std::smatch found;
  for (std::string line; std::getline(headers, line);) {
    if (std::regex_search(line, found, interface_line)) interface_name = found[1];
    if (interface_name != "Unknown" && std::regex_search(line, found, operation_line))
      declared.insert(interface_name + "." + found.str(1));
  }
  std::set<std::string> listed;
  for (const auto& row : AllRows()) listed.insert(row.operation);
  EXPECT_EQ(listed, declared);
  EXPECT_GT(declared.size(), 100U);
}

}  // namespace
}  // namespace kvdm
