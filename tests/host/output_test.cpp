#include "host/output.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvdm {
namespace {

using ::testing::internal::CaptureStderr;
using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStderr;
using ::testing::internal::GetCapturedStdout;

std::string Printed(const Output& out) {
  CaptureStdout();
  out.Print("kvdm area list");
  return GetCapturedStdout();
}

TEST(OutputTest, AlignsTablesByWhatATerminalShows) {
  Output out({});
  out.Items({{{"name", "北"}, {"layer_file", "a"}}, {{"name", "North"}, {"layer_file", ""}}}, "");

  EXPECT_EQ(Printed(out), "NAME   LAYER FILE\n北     a\nNorth\n");
}

TEST(OutputTest, KeepsEachItemOnOneLine) {
  Output out({});
  out.Items({{{"name", "a\nb\x1b"}}}, "");

  EXPECT_EQ(Printed(out), "NAME\na\\nb\\u{1B}\n");
}

TEST(OutputTest, IndentsFurtherLinesOfAField) {
  Output out({});
  out.Fields({{"guid", "{x}"}, {"comments", "a\r\nb"}, {"open", true}, {"none", {}}});

  EXPECT_EQ(Printed(out),
            "GUID:      {x}\nComments:  a\n           b\nOpen:      yes\nNone:      -\n");
}

TEST(OutputTest, PrintsOneJsonObject) {
  Output out({.json = true});
  out.Fields({{"name", "Nörd"}, {"count", std::int64_t{2}}, {"open", false}, {"none", {}}});
  out.Section("rows", {});

  EXPECT_EQ(Printed(out),
            "{\n  \"schema\": \"kvdm.area.list/1\",\n  \"ok\": true,\n  \"name\": \"Nörd\",\n  "
            "\"count\": 2,\n  \"open\": false,\n  \"none\": null,\n"
            "  \"rows\": []\n}\n");
}

TEST(OutputTest, ShowsMessagesAtOnceAndKeepsThem) {
  Output out({.json = true});
  CaptureStderr();
  out.Message("Trouble");
  EXPECT_EQ(GetCapturedStderr(), "kvdm: Trouble\n");
  EXPECT_EQ(Printed(out),
            "{\n  \"schema\": \"kvdm.area.list/1\",\n  \"ok\": true,\n  \"messages\": [\n    "
            "\"Trouble\"\n  ]\n}\n");
}

TEST(OutputTest, KeepsExpectedMessagesQuiet) {
  Output out({});
  CaptureStderr();
  const int result = out.Quietly([&] {
    out.Message("Expected");
    return 7;
  });
  EXPECT_EQ(GetCapturedStderr(), "");
  EXPECT_EQ(result, 7);
  EXPECT_TRUE(out.Messages().empty());
}

TEST(OutputTest, ShowsTheUnsentMessageOfARuntimeError) {
  const Output out({});
  CaptureStderr();
  const int status = out.PrintError("kvdm x", RuntimeError(438, "", "No such member", "Unsent"));
  EXPECT_EQ(GetCapturedStderr(), "kvdm x: Unsent (run-time error 438)\n");
  EXPECT_EQ(status, 8);
}

}  // namespace
}  // namespace kvdm
