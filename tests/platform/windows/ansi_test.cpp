#include <gtest/gtest.h>
#include <windows.h>

#include "platform/windows/text.h"

namespace kvdm {
namespace {

struct AnsiRow {
  unsigned page;
  std::string_view text;
  std::string_view bytes;
  std::string_view read_back;
};

TEST(AnsiTest, TextsAreBytesOfTheCodePage) {
  using std::string_view_literals::operator""sv;
  const AnsiRow rows[] = {
      {1252, "", "", ""},
      {1252, "\u00FC\u20AC", "\xFC\x80", "\u00FC\u20AC"},
      {1252, "a\0b"sv, "a\0b"sv, "a\0b"sv},
      {1252, "\u0416\u0101\uFF21\u2212", "????", "????"},
      {1252, "\U0001F600", "??", "??"},
      {1252, "\xFF", "?", "?"},
      {932, "\u65E5\u672C\u8A9E", "\x93\xFA\x96\x7B\x8C\xEA", "\u65E5\u672C\u8A9E"},
      {932, "\u00FC\u00A5", "??", "??"},
      {CP_UTF8, "\u0416\u65E5\U0001F600", "\u0416\u65E5\U0001F600", "\u0416\u65E5\U0001F600"},
      {CP_UTF8, "\xFF", "\uFFFD", "\uFFFD"},
  };
  for (const auto& [page, text, bytes, read_back] : rows) {
    EXPECT_EQ(ToAnsi(text, page), bytes) << page << " " << text;
    EXPECT_EQ(FromAnsi(bytes, page), read_back) << page << " " << text;
  }
}

TEST(AnsiTest, SaysWhatTheCodePageHas) {
  const std::tuple<unsigned, char32_t, bool> rows[] = {
      {1252, 'a', true},        {1252, 0x20AC, true},    {1252, 0x0416, false},
      {1252, 0x0101, false},    {1252, 0x1F600, false},  {932, 0x65E5, true},
      {932, 0x00FC, false},     {CP_UTF8, 0x65E5, true}, {CP_UTF8, 0x1F600, true},
      {CP_UTF8, 0xD800, false}, {1252, 0xD800, false},   {CP_UTF8, 0x110000, false}};
  for (const auto& [page, character, has] : rows) {
    EXPECT_EQ(HasAnsi(character, page), has)
        << page << " " << std::hex << static_cast<unsigned>(character);
  }
}

TEST(AnsiTest, TheProcessHasACodePage) {
  EXPECT_EQ(ToAnsi("\u00FC\u65E5"), ToAnsi("\u00FC\u65E5", ::GetACP()));
  EXPECT_EQ(FromAnsi("\xE9"), FromAnsi("\xE9", ::GetACP()));
  EXPECT_EQ(HasAnsi(0x65E5), HasAnsi(0x65E5, ::GetACP()));
}

}  // namespace
}  // namespace kvdm
