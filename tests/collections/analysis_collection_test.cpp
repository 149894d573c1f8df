// Creating, listing and finding analyses.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/saves.h"
#include "tests/test_world.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr char kFirstGuid[] = "{00000000-0000-4000-8000-000000000001}";

// A metadata document with `analyses` in its collection.
std::string MetadataWith(const std::string& analyses) {
  return "<KVDATACOLLECTION><ANALYSISCOLLECTION>" + analyses +
         "</ANALYSISCOLLECTION></KVDATACOLLECTION>";
}

TEST(AnalysisCollectionTest, CreatesAnAnalysisWithItsAttributesInOrderAndItsFolder) {
  TestWorld world;
  EXPECT_TRUE(world.manager->AnalysisCollection()->CreateAnalysis("Sales"));
  EXPECT_THAT(world.Metadata(),
              HasSubstr(R"(<ANALYSISCOLLECTION>)"
                        R"(<ANALYSIS NAME="_Sales_" GUID="{00000000-0000-4000-8000-000000000001}")"
                        R"( DIRNAME="D:\Data\Analyses\Sales\")"
                        R"( LAYERFILE="D:\Data\Analyses\Sales\Analysis.lyr")"
                        R"( CREATIONTIME="11/15/2026 7:35:30 AM"/></ANALYSISCOLLECTION>)"));
  EXPECT_THAT(world.platform.files->Tree(R"(D:\Data\Analyses)"), ElementsAre("Sales\\"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(AnalysisCollectionTest, SavesNothing) {
  TestWorld world;
  const auto analyses = world.manager->AnalysisCollection();
  EXPECT_FALSE(Saves(world, [&] {
    EXPECT_TRUE(analyses->CreateAnalysis("Sales"));
    EXPECT_TRUE(analyses->CreateAnalysis("Costs"));
    EXPECT_TRUE(analyses->DeleteAnalysis("Sales"));
    EXPECT_TRUE(analyses->DeleteAnalysisByGUID(analyses->GetAnalysis("Costs")->AnalysisGUID()));
  }));
}

TEST(AnalysisCollectionTest, CreatesASecondAnalysisOfTheSameName) {
  TestWorld world;
  const auto analyses = world.manager->AnalysisCollection();
  EXPECT_TRUE(analyses->CreateAnalysis("North"));
  EXPECT_TRUE(analyses->CreateAnalysis("North"));
  EXPECT_THAT(Texts(analyses->AnalysesList()), ElementsAre("North", "North"));
  EXPECT_EQ(analyses->GetAnalysis("North")->AnalysisDir(), R"(D:\Data\Analyses\North\)");
  EXPECT_THAT(world.platform.files->Tree(R"(D:\Data\Analyses)"),
              ElementsAre("North1\\", "North\\"));
}

TEST(AnalysisCollectionTest, RefusesANameThatExistsBetweenTwoUnderscoresAtEachEnd) {
  TestWorld world;
  world.LoadMetadata(MetadataWith(R"(<ANALYSIS NAME="__North__" GUID="1"/>)"));
  const auto analyses = world.manager->AnalysisCollection();
  EXPECT_FALSE(analyses->CreateAnalysis("North"));
  EXPECT_THAT(Texts(analyses->AnalysesList()), ElementsAre("_North_"));
  EXPECT_FALSE(world.platform.files->FolderExists(R"(D:\Data\Analyses)"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(AnalysisCollectionTest, AnExistingFolderGivesTheNextFolderName) {
  TestWorld world;
  world.platform.files->AddFolder(R"(D:\Data\Analyses\North)");
  const auto analyses = world.manager->AnalysisCollection();
  EXPECT_TRUE(analyses->CreateAnalysis("North"));
  const auto north = analyses->GetAnalysis("North");
  EXPECT_EQ(north->AnalysisDir(), R"(D:\Data\Analyses\North1\)");
  EXPECT_EQ(north->LayerFile(), R"(D:\Data\Analyses\North1\Analysis.lyr)");
}

TEST(AnalysisCollectionTest, TheFolderLiesInTheCurrentStudyAreasFolder) {
  TestWorld world;
  EXPECT_TRUE(world.manager->StudyAreaCollection()->CreateStudyArea("West"));
  world.SetCurrentStudyArea("West");
  const auto analyses = world.manager->AnalysisCollection();
  EXPECT_TRUE(analyses->CreateAnalysis("Sales"));
  EXPECT_EQ(analyses->GetAnalysis("Sales")->AnalysisDir(),
            R"(D:\Data\StudyAreas\West\Analyses\Sales\)");
  EXPECT_TRUE(world.platform.files->FolderExists(R"(D:\Data\StudyAreas\West\Analyses\Sales)"));
}

TEST(AnalysisCollectionTest, TheFolderLiesInTheWorkingDirectoryWhenTheStudyAreaIsUnknown) {
  TestWorld world;
  world.SetCurrentStudyArea("gone");
  const auto analyses = world.manager->AnalysisCollection();
  EXPECT_TRUE(analyses->CreateAnalysis("Sales"));
  EXPECT_EQ(analyses->GetAnalysis("Sales")->AnalysisDir(), R"(D:\Data\Analyses\Sales\)");
}

TEST(AnalysisCollectionTest, AFolderThatCannotBeMadeGivesFalseAndTheAnalysisIsThere) {
  TestWorld world;
  world.platform.files->RefuseWrites(R"(D:\Data)");
  const auto analyses = world.manager->AnalysisCollection();
  EXPECT_FALSE(analyses->CreateAnalysis("Sales"));
  EXPECT_THAT(world.Metadata(),
              HasSubstr(R"(<ANALYSIS NAME="_Sales_" GUID="{00000000-0000-4000-8000-000000000001}")"
                        R"( DIRNAME="D:\Data\Analyses\Sales\")"
                        R"( LAYERFILE="D:\Data\Analyses\Sales\Analysis.lyr")"
                        R"( CREATIONTIME="11/15/2026 7:35:30 AM"/>)"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(AnalysisCollectionTest, AnEmptyNameIsTheAnalysesFolderItselfWhereThereIsNoneYet) {
  TestWorld world;
  const auto analyses = world.manager->AnalysisCollection();
  EXPECT_TRUE(analyses->CreateAnalysis(""));
  EXPECT_THAT(world.Metadata(), HasSubstr(R"(<ANALYSIS NAME="__")"));
  EXPECT_EQ(analyses->GetAnalysis("")->AnalysisDir(), R"(D:\Data\Analyses\\)");
}

TEST(AnalysisCollectionTest, AnEmptyNameGetsTheFolderOneNextToOthers) {
  TestWorld world;
  world.platform.files->AddFolder(R"(D:\Data\Analyses)");
  const auto analyses = world.manager->AnalysisCollection();
  EXPECT_TRUE(analyses->CreateAnalysis(""));
  EXPECT_EQ(analyses->GetAnalysis("")->AnalysisDir(), R"(D:\Data\Analyses\1\)");
}

TEST(AnalysisCollectionTest, FindsAndListsAnyName) {
  const std::vector<std::string> names = {
      "北京", "Größe", "O'Brien & <Sons>", "_",        "__",
      "_x_",  "..",    "two  blanks",      "a]b = \t", std::string(300, 'x')};
  for (const auto& name : names) {
    SCOPED_TRACE(name);
    TestWorld world;
    static_cast<void>(world.manager->AnalysisCollection()->CreateAnalysis(name));
    world.LoadMetadata(world.Metadata());
    const auto analyses = world.manager->AnalysisCollection();
    EXPECT_THAT(Texts(analyses->AnalysesList()), ElementsAre(name));
    ASSERT_TRUE(analyses->GetAnalysis(name));
    EXPECT_EQ(analyses->GetAnalysis(name)->Name(), name);
  }
}

TEST(AnalysisCollectionTest, ListsTakeOneUnderscoreOffEachEndOfNamesAndIdentifiers) {
  TestWorld world;
  world.LoadMetadata(
      MetadataWith(R"(<ANALYSIS NAME="_A_" GUID="_g_"/><ANALYSIS NAME="_" GUID="_"/>)"
                   R"(<ANALYSIS NAME="A_" GUID="{1}"/><ANALYSIS NAME="_A" GUID=""/>)"
                   R"(<ANALYSIS NAME="_Default_" GUID="__"/>)"));
  const auto analyses = world.manager->AnalysisCollection();
  EXPECT_THAT(Texts(analyses->AnalysesList()), ElementsAre("A", "_", "A_", "_A", "Default"));
  EXPECT_THAT(Texts(analyses->AnalysesGUIDsList()), ElementsAre("g", "_", "{1}", "", ""));
}

TEST(AnalysisCollectionTest, ListsAndLookUpsSkipWhatIsNoAnalysis) {
  TestWorld world;
  world.LoadMetadata(MetadataWith(
      R"(<!-- NAME --> text <Analysis NAME="_a_" GUID="1"/>)"
      R"(<GROUP><ANALYSIS NAME="_b_" GUID="2"/></GROUP><ANALYSIS NAME="_c_" GUID="3"/>)"));
  const auto analyses = world.manager->AnalysisCollection();
  EXPECT_THAT(Texts(analyses->AnalysesList()), ElementsAre("c"));
  EXPECT_THAT(Texts(analyses->AnalysesGUIDsList()), ElementsAre("3"));
  EXPECT_FALSE(analyses->AnalysisExists("a"));
  EXPECT_FALSE(analyses->AnalysisExistsByGUID("2"));
}

TEST(AnalysisCollectionTest, ListsAreEmptyWithoutAnalyses) {
  TestWorld world;
  EXPECT_THAT(Texts(world.manager->AnalysisCollection()->AnalysesList()), IsEmpty());
  EXPECT_THAT(Texts(world.manager->AnalysisCollection()->AnalysesGUIDsList()), IsEmpty());
}

TEST(AnalysisCollectionTest, FindsByNameAndByIdentifierExactly) {
  TestWorld world;
  const auto analyses = world.manager->AnalysisCollection();
  EXPECT_TRUE(analyses->CreateAnalysis("Sales"));
  EXPECT_TRUE(analyses->AnalysisExists("Sales"));
  EXPECT_TRUE(analyses->AnalysisExistsByGUID(kFirstGuid));
  EXPECT_EQ(analyses->GetAnalysisByGUID(kFirstGuid)->Name(), "Sales");
  for (const char* unknown : {"sales", "_Sales_", "", kFirstGuid}) {
    SCOPED_TRACE(unknown);
    EXPECT_FALSE(analyses->AnalysisExists(unknown));
    EXPECT_FALSE(analyses->GetAnalysis(unknown));
  }
  EXPECT_FALSE(analyses->AnalysisExistsByGUID("Sales"));
  EXPECT_FALSE(analyses->GetAnalysisByGUID("_" + std::string(kFirstGuid) + "_"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(AnalysisCollectionTest, EachLookUpGivesANewViewOfTheSameAnalysis) {
  TestWorld world;
  EXPECT_TRUE(world.manager->AnalysisCollection()->CreateAnalysis("Sales"));
  const auto one = world.manager->AnalysisCollection()->GetAnalysis("Sales");
  const auto other = world.manager->AnalysisCollection()->GetAnalysis("Sales");
  EXPECT_NE(one, other);
  one->SetName("Costs");
  EXPECT_EQ(other->Name(), "Costs");
}

}  // namespace
}  // namespace kvdm
