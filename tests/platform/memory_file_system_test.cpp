// How tests build and look at the file system in memory.
#include "platform/memory/memory_file_system.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(MemoryFileSystemTest, TreeShowsEverythingInside) {
  MemoryFileSystem files;
  files.AddFile(R"(D:\Work\North\shops.dbf)", "x");
  files.AddFolder(R"(D:\Work\South \Inner\)");
  files.SetAttributes(R"(D:\Work\South )", kHiddenAttribute);
  EXPECT_THAT(files.Tree(R"(D:\Work)"),
              ElementsAre(R"(North\)", R"(North\shops.dbf)", R"(South \)", R"(South \Inner\)"));
}

TEST(MemoryFileSystemTest, RemovedTreesAreGone) {
  MemoryFileSystem files;
  files.AddFile(R"(D:\Work\North\shops.dbf)");
  files.RemoveTree(R"(D:\Work\North)");
  EXPECT_THAT(files.Tree(R"(D:\Work)"), IsEmpty());
}

TEST(MemoryFileSystemTest, AFolderThatRefusesWritesStaysAsItIs) {
  MemoryFileSystem files;
  files.AddFile(R"(D:\Work\a.xml)", "old");
  files.AddFolder(R"(D:\Work\North)");
  files.RefuseWrites(R"(D:\Work)");
  const auto refused = [](auto act) {
    try {
      act();
      return false;
    } catch (const RuntimeError& error) {
      return error.number() == kPermissionDenied;
    }
  };
  EXPECT_TRUE(refused([&] { files.CreateFolder(R"(D:\Work\South)"); }));
  EXPECT_TRUE(refused([&] { files.WriteFile(R"(D:\Work\a.xml)", "new"); }));
  EXPECT_TRUE(refused([&] { files.WriteFile(R"(D:\Work\b.xml)", "new"); }));
  EXPECT_TRUE(refused([&] { files.OpenFolder(R"(D:\Work)")->DeleteFiles(); }));
  EXPECT_TRUE(refused([&] { files.OpenFolder(R"(D:\Work)")->RemoveFolder("North"); }));
  EXPECT_THAT(files.Tree(R"(D:\Work)"), ElementsAre(R"(North\)", "a.xml"));
  EXPECT_EQ(files.ReadFile(R"(D:\Work\a.xml)"), "old");
}

}  // namespace
}  // namespace kvdm
