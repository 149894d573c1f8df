#include "safety/read_only_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "platform/memory/memory_file_system.h"
#include "util/kvdm_utils.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct ReadOnlyFilesTest : testing::Test {
  ReadOnlyFilesTest() {
    memory->AddFile(R"(D:\Work\Temp\job.tmp)", "bytes");
    memory->AddFile(R"(D:\Work\Temp\inner\part.tmp)");
    before = memory->Tree("D:\\");
  }

  std::shared_ptr<MemoryFileSystem> memory = std::make_shared<MemoryFileSystem>();
  ReadOnlyFiles files{memory};
  std::vector<std::string> before;
};

TEST_F(ReadOnlyFilesTest, AnswersThatAFolderIsEmptiedAndDeletesNothing) {
  EXPECT_TRUE(DeleteFolderTree(files, R"(D:\Work\Temp\)"));
  EXPECT_EQ(memory->Tree("D:\\"), before);
}

TEST_F(ReadOnlyFilesTest, ShowsAFolderWithoutWhatWouldBeDeletedThere) {
  const auto folder = files.OpenFolder(R"(D:\Work\Temp)");
  EXPECT_THAT(folder->Entries(), ElementsAre("inner", "job.tmp"));
  folder->DeleteFiles();
  EXPECT_THAT(folder->Files(), IsEmpty());
  EXPECT_THAT(folder->Entries(), ElementsAre("inner"));
  EXPECT_THROW(folder->DeleteFiles(), RuntimeError);
  EXPECT_EQ(memory->Tree("D:\\"), before);
}

TEST_F(ReadOnlyFilesTest, HasTheFoldersThatItWouldHaveMade) {
  files.CreateFolder(R"(D:\New\)");
  files.CreateFolder(R"(D:\New\\Temp)");
  files.HideFolder(R"(D:\New\\Temp)");
  EXPECT_TRUE(files.FolderExists(R"(D:\New\Temp\)"));
  EXPECT_EQ(files.FullPath(R"(D:\New\)"), R"(D:\New)");
  EXPECT_THROW(files.CreateFolder(R"(D:\New)"), RuntimeError);
  EXPECT_THROW(files.CreateFolder(R"(D:\Work)"), RuntimeError);
  EXPECT_EQ(memory->Tree("D:\\"), before);
}

TEST_F(ReadOnlyFilesTest, LeavesFilesAsTheyAre) {
  files.WriteFile(R"(D:\Work\Temp\job.tmp)", "other");
  EXPECT_EQ(files.ReadFile(R"(D:\Work\Temp\job.tmp)"), "bytes");
}

TEST_F(ReadOnlyFilesTest, PassesChangesOnOnceTheyAreAllowed) {
  files.CreateFolder(R"(D:\New)");
  files.AllowChanges();
  EXPECT_FALSE(files.FolderExists(R"(D:\New)"));
  files.CreateFolder(R"(D:\New)");
  files.WriteFile(R"(D:\New\a.txt)", "a");
  EXPECT_TRUE(DeleteFolderTree(files, R"(D:\Work\)"));
  EXPECT_THAT(memory->Tree("D:\\"), ElementsAre("New\\", "New\\a.txt"));
}

}  // namespace
}  // namespace kvdm
