// The working directory: how it is held, laid out and emptied, and names for new folders in it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "platform/memory/failing_services.h"
#include "tests/test_world.h"
#include "util/names.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kNoStructure[] = "Couldn't create structure of working directory";
constexpr char kInvalidSelected[] = "Invalid Working Directory was selected";
constexpr char kInvalid[] = "Invalid Working Directory";
constexpr char kNoFolderName[] = "Couldn't generate new Dir NAme";

// A file system that notes what is made, and whose folder test can be bent.
class WatchedFileSystem : public FailingFileSystem {
 public:
  explicit WatchedFileSystem(std::shared_ptr<FileSystem> files)
      : FailingFileSystem(std::move(files), std::make_shared<FailureCounter>()) {}

  bool FolderExists(std::string_view path) override {
    return folder_exists ? folder_exists() : FailingFileSystem::FolderExists(path);
  }
  void CreateFolder(std::string_view path) override {
    made.push_back("create " + std::string(path));
    if (path == refused) throw RuntimeError(kPermissionDenied);
    FailingFileSystem::CreateFolder(path);
  }
  void HideFolder(std::string_view path) override {
    made.push_back("hide " + std::string(path));
    FailingFileSystem::HideFolder(path);
  }

  std::vector<std::string> made;
  std::string refused;
  std::function<bool()> folder_exists;
};

// A world with the working directory "D:\Data\" that watches its file system.
struct WorkingDirectoryTest : testing::Test {
  WorkingDirectoryTest() {
    auto services = world.platform.Bundle();
    services.files = files;
    world.manager = std::make_shared<KVDataManager>(services);
    world.manager->DMInitialize(world.host);
  }

  // Whether the metadata document started afresh since this was asked last.
  bool StartedAfresh() {
    const bool fresh = world.Metadata().find("MARK") == std::string::npos;
    world.LoadMetadata("<KVDATACOLLECTION><MARK/></KVDATACOLLECTION>");
    return fresh;
  }

  TestWorld world;
  std::shared_ptr<WatchedFileSystem> files =
      std::make_shared<WatchedFileSystem>(world.platform.files);
  KVDataManager& Manager() const { return *world.manager; }
};

struct Row {
  std::string given;
  std::string held;
};

TEST_F(WorkingDirectoryTest, IsHeldWithATrailingBackslashAndWithoutDoubledOnes) {
  const Row kRows[] = {{R"(D:\Data)", R"(D:\Data\)"},
                       {R"(D:\Data\)", R"(D:\Data\)"},
                       {R"(D:\\Data)", R"(D:\Data\)"},
                       {R"(D:\Data\\)", R"(D:\Data\\)"},
                       {R"(\\server\share)", R"(\server\share\)"},
                       {R"(D:\Läden 北区)", R"(D:\Läden 北区\)"},
                       {"D:/Data", R"(D:/Data\)"},
                       {"", "\\"}};
  for (const auto& [given, held] : kRows) {
    Manager().SetWorkingDirectory(given);
    EXPECT_EQ(Manager().WorkingDirectory(), held) << given;
  }
}

TEST_F(WorkingDirectoryTest, AMissingOneIsCreatedWithItsFoldersInOrder) {
  files->made.clear();
  Manager().SetWorkingDirectory(R"(D:\New)");
  EXPECT_THAT(files->made,
              ElementsAre(R"(create D:\New\)", R"(create D:\New\\CustLayers)",
                          R"(create D:\New\\StoreLayers)", R"(create D:\New\\KelvaroTemp)",
                          R"(hide D:\New\\KelvaroTemp)"));
  EXPECT_THAT(world.platform.files->Tree(R"(D:\New)"),
              ElementsAre(R"(CustLayers\)", R"(KelvaroTemp\)", R"(StoreLayers\)"));
  EXPECT_THAT(world.platform.files->OpenFolder(R"(D:\New)")->Entries(),
              ElementsAre("CustLayers", "StoreLayers"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST_F(WorkingDirectoryTest, OneThatCanNotBeCreatedIsHeldAllTheSame) {
  world.platform.files->AddFile(R"(D:\file)");
  for (const std::string path :
       {R"(Q:\Data)", R"(D:\missing\deep)", R"(D:\a?b)", R"(D:\file)", R"(D:\file\x)"}) {
    StartedAfresh();
    world.platform.box->Clear();
    Manager().SetWorkingDirectory(path);
    EXPECT_THAT(world.Messages(), ElementsAre(kNoStructure, kInvalidSelected)) << path;
    EXPECT_EQ(Manager().WorkingDirectory(), path + "\\");
    EXPECT_FALSE(StartedAfresh()) << path;
  }
}

TEST_F(WorkingDirectoryTest, WhatWasCreatedBeforeAFailureStaysAndTheMetadataToo) {
  StartedAfresh();
  files->refused = R"(D:\New\\StoreLayers)";
  EXPECT_FALSE(Manager().CreateWorkingDirectoryStructure(R"(D:\New\)"));
  EXPECT_THAT(world.Messages(), ElementsAre(kNoStructure));
  EXPECT_THAT(world.platform.files->Tree(R"(D:\New)"), ElementsAre(R"(CustLayers\)"));
  EXPECT_FALSE(StartedAfresh());
}

TEST_F(WorkingDirectoryTest, BuildingTheFoldersOfAnExistingOneOnlyStartsTheMetadataAfresh) {
  StartedAfresh();
  files->made.clear();
  EXPECT_TRUE(Manager().CreateWorkingDirectoryStructure(R"(D:\Data\)"));
  EXPECT_THAT(files->made, IsEmpty());
  EXPECT_TRUE(StartedAfresh());
}

TEST_F(WorkingDirectoryTest, AnErrorKeepsTheOldOneAndMakesTheMetadataInvalid) {
  files->folder_exists = []() -> bool { throw RuntimeError(kDeviceUnavailable); };
  Manager().SetWorkingDirectory(R"(D:\New)");
  EXPECT_THAT(world.Messages(), ElementsAre(kInvalid));
  EXPECT_EQ(Manager().WorkingDirectory(), R"(D:\Data\)");
  EXPECT_EQ(Manager().GenerateFolderName("", "a"), "");
  EXPECT_THAT(world.Messages(), ElementsAre(kInvalid));
}

TEST_F(WorkingDirectoryTest, SettingOneAgainMakesTheMetadataValidAgain) {
  files->folder_exists = []() -> bool { throw RuntimeError(kDeviceUnavailable); };
  Manager().SetWorkingDirectory(R"(D:\New)");
  files->folder_exists = nullptr;
  Manager().SetWorkingDirectory(R"(D:\New)");
  EXPECT_EQ(Manager().GenerateFolderName("", "a"), "a");
}

TEST_F(WorkingDirectoryTest, FolderNamesAreTheFirstThatIsFree) {
  const auto name = [&] {
    return Manager().GenerateFolderName("", sDefaultDirNames::kStudyAreaPrefix);
  };
  EXPECT_EQ(name(), "Study Area ");
  EXPECT_EQ(name(), "Study Area ");
  world.platform.files->CreateFolder(R"(D:\Data\Study Area \)");
  EXPECT_EQ(name(), "Study Area 1");
  world.platform.files->AddFolder(R"(D:\Data\study area 1)");
  world.platform.files->AddFolder(R"(D:\Data\Study Area 3)");
  EXPECT_EQ(name(), "Study Area 2");
}

TEST_F(WorkingDirectoryTest, FolderNamesAreLookedForBelowTheParent) {
  world.platform.files->AddFolder(R"(D:\Data\Analyses\Sales)");
  EXPECT_EQ(Manager().GenerateFolderName("Analyses\\", "Sales"), "Sales1");
  EXPECT_EQ(Manager().GenerateFolderName("", "Sales"), "Sales");
}

TEST_F(WorkingDirectoryTest, FilesDoNotTakeFolderNames) {
  world.platform.files->AddFile(R"(D:\Data\Sales)");
  EXPECT_EQ(Manager().GenerateFolderName("", "Sales"), "Sales");
}

TEST_F(WorkingDirectoryTest, ThereAreNoFolderNamesBeforeAWorkingDirectoryIsSet) {
  KVDataManager fresh(world.platform.Bundle());
  EXPECT_EQ(fresh.GenerateFolderName("", "a"), "");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST_F(WorkingDirectoryTest, FolderNamesRunOutWithAMessage) {
  files->folder_exists = [] { return true; };
  EXPECT_EQ(Manager().GenerateFolderName("", "a"), "");
  EXPECT_THAT(world.Messages(), ElementsAre(kNoFolderName));
}

}  // namespace
}  // namespace kvdm
