// Analysis collections that are not bound, half bound, or meet an error.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "collections/kv_analysis_collection.h"
#include "platform/memory/failing_services.h"
#include "tests/late_report.h"
#include "tests/platform/xml/parsed.h"
#include "tests/test_world.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char kListFailed[] = "Couldn't get Analyses list for the study area";
constexpr char kCreateFailed[] = "Kelvaro Data Manager: Couldn't create Analysis";
constexpr char kDeleteFailed[] = "Couldn't delete Analysis";
constexpr char kGetFailed[] = "Kelvaro Data Manager: Couldn't get Analysis Object";

std::shared_ptr<KVAnalysisCollection> Unbound(const TestWorld& world) {
  return std::make_shared<KVAnalysisCollection>(world.platform.gis_core);
}

void ExpectNeutralResults(IKVAnalysisCollection& analyses) {
  EXPECT_FALSE(analyses.AnalysesList());
  EXPECT_FALSE(analyses.AnalysesGUIDsList());
  EXPECT_FALSE(analyses.CreateAnalysis("Sales"));
  EXPECT_FALSE(analyses.DeleteAnalysis("Sales"));
  EXPECT_FALSE(analyses.DeleteAnalysisByGUID("1"));
  EXPECT_FALSE(analyses.GetAnalysis("Sales"));
  EXPECT_FALSE(analyses.GetAnalysisByGUID("1"));
  EXPECT_FALSE(analyses.AnalysisExists("Sales"));
  EXPECT_FALSE(analyses.AnalysisExistsByGUID("1"));
}

TEST(AnalysisCollectionFailuresTest, AnUnboundCollectionAnswersNeutrallyWithoutAMessage) {
  TestWorld world;
  const auto analyses = Unbound(world);
  ExpectNeutralResults(*analyses);
  analyses->SetDataManager(world.manager->Reference());
  ExpectNeutralResults(*analyses);
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(AnalysisCollectionFailuresTest, WithoutADataManagerItReadsAndFailsToChange) {
  TestWorld world;
  const auto analyses = Unbound(world);
  analyses->SetNode(
      xml::Parsed(R"(<ANALYSISCOLLECTION><ANALYSIS NAME="_a_" GUID="1" DIRNAME="D:\a\"/>)"
                  R"(<ANALYSIS NAME="_b_" GUID="2" DIRNAME=""/></ANALYSISCOLLECTION>)"));
  EXPECT_THAT(Texts(analyses->AnalysesList()), ElementsAre("a", "b"));
  EXPECT_EQ(analyses->GetAnalysis("a")->AnalysisGUID(), "1");
  EXPECT_RUNTIME_ERROR(analyses->CreateAnalysis("c"), kObjectNotSet);
  EXPECT_RUNTIME_ERROR(analyses->GetAnalysis("\""), kObjectNotSet);
  EXPECT_RUNTIME_ERROR(analyses->DeleteAnalysis("a"), kObjectNotSet);
  EXPECT_TRUE(analyses->DeleteAnalysisByGUID("2"));
  EXPECT_THAT(Texts(analyses->AnalysesList()), IsEmpty());
}

TEST(AnalysisCollectionFailuresTest, AMissingAttributeFailsTheWholeList) {
  TestWorld world;
  world.LoadMetadata(
      R"(<KVDATACOLLECTION><ANALYSISCOLLECTION><ANALYSIS NAME="_a_"/><ANALYSIS GUID="1"/>)"
      R"(</ANALYSISCOLLECTION></KVDATACOLLECTION>)");
  const auto analyses = world.manager->AnalysisCollection();
  EXPECT_EQ(UnsentMessage([&] { return analyses->AnalysesList(); }), kListFailed);
  EXPECT_EQ(UnsentMessage([&] { return analyses->AnalysesGUIDsList(); }), kListFailed);
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(AnalysisCollectionFailuresTest, ADoubleQuoteFailsInEveryLookUp) {
  for (const char* key : {"\"", "a\"b", R"(x" or "1"="1)"}) {
    SCOPED_TRACE(key);
    TestWorld world;
    const auto analyses = world.manager->AnalysisCollection();
    EXPECT_TRUE(analyses->CreateAnalysis("x"));
    EXPECT_RUNTIME_ERROR(analyses->AnalysisExists(key), kAutomationFailure);
    EXPECT_RUNTIME_ERROR(analyses->AnalysisExistsByGUID(key), kAutomationFailure);
    EXPECT_EQ(UnsentMessage([&] { return analyses->GetAnalysis(key); }), kGetFailed);
    EXPECT_EQ(UnsentMessage([&] { return analyses->GetAnalysisByGUID(key); }), kGetFailed);
    EXPECT_EQ(UnsentMessage([&] { return analyses->CreateAnalysis(key); }), kCreateFailed);
    EXPECT_EQ(UnsentMessage([&] { return analyses->DeleteAnalysis(key); }), kDeleteFailed);
    EXPECT_EQ(UnsentMessage([&] { return analyses->DeleteAnalysisByGUID(key); }), kDeleteFailed);
    EXPECT_THAT(Texts(analyses->AnalysesList()), ElementsAre("x"));
    EXPECT_THAT(world.Messages(), IsEmpty());
  }
}

TEST(AnalysisCollectionFailuresTest, CreatingNeedsTheHostAndItsCurrentState) {
  TestWorld world;
  const auto without_state = std::make_shared<PropertiesHost>(nullptr, world.host->Settings());
  for (const auto& host : {std::shared_ptr<PropertiesHost>(), without_state}) {
    world.manager->DMInitialize(host);
    const auto analyses = world.manager->AnalysisCollection();
    EXPECT_EQ(UnsentMessage([&] { return analyses->CreateAnalysis("Sales"); }), kCreateFailed);
    EXPECT_THAT(Texts(analyses->AnalysesList()), IsEmpty());
    EXPECT_FALSE(world.platform.files->FolderExists(R"(D:\Data\Analyses)"));
  }
}

TEST(AnalysisCollectionFailuresTest, ACurrentStudyAreaThatCannotBeReadFailsTheCreation) {
  TestWorld world;
  const auto analyses = world.manager->AnalysisCollection();
  world.host->CurrentState()->SetProperty("Study Area Name", Null());
  EXPECT_EQ(UnsentMessage([&] { return analyses->CreateAnalysis("Sales"); }), kCreateFailed);
  world.SetCurrentStudyArea("a\"b");
  EXPECT_EQ(UnsentMessage([&] { return analyses->CreateAnalysis("Sales"); }), kCreateFailed);
  EXPECT_THAT(Texts(analyses->AnalysesList()), IsEmpty());
}

// Says of every folder in question that it is there.
class AllFoldersExist : public FailingFileSystem {
 public:
  using FailingFileSystem::FailingFileSystem;
  bool FolderExists(std::string_view) override { return true; }
};

TEST(AnalysisCollectionFailuresTest, WhenFolderNamesRunOutNothingIsCreated) {
  TestWorld world;
  auto services = world.platform.Bundle();
  services.files =
      std::make_shared<AllFoldersExist>(services.files, std::make_shared<FailureCounter>());
  world.manager = std::make_shared<KVDataManager>(services);
  world.manager->DMInitialize(world.host);
  const auto analyses = world.manager->AnalysisCollection();
  EXPECT_EQ(UnsentMessage([&] { return analyses->CreateAnalysis("North"); }), kCreateFailed);
  EXPECT_THAT(Texts(analyses->AnalysesList()), IsEmpty());
}

}  // namespace
}  // namespace kvdm
