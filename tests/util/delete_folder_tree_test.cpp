// DeleteFolderTree on the file system in memory.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/file_names.h"
#include "platform/memory/failing_services.h"
#include "platform/memory/memory_file_system.h"
#include "util/kvdm_utils.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A folder "D:\North" to be deleted.
struct DeleteFolderTreeTest : testing::Test {
  DeleteFolderTreeTest() { files.AddFolder(R"(D:\North)"); }

  bool Delete() { return DeleteFolderTree(files, R"(D:\North\)"); }
  std::vector<std::string> Left() const { return files.Tree("D:\\"); }
  void Add(const std::string& name, unsigned attributes = 0) {
    const auto path = R"(D:\North\)" + name;
    if (path.ends_with('\\')) {
      files.AddFolder(path);
    } else {
      files.AddFile(path);
    }
    if (attributes != 0) files.SetAttributes(path, attributes);
  }

  MemoryFileSystem files;
};

TEST_F(DeleteFolderTreeTest, DeletesAnEmptyFolder) {
  EXPECT_TRUE(Delete());
  EXPECT_THAT(Left(), IsEmpty());
}

TEST_F(DeleteFolderTreeTest, DeletesAFolderOfFiles) {
  for (const auto* name : {"a.shp", "a", "b.dbf", "北区"}) Add(name);
  EXPECT_TRUE(Delete());
  EXPECT_THAT(Left(), IsEmpty());
}

TEST_F(DeleteFolderTreeTest, DeletesNestedFoldersAndNothingBesideThem) {
  Add(R"(a\b\c\deep.shp)");
  Add(R"(a\file)");
  Add(R"(z \)");
  files.AddFile(R"(D:\North1\kept.shp)");
  EXPECT_TRUE(Delete());
  EXPECT_THAT(Left(), ElementsAre(R"(North1\)", R"(North1\kept.shp)"));
}

TEST_F(DeleteFolderTreeTest, FindsTheFolderInAnotherLetterCaseAndThroughDoubledBackslashes) {
  Add("a.shp");
  EXPECT_TRUE(DeleteFolderTree(files, R"(d:\\NORTH\)"));
  EXPECT_THAT(Left(), IsEmpty());
}

TEST_F(DeleteFolderTreeTest, DeletesAFolderWhoseNameEndsInABlank) {
  files.AddFile(R"(D:\Study Area \x.shp)");
  EXPECT_TRUE(DeleteFolderTree(files, R"(D:\Study Area \)"));
  EXPECT_THAT(Left(), ElementsAre(R"(North\)"));
}

TEST_F(DeleteFolderTreeTest, DeletesAFolderBelowTheRootOfTheCurrentDrive) {
  files.AddFile(R"(C:\server\share\x.shp)");
  EXPECT_TRUE(DeleteFolderTree(files, R"(\server\share\)"));
  EXPECT_THAT(files.Tree("C:\\"), ElementsAre(R"(server\)"));
}

TEST_F(DeleteFolderTreeTest, AMissingFolderIsFalse) {
  EXPECT_FALSE(DeleteFolderTree(files, R"(D:\South\)"));
  EXPECT_FALSE(DeleteFolderTree(files, R"(D:\South\deep\)"));
  EXPECT_FALSE(DeleteFolderTree(files, R"(Q:\North\)"));
  EXPECT_THAT(Left(), ElementsAre(R"(North\)"));
}

TEST_F(DeleteFolderTreeTest, AFileIsFalseAndStays) {
  Add("a.shp");
  EXPECT_FALSE(DeleteFolderTree(files, R"(D:\North\a.shp\)"));
  EXPECT_THAT(Left(), ElementsAre(R"(North\)", R"(North\a.shp)"));
}

TEST_F(DeleteFolderTreeTest, HiddenAndSystemEntriesStayWithTheirFolder) {
  const std::pair<std::string, unsigned> kEntries[] = {{"kept.x", kHiddenAttribute},
                                                       {".kept", 0},
                                                       {"kept.x", kSystemAttribute},
                                                       {R"(kept\)", kHiddenAttribute},
                                                       {R"(kept\)", kSystemAttribute}};
  for (const auto& [name, attributes] : kEntries) {
    Add(name, attributes);
    Add("a.shp");
    Add(R"(sub\deep\b.shp)");
    EXPECT_FALSE(Delete());
    EXPECT_THAT(Left(), ElementsAre(R"(North\)", R"(North\)" + name)) << attributes;
    files.RemoveTree(R"(D:\North\)" + name);
  }
}

TEST_F(DeleteFolderTreeTest, AHiddenFileDeepInsideKeepsItsFoldersAndEndsTheWalk) {
  Add(R"(a\x.shp)");
  Add(R"(b\deep\kept)", 0);
  files.SetAttributes(R"(D:\North\b\deep\kept)", kHiddenAttribute);
  Add(R"(c\y.shp)");
  EXPECT_FALSE(Delete());
  EXPECT_THAT(Left(), ElementsAre(R"(North\)", R"(North\b\)", R"(North\b\deep\)",
                                  R"(North\b\deep\kept)", R"(North\c\)", R"(North\c\y.shp)"));
}

TEST_F(DeleteFolderTreeTest, AReadOnlyFileAloneKeepsEverything) {
  Add("locked", kReadOnlyAttribute);
  Add(R"(a\x.shp)");
  EXPECT_FALSE(Delete());
  EXPECT_THAT(Left(),
              ElementsAre(R"(North\)", R"(North\a\)", R"(North\a\x.shp)", R"(North\locked)"));
}

TEST_F(DeleteFolderTreeTest, AReadOnlyFileBesideOthersStaysWithTheFoldersListedAfterIt) {
  Add("m", kReadOnlyAttribute);
  Add("gone.shp");
  Add(R"(a\x.shp)");
  Add(R"(z\y.shp)");
  EXPECT_FALSE(Delete());
  EXPECT_THAT(Left(), ElementsAre(R"(North\)", R"(North\m)", R"(North\z\)", R"(North\z\y.shp)"));
}

TEST_F(DeleteFolderTreeTest, AFileThatTheSystemKeepsMakesItFalse) {
  Add("open.shp");
  files.RefuseWrites(R"(D:\North)");
  EXPECT_FALSE(Delete());
  EXPECT_THAT(Left(), ElementsAre(R"(North\)", R"(North\open.shp)"));
}

TEST_F(DeleteFolderTreeTest, RemovesLinksAndNeverFollowsThem) {
  files.AddLink(R"(D:\North\link)");
  files.AddFile(R"(D:\link\outside.shp)");
  EXPECT_TRUE(Delete());
  EXPECT_THAT(Left(), ElementsAre(R"(link\)", R"(link\outside.shp)"));
}

TEST_F(DeleteFolderTreeTest, ALinkIsNoFolderToDelete) {
  files.AddLink(R"(D:\link)");
  EXPECT_FALSE(DeleteFolderTree(files, R"(D:\link\)"));
  EXPECT_THAT(Left(), ElementsAre(R"(North\)", "link"));
}

TEST_F(DeleteFolderTreeTest, WithoutTheTrailingBackslashAFolderOfFilesGoes) {
  Add("a.shp");
  EXPECT_TRUE(DeleteFolderTree(files, R"(D:\North)"));
  EXPECT_THAT(Left(), IsEmpty());
}

TEST_F(DeleteFolderTreeTest, WithoutTheTrailingBackslashFoldersInsideStay) {
  Add("a.shp");
  Add(R"(Data\b.shp)");
  EXPECT_FALSE(DeleteFolderTree(files, R"(D:\North)"));
  EXPECT_THAT(Left(), ElementsAre(R"(North\)", R"(North\Data\)", R"(North\Data\b.shp)"));
}

TEST_F(DeleteFolderTreeTest, WithoutTheTrailingBackslashNothingBesideTheFolderIsTouched) {
  Add(R"(Data\b.shp)");
  files.AddFile(R"(D:\NorthData\c.shp)");
  EXPECT_FALSE(DeleteFolderTree(files, R"(D:\North)"));
  EXPECT_THAT(Left(), ElementsAre(R"(NorthData\)", R"(NorthData\c.shp)", R"(North\)",
                                  R"(North\Data\)", R"(North\Data\b.shp)"));
}

TEST_F(DeleteFolderTreeTest, WithoutTheTrailingBackslashAnEmptyFolderInsideStaysToo) {
  Add(R"(Data\)");
  EXPECT_FALSE(DeleteFolderTree(files, R"(D:\North)"));
  EXPECT_THAT(Left(), ElementsAre(R"(North\)", R"(North\Data\)"));
}

TEST_F(DeleteFolderTreeTest, WithoutTheTrailingBackslashAReadOnlyFileKeepsTheFolder) {
  Add("a.shp");
  Add("locked", kReadOnlyAttribute);
  EXPECT_FALSE(DeleteFolderTree(files, R"(D:\North)"));
  EXPECT_THAT(Left(), ElementsAre(R"(North\)", R"(North\locked)"));
}

TEST_F(DeleteFolderTreeTest, NamesWithBlanksOrDotsCutOffAreNotMeant) {
  files.AddFile(R"(D:\Study Area\a.shp)");
  files.AddFile(R"(D:\M\Sales\b.shp)");
  const auto before = Left();
  for (const auto* path : {R"(D:\Study Area \)", R"(D:\Study Area )", R"(D:\Study Area.\)",
                           R"(D:\M.\)", R"(D:\M.\Sales\)", R"(D:\M \Sales\)", R"(D:\North. .\)"}) {
    EXPECT_FALSE(DeleteFolderTree(files, path)) << path;
    EXPECT_EQ(Left(), before) << path;
  }
}

TEST_F(DeleteFolderTreeTest, TheFolderWhoseNameIsLongerByABlankIsNotMeantEither) {
  files.AddFile(R"(D:\Study Area \a.shp)");
  EXPECT_FALSE(DeleteFolderTree(files, R"(D:\Study Area\)"));
  EXPECT_THAT(Left(), ElementsAre(R"(North\)", R"(Study Area \)", R"(Study Area \a.shp)"));
}

TEST_F(DeleteFolderTreeTest, DeletesAFolderOfBlanks) {
  for (const auto* path : {R"(D:\ \)", R"(D:\   \)", R"(D:\ )", R"(D:\. \)", R"(D:\North\ \)"}) {
    files.CreateFolder(std::string(path) + "\\");
    files.WriteFile(std::string(path) + R"(\a.shp)", "x");
    EXPECT_TRUE(DeleteFolderTree(files, path)) << "'" << path << "'";
    EXPECT_THAT(Left(), ElementsAre(R"(North\)")) << "'" << path << "'";
  }
}

TEST_F(DeleteFolderTreeTest, RefusesPathsThatLeadElsewhereAndTouchesNothing) {
  files.AddFile(R"(C:\North\a.shp)");
  files.AddFile(R"(C:\root.shp)");
  files.AddFile(R"(D:\root.shp)");
  Add("b.shp");
  files.SetCurrentFolder("D:\\");
  const auto on_c = files.Tree("C:\\");
  const auto on_d = Left();
  for (const std::string path : {"",
                                 " ",
                                 "   ",
                                 "North",
                                 R"(North\)",
                                 R"(.\North\)",
                                 "C:",
                                 "C:North",
                                 R"(C:North\)",
                                 "\\",
                                 "/",
                                 "\\\\",
                                 R"(C:\)",
                                 "C:/",
                                 R"(D:\\)",
                                 R"(D:\.\)",
                                 R"(D:\North\..\)",
                                 R"(D:\North\..)",
                                 R"(D:\..\North\)",
                                 R"(D:\North\...\)",
                                 R"(\..\North\)",
                                 R"(D:/North/../)",
                                 R"(D:\North\\)",
                                 R"(D:\North\/)",
                                 R"(D:\North//)",
                                 R"(\\server)",
                                 R"(\\server\)",
                                 R"(\\server\share)",
                                 R"(\\server\share\)",
                                 R"(//server/share/)",
                                 ":\\",
                                 "?:"}) {
    EXPECT_FALSE(DeleteFolderTree(files, path)) << "'" << path << "'";
    EXPECT_EQ(files.Tree("C:\\"), on_c) << "'" << path << "'";
    EXPECT_EQ(Left(), on_d) << "'" << path << "'";
  }
}

TEST_F(DeleteFolderTreeTest, EveryFailureInsideMakesItFalse) {
  const auto counter = std::make_shared<FailureCounter>();
  int failing_calls = 0;
  for (bool deleted = false; !deleted; ++failing_calls) {
    const auto tree = std::make_shared<MemoryFileSystem>();
    tree->AddFile(R"(D:\North\sub\a.shp)");
    FailingFileSystem failing(tree, counter);
    *counter = {0, failing_calls + 1};
    deleted = DeleteFolderTree(failing, R"(D:\North\)");
    EXPECT_EQ(deleted, counter->calls <= failing_calls);
    EXPECT_EQ(deleted, !tree->FolderExists(R"(D:\North)")) << "call " << counter->fail_at;
  }
  EXPECT_GT(failing_calls, 8);
}

// A folder in which another process puts a folder back as soon as it is gone.
class EndlessFolder : public Directory {
 public:
  explicit EndlessFolder(int& removals) : removals_(removals) {}
  std::vector<std::string> Files() override { return {}; }
  std::vector<std::string> Entries() override {
    return way_.back() == "again" ? std::vector<std::string>() : std::vector<std::string>{"again"};
  }
  void DeleteFiles() override { throw RuntimeError(kFileNotFound); }
  void Enter(std::string_view name) override { way_.emplace_back(name); }
  void Leave() override { way_.pop_back(); }
  void RemoveFolder(std::string_view name) override {
    if (name != "again") throw RuntimeError(kPathFileAccess);
    ++removals_;
  }

 private:
  int& removals_;
  std::vector<std::string> way_{""};
};

class EndlessFileSystem : public FailingFileSystem {
 public:
  EndlessFileSystem()
      : FailingFileSystem(std::make_shared<MemoryFileSystem>(),
                          std::make_shared<FailureCounter>()) {}
  std::unique_ptr<Directory> OpenFolder(std::string_view) override {
    return std::make_unique<EndlessFolder>(removals);
  }
  int removals = 0;
};

TEST_F(DeleteFolderTreeTest, GivesUpOnAnEntryThatKeepsComingBack) {
  EndlessFileSystem endless;
  EXPECT_FALSE(DeleteFolderTree(endless, R"(D:\North\)"));
  EXPECT_GT(endless.removals, 1);
}

}  // namespace
}  // namespace kvdm
