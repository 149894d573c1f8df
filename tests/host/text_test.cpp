#include "host/text.h"

#include <gtest/gtest.h>

namespace kvdm {
namespace {

struct Escape {
  const char* text;
  const char* printable;
};

TEST(TextTest, EscapesWhatCouldSteerATerminal) {
  const Escape escapes[] = {
      {"plain", "plain"},
      {"Nörd 北", "Nörd 北"},
      {"a\nb\rc\td", R"(a\nb\rc\td)"},
      {"\x1b[31m", R"(\u{1B}[31m)"},
      {"\x7f", R"(\u{7F})"},
      {"\u009b", R"(\u{9B})"},
      {"\u202etxt", R"(\u{202E}txt)"},
      {"\u2066", R"(\u{2066})"},
      {"\u061c", R"(\u{61C})"},
      {"\U000E0041", R"(\u{E0041})"},
      {"bad\xff", R"(bad\xFF)"},
  };
  for (const auto& [text, printable] : escapes) EXPECT_EQ(Printable(text), printable);
}

TEST(TextTest, KeepsLinesAndTabsOfLongerTexts) {
  EXPECT_EQ(PrintableLines("a\r\nb\rc\nd\te\x1b"), "a\nb\nc\nd\te\\u{1B}");
}

TEST(TextTest, EscapesTheSameCharactersInJson) {
  EXPECT_EQ(PrintableJson("{\n  \"a\u009bb\u202e\U000E0041\x7f\": \"Nörd \\n\"\n}"),
            "{\n  \"a\\u009bb\\u202e\\udb40\\udc41\\u007f\": \"Nörd \\n\"\n}");
}

TEST(TextTest, MeasuresTerminalColumns) {
  EXPECT_EQ(DisplayWidth("Nörd"), 4U);
  EXPECT_EQ(DisplayWidth("北京"), 4U);
  EXPECT_EQ(DisplayWidth("북ｶかＡ"), 7U);
  EXPECT_EQ(DisplayWidth("😀𠀀"), 4U);
  EXPECT_EQ(DisplayWidth("o\u0308"), 1U);
  EXPECT_EQ(DisplayWidth("a\u200b"), 1U);
}

TEST(TextTest, PadsToColumns) {
  EXPECT_EQ(Padded("北", 4), "北  ");
  EXPECT_EQ(Padded("longer", 4), "longer");
}

}  // namespace
}  // namespace kvdm
