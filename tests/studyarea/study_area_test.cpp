// The attributes and comments of a study area.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "studyarea/kv_study_area.h"
#include "tests/full_element.h"
#include "tests/platform/xml/parsed.h"
#include "tests/saves.h"
#include "tests/test_world.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A world with the study areas North, which the test is about, and South.
class StudyAreaTest : public ::testing::Test {
 protected:
  StudyAreaTest() {
    EXPECT_TRUE(world_.manager->StudyAreaCollection()->CreateStudyArea("North"));
    EXPECT_TRUE(world_.manager->StudyAreaCollection()->CreateStudyArea("South"));
    north_ = world_.manager->StudyAreaCollection()->GetStudyArea("North");
    edit_ = Query<IKVLayerEdit>(north_);
  }

  // A study area over `xml`, bound to the data manager.
  [[nodiscard]] std::shared_ptr<KVStudyArea> Bound(std::string_view xml) const {
    auto study_area = std::make_shared<KVStudyArea>(world_.platform.gis_core);
    study_area->SetNode(xml::Parsed(xml));
    study_area->SetDataManager(world_.manager->Reference());
    return study_area;
  }
  [[nodiscard]] std::string StoredNorth() {
    world_.manager->Flush();
    const auto catalogue = world_.StoredCatalogue();
    return catalogue.substr(0, catalogue.find("</STUDYAREA>"));
  }

  TestWorld world_;
  std::shared_ptr<IKVStudyArea> north_;
  std::shared_ptr<IKVLayerEdit> edit_;
};

TEST_F(StudyAreaTest, HasFiveInterfaces) {
  EXPECT_TRUE(Query<IKVPropertySet>(north_));
  EXPECT_TRUE(Query<IKVStudyArea>(north_));
  EXPECT_TRUE(Query<IKVMetadata>(north_));
  EXPECT_TRUE(Query<IKVLayerEdit>(north_));
  EXPECT_TRUE(Query<IKVStudyArea2>(north_));
  EXPECT_FALSE(Query<IKVAnalysis>(north_));
  EXPECT_EQ(Query<IKVStudyArea>(edit_), north_);
}

TEST_F(StudyAreaTest, ReadsItsAttributes) {
  EXPECT_EQ(north_->Name(), "North");
  EXPECT_EQ(north_->GUID(), "{00000000-0000-4000-8000-000000000001}");
  EXPECT_EQ(north_->StudyAreaDir(), R"(D:\Data\StudyAreas\North\)");
  EXPECT_EQ(north_->LayerFile(), R"(D:\Data\StudyAreas\North\StudyArea.lyr)");
  EXPECT_EQ(north_->Comments(), "");
}

TEST_F(StudyAreaTest, NameAndDatasetLoseOneUnderscoreAtEachEnd) {
  const std::pair<const char*, const char*> cases[] = {{"_", "_"},   {"__", ""},   {"a_", "a_"},
                                                       {"_a", "_a"}, {"_a_", "a"}, {"", ""}};
  for (const auto& [stored, expected] : cases) {
    SCOPED_TRACE(stored);
    const auto study_area =
        Bound("<STUDYAREA NAME='" + std::string(stored) + "' DATASET='" + stored + "'/>");
    EXPECT_EQ(study_area->Name(), expected);
    EXPECT_EQ(study_area->Dataset(), expected);
  }
}

TEST_F(StudyAreaTest, RenamingWrapsTheNameSavesAndMovesNothing) {
  EXPECT_TRUE(Saves(world_, [&] { north_->SetName("West"); }));
  EXPECT_EQ(north_->Name(), "West");
  EXPECT_THAT(world_.StoredCatalogue(), ::testing::HasSubstr(R"(NAME="_West_")"));
  EXPECT_EQ(north_->StudyAreaDir(), R"(D:\Data\StudyAreas\North\)");
  EXPECT_EQ(north_->LayerFile(), R"(D:\Data\StudyAreas\North\StudyArea.lyr)");
  EXPECT_THAT(world_.platform.files->Tree(R"(D:\Data\StudyAreas)"),
              ElementsAre("North\\", "South\\"));
}

TEST_F(StudyAreaTest, RenamingToANameInUseKeepsTheOldNameSilently) {
  for (const char* name : {"South", "North"}) {
    SCOPED_TRACE(name);
    EXPECT_FALSE(Saves(world_, [&] { north_->SetName(name); }));
    EXPECT_EQ(north_->Name(), "North");
  }
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(StudyAreaTest, RenamingTellsLettersOfDifferentCaseApart) {
  north_->SetName("south");
  EXPECT_EQ(north_->Name(), "south");
}

TEST_F(StudyAreaTest, RenamingToANameWithADoubleQuoteShowsAMessage) {
  EXPECT_FALSE(Saves(world_, [&] { north_->SetName("a\"b"); }));
  EXPECT_EQ(north_->Name(), "North");
  EXPECT_THAT(world_.Messages(),
              ElementsAre("Kelvaro Data Manager: Couldn't change the study area name"));
}

TEST_F(StudyAreaTest, SettersStoreTheirAttributeAndSave) {
  const auto dir = Query<IKVStudyArea2>(north_);
  EXPECT_TRUE(Saves(world_, [&] { north_->SetDataset("Set 1"); }));
  EXPECT_TRUE(Saves(world_, [&] { edit_->SetLayerFile("x.lyr"); }));
  EXPECT_TRUE(Saves(world_, [&] { edit_->SetGUID("not a guid"); }));
  EXPECT_TRUE(Saves(world_, [&] { dir->SetStudyAreaDir("anywhere"); }));
  EXPECT_THAT(world_.StoredCatalogue(),
              ::testing::HasSubstr(R"(<STUDYAREA NAME="_North_" GUID="not a guid")"
                                   R"( DIRNAME="anywhere" LAYERFILE="x.lyr")"
                                   R"( CREATIONTIME="11/15/2026 7:35:30 AM" DATASET="_Set 1_">)"));
  EXPECT_EQ(north_->Dataset(), "Set 1");
  EXPECT_EQ(north_->LayerFile(), "x.lyr");
  EXPECT_EQ(north_->GUID(), "not a guid");
  EXPECT_EQ(north_->StudyAreaDir(), "anywhere");
}

TEST_F(StudyAreaTest, AnIdentifierNeedNotBeUnique) {
  const auto south = world_.manager->StudyAreaCollection()->GetStudyArea("South");
  edit_->SetGUID(south->GUID());
  EXPECT_EQ(north_->GUID(), south->GUID());
}

TEST_F(StudyAreaTest, CommentsWithBareLineFeedsComeBackWithCrLf) {
  EXPECT_TRUE(Saves(world_, [&] { north_->SetComments("one\ntwo\n"); }));
  EXPECT_EQ(north_->Comments(), "one\r\ntwo\r\n");
}

TEST_F(StudyAreaTest, EveryLineFeedOfTheCommentsGainsACarriageReturnUntilReloaded) {
  north_->SetComments("one\r\ntwo");
  EXPECT_EQ(north_->Comments(), "one\r\r\ntwo");
  world_.Restart();
  EXPECT_EQ(world_.manager->StudyAreaCollection()->GetStudyArea("North")->Comments(), "one\r\ntwo");
}

TEST_F(StudyAreaTest, CommentsAreOneLastChildThatIsOverwritten) {
  north_->SetComments(" first ");
  north_->SetComments("  second & <last>  ");
  EXPECT_THAT(
      StoredNorth(),
      ::testing::EndsWith("<SAPROPERTIES/><COMMENTS>  second &amp; &lt;last&gt;  </COMMENTS>"));
  EXPECT_EQ(north_->Comments(), "  second & <last>  ");
}

TEST_F(StudyAreaTest, EmptyCommentsReadAsEmpty) {
  north_->SetComments("text");
  north_->SetComments("");
  EXPECT_EQ(north_->Comments(), "");
}

TEST_F(StudyAreaTest, CommentsThatCannotBeStoredShowTheErrorInAPlainBox) {
  north_->SetComments("kept");
  EXPECT_FALSE(
      Saves(world_, [&] { north_->SetComments(std::string(xml::kMaxValueBytes + 1, 'x')); }));
  EXPECT_EQ(north_->Comments(), "kept");
  ASSERT_EQ(world_.platform.box->Messages().size(), 1U);
  EXPECT_EQ(world_.platform.box->Messages()[0],
            (ShownMessage{std::string(DescriptionOf(kOutOfMemory)), "KVDM", MessageStyle::kPlain}));
}

TEST_F(StudyAreaTest, AMissingIdentifierOrDatasetShowsAMessage) {
  const auto study_area = Bound("<STUDYAREA/>");
  EXPECT_EQ(study_area->GUID(), "");
  EXPECT_EQ(study_area->Dataset(), "");
  EXPECT_THAT(
      world_.platform.box->Messages(),
      ElementsAre(
          ShownMessage{"Can't find the attribute GUID", "Kelvaro", MessageStyle::kExclamation},
          ShownMessage{"Can't find the attribute DATASET", "Kelvaro", MessageStyle::kExclamation}));
}

TEST_F(StudyAreaTest, OtherMissingAttributesReadAsEmptyWithoutAMessage) {
  const auto study_area = Bound("<STUDYAREA/>");
  EXPECT_EQ(study_area->LayerFile(), "");
  EXPECT_EQ(study_area->StudyAreaDir(), "");
  EXPECT_EQ(study_area->Comments(), "");
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(StudyAreaTest, AMissingNameReachesTheCaller) {
  EXPECT_RUNTIME_ERROR(Bound("<STUDYAREA/>")->Name(), kInvalidUseOfNull);
}

TEST_F(StudyAreaTest, AFailedChangeShowsItsMessageAndSavesNothing) {
  const auto study_area = std::make_shared<KVStudyArea>(world_.platform.gis_core);
  study_area->SetNode(FullElement("STUDYAREA"));
  study_area->SetDataManager(world_.manager->Reference());
  const auto edit = Query<IKVLayerEdit>(study_area);
  EXPECT_FALSE(Saves(world_, [&] {
    study_area->SetName("x");
    study_area->SetDataset("x");
    edit->SetLayerFile("x");
    edit->SetGUID("x");
    study_area->SetStudyAreaDir("x");
  }));
  EXPECT_THAT(world_.Messages(),
              ElementsAre("Kelvaro Data Manager: Couldn't change the study area name",
                          "Kelvaro Data Manager: Couldn't change the study area datasetname",
                          "Kelvaro Data Manager: Couldn't change the study area layer file",
                          "Kelvaro Data Manager: Couldn't change the Study Area GUID",
                          "Kelvaro Data Manager: Couldn't change the study area folder"));
}

TEST_F(StudyAreaTest, AStudyAreaThatWasDeletedKeepsItsValues) {
  EXPECT_TRUE(world_.manager->StudyAreaCollection()->DeleteStudyArea("North"));
  north_->SetDataset("Set 1");
  EXPECT_EQ(north_->Dataset(), "Set 1");
  EXPECT_EQ(north_->Name(), "North");
}

}  // namespace
}  // namespace kvdm
