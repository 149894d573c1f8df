// KVTablesManager: where tables go.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/conformance/results.h"
#include "tests/conformance/world.h"

namespace kvdm::conformance {
namespace {

using testing::IsEmpty;

constexpr char kNorth[] = R"(<STUDYAREA NAME="_North_" DIRNAME="D:\Areas\North\"/>)";
constexpr char kFailed[] = "Failed to get free table path for the Study Area";

std::shared_ptr<IKVTablesManager> Tables(World& world) { return world.Manager()->TablesManager(); }

TEST(TablesManagerConformance, UsesTheWorkingDirectoryWithoutAStudyArea) {
  OpenWorld world;
  EXPECT_EQ(Tables(world)->TablesDir(), R"(D:\Data\Tables)");
  world.SetState("Study Area Name", "");
  EXPECT_EQ(Tables(world)->TablesDir(), R"(D:\Data\Tables)");
  EXPECT_FALSE(world.FolderExists(R"(D:\Data\Tables)"));
}

TEST(TablesManagerConformance, UsesTheFolderOfTheCurrentStudyArea) {
  OpenWorld world(kNorth);
  world.SetState("Study Area Name", "North");
  EXPECT_EQ(Tables(world)->TablesDir(), R"(D:\Areas\North\Tables)");
}

TEST(TablesManagerConformance, UsesTheWorkingDirectoryForAStudyAreaThatIsGone) {
  OpenWorld world(kNorth);
  for (const char* name : {"South", "north", "_North_"}) {
    world.SetState("Study Area Name", name);
    EXPECT_EQ(Tables(world)->TablesDir(), R"(D:\Data\Tables)") << name;
  }
}

TEST(TablesManagerConformance, UsesTheWorkingDirectoryWithoutACatalogue) {
  World world;
  world.PutRegistryText("StudyAreaCollection", "<bad");
  world.SetSetting("VELKKVDirectory", R"(D:\Data)");
  world.Initialize();
  world.SetState("Study Area Name", "North");
  EXPECT_EQ(Tables(world)->TablesDir(), R"(D:\Data\Tables)");
}

TEST(TablesManagerConformance, ReadsTheCurrentStateAndNotTheSettings) {
  OpenWorld world(kNorth);
  world.SetSetting("Study Area Name", "North");
  EXPECT_EQ(Tables(world)->TablesDir(), R"(D:\Data\Tables)");
}

TEST(TablesManagerConformance, LooksUpTheFolderThreeTimesForAFreePath) {
  OpenWorld world;
  const auto tables = Tables(world);
  tables->FreeTablePath();
  EXPECT_EQ(world.StateReads(), 3);
}

TEST(TablesManagerConformance, TakesTheStudyAreasFolderAsItIs) {
  OpenWorld world(R"(<STUDYAREA NAME="_A_" DIRNAME="D:\A"/><STUDYAREA NAME="_B_"/>)");
  world.SetState("Study Area Name", "A");
  EXPECT_EQ(Tables(world)->TablesDir(), R"(D:\ATables)");
  world.SetState("Study Area Name", "B");
  EXPECT_EQ(Tables(world)->TablesDir(), "Tables");
}

TEST(TablesManagerConformance, CreatesTheFolderForAFreePath) {
  OpenWorld world(kNorth);
  world.SetState("Study Area Name", "North");
  EXPECT_EQ(Tables(world)->FreeTablePath(), R"(D:\Areas\North\Tables\Table)");
  EXPECT_TRUE(world.FolderExists(R"(D:\Areas\North\Tables)"));
  EXPECT_THAT(world.Tree(R"(D:\Areas\North\Tables)"), IsEmpty());
}

TEST(TablesManagerConformance, CountsPastFilesOfAnyExtension) {
  OpenWorld world;
  world.AddFile(R"(D:\Data\Tables\Table.dbf)");
  EXPECT_EQ(Tables(world)->FreeTablePath(), R"(D:\Data\Tables\Table1)");
  world.AddFile(R"(D:\Data\Tables\Table1.txt)");
  world.AddFile(R"(D:\Data\Tables\Table3)");
  EXPECT_EQ(Tables(world)->FreeTablePath(), R"(D:\Data\Tables\Table2)");
}

TEST(TablesManagerConformance, IsNotStoppedByFoldersAndHiddenFiles) {
  OpenWorld world;
  world.AddFolder(R"(D:\Data\Tables\Table)");
  world.AddFile(R"(D:\Data\Tables\Table.dbf)");
  world.SetHidden(R"(D:\Data\Tables\Table.dbf)");
  EXPECT_EQ(Tables(world)->FreeTablePath(), R"(D:\Data\Tables\Table)");
}

TEST(TablesManagerConformance, GivesNoDoubledBackslash) {
  OpenWorld world(R"(<STUDYAREA NAME="_A_" DIRNAME="D:\A\\"/>)");
  world.SetState("Study Area Name", "A");
  EXPECT_EQ(Tables(world)->TablesDir(), R"(D:\A\\Tables)");
  EXPECT_EQ(Tables(world)->FreeTablePath(), R"(D:\A\Tables\Table)");
}

TEST(TablesManagerConformance, PassesOnTheFailureOfTablesDir) {
  OpenWorld world;
  world.LoseState();
  EXPECT_EQ(OutcomeOf([&] { Tables(world)->TablesDir(); }), Fails(91));
}

TEST(TablesManagerConformance, PassesOnAStudyAreaNameThatIsNoText) {
  OpenWorld world;
  world.SetState("Study Area Name", Null{});
  EXPECT_EQ(OutcomeOf([&] { Tables(world)->TablesDir(); }), Fails(94));
}

TEST(TablesManagerConformance, PassesOnTheStudyAreasOwnReport) {
  OpenWorld world;
  world.SetState("Study Area Name", "a\"b");
  EXPECT_EQ(OutcomeOf([&] { Tables(world)->TablesDir(); }),
            FailsToReport("Kelvaro Data Manager: Couldn't get StudyArea Object"));
}

TEST(TablesManagerConformance, CannotReportAFailureOfFreeTablePath) {
  OpenWorld without_state;
  without_state.LoseState();
  OpenWorld locked;
  locked.LockFolder(R"(D:\Data)");
  World without_host;
  without_host.Manager()->SetWorkingDirectory(R"(D:\Data)");
  for (World* world : std::vector<World*>{&without_state, &locked, &without_host}) {
    EXPECT_EQ(OutcomeOf([&] { Tables(*world)->FreeTablePath(); }), FailsToReport(kFailed));
    EXPECT_THAT(world->Messages(), IsEmpty());
  }
}

TEST(TablesManagerConformance, UnboundHasNoFolder) {
  World world;
  const auto tables = world.New<IKVTablesManager>("KVTablesManager");
  EXPECT_EQ(tables->TablesDir(), "");
  EXPECT_EQ(OutcomeOf([&] { tables->FreeTablePath(); }).error, 91);
}

}  // namespace
}  // namespace kvdm::conformance
