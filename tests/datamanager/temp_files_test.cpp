// Paths in the temporary folder, and emptying it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/file_names.h"
#include "platform/memory/failing_services.h"
#include "tests/test_world.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kTemp[] = R"(D:\Data\KelvaroTemp)";

struct TempFilesTest : testing::Test {
  void Add(const std::string& name, unsigned attributes = 0) const {
    world.platform.files->AddFile(kTemp + ("\\" + name));
    world.platform.files->SetAttributes(kTemp + ("\\" + name), attributes);
  }
  std::vector<std::string> Cleaned() const {
    world.manager->CleanTemp();
    EXPECT_THAT(world.Messages(), IsEmpty());
    return world.platform.files->Tree(kTemp);
  }
  MemoryFileSystem& files() const { return *world.platform.files; }

  TestWorld world;
};

TEST_F(TempFilesTest, WithoutAWorkingDirectoryThePathIsInTheCurrentFolder) {
  KVDataManager manager(world.platform.Bundle());
  files().SetCurrentFolder("Z:\\");
  EXPECT_EQ(manager.TmpFilePath(), R"(KelvaroTemp\tmp)");
  EXPECT_THAT(files().Tree("Z:\\"), ElementsAre(R"(KelvaroTemp\)"));
}

TEST_F(TempFilesTest, CleaningLeavesHiddenAndSystemEntries) {
  Add("hidden", kHiddenAttribute);
  Add("system", kSystemAttribute);
  Add("gone");
  Add(R"(sub\gone)");
  EXPECT_THAT(Cleaned(), ElementsAre("hidden", "system"));
}

TEST_F(TempFilesTest, AReadOnlyFileStopsTheCleaningWhereItIsListed) {
  Add("m", kReadOnlyAttribute);
  Add("gone.shp");
  Add(R"(a\x)");
  Add(R"(z\y)");
  EXPECT_THAT(Cleaned(), ElementsAre("m", R"(z\)", R"(z\y)"));
}

TEST_F(TempFilesTest, AReadOnlyFileWithoutOthersEndsTheCleaningAtOnce) {
  Add("m", kReadOnlyAttribute);
  Add(R"(a\x)");
  EXPECT_THAT(Cleaned(), ElementsAre(R"(a\)", R"(a\x)", "m"));
}

TEST_F(TempFilesTest, AFolderThatStaysStopsTheCleaning) {
  Add(R"(a\x)");
  Add(R"(b\kept)", kHiddenAttribute);
  Add(R"(c\y)");
  EXPECT_THAT(Cleaned(), ElementsAre(R"(b\)", R"(b\kept)", R"(c\)", R"(c\y)"));
}

TEST_F(TempFilesTest, CleaningRemovesLinksAndNotWhatTheyMean) {
  files().AddLink(R"(D:\Data\KelvaroTemp\link)");
  EXPECT_THAT(Cleaned(), IsEmpty());
}

TEST_F(TempFilesTest, WithoutAWorkingDirectoryNothingIsCleaned) {
  KVDataManager manager(world.platform.Bundle());
  files().SetCurrentFolder("Z:\\");
  files().AddFile(R"(Z:\KelvaroTemp\kept.shp)");
  manager.CleanTemp();
  EXPECT_THAT(files().Tree("Z:\\"), ElementsAre(R"(KelvaroTemp\)", R"(KelvaroTemp\kept.shp)"));
}

// A file system that notes which folders are opened by their paths.
class NotingFileSystem : public FailingFileSystem {
 public:
  explicit NotingFileSystem(std::shared_ptr<FileSystem> files)
      : FailingFileSystem(std::move(files), std::make_shared<FailureCounter>()) {}
  std::unique_ptr<Directory> OpenFolder(std::string_view path) override {
    opened.emplace_back(path);
    return FailingFileSystem::OpenFolder(path);
  }
  std::vector<std::string> opened;
};

TEST_F(TempFilesTest, CleaningOpensTheWorkingDirectoryAndNoOtherPath) {
  auto services = world.platform.Bundle();
  const auto noting = std::make_shared<NotingFileSystem>(world.platform.files);
  services.files = noting;
  KVDataManager manager(services);
  manager.SetWorkingDirectory(R"(D:\Data)");
  Add(R"(a\b\tmp.shp)");
  noting->opened.clear();
  manager.CleanTemp();
  EXPECT_THAT(files().Tree(kTemp), IsEmpty());
  EXPECT_THAT(noting->opened, ElementsAre(R"(D:\Data\)"));
}

}  // namespace
}  // namespace kvdm
