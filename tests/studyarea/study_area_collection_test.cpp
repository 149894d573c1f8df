// Creating, listing and finding study areas.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/saves.h"
#include "tests/test_world.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char kFirstGuid[] = "{00000000-0000-4000-8000-000000000001}";

TEST(StudyAreaCollectionTest, CreatesAStudyAreaWithItsAttributesInOrderAndSavesIt) {
  TestWorld world;
  EXPECT_TRUE(world.manager->StudyAreaCollection()->CreateStudyArea("North"));
  EXPECT_EQ(world.StoredCatalogue(),
            R"(<STUDYAREACOLLECTION><STUDYAREA NAME="_North_")"
            R"( GUID="{00000000-0000-4000-8000-000000000001}")"
            R"( DIRNAME="D:\Data\StudyAreas\North\")"
            R"( LAYERFILE="D:\Data\StudyAreas\North\StudyArea.lyr")"
            R"( CREATIONTIME="11/15/2026 7:35:30 AM"><SAPROPERTIES/></STUDYAREA>)"
            "</STUDYAREACOLLECTION>\r\n");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(StudyAreaCollectionTest, CreatesTheFolderWithoutAnythingInIt) {
  TestWorld world;
  EXPECT_TRUE(world.manager->StudyAreaCollection()->CreateStudyArea("North"));
  EXPECT_THAT(world.platform.files->Tree(R"(D:\Data\StudyAreas)"), ElementsAre("North\\"));
}

TEST(StudyAreaCollectionTest, TheCreationTimeIsThatOfTheClock) {
  TestWorld world;
  world.platform.clock->Set({2027, 1, 2, 0, 5, 9});
  EXPECT_TRUE(world.manager->StudyAreaCollection()->CreateStudyArea("North"));
  EXPECT_THAT(world.StoredCatalogue(),
              ::testing::HasSubstr(R"(CREATIONTIME="1/2/2027 12:05:09 AM")"));
}

TEST(StudyAreaCollectionTest, CreatingAndFindingNeedNoHost) {
  TestWorld world;
  world.manager->DMInitialize(nullptr);
  const auto study_areas = world.manager->StudyAreaCollection();
  EXPECT_TRUE(study_areas->CreateStudyArea("North"));
  EXPECT_EQ(study_areas->GetStudyArea("North")->StudyAreaDir(), R"(D:\Data\StudyAreas\North\)");
}

TEST(StudyAreaCollectionTest, AppendsANewStudyAreaLast) {
  TestWorld world;
  const auto study_areas = world.manager->StudyAreaCollection();
  EXPECT_TRUE(study_areas->CreateStudyArea("South"));
  EXPECT_TRUE(study_areas->CreateStudyArea("North"));
  EXPECT_THAT(Texts(study_areas->StudyAreasList()), ElementsAre("South", "North"));
}

TEST(StudyAreaCollectionTest, RefusesANameThatExistsAndSavesNothing) {
  TestWorld world;
  const auto study_areas = world.manager->StudyAreaCollection();
  EXPECT_TRUE(study_areas->CreateStudyArea("North"));
  EXPECT_FALSE(Saves(world, [&] { EXPECT_FALSE(study_areas->CreateStudyArea("North")); }));
  EXPECT_THAT(Texts(study_areas->StudyAreasList()), ElementsAre("North"));
  EXPECT_THAT(world.platform.files->Tree(R"(D:\Data\StudyAreas)"), ElementsAre("North\\"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(StudyAreaCollectionTest, NamesThatDifferOnlyInCaseAreDifferentStudyAreas) {
  TestWorld world;
  const auto study_areas = world.manager->StudyAreaCollection();
  EXPECT_TRUE(study_areas->CreateStudyArea("North"));
  EXPECT_FALSE(study_areas->StudyAreaExists("north"));
  EXPECT_TRUE(study_areas->CreateStudyArea("north"));
  EXPECT_EQ(study_areas->GetStudyArea("north")->StudyAreaDir(), R"(D:\Data\StudyAreas\north1\)");
}

TEST(StudyAreaCollectionTest, AnExistingFolderGivesTheNextFolderName) {
  TestWorld world;
  world.platform.files->AddFolder(R"(D:\Data\StudyAreas\North)");
  world.platform.files->AddFolder(R"(D:\Data\StudyAreas\North1)");
  const auto study_areas = world.manager->StudyAreaCollection();
  EXPECT_TRUE(study_areas->CreateStudyArea("North"));
  const auto north = study_areas->GetStudyArea("North");
  EXPECT_EQ(north->StudyAreaDir(), R"(D:\Data\StudyAreas\North2\)");
  EXPECT_EQ(north->LayerFile(), R"(D:\Data\StudyAreas\North2\StudyArea.lyr)");
}

TEST(StudyAreaCollectionTest, AFolderThatCannotBeMadeGivesFalseAndTheStudyAreaIsSaved) {
  TestWorld world;
  world.platform.files->AddFolder(R"(D:\Data\StudyAreas)");
  world.platform.files->RefuseWrites(R"(D:\Data\StudyAreas)");
  EXPECT_FALSE(world.manager->StudyAreaCollection()->CreateStudyArea("North"));
  world.Restart();
  EXPECT_TRUE(world.manager->StudyAreaCollection()->StudyAreaExists("North"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(StudyAreaCollectionTest, ANameThatIsNoFolderNameGivesFalseAndKeepsTheStudyArea) {
  for (const char* name : {"a\\b", "a/b", "what?", "a<b>", "tab\there", "bell\a"}) {
    SCOPED_TRACE(name);
    TestWorld world;
    const auto study_areas = world.manager->StudyAreaCollection();
    EXPECT_FALSE(study_areas->CreateStudyArea(name));
    EXPECT_TRUE(study_areas->StudyAreaExists(name));
    EXPECT_THAT(world.platform.files->Tree(R"(D:\Data\StudyAreas)"), IsEmpty());
    EXPECT_THAT(world.Messages(), IsEmpty());
  }
}

TEST(StudyAreaCollectionTest, FindsAndListsAnyName) {
  const std::vector<std::string> names = {
      "北京", "Größe", "O'Brien & <Sons>", "_",        "__",
      "_x_",  "..",    "two  blanks",      "a]b = \t", std::string(300, 'x')};
  for (const auto& name : names) {
    SCOPED_TRACE(name);
    TestWorld world;
    static_cast<void>(world.manager->StudyAreaCollection()->CreateStudyArea(name));
    world.Restart();
    const auto study_areas = world.manager->StudyAreaCollection();
    EXPECT_THAT(Texts(study_areas->StudyAreasList()), ElementsAre(name));
    ASSERT_TRUE(study_areas->GetStudyArea(name));
    EXPECT_EQ(study_areas->GetStudyArea(name)->Name(), name);
  }
}

TEST(StudyAreaCollectionTest, AnEmptyNameHasNoFolderOfItsOwnWhereThereIsNoFolderYet) {
  TestWorld world;
  const auto study_areas = world.manager->StudyAreaCollection();
  EXPECT_FALSE(study_areas->CreateStudyArea(""));
  EXPECT_EQ(study_areas->GetStudyArea("")->StudyAreaDir(), R"(D:\Data\StudyAreas\\)");
}

TEST(StudyAreaCollectionTest, AnEmptyNameGetsTheFolderOneNextToOthers) {
  TestWorld world;
  world.platform.files->AddFolder(R"(D:\Data\StudyAreas)");
  const auto study_areas = world.manager->StudyAreaCollection();
  EXPECT_TRUE(study_areas->CreateStudyArea(""));
  EXPECT_EQ(study_areas->GetStudyArea("")->StudyAreaDir(), R"(D:\Data\StudyAreas\1\)");
}

TEST(StudyAreaCollectionTest, ListsTakeOneUnderscoreOffEachEndOfNamesAndIdentifiers) {
  TestWorld world;
  world.LoadCatalogue(
      R"(<STUDYAREACOLLECTION><STUDYAREA NAME="_x_" GUID="_g_"/><STUDYAREA NAME="_" GUID="_"/>)"
      R"(<STUDYAREA NAME="a_" GUID="{1}"/><STUDYAREA NAME="__" GUID=""/></STUDYAREACOLLECTION>)");
  const auto study_areas = world.manager->StudyAreaCollection();
  EXPECT_THAT(Texts(study_areas->StudyAreasList()), ElementsAre("x", "_", "a_", ""));
  EXPECT_THAT(Texts(study_areas->StudyAreasGUIDsList()), ElementsAre("g", "_", "{1}", ""));
}

TEST(StudyAreaCollectionTest, ListsAndLookUpsSkipWhatIsNoStudyArea) {
  TestWorld world;
  world.LoadCatalogue(R"(<STUDYAREACOLLECTION><!-- NAME --> text <StudyArea NAME="_a_" GUID="1"/>)"
                      R"(<GROUP NAME="_b_"><STUDYAREA NAME="_c_" GUID="2"/></GROUP>)"
                      R"(<STUDYAREA NAME="_d_" GUID="3"/></STUDYAREACOLLECTION>)");
  const auto study_areas = world.manager->StudyAreaCollection();
  EXPECT_THAT(Texts(study_areas->StudyAreasList()), ElementsAre("d"));
  EXPECT_THAT(Texts(study_areas->StudyAreasGUIDsList()), ElementsAre("3"));
  for (const char* name : {"a", "b", "c"}) EXPECT_FALSE(study_areas->StudyAreaExists(name)) << name;
}

TEST(StudyAreaCollectionTest, ListsAreEmptyWithoutStudyAreas) {
  TestWorld world;
  EXPECT_THAT(Texts(world.manager->StudyAreaCollection()->StudyAreasList()), IsEmpty());
  EXPECT_THAT(Texts(world.manager->StudyAreaCollection()->StudyAreasGUIDsList()), IsEmpty());
}

TEST(StudyAreaCollectionTest, TheStudyAreaDefaultIsThereButNotListedByName) {
  TestWorld world;
  const auto study_areas = world.manager->StudyAreaCollection();
  EXPECT_TRUE(study_areas->CreateStudyArea("Default"));
  EXPECT_TRUE(study_areas->CreateStudyArea("default"));
  EXPECT_THAT(Texts(study_areas->StudyAreasList()), ElementsAre("default"));
  EXPECT_EQ(study_areas->StudyAreasGUIDsList()->Count(), 2);
  EXPECT_TRUE(study_areas->StudyAreaExists("Default"));
  EXPECT_TRUE(study_areas->GetStudyArea("Default"));
}

TEST(StudyAreaCollectionTest, FindsByIdentifierExactlyAsGiven) {
  TestWorld world;
  const auto study_areas = world.manager->StudyAreaCollection();
  EXPECT_TRUE(study_areas->CreateStudyArea("North"));
  EXPECT_TRUE(study_areas->StudyAreaExistsByGUID(kFirstGuid));
  EXPECT_EQ(study_areas->GetStudyAreaByGUID(kFirstGuid)->Name(), "North");
  EXPECT_FALSE(study_areas->StudyAreaExistsByGUID("00000000-0000-4000-8000-000000000001"));
  EXPECT_FALSE(study_areas->GetStudyAreaByGUID("_" + std::string(kFirstGuid) + "_"));
}

TEST(StudyAreaCollectionTest, FindsNothingUnderAnUnknownKey) {
  TestWorld world;
  const auto study_areas = world.manager->StudyAreaCollection();
  EXPECT_TRUE(study_areas->CreateStudyArea("North"));
  EXPECT_FALSE(study_areas->GetStudyArea("South"));
  EXPECT_FALSE(study_areas->GetStudyArea("_North_"));
  EXPECT_FALSE(study_areas->StudyAreaExists(kFirstGuid));
  EXPECT_FALSE(study_areas->StudyAreaExistsByGUID("North"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(StudyAreaCollectionTest, TheFirstOfTwoStudyAreasOfOneNameIsFound) {
  TestWorld world;
  world.LoadCatalogue(
      R"(<STUDYAREACOLLECTION><STUDYAREA NAME="_x_" GUID="1"/><STUDYAREA NAME="_x_" GUID="2"/>)"
      R"(</STUDYAREACOLLECTION>)");
  EXPECT_EQ(world.manager->StudyAreaCollection()->GetStudyArea("x")->GUID(), "1");
}

TEST(StudyAreaCollectionTest, EachLookUpGivesANewViewOfTheSameStudyArea) {
  TestWorld world;
  const auto study_areas = world.manager->StudyAreaCollection();
  EXPECT_TRUE(study_areas->CreateStudyArea("North"));
  const auto one = study_areas->GetStudyArea("North");
  const auto other = world.manager->StudyAreaCollection()->GetStudyArea("North");
  EXPECT_NE(one, other);
  one->SetName("South");
  EXPECT_EQ(other->Name(), "South");
}

TEST(StudyAreaCollectionTest, AStudyAreaOutlivesItsManagersClient) {
  TestWorld world;
  const auto study_areas = world.manager->StudyAreaCollection();
  EXPECT_TRUE(study_areas->CreateStudyArea("North"));
  const auto north = study_areas->GetStudyArea("North");
  world.manager.reset();
  EXPECT_TRUE(Saves(world, [&] { north->SetName("South"); }));
}

}  // namespace
}  // namespace kvdm
