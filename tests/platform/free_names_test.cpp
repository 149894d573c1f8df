// Free names as every file system finds them, on the one in memory.
#include <gtest/gtest.h>

#include "platform/file_names.h"
#include "platform/memory/failing_services.h"
#include "platform/memory/memory_file_system.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

constexpr char kFolder[] = R"(D:\Work)";

std::string NameAmong(const std::vector<std::string>& paths, std::string_view prefix) {
  MemoryFileSystem files;
  files.AddFolder(kFolder);
  for (const auto& path : paths) files.AddFile(std::string(kFolder) + "\\" + path);
  return files.FreeFileName(kFolder, prefix);
}

TEST(FreeNamesTest, IsTheFirstNameWithoutAFileWhateverTheExtension) {
  const struct {
    std::vector<std::string> files;
    std::string prefix;
    std::string expected;
  } kCases[] = {
      {{}, "tmp", "tmp"},
      {{"tmp.shp", "tmp1.dbf"}, "tmp", "tmp2"},
      {{"tmp.shp", "tmp2.shp"}, "tmp", "tmp1"},
      {{"tmp1.dbf", "tmpx.y"}, "tmp", "tmp"},
      {{"tmp"}, "tmp", "tmp1"},
      {{"tmp.a.b"}, "tmp", "tmp1"},
      {{"TMP.SHP"}, "tmp", "tmp1"},
      {{"Läden.shp"}, "läden", "läden1"},
      {{"tmp.shp"}, "tmp ", "tmp "},
      {{"a.txt"}, "", ""},
      {{".hidden"}, "", "1"},
      {{"a.txt"}, "a.", "a."},
      {{"a..txt"}, "a.", "a.1"},
      {{"abc.txt"}, "a*", "a*1"},
      {{"ab.txt"}, "a?", "a?1"},
      {{R"(sub\tmp.shp)"}, R"(sub\tmp)", R"(sub\tmp1)"},
      {{R"(..\tmp.shp)"}, R"(..\tmp)", R"(..\tmp1)"},
  };
  for (const auto& test : kCases) {
    EXPECT_EQ(NameAmong(test.files, test.prefix), test.expected)
        << test.prefix << " beside " << testing::PrintToString(test.files);
  }
}

TEST(FreeNamesTest, IsThePrefixWhereTheFolderIsMissing) {
  MemoryFileSystem files;
  EXPECT_EQ(files.FreeFileName(R"(D:\Nowhere)", "tmp"), "tmp");
}

TEST(FreeNamesTest, AcceptsAFolderWithATrailingBackslash) {
  MemoryFileSystem files;
  files.AddFile(R"(D:\Work\tmp.shp)");
  EXPECT_EQ(files.FreeFileName(R"(D:\Work\)", "tmp"), "tmp1");
}

TEST(FreeNamesTest, IsNotBlockedByFolders) {
  MemoryFileSystem files;
  files.AddFolder(R"(D:\Work\tmp)");
  files.AddFolder(R"(D:\Work\tmp.dir)");
  EXPECT_EQ(files.FreeFileName(kFolder, "tmp"), "tmp");
}

TEST(FreeNamesTest, IsBlockedByReadOnlyFilesButNotByHiddenAndSystemOnes) {
  MemoryFileSystem files;
  files.AddFile(R"(D:\Work\tmp.x)");
  const std::pair<unsigned, std::string> kRows[] = {{kReadOnlyAttribute, "tmp1"},
                                                    {kHiddenAttribute, "tmp"},
                                                    {kSystemAttribute, "tmp"},
                                                    {kHiddenAttribute | kReadOnlyAttribute, "tmp"}};
  for (const auto& [attributes, expected] : kRows) {
    files.SetAttributes(R"(D:\Work\tmp.x)", attributes);
    EXPECT_EQ(files.FreeFileName(kFolder, "tmp"), expected) << attributes;
  }
}

TEST(FreeNamesTest, CreatesNothing) {
  MemoryFileSystem files;
  EXPECT_EQ(files.FreeFileName(kFolder, "tmp"), "tmp");
  EXPECT_TRUE(files.Tree("D:\\").empty());
}

TEST(FreeNamesTest, PassesASearchFailureOn) {
  const auto counter = std::make_shared<FailureCounter>(FailureCounter{.fail_at = 1});
  FailingFileSystem files(std::make_shared<MemoryFileSystem>(), counter);
  EXPECT_RUNTIME_ERROR(static_cast<void>(files.FreeFileName(kFolder, "tmp")), kPermissionDenied);
}

// A folder in which every name is taken.
class FullFolder : public FailingFileSystem {
 public:
  FullFolder()
      : FailingFileSystem(std::make_shared<MemoryFileSystem>(),
                          std::make_shared<FailureCounter>()) {}
  std::vector<std::string> FindFiles(std::string_view) override { return {"taken"}; }
};

TEST(FreeNamesTest, OverflowsWhenAllCountersAreTaken) {
  FullFolder files;
  EXPECT_RUNTIME_ERROR(static_cast<void>(files.FreeFileName(kFolder, "tmp")), kOverflow);
}

}  // namespace
}  // namespace kvdm
