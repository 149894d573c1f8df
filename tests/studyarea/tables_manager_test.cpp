#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kvdm/platform/error.h>

#include "platform/file_names.h"
#include "platform/memory/failing_services.h"
#include "studyarea/kv_tables_manager.h"
#include "tests/test_world.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using ::testing::IsEmpty;

// A world with the study area North, which is not open.
class TablesManagerTest : public ::testing::Test {
 protected:
  TablesManagerTest() { world.manager->StudyAreaCollection()->CreateStudyArea("North"); }

  // Starts another data manager whose platform and host are bent.
  void StartWith(const Platform& services, const std::shared_ptr<Host>& host) {
    world.manager = std::make_shared<KVDataManager>(services);
    world.manager->DMInitialize(host);
  }

  TestWorld world;
};

TEST_F(TablesManagerTest, WithoutACurrentStudyAreaTablesGoToTheWorkingDirectory) {
  EXPECT_EQ(world.manager->TablesManager()->TablesDir(), R"(D:\Data\Tables)");
  world.SetCurrentStudyArea("");
  EXPECT_EQ(world.manager->TablesManager()->TablesDir(), R"(D:\Data\Tables)");
}

TEST_F(TablesManagerTest, TablesOfTheCurrentStudyAreaGoToItsFolder) {
  world.SetCurrentStudyArea("North");
  EXPECT_EQ(world.manager->TablesManager()->TablesDir(), R"(D:\Data\StudyAreas\North\Tables)");
}

TEST_F(TablesManagerTest, AStudyAreaThatNoLongerExistsFallsBackToTheWorkingDirectory) {
  world.SetCurrentStudyArea("North");
  const auto tables = world.manager->TablesManager();
  world.manager->StudyAreaCollection()->DeleteStudyArea("North");
  world.SetCurrentStudyArea("North");
  EXPECT_EQ(tables->TablesDir(), R"(D:\Data\Tables)");
}

TEST_F(TablesManagerTest, WithoutAReadableCatalogueTablesGoToTheWorkingDirectory) {
  world.LoadCatalogue("<broken");
  world.SetCurrentStudyArea("North");
  EXPECT_EQ(world.manager->TablesManager()->TablesDir(), R"(D:\Data\Tables)");
}

TEST_F(TablesManagerTest, TheTablesFolderIsLookedUpWithoutBeingMade) {
  EXPECT_EQ(world.manager->TablesManager()->TablesDir(), R"(D:\Data\Tables)");
  EXPECT_FALSE(world.platform.files->FolderExists(R"(D:\Data\Tables)"));
}

TEST_F(TablesManagerTest, AFreePathMakesEveryMissingFolderOnTheWay) {
  world.SetCurrentStudyArea("North");
  world.platform.files->RemoveTree(R"(D:\Data\StudyAreas)");
  EXPECT_EQ(world.manager->TablesManager()->FreeTablePath(),
            R"(D:\Data\StudyAreas\North\Tables\Table)");
  EXPECT_TRUE(world.platform.files->FolderExists(R"(D:\Data\StudyAreas\North\Tables)"));
  EXPECT_THAT(world.platform.files->Tree(R"(D:\Data\StudyAreas\North\Tables)"), IsEmpty());
}

TEST_F(TablesManagerTest, SkipsNamesTakenWithAnyExtension) {
  const auto tables = world.manager->TablesManager();
  world.platform.files->AddFile(R"(D:\Data\Tables\Table.dbf)");
  EXPECT_EQ(tables->FreeTablePath(), R"(D:\Data\Tables\Table1)");
  world.platform.files->AddFile(R"(D:\Data\Tables\Table1)");
  world.platform.files->AddFile(R"(D:\Data\Tables\Table3.txt)");
  EXPECT_EQ(tables->FreeTablePath(), R"(D:\Data\Tables\Table2)");
}

TEST_F(TablesManagerTest, FoldersAndHiddenFilesBlockNoName) {
  world.platform.files->AddFolder(R"(D:\Data\Tables\Table)");
  world.platform.files->AddFile(R"(D:\Data\Tables\Table.dbf)");
  world.platform.files->SetAttributes(R"(D:\Data\Tables\Table.dbf)", kHiddenAttribute);
  EXPECT_EQ(world.manager->TablesManager()->FreeTablePath(), R"(D:\Data\Tables\Table)");
}

TEST_F(TablesManagerTest, TheFreePathHasNoDoubledBackslash) {
  world.LoadCatalogue(
      R"(<STUDYAREACOLLECTION><STUDYAREA NAME="_N_" DIRNAME="D:\\Data\\N\\"/></STUDYAREACOLLECTION>)");
  world.SetCurrentStudyArea("N");
  EXPECT_EQ(world.manager->TablesManager()->TablesDir(), R"(D:\\Data\\N\\Tables)");
  EXPECT_EQ(world.manager->TablesManager()->FreeTablePath(), R"(D:\Data\N\Tables\Table)");
}

TEST_F(TablesManagerTest, TheFreePathLooksUpTheTablesFolderThreeTimes) {
  const auto counter = std::make_shared<FailureCounter>();
  StartWith(world.platform.Bundle(), std::make_shared<FailingHost>(world.host, counter));
  const auto tables = world.manager->TablesManager();
  counter->calls = 0;
  tables->TablesDir();
  const int calls_of_one = counter->calls;
  counter->calls = 0;
  tables->FreeTablePath();
  EXPECT_EQ(counter->calls, 3 * calls_of_one);
}

TEST(UnboundTablesManagerTest, HasNoTablesFolderAndNobodyToReportTo) {
  KVTablesManager tables;
  EXPECT_EQ(tables.TablesDir(), "");
  EXPECT_RUNTIME_ERROR(tables.FreeTablePath(), kObjectNotSet);
}

TEST_F(TablesManagerTest, WithoutAHostTheTablesFolderFails) {
  world.manager = std::make_shared<KVDataManager>(world.platform.Bundle());
  EXPECT_RUNTIME_ERROR(world.manager->TablesManager()->TablesDir(), kObjectNotSet);
}

TEST_F(TablesManagerTest, WithoutACurrentStateTheTablesFolderFails) {
  StartWith(world.platform.Bundle(),
            std::make_shared<PropertiesHost>(nullptr, world.host->Settings()));
  EXPECT_RUNTIME_ERROR(world.manager->TablesManager()->TablesDir(), kObjectNotSet);
}

TEST_F(TablesManagerTest, ANameThatIsNullOrUnsearchableFailsTheTablesFolder) {
  const auto tables = world.manager->TablesManager();
  world.SetCurrentStudyArea("a\"b");
  EXPECT_RUNTIME_ERROR(tables->TablesDir(), kMemberNotSupported);
  world.host->CurrentState()->SetProperty("Study Area Name", Null());
  EXPECT_RUNTIME_ERROR(tables->TablesDir(), kInvalidUseOfNull);
}

TEST_F(TablesManagerTest, AFreePathThatFailsCannotBeReported) {
  world.manager = std::make_shared<KVDataManager>(world.platform.Bundle());
  try {
    world.manager->TablesManager()->FreeTablePath();
    FAIL() << "no error";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.number(), kMemberNotSupported);
    EXPECT_EQ(error.unsent_message(), "Failed to get free table path for the Study Area");
    EXPECT_EQ(ErrorChain(error).back().number(), kObjectNotSet);
  }
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST_F(TablesManagerTest, AFolderThatCannotBeMadeEndsIn438) {
  world.platform.files->RefuseWrites(R"(D:\Data)");
  EXPECT_RUNTIME_ERROR(world.manager->TablesManager()->FreeTablePath(), kMemberNotSupported);
  EXPECT_THAT(world.Messages(), IsEmpty());
}

// Finds every name taken.
class CrowdedFileSystem : public FailingFileSystem {
 public:
  explicit CrowdedFileSystem(std::shared_ptr<FileSystem> files)
      : FailingFileSystem(std::move(files), std::make_shared<FailureCounter>()) {}
  std::vector<std::string> FindFiles(std::string_view) override { return {"taken"}; }
};

TEST_F(TablesManagerTest, RunsOutOfNamesWith438) {
  auto services = world.platform.Bundle();
  services.files = std::make_shared<CrowdedFileSystem>(services.files);
  StartWith(services, world.host);
  EXPECT_RUNTIME_ERROR(world.manager->TablesManager()->FreeTablePath(), kMemberNotSupported);
}

}  // namespace
}  // namespace kvdm
