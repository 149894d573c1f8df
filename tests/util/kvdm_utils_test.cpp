#include "util/kvdm_utils.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/failing_services.h"
#include "platform/memory/memory_platform.h"
#include "tests/throws_number.h"
#include "util/names.h"

namespace kvdm {
namespace {

struct Pair {
  std::string given;
  std::string expected;
};

TEST(WrapNameTest, PutsAnUnderscoreAtEachEnd) {
  const Pair kNames[] = {{"North", "_North_"}, {"", "__"},         {"_x_", "__x__"},
                         {" a ", "_ a _"},     {"北区", "_北区_"}, {"a\"b", "_a\"b_"}};
  for (const auto& [given, expected] : kNames) EXPECT_EQ(WrapName(given), expected);
}

TEST(UnwrapNameTest, TakesOneUnderscoreOffEachEndWhenBothAreThere) {
  const Pair kNames[] = {{"_a_", "a"}, {"_", "_"},     {"a_", "a_"},       {"_a", "_a"},
                         {"__", ""},   {"", ""},       {"__x__", "_x_"},   {"___", "_"},
                         {"a", "a"},   {"a_b", "a_b"}, {"_北区_", "北区"}, {"_ _", " "}};
  for (const auto& [given, expected] : kNames) {
    EXPECT_EQ(UnwrapName(given), expected) << "'" << given << "'";
  }
}

TEST(UnwrapNameTest, UndoesWrapName) {
  for (const std::string name : {"", "_", "North", "_North_", "a_b", "__"}) {
    EXPECT_EQ(UnwrapName(WrapName(name)), name);
  }
}

TEST(NewGuidStringTest, IsANewIdentifierInRegistryFormAtEachCall) {
  const MemoryPlatform platform;
  EXPECT_EQ(NewGuidString(*platform.gis_core), "{00000000-0000-4000-8000-000000000001}");
  EXPECT_EQ(NewGuidString(*platform.gis_core), "{00000000-0000-4000-8000-000000000002}");
}

TEST(NewGuidStringTest, PassesEveryFailureOn) {
  const MemoryPlatform platform;
  const auto counter = std::make_shared<FailureCounter>();
  const auto failing = Failing(platform.Bundle(), counter);
  for (int call = 1; call <= 3; ++call) {  // create, generate, read the value
    *counter = {0, call};
    EXPECT_RUNTIME_ERROR(static_cast<void>(NewGuidString(*failing.gis_core)), kPermissionDenied);
  }
  *counter = {};
  EXPECT_EQ(NewGuidString(*failing.gis_core).size(), 38U);
  EXPECT_EQ(counter->calls, 3);
}

TEST(WidenLineEndsTest, PutsACarriageReturnBeforeEveryLineFeed) {
  const Pair kTexts[] = {{"", ""},
                         {"a", "a"},
                         {"a\nb", "a\r\nb"},
                         {"\n\n", "\r\n\r\n"},
                         {"a\r\nb", "a\r\r\nb"},
                         {"a\rb", "a\rb"},
                         {"a\n", "a\r\n"}};
  for (const auto& [given, expected] : kTexts) EXPECT_EQ(WidenLineEnds(given), expected);
}

TEST(CollapseBackslashesTest, HalvesRunsInOnePassFromTheLeft) {
  const Pair kPaths[] = {{"", ""},
                         {R"(\)", R"(\)"},
                         {R"(\\)", R"(\)"},
                         {R"(\\\)", R"(\\)"},
                         {R"(\\\\)", R"(\\)"},
                         {R"(\\\\\)", R"(\\\)"},
                         {R"(D:\Data\\)", R"(D:\Data\)"},
                         {R"(\\server\share\)", R"(\server\share\)"},
                         {"D:/Data//", "D:/Data//"}};
  for (const auto& [given, expected] : kPaths) EXPECT_EQ(CollapseBackslashes(given), expected);
}

TEST(DefaultDirNamesTest, AreTheFixedFolderNames) {
  EXPECT_STREQ(sDefaultDirNames::kCustLayers, "CustLayers");
  EXPECT_STREQ(sDefaultDirNames::kStoreLayers, "StoreLayers");
  EXPECT_STREQ(sDefaultDirNames::kKelvaroTemp, "KelvaroTemp");
  EXPECT_STREQ(sDefaultDirNames::kStudyAreas, "StudyAreas");
  EXPECT_STREQ(sDefaultDirNames::kAnalyses, "Analyses");
  EXPECT_STREQ(sDefaultDirNames::kTables, "Tables");
  EXPECT_STREQ(sDefaultDirNames::kStudyAreaPrefix, "Study Area ");
}

}  // namespace
}  // namespace kvdm
