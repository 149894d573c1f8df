// Which classes and interfaces the component has.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kvdm/datamanager/component.h>

#include "tests/conformance/results.h"
#include "tests/conformance/world.h"

namespace kvdm::conformance {
namespace {

template <class Interface>
bool Has(World& world, std::string_view class_name) {
  return world.New<Interface>(class_name) != nullptr;
}

TEST(ComponentConformance, HasThirteenClasses) {
  EXPECT_THAT(
      ClassIdentities(),
      testing::UnorderedElementsAre(
          "KVDM.KVDataManager", "KVDM.KVStudyAreaCollection", "KVDM.KVStudyArea",
          "KVDM.KVTablesManager", "KVDM.KVFileInfo", "KVDM.KVAnalysisCollection",
          "KVDM.KVStoreLayerCollection", "KVDM.KVCustLayerCollection", "KVDM.KVDataCollection",
          "KVDM.KVAnalysis", "KVDM.KVCustLayer", "KVDM.KVStoreLayer", "KVDM.KVDataItem"));
}

TEST(ComponentConformance, RefusesAClassThatItDoesNotHave) {
  World world;
  EXPECT_EQ(OutcomeOf([&] { world.New("KVLayer"); }), Fails(429));
}

TEST(ComponentConformance, GivesANewObjectEachTime) {
  World world;
  EXPECT_NE(world.New("KVFileInfo"), world.New("KVFileInfo"));
}

TEST(ComponentConformance, DataManagerHasItsFourInterfaces) {
  World world;
  EXPECT_TRUE(Has<IKVDataManager>(world, "KVDataManager"));
  EXPECT_TRUE(Has<IKVDMInitialize>(world, "KVDataManager"));
  EXPECT_TRUE(Has<IPersistVariant>(world, "KVDataManager"));
  EXPECT_TRUE(Has<IKVCatalogue>(world, "KVDataManager"));
}

TEST(ComponentConformance, StudyAreaHasItsFiveInterfaces) {
  World world;
  EXPECT_TRUE(Has<IKVPropertySet>(world, "KVStudyArea"));
  EXPECT_TRUE(Has<IKVStudyArea>(world, "KVStudyArea"));
  EXPECT_TRUE(Has<IKVMetadata>(world, "KVStudyArea"));
  EXPECT_TRUE(Has<IKVLayerEdit>(world, "KVStudyArea"));
  EXPECT_TRUE(Has<IKVStudyArea2>(world, "KVStudyArea"));
}

TEST(ComponentConformance, CollectionsAndHelpersHaveTheirInterface) {
  World world;
  EXPECT_TRUE(Has<IKVStudyAreaCollection>(world, "KVStudyAreaCollection"));
  EXPECT_TRUE(Has<IKVTablesManager>(world, "KVTablesManager"));
  EXPECT_TRUE(Has<IKVFileInfo>(world, "KVFileInfo"));
  EXPECT_TRUE(Has<IKVAnalysisCollection>(world, "KVAnalysisCollection"));
  EXPECT_TRUE(Has<IKVStoreLayerCollection>(world, "KVStoreLayerCollection"));
  EXPECT_TRUE(Has<IKVCustLayerCollection>(world, "KVCustLayerCollection"));
  EXPECT_TRUE(Has<IKVDataCollection>(world, "KVDataCollection"));
}

TEST(ComponentConformance, ItemsHaveTheirOwnInterface) {
  World world;
  EXPECT_TRUE(Has<IKVAnalysis>(world, "KVAnalysis"));
  EXPECT_TRUE(Has<IKVCustLayer>(world, "KVCustLayer"));
  EXPECT_TRUE(Has<IKVStoreLayer>(world, "KVStoreLayer"));
  EXPECT_TRUE(Has<IKVDataItem>(world, "KVDataItem"));
}

TEST(ComponentConformance, LayerItemsButNotDataItemsCanBeEditedAndHaveMetadata) {
  World world;
  for (const char* layer : {"KVAnalysis", "KVCustLayer", "KVStoreLayer"}) {
    EXPECT_TRUE(Has<IKVLayerEdit>(world, layer)) << layer;
    EXPECT_TRUE(Has<IKVMetadata>(world, layer)) << layer;
  }
  EXPECT_FALSE(Has<IKVLayerEdit>(world, "KVDataItem"));
  EXPECT_FALSE(Has<IKVMetadata>(world, "KVDataItem"));
}

TEST(ComponentConformance, ClassesHaveNoForeignInterface) {
  World world;
  EXPECT_FALSE(Has<IKVStudyArea>(world, "KVDataManager"));
  EXPECT_FALSE(Has<IKVDMInitialize>(world, "KVStudyArea"));
  EXPECT_FALSE(Has<IKVStoreLayer>(world, "KVCustLayer"));
  EXPECT_FALSE(Has<IKVCustLayer>(world, "KVStoreLayer"));
  EXPECT_FALSE(Has<IKVAnalysisCollection>(world, "KVStoreLayerCollection"));
}

TEST(ComponentConformance, ViewsOutliveTheHostsReferenceToTheDataManager) {
  std::shared_ptr<IKVAnalysisCollection> analyses;
  {
    OpenWorld world;
    analyses = world.Manager()->AnalysisCollection();
    EXPECT_TRUE(analyses->CreateAnalysis("Sales"));
  }
  EXPECT_EQ(TextsOf(analyses->AnalysesList()), Texts{"Sales"});
  EXPECT_EQ(analyses->GetAnalysis("Sales")->Name(), "Sales");
}

}  // namespace
}  // namespace kvdm::conformance
