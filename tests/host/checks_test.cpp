#include "host/checks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "safety/result.h"

namespace kvdm {
namespace {

using ::testing::HasSubstr;

std::string ProblemOf(ArgumentCheck check, std::string_view text) {
  try {
    check("NAME", text);
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.code(), ExitCode::kUsage);
    return failure.what();
  }
  return "";
}

TEST(ChecksTest, RefusesNamesThatAreNoFolders) {
  for (const char* name : {"", ".", "..", " . ", "a/b", "a\\b", "a:b", "a\"b", "a*", "a\nb"}) {
    EXPECT_THROW(RequireFolderName(name), Failure) << name;
  }
}

TEST(ChecksTest, TakesFolderNamesOfAnyLanguage) {
  for (const char* name : {"North", "Nörd 北", "a.b", "{x}", "-1", "d'été"}) {
    EXPECT_NO_THROW(RequireFolderName(name)) << name;
  }
}

TEST(ChecksTest, NamesTheCharacterThatCantBeStored) {
  const std::pair<const char*, const char*> texts[] = {
      {"a\x01", "U+0001"}, {"\x1f", "U+001F"}, {"x\uffffy", "U+FFFF"}, {"\ufffe", "U+FFFE"}};
  for (const auto& [text, character] : texts) {
    for (const ArgumentCheck check :
         {RequireStorable, RequireKey, RequireAreaKey, RequireNewName}) {
      EXPECT_THAT(ProblemOf(check, text), HasSubstr(character)) << text;
    }
  }
  EXPECT_THAT(ProblemOf(RequireStorable, {"\0", 1}), HasSubstr("U+0000"));
}

TEST(ChecksTest, RefusesBytesThatAreNoText) {
  for (const char* text : {"\xff", "\xed\xa0\x80", "a\xc3"}) {
    EXPECT_EQ(ProblemOf(RequireStorable, text), "NAME is not UTF-8 text.");
  }
}

TEST(ChecksTest, TakesEveryTextThatXmlHolds) {
  for (const char* text : {"", "\t\r\n", "\"quoted\"", "\u0085", "\ufffd", "\U0001F600", "a/b"}) {
    EXPECT_EQ(ProblemOf(RequireStorable, text), "") << text;
  }
}

TEST(ChecksTest, RefusesKeysThatNothingIsFoundBy) {
  EXPECT_THAT(ProblemOf(RequireKey, ""), HasSubstr("empty"));
  EXPECT_THAT(ProblemOf(RequireKey, "a\"b"), HasSubstr("double quote"));
  EXPECT_EQ(ProblemOf(RequireKey, "a/b 'c'"), "");
}

TEST(ChecksTest, RefusesNamesThatLeaveNoRoomInAFilesName) {
  EXPECT_EQ(ProblemOf(RequireNewName, std::string(kLongestFolderName, 'x')), "");
  EXPECT_THAT(ProblemOf(RequireNewName, std::string(kLongestFolderName + 1, 'x')),
              HasSubstr("241 bytes"));
}

TEST(ChecksTest, RefusesTheNameThatTheComponentListsNoStudyAreaUnder) {
  EXPECT_THAT(ProblemOf(RequireNewAreaName, "Default"), HasSubstr("Default"));
  EXPECT_THAT(ProblemOf(RequireAreaKey, "Default"), HasSubstr("Default"));
  EXPECT_EQ(ProblemOf(RequireNewName, "Default"), "");
}

}  // namespace
}  // namespace kvdm
