// CreateFolderPath on the file system in memory.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/memory_file_system.h"
#include "tests/throws_number.h"
#include "util/kvdm_utils.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Case {
  std::string path;
  std::vector<std::string> created;
};

TEST(CreateFolderPathTest, CreatesEveryMissingFolderAlongThePath) {
  const Case kCases[] = {
      {R"(D:\a\b)", {R"(a\)", R"(a\b\)"}},
      {R"(D:\a\b\)", {R"(a\)", R"(a\b\)"}},
      {R"(D:\a\\b)", {R"(a\)", R"(a\b\)"}},
      {R"(D:\North \)", {R"(North \)"}},
      {R"(D:\North \x)", {R"(North \)", R"(North \x\)"}},
      {R"(D:\Läden\北区)", {R"(Läden\)", R"(Läden\北区\)"}},
      {R"(D:\)", {}},
      {R"(\server\share\x)", {R"(server\)", R"(server\share\)", R"(server\share\x\)"}},
      {"abc", {R"(abc\)"}},
      {"", {}},
      {R"(\)", {}},
  };
  for (const auto& test : kCases) {
    MemoryFileSystem files;
    files.SetCurrentFolder("D:\\");
    CreateFolderPath(files, test.path);
    EXPECT_EQ(files.Tree("D:\\"), test.created) << test.path;
  }
}

TEST(CreateFolderPathTest, LeavesExistingFoldersAlone) {
  MemoryFileSystem files;
  files.AddFile(R"(D:\a\shops.dbf)");
  CreateFolderPath(files, R"(D:\A\b)");
  EXPECT_THAT(files.Tree("D:\\"), ElementsAre(R"(a\)", R"(a\b\)", R"(a\shops.dbf)"));
}

TEST(CreateFolderPathTest, DoesNotCreateTheStartOfARelativePath) {
  MemoryFileSystem files;
  EXPECT_RUNTIME_ERROR(CreateFolderPath(files, R"(a\b)"), kPathNotFound);
  EXPECT_THAT(files.Tree("C:\\"), IsEmpty());
  files.AddFolder(R"(C:\a)");
  CreateFolderPath(files, R"(a\b)");
  EXPECT_TRUE(files.FolderExists(R"(C:\a\b)"));
}

TEST(CreateFolderPathTest, FailsOnAMissingDriveAndOnAShare) {
  MemoryFileSystem files;
  EXPECT_RUNTIME_ERROR(CreateFolderPath(files, R"(Q:\a)"), kPathNotFound);
  EXPECT_RUNTIME_ERROR(CreateFolderPath(files, R"(\\server\share\x)"), kPathNotFound);
  EXPECT_THAT(files.Tree("C:\\"), IsEmpty());
}

TEST(CreateFolderPathTest, FailsWhereAFileIsInTheWay) {
  MemoryFileSystem files;
  files.AddFile(R"(D:\a\b)");
  EXPECT_RUNTIME_ERROR(CreateFolderPath(files, R"(D:\a\b\c)"), kFileExists);
  EXPECT_THAT(files.Tree("D:\\"), ElementsAre(R"(a\)", R"(a\b)"));
}

TEST(CreateFolderPathTest, KeepsWhatItMadeBeforeAFailure) {
  MemoryFileSystem files;
  EXPECT_RUNTIME_ERROR(CreateFolderPath(files, R"(D:\a\b?\c)"), kBadFileName);
  EXPECT_THAT(files.Tree("D:\\"), ElementsAre(R"(a\)"));
}

TEST(CreateFolderPathTest, FailsWhereTheSystemRefuses) {
  MemoryFileSystem files;
  files.AddFolder(R"(D:\locked)");
  files.RefuseWrites(R"(D:\locked)");
  EXPECT_RUNTIME_ERROR(CreateFolderPath(files, R"(D:\locked\a)"), kPermissionDenied);
}

}  // namespace
}  // namespace kvdm
