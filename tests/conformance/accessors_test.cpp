// How the data manager hands out its collections.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "tests/conformance/results.h"
#include "tests/conformance/world.h"

namespace kvdm::conformance {
namespace {

using testing::IsEmpty;

struct AccessorRow {
  const char* element;
  const char* message;
  std::function<std::shared_ptr<Unknown>(IKVDataManager&)> get;
};

std::vector<AccessorRow> MetadataCollections() {
  return {{"ANALYSISCOLLECTION", "Cannot get analysis collection from metadata",
           [](IKVDataManager& manager) { return manager.AnalysisCollection(); }},
          {"STORELAYERCOLLECTION", "Cannot get Store Layer Collection from metadata",
           [](IKVDataManager& manager) { return manager.StoreLayerCollection(); }},
          {"CUSTLAYERCOLLECTION", "Cannot get Cust Layer Collection from metadata",
           [](IKVDataManager& manager) { return manager.CustLayerCollection(); }},
          {"DATACOLLECTION", "Cannot get Data Collection from metadata",
           [](IKVDataManager& manager) { return manager.DataCollection(); }}};
}

TEST(AccessorsConformance, AppendAMissingCollectionElement) {
  for (const AccessorRow& row : MetadataCollections()) {
    OpenWorld world;
    world.Load("<OTHER/>");
    EXPECT_NE(row.get(*world.Manager()), nullptr);
    EXPECT_EQ(world.Metadata(), "<OTHER/><" + std::string(row.element) + "/>");
    EXPECT_THAT(world.Messages(), IsEmpty());
  }
}

TEST(AccessorsConformance, LeaveAnExistingCollectionElement) {
  for (const AccessorRow& row : MetadataCollections()) {
    OpenWorld world;
    const std::string before = world.SavedText();
    EXPECT_NE(row.get(*world.Manager()), nullptr);
    EXPECT_EQ(world.SavedText(), before) << row.element;
  }
}

TEST(AccessorsConformance, DoNotFindAnElementDeeperInTheTree) {
  for (const AccessorRow& row : MetadataCollections()) {
    OpenWorld world;
    const std::string element = "<" + std::string(row.element) + "/>";
    world.Load("<GROUP>" + element + "</GROUP>");
    row.get(*world.Manager());
    EXPECT_EQ(world.Metadata(), "<GROUP>" + element + "</GROUP>" + element);
  }
}

TEST(AccessorsConformance, GiveANewObjectEachTime) {
  for (const AccessorRow& row : MetadataCollections()) {
    OpenWorld world;
    EXPECT_NE(row.get(*world.Manager()), row.get(*world.Manager())) << row.element;
  }
}

TEST(AccessorsConformance, ReportAMissingDocument) {
  for (const AccessorRow& row : MetadataCollections()) {
    OpenWorld world;
    world.LoadText("no xml");
    EXPECT_EQ(row.get(*world.Manager()), nullptr);
    EXPECT_THAT(world.Messages(), testing::ElementsAre(Message{row.message, "Kelvaro", 48}));
  }
}

TEST(AccessorsConformance, BindTheFirstOfSeveralElements) {
  OpenWorld world;
  world.Load(R"(<ANALYSISCOLLECTION><ANALYSIS NAME="_A_"/></ANALYSISCOLLECTION>)"
             R"(<ANALYSISCOLLECTION><ANALYSIS NAME="_B_"/></ANALYSISCOLLECTION>)");
  EXPECT_EQ(TextsOf(world.Manager()->AnalysisCollection()->AnalysesList()), Texts{"A"});
}

TEST(AccessorsConformance, NeedNoMetadataForStudyAreasAndTables) {
  OpenWorld world;
  world.LoadText("no xml");
  EXPECT_NE(world.Manager()->StudyAreaCollection(), nullptr);
  EXPECT_NE(world.Manager()->StudyAreaCollection(), world.Manager()->StudyAreaCollection());
  EXPECT_NE(world.Manager()->TablesManager(), nullptr);
  EXPECT_NE(world.Manager()->TablesManager(), world.Manager()->TablesManager());
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(AccessorsConformance, StudyAreasComeFromTheCatalogueWhateverItsRoot) {
  World world;
  world.PutRegistryText("StudyAreaCollection", R"(<ANYTHING><STUDYAREA NAME="_A_"/></ANYTHING>)");
  world.Load("<STUDYAREACOLLECTION><STUDYAREA NAME='_B_'/></STUDYAREACOLLECTION>");
  EXPECT_EQ(TextsOf(world.Manager()->StudyAreaCollection()->StudyAreasList()), Texts{"A"});
}

TEST(AccessorsConformance, DoNotFlush) {
  for (const AccessorRow& row : MetadataCollections()) {
    OpenWorld world;
    world.Load("");
    EXPECT_FALSE(Saves(world, [&] { row.get(*world.Manager()); })) << row.element;
  }
}

TEST(AccessorsConformance, CollectionsOverOneElementAgree) {
  OpenWorld world;
  const auto first = world.Manager()->StoreLayerCollection();
  world.Manager()->StoreLayerCollection()->CreateStoreLayer("A");
  EXPECT_EQ(TextsOf(first->StoreLayersList()), Texts{"A"});
}

}  // namespace
}  // namespace kvdm::conformance
