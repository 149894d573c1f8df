// What every system's encodings do.
#include <gtest/gtest.h>

#include "platform/utf8.h"

namespace kvdm {
namespace {

using namespace std::string_view_literals;

struct Row {
  std::string_view encoding;
  std::string_view bytes;
  std::string_view text;
};

TEST(EncodingsContractTest, ConvertsToUtf8) {
  const Row rows[] = {
      {"utf-8", "\xC3\xA9", "\u00E9"},
      {"UTF-8", "", ""},
      {"us-ascii", "plain", "plain"},
      {"iso-8859-1", "\xE9\xA4", "\u00E9\u00A4"},
      {"ISO-8859-15", "\xE9\xA4", "\u00E9\u20AC"},
      {"iso-8859-2", "\xB1", "\u0105"},
      {"iso-8859-5", "\xB6", "\u0416"},
      {"iso-8859-7", "\xE1", "\u03B1"},
      {"iso-8859-9", "\xFD", "\u0131"},
      {"windows-1250", "\xB9", "\u0105"},
      {"windows-1251", "\xC6", "\u0416"},
      {"Windows-1252", "\x80\xE9", "\u20AC\u00E9"},
      {"cp1252", "\x80", "\u20AC"},
      {"windows-1253", "\xE1", "\u03B1"},
      {"windows-1257", "\xE0", "\u0105"},
      {"koi8-r", "\xF6", "\u0416"},
      {"ibm850", "\x82", "\u00E9"},
      {"ibm866", "\x86", "\u0416"},
      {"shift_jis", "\x93\xFA", "\u65E5"},
      {"euc-jp", "\xC6\xFC", "\u65E5"},
      {"gb2312", "\xC8\xD5", "\u65E5"},
      {"gbk", "\xC8\xD5", "\u65E5"},
      {"big5", "\xA4\xE9", "\u65E5"},
      {"euc-kr", "\xC7\xD1", "\uD55C"},
      {"UTF-16LE", "\xE9\0\x3D\xD8\0\xDE"sv, "\u00E9\U0001F600"},
      {"UTF-16BE", "\0\xE9\xD8\x3D\xDE\0"sv, "\u00E9\U0001F600"},
  };
  for (const auto& [encoding, bytes, text] : rows) {
    EXPECT_EQ(Utf8From(encoding, bytes), text) << encoding;
  }
}

TEST(EncodingsContractTest, RefusesBytesThatStandForNothing) {
  const std::pair<std::string_view, std::string_view> rows[] = {{"utf-8", "\xE9"},
                                                                {"us-ascii", "\xE9"},
                                                                {"windows-1252", "\x81"},
                                                                {"windows-1253", "\xAA"},
                                                                {"windows-1255", "\xD9"},
                                                                {"shift_jis", "\x81"},
                                                                {"shift_jis", "\xFF"},
                                                                {"euc-jp", "\xC6"},
                                                                {"big5", "\xFF"},
                                                                {"UTF-16LE", "\xE9"},
                                                                {"UTF-16LE", "\x00\xD8"sv},
                                                                {"UTF-16BE", "\xDE\x00"sv},
                                                                {"UTF-16LE", "\x00\xD8\x61\x00"sv}};
  for (const auto& [encoding, bytes] : rows) {
    EXPECT_EQ(Utf8From(encoding, bytes), std::nullopt) << encoding;
  }
}

TEST(EncodingsContractTest, RefusesUnknownEncodings) {
  for (const auto encoding : {"", "no-such-encoding", "iso-8859-99", "windows-0", "windows-"}) {
    EXPECT_EQ(Utf8From(encoding, "a"), std::nullopt) << encoding;
  }
}

TEST(EncodingsContractTest, ConvertsLongTexts) {
  const std::string bytes(300'000, '\xE9');
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); ++i) text += "\u00E9";
  EXPECT_TRUE(Utf8From("windows-1252", bytes) == text);
}

}  // namespace
}  // namespace kvdm
