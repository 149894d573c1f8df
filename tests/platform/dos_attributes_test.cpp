#include <gtest/gtest.h>

#include <string>

#include "platform/posix/files.h"

namespace kvdm {
namespace {

using namespace std::string_literals;

// A record of a version with valid fields and attributes.
std::string Record(char version, char valid, char attributes) {
  return "\0\0"s + version + '\0' + version + "\0\0\0"s + valid + "\0\0\0"s + attributes +
         "\0\0\0"s + std::string(8, '\0');
}

TEST(DosAttributesTest, TextsAndRecordsAreRead) {
  const std::pair<std::string, unsigned> rows[] = {
      {"0x2", 2},
      {"0x12"s + '\0', 0x12},
      {"0x26", 0x26},
      {Record(3, 1, 0x12), 0x12},
      {Record(4, 1, 2), 2},
      {Record(5, 0x11, 6), 6},
      {Record(5, 1, 2).substr(0, 16), 2},
  };
  for (const auto& [value, attributes] : rows) EXPECT_EQ(ParseDosAttributes(value), attributes);
}

TEST(DosAttributesTest, AnythingElseHasNoAttributes) {
  for (const std::string& value :
       {""s, "\x02"s, "0x"s, "0xg"s, "0x2 "s, "2"s, "0x123456789"s, "garbage of some length"s,
        Record(2, 1, 2), Record(6, 1, 2), Record(5, 0x10, 2), Record(5, 1, 2).substr(0, 15),
        "\0\0\x05\0\x04\0\0\0\x01\0\0\0\x02\0\0\0"s}) {
    EXPECT_EQ(ParseDosAttributes(value), 0U) << value;
  }
}

TEST(DosAttributesTest, TheRecordOfVersionFiveIsWritten) {
  EXPECT_EQ(FormatDosAttributes(kHiddenAttribute | kFolderAttribute), Record(5, 1, 0x12));
}

}  // namespace
}  // namespace kvdm
