// KVAnalysisCollection: creating and deleting analyses with their folders.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/conformance/families.h"

namespace kvdm::conformance {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kNorth[] = R"(<STUDYAREA NAME="_North_" DIRNAME="D:\Areas\North\"/>)";
constexpr char kAnalysisCreateFailed[] = "Kelvaro Data Manager: Couldn't create Analysis";
constexpr char kAnalysisDeleteFailed[] = "Couldn't delete Analysis";

using AnalysesWorld = FamilyWorld<AnalysisFamily>;

std::shared_ptr<IKVAnalysisCollection> Analyses(World& world) {
  return world.Manager()->AnalysisCollection();
}

TEST(CreateAnalysisConformance, AddsTheElementAndMakesTheFolder) {
  AnalysesWorld world("");
  EXPECT_TRUE(Analyses(world)->CreateAnalysis("Sales"));
  EXPECT_EQ(world.Metadata(),
            AnalysesWorld::Inside("<ANALYSIS NAME=\"_Sales_\" GUID=\"" + Guid(1) +
                                  "\" DIRNAME=\"D:\\Data\\Analyses\\Sales\\\""
                                  " LAYERFILE=\"D:\\Data\\Analyses\\Sales\\Analysis.lyr\""
                                  " CREATIONTIME=\"" +
                                  kNow + "\"/>"));
  EXPECT_THAT(world.Tree(R"(D:\Data\Analyses)"), ElementsAre(R"(Sales\)"));
}

TEST(CreateAnalysisConformance, GoesBelowTheCurrentStudyArea) {
  AnalysesWorld world("", kNorth);
  world.SetState("Study Area Name", "North");
  EXPECT_TRUE(Analyses(world)->CreateAnalysis("Sales"));
  const auto sales = Analyses(world)->GetAnalysis("Sales");
  EXPECT_EQ(sales->AnalysisDir(), R"(D:\Areas\North\Analyses\Sales\)");
  EXPECT_EQ(sales->LayerFile(), R"(D:\Areas\North\Analyses\Sales\Analysis.lyr)");
  EXPECT_TRUE(world.FolderExists(R"(D:\Areas\North\Analyses\Sales)"));
}

TEST(CreateAnalysisConformance, GoesBelowTheWorkingDirectoryWhenTheStudyAreaIsGone) {
  AnalysesWorld world("", kNorth);
  for (const char* name : {"", "South", "north"}) {
    world.SetState("Study Area Name", name);
    EXPECT_TRUE(Analyses(world)->CreateAnalysis(std::string("of ") + name));
    EXPECT_EQ(Analyses(world)->GetAnalysis(std::string("of ") + name)->AnalysisDir(),
              std::string(R"(D:\Data\Analyses\of )") + name + "\\");
  }
}

TEST(CreateAnalysisConformance, AddsASecondOneOfTheSameName) {
  OpenWorld world;
  EXPECT_TRUE(Analyses(world)->CreateAnalysis("North"));
  EXPECT_TRUE(Analyses(world)->CreateAnalysis("North"));
  EXPECT_EQ(TextsOf(Analyses(world)->AnalysesList()), (Texts{"North", "North"}));
  EXPECT_EQ(Analyses(world)->GetAnalysis("North")->AnalysisGUID(), Guid(1));
  EXPECT_EQ(Analyses(world)->GetAnalysisByGUID(Guid(2))->AnalysisDir(),
            R"(D:\Data\Analyses\North1\)");
  EXPECT_THAT(world.Tree(R"(D:\Data\Analyses)"), ElementsAre(R"(North1\)", R"(North\)"));
}

TEST(CreateAnalysisConformance, IsStoppedByANameThatIsWrappedTwice) {
  const std::string twice = R"(<ANALYSIS NAME="__North__"/>)";
  AnalysesWorld world(twice);
  EXPECT_FALSE(Analyses(world)->CreateAnalysis("North"));
  EXPECT_EQ(world.Metadata(), AnalysesWorld::Inside(twice));
  EXPECT_FALSE(world.FolderExists(R"(D:\Data\Analyses)"));
}

TEST(CreateAnalysisConformance, TakesTheNextFolderWhenTheNameIsTaken) {
  OpenWorld world;
  world.AddFolder(R"(D:\Data\Analyses\North)");
  world.AddFolder(R"(D:\Data\Analyses\North1)");
  world.AddFile(R"(D:\Data\Analyses\North2.txt)");
  EXPECT_TRUE(Analyses(world)->CreateAnalysis("North"));
  EXPECT_EQ(Analyses(world)->GetAnalysis("North")->AnalysisDir(), R"(D:\Data\Analyses\North2\)");
}

TEST(CreateAnalysisConformance, AcceptsAnEmptyName) {
  OpenWorld world;
  world.AddFolder(R"(D:\Data\Analyses)");
  EXPECT_TRUE(Analyses(world)->CreateAnalysis(""));
  EXPECT_EQ(Analyses(world)->GetAnalysis("")->AnalysisDir(), R"(D:\Data\Analyses\1\)");
  EXPECT_TRUE(world.FolderExists(R"(D:\Data\Analyses\1)"));
}

TEST(CreateAnalysisConformance, AnEmptyNameIsAFolderNameWhereThereIsNoFolder) {
  OpenWorld without_folder;
  EXPECT_TRUE(Analyses(without_folder)->CreateAnalysis(""));
  EXPECT_EQ(Analyses(without_folder)->GetAnalysis("")->AnalysisDir(), R"(D:\Data\Analyses\\)");
}

TEST(CreateAnalysisConformance, MakesEveryMissingFolder) {
  AnalysesWorld world("", R"(<STUDYAREA NAME="_A_" DIRNAME="D:\x\y\z\"/>)");
  world.SetState("Study Area Name", "A");
  EXPECT_TRUE(Analyses(world)->CreateAnalysis("Sales"));
  EXPECT_TRUE(world.FolderExists(R"(D:\x\y\z\Analyses\Sales)"));
}

TEST(CreateAnalysisConformance, IsFalseButKeepsTheElementWhenTheFolderCannotBeMade) {
  OpenWorld world;
  world.LockFolder(R"(D:\Data)");
  EXPECT_FALSE(Analyses(world)->CreateAnalysis("Sales"));
  const auto sales = Analyses(world)->GetAnalysis("Sales");
  ASSERT_NE(sales, nullptr);
  EXPECT_EQ(sales->AnalysisGUID(), Guid(1));
  EXPECT_EQ(sales->AnalysisDir(), R"(D:\Data\Analyses\Sales\)");
  EXPECT_EQ(sales->LayerFile(), R"(D:\Data\Analyses\Sales\Analysis.lyr)");
  EXPECT_EQ(sales->CreationTime(), kNow);
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(CreateAnalysisConformance, NeedsAHostWithAState) {
  World without_host;
  without_host.Manager()->SetWorkingDirectory(R"(D:\Data)");
  OpenWorld without_state;
  without_state.LoseState();
  OpenWorld null_name;
  null_name.SetState("Study Area Name", Null{});
  for (World* world : std::vector<World*>{&without_host, &without_state, &null_name}) {
    EXPECT_EQ(OutcomeOf([&] { Analyses(*world)->CreateAnalysis("A"); }),
              FailsToReport(kAnalysisCreateFailed));
    EXPECT_THAT(TextsOf(Analyses(*world)->AnalysesList()), IsEmpty());
    EXPECT_FALSE(world->FolderExists(R"(D:\Data\Analyses)"));
    EXPECT_THAT(world->Messages(), IsEmpty());
  }
}

TEST(CreateAnalysisConformance, NeedsAStudyAreaNameThatCanBeLookedUp) {
  OpenWorld world;
  world.SetState("Study Area Name", "a\"b");
  EXPECT_EQ(OutcomeOf([&] { Analyses(world)->CreateAnalysis("A"); }),
            FailsToReport(kAnalysisCreateFailed));
  EXPECT_THAT(TextsOf(Analyses(world)->AnalysesList()), IsEmpty());
}

TEST(CreateAnalysisConformance, ReadsTheCurrentStateAndNotTheSettings) {
  AnalysesWorld world("", kNorth);
  world.SetSetting("Study Area Name", "North");
  EXPECT_TRUE(Analyses(world)->CreateAnalysis("Sales"));
  EXPECT_TRUE(world.FolderExists(R"(D:\Data\Analyses\Sales)"));
}

TEST(CreateAnalysisConformance, GivesUpAfter32767Folders) {
  OpenWorld world;
  world.Fill(R"(D:\Data\Analyses\)");
  EXPECT_EQ(OutcomeOf([&] { Analyses(world)->CreateAnalysis("N"); }),
            FailsToReport(kAnalysisCreateFailed));
  EXPECT_THAT(TextsOf(Analyses(world)->AnalysesList()), IsEmpty());
}

TEST(DeleteAnalysisConformance, RemovesElementAndFolder) {
  for (const bool by_guid : {false, true}) {
    OpenWorld world;
    Analyses(world)->CreateAnalysis("Sales");
    Analyses(world)->CreateAnalysis("Other");
    world.AddFile(R"(D:\Data\Analyses\Sales\Sub\a.lyr)");
    world.AddFile(R"(D:\Data\Analyses\Sales\Analysis.lyr)");
    world.SetState("Study Area Name", "Sales");
    EXPECT_TRUE(by_guid ? Analyses(world)->DeleteAnalysisByGUID(Guid(1))
                        : Analyses(world)->DeleteAnalysis("Sales"));
    EXPECT_EQ(TextsOf(Analyses(world)->AnalysesList()), Texts{"Other"});
    EXPECT_THAT(world.Tree(R"(D:\Data\Analyses)"), ElementsAre(R"(Other\)"));
    EXPECT_EQ(world.State("Study Area Name"), Value("Sales"));
  }
}

TEST(DeleteAnalysisConformance, NeedsNoHost) {
  World world;
  world.Load(FamilyWorld<AnalysisFamily>::Inside(
      R"(<ANALYSIS NAME="_A_" GUID="{1}" DIRNAME="x"/><ANALYSIS GUID="{2}" DIRNAME="x"/>)"));
  EXPECT_TRUE(Analyses(world)->DeleteAnalysis("A"));
  EXPECT_TRUE(Analyses(world)->DeleteAnalysisByGUID("{2}"));
}

TEST(DeleteAnalysisConformance, SucceedsWhenTheFolderStays) {
  OpenWorld world;
  Analyses(world)->CreateAnalysis("Sales");
  world.AddFile(R"(D:\Data\Analyses\Sales\keep.lyr)");
  world.SetReadOnly(R"(D:\Data\Analyses\Sales\keep.lyr)");
  EXPECT_TRUE(Analyses(world)->DeleteAnalysis("Sales"));
  EXPECT_THAT(TextsOf(Analyses(world)->AnalysesList()), IsEmpty());
  EXPECT_THAT(world.Tree(R"(D:\Data\Analyses)"), ElementsAre(R"(Sales\)", R"(Sales\keep.lyr)"));
}

TEST(DeleteAnalysisConformance, WithoutDirNameFailsAfterTheElementIsGone) {
  AnalysesWorld world(R"(<ANALYSIS NAME="_A_" GUID="{1}"/><ANALYSIS NAME="_B_" GUID="{2}"/>)");
  EXPECT_EQ(OutcomeOf([&] { Analyses(world)->DeleteAnalysis("A"); }),
            FailsToReport(kAnalysisDeleteFailed));
  EXPECT_EQ(OutcomeOf([&] { Analyses(world)->DeleteAnalysisByGUID("{2}"); }),
            FailsToReport(kAnalysisDeleteFailed));
  EXPECT_THAT(TextsOf(Analyses(world)->AnalysesList()), IsEmpty());
}

TEST(DeleteAnalysisConformance, WithADirNameThatNamesNoFolderDeletesNothing) {
  for (const char* folder :
       {"", " ", R"(D:\)", R"(\)", R"(D:\Gone\)", R"(D:\Data\..\Precious\)", R"(Precious\)",
        R"(D:\Data\Analyses\\)", R"(D:\Data\Analyses\A\..\B\)"}) {
    AnalysesWorld world(std::string("<ANALYSIS NAME='_A_' DIRNAME='") + folder + "'/>");
    world.AddFile(R"(D:\Precious\a.txt)");
    world.AddFolder(R"(D:\Data\Analyses\A)");
    world.AddFolder(R"(D:\Data\Analyses\B)");
    const auto before = world.Tree(R"(D:\)");
    EXPECT_TRUE(Analyses(world)->DeleteAnalysis("A")) << folder;
    EXPECT_EQ(world.Tree(R"(D:\)"), before) << folder;
  }
}

}  // namespace
}  // namespace kvdm::conformance
