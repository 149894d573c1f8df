// Study area collections that are not bound, half bound, or meet an error.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kvdm/platform/error.h>

#include "platform/memory/failing_services.h"
#include "studyarea/kv_study_area_collection.h"
#include "tests/late_report.h"
#include "tests/platform/xml/parsed.h"
#include "tests/saves.h"
#include "tests/test_world.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using ::testing::IsEmpty;

constexpr char kListFailed[] = "Couldn't get StudyAreas list for the study area";
constexpr char kCreateFailed[] = "Kelvaro Data Manager: Couldn't create StudyArea";
constexpr char kDeleteFailed[] = "Couldn't delete StudyArea";
constexpr char kGetFailed[] = "Kelvaro Data Manager: Couldn't get StudyArea Object";

std::shared_ptr<KVStudyAreaCollection> Unbound(const TestWorld& world) {
  return std::make_shared<KVStudyAreaCollection>(world.platform.gis_core);
}

void ExpectNeutralResults(IKVStudyAreaCollection& study_areas) {
  EXPECT_FALSE(study_areas.StudyAreasList());
  EXPECT_FALSE(study_areas.StudyAreasGUIDsList());
  EXPECT_FALSE(study_areas.CreateStudyArea("North"));
  EXPECT_FALSE(study_areas.DeleteStudyArea("North"));
  EXPECT_FALSE(study_areas.DeleteStudyAreaByGUID("1"));
  EXPECT_FALSE(study_areas.GetStudyArea("North"));
  EXPECT_FALSE(study_areas.GetStudyAreaByGUID("1"));
  EXPECT_FALSE(study_areas.StudyAreaExists("North"));
  EXPECT_FALSE(study_areas.StudyAreaExistsByGUID("1"));
}

TEST(StudyAreaCollectionFailuresTest, AnUnboundCollectionAnswersNeutrallyWithoutAMessage) {
  TestWorld world;
  ExpectNeutralResults(*Unbound(world));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(StudyAreaCollectionFailuresTest, WithoutACatalogueRootACollectionAnswersNeutrally) {
  TestWorld world;
  world.LoadCatalogue("<not a catalogue");
  const auto study_areas = world.manager->StudyAreaCollection();
  EXPECT_FALSE(Saves(world, [&] { ExpectNeutralResults(*study_areas); }));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(StudyAreaCollectionFailuresTest, WithoutACatalogueRootDeletingStillClosesTheStudyArea) {
  TestWorld world;
  world.LoadCatalogue("<not a catalogue");
  world.SetCurrentStudyArea("North");
  EXPECT_FALSE(world.manager->StudyAreaCollection()->DeleteStudyArea("North"));
  EXPECT_EQ(world.CurrentStudyArea(), "");
}

TEST(StudyAreaCollectionFailuresTest, WithoutADataManagerItReadsAndFailsToChange) {
  TestWorld world;
  const auto study_areas = Unbound(world);
  const auto node =
      xml::Parsed(R"(<STUDYAREACOLLECTION><STUDYAREA NAME="_North_" GUID="1" DIRNAME=""/>)"
                  R"(</STUDYAREACOLLECTION>)");
  study_areas->SetNode(node);
  EXPECT_EQ(study_areas->StudyAreasList()->Count(), 1);
  EXPECT_EQ(study_areas->GetStudyArea("North")->GUID(), "1");
  EXPECT_FALSE(study_areas->CreateStudyArea("North"));
  EXPECT_RUNTIME_ERROR(study_areas->CreateStudyArea("South"), kObjectNotSet);
  EXPECT_RUNTIME_ERROR(study_areas->DeleteStudyArea("North"), kObjectNotSet);
  EXPECT_EQ(study_areas->StudyAreasList()->Count(), 1);
  EXPECT_RUNTIME_ERROR(study_areas->DeleteStudyAreaByGUID("1"), kObjectNotSet);
}

TEST(StudyAreaCollectionFailuresTest, AMissingAttributeFailsTheWholeList) {
  TestWorld world;
  world.LoadCatalogue(
      R"(<STUDYAREACOLLECTION><STUDYAREA NAME="_a_"/><STUDYAREA GUID="1"/></STUDYAREACOLLECTION>)");
  const auto study_areas = world.manager->StudyAreaCollection();
  EXPECT_EQ(UnsentMessage([&] { return study_areas->StudyAreasList(); }), kListFailed);
  EXPECT_EQ(UnsentMessage([&] { return study_areas->StudyAreasGUIDsList(); }), kListFailed);
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(StudyAreaCollectionFailuresTest, ADoubleQuoteFailsInEveryLookUp) {
  for (const char* key : {"\"", "a\"b", R"(x" or "1"="1)"}) {
    SCOPED_TRACE(key);
    TestWorld world;
    const auto study_areas = world.manager->StudyAreaCollection();
    EXPECT_RUNTIME_ERROR(study_areas->StudyAreaExists(key), kAutomationFailure);
    EXPECT_RUNTIME_ERROR(study_areas->StudyAreaExistsByGUID(key), kAutomationFailure);
    EXPECT_EQ(UnsentMessage([&] { return study_areas->GetStudyArea(key); }), kGetFailed);
    EXPECT_EQ(UnsentMessage([&] { return study_areas->GetStudyAreaByGUID(key); }), kGetFailed);
    EXPECT_EQ(UnsentMessage([&] { return study_areas->CreateStudyArea(key); }), kCreateFailed);
    EXPECT_EQ(UnsentMessage([&] { return study_areas->DeleteStudyArea(key); }), kDeleteFailed);
    EXPECT_EQ(UnsentMessage([&] { return study_areas->DeleteStudyAreaByGUID(key); }),
              kDeleteFailed);
    EXPECT_EQ(study_areas->StudyAreasList()->Count(), 0);
    EXPECT_THAT(world.Messages(), IsEmpty());
  }
}

TEST(StudyAreaCollectionFailuresTest, TheCauseStaysAttachedToTheFailedReport) {
  TestWorld world;
  try {
    static_cast<void>(world.manager->StudyAreaCollection()->GetStudyArea("\""));
    FAIL() << "no error";
  } catch (const std::exception& error) {
    const auto chain = ErrorChain(error);
    ASSERT_EQ(chain.size(), 2U);
    EXPECT_EQ(chain[0].number(), kMemberNotSupported);
    EXPECT_EQ(chain[1].number(), kAutomationFailure);
  }
}

// Says of every folder in question that it is there.
class AllFoldersExist : public FailingFileSystem {
 public:
  using FailingFileSystem::FailingFileSystem;
  bool FolderExists(std::string_view) override { return true; }
};

TEST(StudyAreaCollectionFailuresTest, WhenFolderNamesRunOutNothingIsCreated) {
  TestWorld world;
  auto services = world.platform.Bundle();
  services.files =
      std::make_shared<AllFoldersExist>(services.files, std::make_shared<FailureCounter>());
  world.manager = std::make_shared<KVDataManager>(services);
  world.manager->SetWorkingDirectory(R"(D:\Data)");
  const auto study_areas = world.manager->StudyAreaCollection();
  EXPECT_FALSE(Saves(world, [&] {
    EXPECT_EQ(UnsentMessage([&] { return study_areas->CreateStudyArea("North"); }), kCreateFailed);
  }));
  EXPECT_FALSE(study_areas->StudyAreaExists("North"));
}

TEST(StudyAreaCollectionFailuresTest, ARegistryThatRefusesDoesNotSpoilTheCreation) {
  TestWorld world;
  world.platform.registry->SetWritable(false);
  EXPECT_TRUE(world.manager->StudyAreaCollection()->CreateStudyArea("North"));
  EXPECT_EQ(world.StoredCatalogue(), "");
}

}  // namespace
}  // namespace kvdm
