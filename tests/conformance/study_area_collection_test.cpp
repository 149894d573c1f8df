// KVStudyAreaCollection: listing, finding and creating study areas.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/conformance/results.h"
#include "tests/conformance/world.h"

namespace kvdm::conformance {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kAreaListFailed[] = "Couldn't get StudyAreas list for the study area";
constexpr char kAreaCreateFailed[] = "Kelvaro Data Manager: Couldn't create StudyArea";
constexpr char kAreaGetFailed[] = "Kelvaro Data Manager: Couldn't get StudyArea Object";

std::shared_ptr<IKVStudyAreaCollection> Areas(World& world) {
  return world.Manager()->StudyAreaCollection();
}

TEST(StudyAreaCollectionConformance, UnboundAnswersNeutrally) {
  World world;
  const auto areas = world.New<IKVStudyAreaCollection>("KVStudyAreaCollection");
  EXPECT_EQ(areas->StudyAreasList(), nullptr);
  EXPECT_EQ(areas->StudyAreasGUIDsList(), nullptr);
  EXPECT_FALSE(areas->CreateStudyArea("A"));
  EXPECT_FALSE(areas->DeleteStudyArea("A"));
  EXPECT_FALSE(areas->DeleteStudyAreaByGUID("A"));
  EXPECT_EQ(areas->GetStudyArea("A"), nullptr);
  EXPECT_EQ(areas->GetStudyAreaByGUID("A"), nullptr);
  EXPECT_FALSE(areas->StudyAreaExists("a\"b"));
  EXPECT_FALSE(areas->StudyAreaExistsByGUID("a\"b"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(StudyAreaCollectionConformance, ListsNamesUnwrappedInDocumentOrder) {
  OpenWorld world(
      R"(<STUDYAREA NAME="_B_"/><!--x--><OTHER NAME="_C_"/>text<studyarea NAME="_D_"/>)"
      R"(<STUDYAREA NAME="_A_"><STUDYAREA NAME="_E_"/></STUDYAREA><STUDYAREA NAME="_"/>)"
      R"(<STUDYAREA NAME="__"/><STUDYAREA NAME="_F"/><STUDYAREA NAME="__G__"/>)");
  EXPECT_EQ(TextsOf(Areas(world)->StudyAreasList()), (Texts{"B", "A", "_", "", "_F", "_G_"}));
}

TEST(StudyAreaCollectionConformance, LeavesDefaultOutOfTheNamesOnly) {
  OpenWorld world(
      R"(<STUDYAREA NAME="_Default_" GUID="{1}"/><STUDYAREA NAME="_default_" GUID="2"/>)");
  EXPECT_EQ(TextsOf(Areas(world)->StudyAreasList()), Texts{"default"});
  EXPECT_EQ(TextsOf(Areas(world)->StudyAreasGUIDsList()), (Texts{"{1}", "2"}));
  EXPECT_TRUE(Areas(world)->StudyAreaExists("Default"));
  EXPECT_EQ(Areas(world)->GetStudyArea("Default")->Name(), "Default");
}

TEST(StudyAreaCollectionConformance, UnwrapsIdentifiersToo) {
  OpenWorld world(R"(<STUDYAREA GUID="_x_"/><STUDYAREA GUID="{2}"/>)");
  EXPECT_EQ(TextsOf(Areas(world)->StudyAreasGUIDsList()), (Texts{"x", "{2}"}));
}

TEST(StudyAreaCollectionConformance, ListsNothingOfAnEmptyCatalogue) {
  OpenWorld world;
  EXPECT_THAT(TextsOf(Areas(world)->StudyAreasList()), IsEmpty());
  EXPECT_THAT(TextsOf(Areas(world)->StudyAreasGUIDsList()), IsEmpty());
}

TEST(StudyAreaCollectionConformance, CannotListWhenAnAttributeIsMissing) {
  OpenWorld world(R"(<STUDYAREA NAME="_A_"/><STUDYAREA GUID="{2}"/>)");
  EXPECT_EQ(OutcomeOf([&] { Areas(world)->StudyAreasList(); }), FailsToReport(kAreaListFailed));
  EXPECT_EQ(OutcomeOf([&] { Areas(world)->StudyAreasGUIDsList(); }),
            FailsToReport(kAreaListFailed));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(StudyAreaCollectionConformance, FindsExactly) {
  OpenWorld world(R"(<STUDYAREA NAME="_North_" GUID="{1}"/>)");
  const auto areas = Areas(world);
  EXPECT_TRUE(areas->StudyAreaExists("North"));
  EXPECT_TRUE(areas->StudyAreaExistsByGUID("{1}"));
  EXPECT_EQ(areas->GetStudyArea("North")->GUID(), "{1}");
  EXPECT_EQ(areas->GetStudyAreaByGUID("{1}")->Name(), "North");
  for (const char* name : {"north", "_North_", "North ", "", "{1}", "x' or '1'='1"}) {
    EXPECT_FALSE(areas->StudyAreaExists(name)) << name;
    EXPECT_EQ(areas->GetStudyArea(name), nullptr) << name;
  }
  for (const char* guid : {"1", "_{1}_", "", "North"}) {
    EXPECT_FALSE(areas->StudyAreaExistsByGUID(guid)) << guid;
    EXPECT_EQ(areas->GetStudyAreaByGUID(guid), nullptr) << guid;
  }
}

TEST(StudyAreaCollectionConformance, FailsOnADoubleQuote) {
  OpenWorld world;
  const auto areas = Areas(world);
  EXPECT_EQ(OutcomeOf([&] { areas->StudyAreaExists("a\"b"); }), Fails(-2147467259));
  EXPECT_EQ(OutcomeOf([&] { areas->StudyAreaExistsByGUID("a\"b"); }), Fails(-2147467259));
  EXPECT_EQ(OutcomeOf([&] { areas->GetStudyArea("a\"b"); }), FailsToReport(kAreaGetFailed));
  EXPECT_EQ(OutcomeOf([&] { areas->GetStudyAreaByGUID("a\"b"); }), FailsToReport(kAreaGetFailed));
  EXPECT_EQ(OutcomeOf([&] { areas->CreateStudyArea("a\"b"); }), FailsToReport(kAreaCreateFailed));
  EXPECT_THAT(world.Messages(), IsEmpty());
  EXPECT_EQ(world.StudyAreas(), "");
}

TEST(StudyAreaCollectionConformance, GivesANewViewEachTime) {
  OpenWorld world(R"(<STUDYAREA NAME="_A_" GUID="{1}"/><STUDYAREA NAME="_A_" GUID="{2}"/>)");
  EXPECT_NE(Areas(world)->GetStudyArea("A"), Areas(world)->GetStudyArea("A"));
  EXPECT_EQ(Areas(world)->GetStudyArea("A")->GUID(), "{1}");
}

TEST(CreateStudyAreaConformance, AddsTheElementMakesTheFolderAndSaves) {
  OpenWorld world;
  bool created = false;
  EXPECT_TRUE(Saves(world, [&] { created = Areas(world)->CreateStudyArea("North"); }));
  EXPECT_TRUE(created);
  EXPECT_EQ(world.StudyAreas(),
            "<STUDYAREA NAME=\"_North_\" GUID=\"" + Guid(1) +
                "\" DIRNAME=\"D:\\Data\\StudyAreas\\North\\\""
                " LAYERFILE=\"D:\\Data\\StudyAreas\\North\\StudyArea.lyr\" CREATIONTIME=\"" +
                kNow + "\"><SAPROPERTIES/></STUDYAREA>");
  EXPECT_THAT(world.Tree(R"(D:\Data\StudyAreas)"), ElementsAre(R"(North\)"));
}

TEST(CreateStudyAreaConformance, AppendsAfterTheOthers) {
  OpenWorld world(R"(<STUDYAREA NAME="_A_"/><!--end-->)");
  Areas(world)->CreateStudyArea("B");
  EXPECT_EQ(TextsOf(Areas(world)->StudyAreasList()), (Texts{"A", "B"}));
  EXPECT_TRUE(world.StudyAreas().starts_with(R"(<STUDYAREA NAME="_A_"/><!--end--><STUDYAREA)"));
}

TEST(CreateStudyAreaConformance, RefusesAnExistingName) {
  OpenWorld world(R"(<STUDYAREA NAME="_A_"/>)");
  EXPECT_FALSE(Saves(world, [&] { EXPECT_FALSE(Areas(world)->CreateStudyArea("A")); }));
  EXPECT_EQ(world.StudyAreas(), R"(<STUDYAREA NAME="_A_"/>)");
  EXPECT_FALSE(world.FolderExists(R"(D:\Data\StudyAreas)"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(CreateStudyAreaConformance, TakesTheNextFolderWhenTheNameIsTaken) {
  OpenWorld world;
  world.AddFolder(R"(D:\Data\StudyAreas\North)");
  world.AddFolder(R"(D:\Data\StudyAreas\North1)");
  EXPECT_TRUE(Areas(world)->CreateStudyArea("North"));
  const auto north = Areas(world)->GetStudyArea("North");
  EXPECT_EQ(north->StudyAreaDir(), R"(D:\Data\StudyAreas\North2\)");
  EXPECT_EQ(north->LayerFile(), R"(D:\Data\StudyAreas\North2\StudyArea.lyr)");
  EXPECT_TRUE(world.FolderExists(R"(D:\Data\StudyAreas\North2)"));
}

TEST(CreateStudyAreaConformance, KeepsNamesThatDifferInCaseApart) {
  OpenWorld world;
  EXPECT_TRUE(Areas(world)->CreateStudyArea("North"));
  EXPECT_TRUE(Areas(world)->CreateStudyArea("north"));
  EXPECT_EQ(TextsOf(Areas(world)->StudyAreasList()), (Texts{"North", "north"}));
  EXPECT_EQ(Areas(world)->GetStudyArea("north")->StudyAreaDir(), R"(D:\Data\StudyAreas\north1\)");
}

TEST(CreateStudyAreaConformance, WrapsANameThatHasUnderscores) {
  OpenWorld world;
  EXPECT_TRUE(Areas(world)->CreateStudyArea("_x_"));
  EXPECT_TRUE(world.StudyAreas().starts_with(R"(<STUDYAREA NAME="__x__")"));
  EXPECT_EQ(TextsOf(Areas(world)->StudyAreasList()), Texts{"_x_"});
}

TEST(CreateStudyAreaConformance, AcceptsAnEmptyNameAndNumbersItsFolder) {
  OpenWorld world;
  world.AddFolder(R"(D:\Data\StudyAreas)");
  EXPECT_TRUE(Areas(world)->CreateStudyArea(""));
  EXPECT_TRUE(Areas(world)->StudyAreaExists(""));
  EXPECT_EQ(Areas(world)->GetStudyArea("")->StudyAreaDir(), R"(D:\Data\StudyAreas\1\)");
}

TEST(CreateStudyAreaConformance, AnEmptyNameIsAFolderNameWhereThereIsNoFolder) {
  OpenWorld without_folder;
  EXPECT_FALSE(Areas(without_folder)->CreateStudyArea(""));
  EXPECT_EQ(Areas(without_folder)->GetStudyArea("")->StudyAreaDir(), R"(D:\Data\StudyAreas\\)");
}

TEST(CreateStudyAreaConformance, KeepsForeignLettersAndMarkup) {
  const std::string name = "\xE4\xB8\xAD\xC3\xA9 & Co";
  OpenWorld world;
  EXPECT_TRUE(Areas(world)->CreateStudyArea(name));
  EXPECT_TRUE(Areas(world)->StudyAreaExists(name));
  EXPECT_TRUE(world.FolderExists("D:\\Data\\StudyAreas\\" + name));
}

TEST(CreateStudyAreaConformance, KeepsAndSavesTheElementWhenTheFolderCannotBeMade) {
  for (const char* name : {"A\\B", "..\\..\\No\\Such", "a:b", "a|b"}) {
    OpenWorld world;
    EXPECT_TRUE(Saves(world, [&] { EXPECT_FALSE(Areas(world)->CreateStudyArea(name)) << name; }));
    EXPECT_TRUE(Areas(world)->StudyAreaExists(name)) << name;
    EXPECT_THAT(world.Tree(R"(D:\Data\StudyAreas)"), IsEmpty());
    EXPECT_THAT(world.Messages(), IsEmpty());
  }
}

TEST(CreateStudyAreaConformance, IsFalseWhenNoFolderCanBeMadeAtAll) {
  OpenWorld world;
  world.LockFolder(R"(D:\Data)");
  EXPECT_FALSE(Areas(world)->CreateStudyArea("North"));
  EXPECT_EQ(TextsOf(Areas(world)->StudyAreasList()), Texts{"North"});
}

TEST(CreateStudyAreaConformance, IgnoresThatTheCatalogueCannotBeSaved) {
  OpenWorld world;
  world.LockRegistry();
  EXPECT_TRUE(Areas(world)->CreateStudyArea("North"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(CreateStudyAreaConformance, NeedsNoHost) {
  World world;
  world.Manager()->SetWorkingDirectory(R"(D:\Data)");
  EXPECT_TRUE(Areas(world)->CreateStudyArea("North"));
  EXPECT_EQ(Areas(world)->GetStudyArea("North")->StudyAreaDir(), R"(D:\Data\StudyAreas\North\)");
}

TEST(CreateStudyAreaConformance, GivesUpAfter32767Folders) {
  OpenWorld world;
  world.Fill(R"(D:\Data\StudyAreas\)");
  EXPECT_EQ(OutcomeOf([&] { Areas(world)->CreateStudyArea("N"); }),
            FailsToReport(kAreaCreateFailed));
  EXPECT_THAT(TextsOf(Areas(world)->StudyAreasList()), IsEmpty());
}

}  // namespace
}  // namespace kvdm::conformance
