#include "platform/file_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/throws_number.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::Optional;

const DrivePath kCurrent{'Z', {"home", "x"}};

std::string Resolved(std::string_view path) {
  const auto resolved = ResolvePath(SplitPath(path), kCurrent);
  return resolved ? resolved->Text() : "nowhere";
}

TEST(FileNamesTest, PathsResolveByText) {
  struct Row {
    const char* path;
    const char* resolved;
  };
  const Row rows[] = {
      {"", "nowhere"},
      {"  ", "nowhere"},
      {R"(\\server\share\x)", "nowhere"},
      {R"(\\?\C:\x)", "nowhere"},
      {"c:/test     ", R"(C:\test     )"},
      {"c:/test.", R"(C:\test.)"},
      {"c:/test/  ....   ..   ", R"(C:\test)"},
      {"c:/test./file", R"(C:\test.\file)"},
      {"c:/test.. /file", R"(C:\test.. \file)"},
      {R"(c:///test\.\.\file//)", R"(C:\test\file)"},
      {"c:/test/..", R"(C:\)"},
      {"c:/../../test", R"(C:\test)"},
      {R"(C:\x\Study Area \)", R"(C:\x\Study Area )"},
      {R"(c:\x\ \y)", R"(C:\x\ \y)"},
      {R"(\foo)", R"(Z:\foo)"},
      {R"(\server\share\)", R"(Z:\server\share)"},
      {"/tmp/foo", R"(Z:\tmp\foo)"},
      {"//tmp", R"(Z:\tmp)"},
      {"foo", R"(Z:\home\x\foo)"},
      {R"(..\foo)", R"(Z:\home\foo)"},
      {R"(..\..\..\foo)", R"(Z:\foo)"},
      {".", R"(Z:\home\x)"},
      {"z:foo", R"(Z:\home\x\foo)"},
      {"d:foo", R"(D:\foo)"},
      {"d:", R"(D:\)"},
      {"dd:foo", R"(Z:\home\x\dd:foo)"},
      {"1:foo", R"(Z:\home\x\1:foo)"},
  };
  for (const Row& row : rows) EXPECT_EQ(Resolved(row.path), row.resolved) << row.path;
}

TEST(FileNamesTest, PatternsSplitAfterTheFolder) {
  struct Row {
    const char* pattern;
    const char* folder;
    const char* name;
  };
  const Row rows[] = {
      {R"(D:\a\tmp.*)", R"(D:\a\)", "tmp.*"},
      {R"(D:\a\\tmp.*)", R"(D:\a\\)", "tmp.*"},
      {"/a/tmp", "/a/", "tmp"},
      {R"(\tmp)", R"(\)", "tmp"},
      {"D:tmp", "D:", "tmp"},
      {"tmp.*", ".", "tmp.*"},
      {R"(D:\a\)", R"(D:\a\)", "*"},
      {"D:", "D:", "*"},
      {"", ".", "*"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(SplitPattern(row.pattern).folder, row.folder) << row.pattern;
    EXPECT_EQ(SplitPattern(row.pattern).name, row.name) << row.pattern;
  }
}

TEST(FileNamesTest, CreatableNames) {
  for (const std::string& name :
       {std::string("a"), std::string("Study Area "), std::string(".x"), std::string("a'b;{}%&"),
        std::string("\u00c4 \u0416 \U0001F600"), std::string(255, 'x')}) {
    EXPECT_TRUE(IsCreatableName(name)) << name;
  }
}

TEST(FileNamesTest, RefusedNames) {
  for (const std::string& name :
       {std::string(), std::string("a<"), std::string(">"), std::string("a:b"), std::string("\""),
        std::string("a/b"), std::string("a\\b"), std::string("|"), std::string("?"),
        std::string("*"), std::string("a\0b", 3), std::string("\x1f"), std::string("\x80"),
        std::string(256, 'x')}) {
    EXPECT_FALSE(IsCreatableName(name)) << name;
  }
}

TEST(FileNamesTest, LengthCountsUtf16Units) {
  std::string name;
  for (int i = 0; i < 127; ++i) name += "\U0001F600";
  EXPECT_TRUE(IsCreatableName(name + "x"));
  EXPECT_FALSE(IsCreatableName(name + "xy"));
}

TEST(FileNamesTest, TrimmingCutsTrailingBlanksAndDots) {
  EXPECT_EQ(TrimmedName("North. .. "), "North");
  EXPECT_EQ(TrimmedName(" .North"), " .North");
  EXPECT_EQ(TrimmedName(" .. "), "");
}

TEST(FileNamesTest, NamesAreTheSameInAnotherLetterCase) {
  const std::pair<const char*, const char*> rows[] = {{"North", "nORTH"},
                                                      {"\u00e4\u0436\u03c9", "\u00c4\u0416\u03a9"},
                                                      {"", ""},
                                                      {"a\xff", "A\xff"}};
  for (const auto& [a, b] : rows) EXPECT_TRUE(FindName({a}, b)) << a << " " << b;
}

TEST(FileNamesTest, OtherNamesDiffer) {
  const std::pair<const char*, const char*> rows[] = {
      {"North", "North1"}, {"\u0131", "I"},       {"\u017f", "S"},    {"\U00010428", "\U00010400"},
      {"\xe4", "\xc4"},    {"e\u0301", "\u00e9"}, {"\xff", "\ufffd"}, {"\xc3", "\u00c3"},
  };
  for (const auto& [a, b] : rows) EXPECT_FALSE(FindName({a}, b)) << a << " " << b;
}

TEST(FileNamesTest, PatternsMatch) {
  const std::pair<const char*, const char*> rows[] = {
      {"tmp", "tmp.*"},
      {"tmp.shp", "tmp.*"},
      {"tmp.a.b", "tmp.*"},
      {"TMP.Dir", "tmp.*"},
      {"tmp.", "tmp.*"},
      {"x", "*"},
      {"x", "*.*"},
      {"x.y", "*.*"},
      {".x", ".*"},
      {"tmp.shp", "t*p.*"},
      {"tp", "t*p.*"},
      {"tmp.shp", "tm?.*"},
      {"tm.shp", "tm?.*"},
      {"tm", "tm??"},
      {"tmp .x", "tmp .*"},
      {"tmp ", "tmp .*"},
      {"a.", "a..*"},
      {"\u00c4", "\u00e4"},
      {"\U0001F600", "?"},
      {"aXbXc", "a*X*c"},
      {"abab", "*ab"},
      {"a\xff.x", "A\xff*"},
      {"", "*"},
      {"aab", "*a?b"},
  };
  for (const auto& [name, pattern] : rows) {
    EXPECT_TRUE(MatchesPattern(name, pattern)) << name << " " << pattern;
  }
}

TEST(FileNamesTest, PatternsDoNotMatch) {
  const std::pair<const char*, const char*> rows[] = {
      {"tmp1.dbf", "tmp.*"},
      {"tmpx.y", "tmp.*"},
      {"tmp2", "tmp.*"},
      {"x.y", ".*"},
      {"tmp.shp", "tmp .*"},
      {"tm",
       "t?"
       "?x"},
      {"t.p", "t?p"},
      {"abc", "ab"},
      {"ab", "abc"},
      {"abac", "*ab"},
      {"x", ""},
      {"tmpx", "tm?"},
  };
  for (const auto& [name, pattern] : rows) {
    EXPECT_FALSE(MatchesPattern(name, pattern)) << name << " " << pattern;
  }
}

TEST(FileNamesTest, ManyWildcardsDoNotMultiplyTheWork) {
  std::string pattern;
  for (int i = 0; i < 500; ++i) pattern += "*a";
  EXPECT_FALSE(MatchesPattern(std::string(2000, 'a') + "b", pattern));
  EXPECT_TRUE(MatchesPattern(std::string(2000, 'a'), pattern));
}

TEST(FileNamesTest, TheClosestNameIsFound) {
  EXPECT_THAT(FindName({"NORTH", "North", "north."}, "North"), Optional(std::string("North")));
  EXPECT_THAT(FindName({"NORTH", "north."}, "North"), Optional(std::string("NORTH")));
  EXPECT_THAT(FindName({"South", "north. "}, "North"), Optional(std::string("north. ")));
  EXPECT_THAT(FindName({"North"}, "NORTH .."), Optional(std::string("North")));
  EXPECT_EQ(FindName({"North1", "Nort"}, "North"), std::nullopt);
}

TEST(FileNamesTest, BlanksAndDotsAloneMeanNoOtherName) {
  for (const char* wanted : {"", ".", "..", " ", "...."}) {
    EXPECT_EQ(FindName({"   ", "..."}, wanted), std::nullopt) << wanted;
  }
  EXPECT_THAT(FindName({"   ", "..."}, "..."), Optional(std::string("...")));
}

TEST(FileNamesTest, ListingsAreSortedWithoutRegardToLetterCase) {
  std::vector<std::string> names = {"b", "a", "C", "B", "\xff", "\u00e4"};
  SortNames(names);
  EXPECT_THAT(names, ElementsAre("a", "B", "b", "C", "\u00e4", "\xff"));
}

TEST(FileNamesTest, NumbersAreAppendedWithoutABlankAndNotThatOfNothing) {
  EXPECT_EQ(Numbered("Study Area ", 0), "Study Area ");
  EXPECT_EQ(Numbered("Study Area ", 12), "Study Area 12");
}

TEST(FileNamesTest, TheFirstFreeNumberCountsFromNothingToTheLast) {
  for (const int free : {0, 1, 3, 32767}) {
    std::vector<int> tried;
    EXPECT_EQ(FirstFreeNumber([&](int number) {
                tried.push_back(number);
                return number != free;
              }),
              free);
    EXPECT_EQ(tried.front(), 0);
    EXPECT_EQ(static_cast<int>(tried.size()), free + 1);
  }
}

TEST(FileNamesTest, TheFirstFreeNumberOverflowsOnceTheLastIsTaken) {
  int tries = 0;
  EXPECT_RUNTIME_ERROR(static_cast<void>(FirstFreeNumber([&](int) { return ++tries > 0; })),
                       kOverflow);
  EXPECT_EQ(tries, 32768);
}

TEST(FileNamesTest, PathErrorsNameThePath) {
  const RuntimeError error = PathError(kPathNotFound, R"(D:\x)");
  EXPECT_EQ(error.number(), kPathNotFound);
  EXPECT_STREQ(error.what(), R"(Path not found: D:\x)");
}

}  // namespace
}  // namespace kvdm
