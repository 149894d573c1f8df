// KVStudyAreaCollection: deleting study areas.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/conformance/results.h"
#include "tests/conformance/world.h"

namespace kvdm::conformance {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kFailed[] = "Couldn't delete StudyArea";

std::shared_ptr<IKVStudyAreaCollection> Areas(World& world) {
  return world.Manager()->StudyAreaCollection();
}

TEST(DeleteStudyAreaConformance, RemovesElementAndFolderAndSaves) {
  OpenWorld world;
  Areas(world)->CreateStudyArea("North");
  world.AddFile(R"(D:\Data\StudyAreas\North\Analyses\Sales\Analysis.lyr)");
  world.AddFolder(R"(D:\Data\StudyAreas\South)");
  EXPECT_TRUE(Saves(world, [&] { EXPECT_TRUE(Areas(world)->DeleteStudyArea("North")); }));
  EXPECT_EQ(world.StudyAreas(), "");
  EXPECT_THAT(world.Tree(R"(D:\Data\StudyAreas)"), ElementsAre(R"(South\)"));
}

TEST(DeleteStudyAreaConformance, ClosesTheCurrentStudyArea) {
  OpenWorld world;
  Areas(world)->CreateStudyArea("North");
  world.SetState("Study Area Name", "North");
  EXPECT_TRUE(Areas(world)->DeleteStudyArea("North"));
  EXPECT_EQ(world.State("Study Area Name"), Value(""));
}

TEST(DeleteStudyAreaConformance, LeavesAnotherStudyAreaOpen) {
  OpenWorld world;
  Areas(world)->CreateStudyArea("North");
  for (const char* open : {"South", "north", "_North_"}) {
    world.SetState("Study Area Name", open);
    Areas(world)->DeleteStudyArea("North");
    EXPECT_EQ(world.State("Study Area Name"), Value(open));
  }
}

TEST(DeleteStudyAreaConformance, ClosesAStudyAreaThatIsGoneAlready) {
  OpenWorld world;
  world.SetState("Study Area Name", "Gone");
  EXPECT_FALSE(Areas(world)->DeleteStudyArea("Gone"));
  EXPECT_EQ(world.State("Study Area Name"), Value(""));
}

TEST(DeleteStudyAreaConformance, DoesNothingForAnUnknownName) {
  OpenWorld world;
  Areas(world)->CreateStudyArea("North");
  for (const char* name : {"north", "South", "", "_North_"}) {
    EXPECT_FALSE(Saves(world, [&] { EXPECT_FALSE(Areas(world)->DeleteStudyArea(name)); })) << name;
    EXPECT_FALSE(Saves(world, [&] { EXPECT_FALSE(Areas(world)->DeleteStudyAreaByGUID(name)); }));
  }
  EXPECT_TRUE(world.FolderExists(R"(D:\Data\StudyAreas\North)"));
}

TEST(DeleteStudyAreaConformance, NeedsTheHostsCurrentState) {
  OpenWorld world;
  Areas(world)->CreateStudyArea("North");
  world.LoseState();
  EXPECT_EQ(OutcomeOf([&] { Areas(world)->DeleteStudyArea("North"); }), FailsToReport(kFailed));
  EXPECT_TRUE(Areas(world)->StudyAreaExists("North"));
  EXPECT_TRUE(world.FolderExists(R"(D:\Data\StudyAreas\North)"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(DeleteStudyAreaConformance, NeedsAHost) {
  World world;
  world.PutStudyAreas(R"(<STUDYAREA NAME="_North_"/>)");
  EXPECT_EQ(OutcomeOf([&] { Areas(world)->DeleteStudyArea("North"); }), FailsToReport(kFailed));
  EXPECT_TRUE(Areas(world)->StudyAreaExists("North"));
}

TEST(DeleteStudyAreaConformance, NeedsTheNameOfTheCurrentStudyArea) {
  OpenWorld world(R"(<STUDYAREA NAME="_North_" DIRNAME=""/>)");
  world.SetState("Study Area Name", Null{});
  EXPECT_EQ(OutcomeOf([&] { Areas(world)->DeleteStudyArea("North"); }), FailsToReport(kFailed));
  EXPECT_TRUE(Areas(world)->StudyAreaExists("North"));
}

TEST(DeleteStudyAreaConformance, ClosesTheStudyAreaEvenWithoutACatalogue) {
  World world;
  world.PutRegistryText("StudyAreaCollection", "<bad");
  world.Initialize();
  world.SetState("Study Area Name", "North");
  EXPECT_FALSE(Areas(world)->DeleteStudyArea("North"));
  EXPECT_EQ(world.State("Study Area Name"), Value(""));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(DeleteStudyAreaConformance, CannotReportADoubleQuote) {
  OpenWorld world;
  EXPECT_EQ(OutcomeOf([&] { Areas(world)->DeleteStudyArea("a\"b"); }), FailsToReport(kFailed));
  EXPECT_EQ(OutcomeOf([&] { Areas(world)->DeleteStudyAreaByGUID("a\"b"); }),
            FailsToReport(kFailed));
}

TEST(DeleteStudyAreaConformance, ClosesTheStudyAreaEvenWhenItFailsLater) {
  OpenWorld world;
  world.SetState("Study Area Name", "a\"b");
  EXPECT_EQ(OutcomeOf([&] { Areas(world)->DeleteStudyArea("a\"b"); }), FailsToReport(kFailed));
  EXPECT_EQ(world.State("Study Area Name"), Value(""));
}

TEST(DeleteStudyAreaConformance, WithoutDirNameFailsAfterTheElementIsGone) {
  OpenWorld world(R"(<STUDYAREA NAME="_A_" GUID="{1}"/><STUDYAREA NAME="_B_" GUID="{2}"/>)");
  EXPECT_FALSE(Saves(world, [&] {
    EXPECT_EQ(OutcomeOf([&] { Areas(world)->DeleteStudyArea("A"); }), FailsToReport(kFailed));
    EXPECT_EQ(OutcomeOf([&] { Areas(world)->DeleteStudyAreaByGUID("{2}"); }),
              FailsToReport(kFailed));
  }));
  EXPECT_EQ(world.StudyAreas(), "");
}

TEST(DeleteStudyAreaConformance, WithADirNameThatNamesNoFolderDeletesNothing) {
  for (const char* folder : {"", " ", R"(D:\)", R"(\)", R"(Data\)", R"(D:\Data\StudyAreas\\)",
                             R"(D:\Data\StudyAreas\..\)", R"(D:\Data\StudyAreas\North\..\South\)",
                             R"(D:\Data\StudyAreas\.\)"}) {
    OpenWorld world(std::string("<STUDYAREA NAME='_A_' DIRNAME='") + folder + "'/>");
    world.AddFolder(R"(D:\Data\StudyAreas\North)");
    world.AddFolder(R"(D:\Data\StudyAreas\South)");
    const auto before = world.Tree(R"(D:\)");
    EXPECT_TRUE(Areas(world)->DeleteStudyArea("A")) << folder;
    EXPECT_EQ(world.Tree(R"(D:\)"), before) << folder;
  }
}

TEST(DeleteStudyAreaConformance, RemovesTheStoredFolderWhereverItIs) {
  OpenWorld world(R"(<STUDYAREA NAME="_A_" DIRNAME="D:\Elsewhere\"/>)");
  world.AddFile(R"(D:\Elsewhere\a.txt)");
  world.AddFolder(R"(D:\Data\StudyAreas\A)");
  EXPECT_TRUE(Areas(world)->DeleteStudyArea("A"));
  EXPECT_FALSE(world.FolderExists(R"(D:\Elsewhere)"));
  EXPECT_TRUE(world.FolderExists(R"(D:\Data\StudyAreas\A)"));
}

TEST(DeleteStudyAreaConformance, SucceedsWhenTheFolderCannotBeDeleted) {
  OpenWorld world;
  Areas(world)->CreateStudyArea("North");
  world.AddFile(R"(D:\Data\StudyAreas\North\keep.lyr)");
  world.SetReadOnly(R"(D:\Data\StudyAreas\North\keep.lyr)");
  EXPECT_TRUE(Areas(world)->DeleteStudyArea("North"));
  EXPECT_EQ(world.StudyAreas(), "");
  EXPECT_THAT(world.Tree(R"(D:\Data\StudyAreas)"), ElementsAre(R"(North\)", R"(North\keep.lyr)"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(DeleteStudyAreaConformance, SucceedsWithoutTheFolder) {
  OpenWorld world(R"(<STUDYAREA NAME="_A_" DIRNAME="D:\Gone\"/>)");
  EXPECT_TRUE(Areas(world)->DeleteStudyArea("A"));
  EXPECT_EQ(world.StudyAreas(), "");
}

TEST(DeleteStudyAreaConformance, RemovesTheFirstOfTwoOfOneName) {
  OpenWorld world(R"(<STUDYAREA NAME="_A_" GUID="{1}" DIRNAME="D:\1\"/>)"
                  R"(<STUDYAREA NAME="_A_" GUID="{2}" DIRNAME="D:\2\"/>)");
  EXPECT_TRUE(Areas(world)->DeleteStudyArea("A"));
  EXPECT_EQ(TextsOf(Areas(world)->StudyAreasGUIDsList()), Texts{"{2}"});
}

TEST(DeleteStudyAreaConformance, LeavesViewsWithTheirElement) {
  OpenWorld world;
  Areas(world)->CreateStudyArea("North");
  const auto north = Areas(world)->GetStudyArea("North");
  Areas(world)->DeleteStudyArea("North");
  north->SetComments("still here");
  EXPECT_EQ(north->Comments(), "still here");
  EXPECT_EQ(world.StudyAreas(), "");
}

TEST(DeleteStudyAreaByGuidConformance, LeavesTheFolderOfAFullDirName) {
  OpenWorld world;
  Areas(world)->CreateStudyArea("North");
  EXPECT_TRUE(Saves(world, [&] { EXPECT_TRUE(Areas(world)->DeleteStudyAreaByGUID(Guid(1))); }));
  EXPECT_EQ(world.StudyAreas(), "");
  EXPECT_TRUE(world.FolderExists(R"(D:\Data\StudyAreas\North)"));
}

TEST(DeleteStudyAreaByGuidConformance, RemovesAFolderBelowStudyAreas) {
  OpenWorld world(R"(<STUDYAREA NAME="_A_" GUID="{1}" DIRNAME="North\"/>)");
  world.AddFile(R"(D:\Data\StudyAreas\North\a.lyr)");
  world.AddFile(R"(D:\Data\StudyAreas\South\a.lyr)");
  EXPECT_TRUE(Areas(world)->DeleteStudyAreaByGUID("{1}"));
  EXPECT_THAT(world.Tree(R"(D:\Data\StudyAreas)"), ElementsAre(R"(South\)", R"(South\a.lyr)"));
}

TEST(DeleteStudyAreaByGuidConformance, LeavesTheStudyAreaOpenAndNeedsNoHost) {
  OpenWorld world;
  Areas(world)->CreateStudyArea("North");
  world.SetState("Study Area Name", "North");
  EXPECT_TRUE(Areas(world)->DeleteStudyAreaByGUID(Guid(1)));
  EXPECT_EQ(world.State("Study Area Name"), Value("North"));

  World without_host;
  without_host.PutStudyAreas(R"(<STUDYAREA NAME="_A_" GUID="{1}" DIRNAME="x\"/>)");
  EXPECT_TRUE(Areas(without_host)->DeleteStudyAreaByGUID("{1}"));
}

TEST(DeleteStudyAreaByGuidConformance, RemovesNothingButAFolderBelowStudyAreas) {
  for (const char* folder : {R"(..\..\Precious\)", "", R"(..\)", R"(North\..\)"}) {
    OpenWorld world(std::string("<STUDYAREA GUID='{1}' DIRNAME='") + folder + "'/>");
    world.AddFile(R"(D:\Precious\a.txt)");
    world.AddFolder(R"(D:\Data\StudyAreas\North)");
    const auto before = world.Tree(R"(D:\)");
    EXPECT_TRUE(Areas(world)->DeleteStudyAreaByGUID("{1}"));
    EXPECT_EQ(world.Tree(R"(D:\)"), before) << folder;
  }
}

}  // namespace
}  // namespace kvdm::conformance
