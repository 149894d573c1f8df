#include "platform/code_page.h"

#include <gtest/gtest.h>

#include "platform/utf8.h"

namespace kvdm {
namespace {

struct EncodingCase {
  std::string_view text;
  std::string_view bytes;
};

TEST(CodePageTest, EncodesWindows1252) {
  constexpr EncodingCase kCases[] = {
      {"", ""},
      {"Plain text\r\n\t", "Plain text\r\n\t"},
      {"\u20AC", "\x80"},
      {"\u0178", "\x9F"},
      {"\u00A0\u00FF", "\xA0\xFF"},
      {"\u0081\u008D\u008F\u0090\u009D", "\x81\x8D\x8F\x90\x9D"},
      {"\u0416", "?"},         // Cyrillic
      {"\u0101\uFF21", "??"},  // no look-alikes
      {"\u0080", "?"},         // a control whose byte stands for something else
      {"\U0001F600", "??"},    // two UTF-16 units
      {"a\xFF"
       "b",
       "a?b"},  // not UTF-8
  };
  for (const EncodingCase& row : kCases) {
    EXPECT_EQ(Encode(row.text, CodePage::kWindows1252), row.bytes) << row.text;
  }
}

TEST(CodePageTest, WhatIsNotAsciiIsSeenAtEveryPlaceOfALongText) {
  for (std::size_t place = 0; place <= 40; ++place) {
    const std::string before(place, 'a');
    const std::string after(40 - place, 'b');
    const std::string text = before + "\u20AC" + after;
    const std::string invalid = before + "\xFF" + after;
    EXPECT_EQ(AsciiRun(text), place);
    EXPECT_TRUE(IsValidUtf8(text));
    EXPECT_FALSE(IsValidUtf8(invalid)) << place;
    EXPECT_EQ(Encode(text, CodePage::kWindows1252), before + "\x80" + after);
    EXPECT_EQ(Decode(before + "\x80" + after, CodePage::kWindows1252), text);
    EXPECT_EQ(Decode(invalid, CodePage::kUtf8), before + "\uFFFD" + after);
  }
}

TEST(CodePageTest, EveryWindows1252ByteComesBack) {
  for (int byte = 0; byte <= 0xFF; ++byte) {
    const std::string bytes(1, static_cast<char>(byte));
    EXPECT_EQ(Encode(Decode(bytes, CodePage::kWindows1252), CodePage::kWindows1252), bytes) << byte;
  }
}

TEST(CodePageTest, DecodesTheOwnPartOfWindows1252) {
  EXPECT_EQ(Decode("\x80\x82\x8A\x99\x9E", CodePage::kWindows1252),
            "\u20AC\u201A\u0160\u2122\u017E");
}

TEST(CodePageTest, HoldsExactlyWhatEncodesToOneByteAndComesBack) {
  for (char32_t character = 0; character < 0x3000; ++character) {
    std::string text;
    AppendUtf8(character, text);
    const auto page = CodePage::kWindows1252;
    EXPECT_EQ(Holds(page, character), Decode(Encode(text, page), page) == text)
        << static_cast<unsigned>(character);
  }
}

TEST(CodePageTest, Utf8HoldsEveryCharacterButNoSurrogate) {
  EXPECT_TRUE(Holds(CodePage::kUtf8, 0));
  EXPECT_TRUE(Holds(CodePage::kUtf8, 0x10FFFF));
  EXPECT_FALSE(Holds(CodePage::kUtf8, 0x110000));
  EXPECT_FALSE(Holds(CodePage::kUtf8, 0xD800));
}

TEST(CodePageTest, Utf8KeepsValidText) {
  constexpr std::string_view kText = "a\u00FC\u65E5\U0001F600";
  EXPECT_EQ(Encode(kText, CodePage::kUtf8), kText);
  EXPECT_EQ(Decode(kText, CodePage::kUtf8), kText);
}

TEST(CodePageTest, Utf8ReplacesInvalidBytes) {
  EXPECT_EQ(Decode("a\xFF\xC3", CodePage::kUtf8), "a\uFFFD\uFFFD");
}

}  // namespace
}  // namespace kvdm
