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

TEST(DeleteStudyAreaConformance, WithAnEmptyDirNameDeletesNoFolder) {
  OpenWorld world(R"(<STUDYAREA NAME="_A_" DIRNAME=""/>)");
  const auto before = world.Tree(R"(D:\)");
  EXPECT_TRUE(Areas(world)->DeleteStudyArea("A"));
  EXPECT_EQ(world.Tree(R"(D:\)"), before);
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

TEST(DeleteStudyAreaByGuidConformance, NeverLeavesTheStudyAreasFolder) {
  OpenWorld world(R"(<STUDYAREA NAME="_A_" GUID="{1}" DIRNAME="..\..\Precious\"/>)");
  world.AddFile(R"(D:\Precious\a.txt)");
  world.AddFolder(R"(D:\Data\StudyAreas)");
  EXPECT_TRUE(Areas(world)->DeleteStudyAreaByGUID("{1}"));
  EXPECT_THAT(world.Tree(R"(D:\Precious)"), ElementsAre("a.txt"));
}

}  // namespace
}  // namespace kvdm::conformance
