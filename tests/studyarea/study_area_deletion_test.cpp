// Deleting study areas by name and by identifier.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/late_report.h"
#include "tests/saves.h"
#include "tests/test_world.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char kFirstGuid[] = "{00000000-0000-4000-8000-000000000001}";
constexpr char kDeleteFailed[] = "Couldn't delete StudyArea";

// A world with the study areas North and South.
class StudyAreaDeletionTest : public ::testing::Test {
 protected:
  StudyAreaDeletionTest() {
    EXPECT_TRUE(StudyAreas()->CreateStudyArea("North"));
    EXPECT_TRUE(StudyAreas()->CreateStudyArea("South"));
  }

  [[nodiscard]] std::shared_ptr<IKVStudyAreaCollection> StudyAreas() const {
    return world_.manager->StudyAreaCollection();
  }
  void Load(std::string_view study_area) {
    world_.LoadCatalogue("<STUDYAREACOLLECTION>" + std::string(study_area) +
                         "</STUDYAREACOLLECTION>");
  }

  TestWorld world_;
};

TEST_F(StudyAreaDeletionTest, RemovesTheStudyAreaWithItsFolderAndSaves) {
  world_.platform.files->AddFile(R"(D:\Data\StudyAreas\North\Tables\Table1.dbf)");
  EXPECT_TRUE(Saves(world_, [&] { EXPECT_TRUE(StudyAreas()->DeleteStudyArea("North")); }));
  world_.Restart();
  EXPECT_THAT(Texts(StudyAreas()->StudyAreasList()), ElementsAre("South"));
  EXPECT_THAT(world_.platform.files->Tree(R"(D:\Data\StudyAreas)"), ElementsAre("South\\"));
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(StudyAreaDeletionTest, ClosesTheCurrentStudyArea) {
  world_.SetCurrentStudyArea("North");
  EXPECT_TRUE(StudyAreas()->DeleteStudyArea("North"));
  EXPECT_EQ(world_.CurrentStudyArea(), "");
}

TEST_F(StudyAreaDeletionTest, LeavesAnotherStudyAreaOpen) {
  for (const char* current : {"South", "north", "_North_"}) {
    SCOPED_TRACE(current);
    world_.SetCurrentStudyArea(current);
    static_cast<void>(StudyAreas()->DeleteStudyArea("North"));
    EXPECT_EQ(world_.CurrentStudyArea(), current);
  }
}

TEST_F(StudyAreaDeletionTest, ClosesTheCurrentStudyAreaAlsoWhenItIsNotInTheCatalogue) {
  world_.SetCurrentStudyArea("West");
  EXPECT_FALSE(Saves(world_, [&] { EXPECT_FALSE(StudyAreas()->DeleteStudyArea("West")); }));
  EXPECT_EQ(world_.CurrentStudyArea(), "");
}

TEST_F(StudyAreaDeletionTest, AnUnknownKeyGivesFalseAndTouchesNothing) {
  EXPECT_FALSE(Saves(world_, [&] {
    EXPECT_FALSE(StudyAreas()->DeleteStudyArea("West"));
    EXPECT_FALSE(StudyAreas()->DeleteStudyAreaByGUID("North"));
  }));
  EXPECT_EQ(StudyAreas()->StudyAreasList()->Count(), 2);
  EXPECT_THAT(world_.platform.files->Tree(R"(D:\Data\StudyAreas)"),
              ElementsAre("North\\", "South\\"));
}

TEST_F(StudyAreaDeletionTest, RemovesExactlyTheFolderThatIsStored) {
  world_.platform.files->AddFile(R"(D:\Elsewhere\a.txt)");
  Load(R"(<STUDYAREA NAME="_North_" GUID="1" DIRNAME="D:\Elsewhere\"/>)");
  EXPECT_TRUE(StudyAreas()->DeleteStudyArea("North"));
  EXPECT_FALSE(world_.platform.files->FolderExists(R"(D:\Elsewhere)"));
  EXPECT_TRUE(world_.platform.files->FolderExists(R"(D:\Data\StudyAreas\North)"));
}

TEST_F(StudyAreaDeletionTest, AFolderThatCannotBeRemovedStaysAndTheResultIsTrue) {
  world_.platform.files->AddFile(R"(D:\Data\StudyAreas\North\locked.dbf)");
  world_.platform.files->SetAttributes(R"(D:\Data\StudyAreas\North\locked.dbf)",
                                       kReadOnlyAttribute);
  EXPECT_TRUE(StudyAreas()->DeleteStudyArea("North"));
  EXPECT_FALSE(StudyAreas()->StudyAreaExists("North"));
  EXPECT_TRUE(world_.platform.files->FolderExists(R"(D:\Data\StudyAreas\North)"));
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(StudyAreaDeletionTest, NeverRemovesAFolderThatIsNotItsOwn) {
  for (const std::string folder :
       {"", " ", "D:\\", "\\", "Data\\", R"(D:\Data\StudyAreas\\)", R"(D:\Data\StudyAreas\..\)",
        R"(D:\Data\StudyAreas\North\..\South\)", R"(D:\Data\StudyAreas\.\)"}) {
    SCOPED_TRACE(folder);
    Load(R"(<STUDYAREA NAME="_North_" GUID="1" DIRNAME=")" + folder + R"("/>)");
    const auto before = world_.platform.files->Tree("D:\\");
    EXPECT_TRUE(StudyAreas()->DeleteStudyArea("North"));
    EXPECT_EQ(world_.platform.files->Tree("D:\\"), before);
    EXPECT_FALSE(StudyAreas()->StudyAreaExists("North"));
  }
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(StudyAreaDeletionTest, DeletingByGuidLeavesTheFolder) {
  EXPECT_TRUE(Saves(world_, [&] { EXPECT_TRUE(StudyAreas()->DeleteStudyAreaByGUID(kFirstGuid)); }));
  EXPECT_THAT(Texts(StudyAreas()->StudyAreasList()), ElementsAre("South"));
  EXPECT_TRUE(world_.platform.files->FolderExists(R"(D:\Data\StudyAreas\North)"));
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(StudyAreaDeletionTest, DeletingByGuidRemovesAFolderBelowStudyAreas) {
  Load(R"(<STUDYAREA NAME="_North_" GUID="1" DIRNAME="North\"/>)");
  EXPECT_TRUE(StudyAreas()->DeleteStudyAreaByGUID("1"));
  EXPECT_THAT(world_.platform.files->Tree(R"(D:\Data\StudyAreas)"), ElementsAre("South\\"));
}

TEST_F(StudyAreaDeletionTest, DeletingByGuidWithAnEmptyFolderKeepsAllStudyAreaFolders) {
  Load(R"(<STUDYAREA NAME="_North_" GUID="1" DIRNAME=""/>)");
  EXPECT_TRUE(StudyAreas()->DeleteStudyAreaByGUID("1"));
  EXPECT_THAT(world_.platform.files->Tree(R"(D:\Data\StudyAreas)"),
              ElementsAre("North\\", "South\\"));
}

TEST_F(StudyAreaDeletionTest, DeletingByGuidLeavesTheCurrentStudyAreaOpen) {
  world_.SetCurrentStudyArea("North");
  EXPECT_TRUE(StudyAreas()->DeleteStudyAreaByGUID(kFirstGuid));
  EXPECT_EQ(world_.CurrentStudyArea(), "North");
}

TEST_F(StudyAreaDeletionTest, RemovesOnlyTheFirstOfOneName) {
  Load(R"(<STUDYAREA NAME="_x_" GUID="1" DIRNAME=""/><STUDYAREA NAME="_x_" GUID="2" DIRNAME=""/>)");
  EXPECT_TRUE(StudyAreas()->DeleteStudyArea("x"));
  EXPECT_THAT(Texts(StudyAreas()->StudyAreasGUIDsList()), ElementsAre("2"));
}

TEST_F(StudyAreaDeletionTest, WithoutAHostDeletingByNameFailsAndTheStudyAreaStays) {
  world_.manager->DMInitialize(nullptr);
  EXPECT_EQ(UnsentMessage([&] { return StudyAreas()->DeleteStudyArea("North"); }), kDeleteFailed);
  EXPECT_TRUE(StudyAreas()->StudyAreaExists("North"));
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(StudyAreaDeletionTest, WithoutACurrentStateDeletingByNameFails) {
  world_.manager->DMInitialize(std::make_shared<PropertiesHost>(nullptr, world_.host->Settings()));
  EXPECT_EQ(UnsentMessage([&] { return StudyAreas()->DeleteStudyArea("North"); }), kDeleteFailed);
  EXPECT_TRUE(StudyAreas()->StudyAreaExists("North"));
}

TEST_F(StudyAreaDeletionTest, WithoutAHostDeletingByGuidWorks) {
  world_.manager->DMInitialize(nullptr);
  EXPECT_TRUE(StudyAreas()->DeleteStudyAreaByGUID(kFirstGuid));
}

TEST_F(StudyAreaDeletionTest, ACurrentStudyAreaThatIsNullFails) {
  world_.host->CurrentState()->SetProperty("Study Area Name", Null());
  EXPECT_EQ(UnsentMessage([&] { return StudyAreas()->DeleteStudyArea("North"); }), kDeleteFailed);
}

TEST_F(StudyAreaDeletionTest, WithoutADirnameTheStudyAreaGoesAndTheReportFails) {
  Load(R"(<STUDYAREA NAME="_North_" GUID="1"/><STUDYAREA NAME="_South_" GUID="2"/>)");
  world_.SetCurrentStudyArea("North");
  EXPECT_FALSE(Saves(world_, [&] {
    EXPECT_EQ(UnsentMessage([&] { return StudyAreas()->DeleteStudyArea("North"); }), kDeleteFailed);
    EXPECT_EQ(UnsentMessage([&] { return StudyAreas()->DeleteStudyAreaByGUID("2"); }),
              kDeleteFailed);
  }));
  EXPECT_EQ(StudyAreas()->StudyAreasList()->Count(), 0);
  EXPECT_EQ(world_.CurrentStudyArea(), "");
}

}  // namespace
}  // namespace kvdm
