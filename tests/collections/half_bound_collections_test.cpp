// Collections that have an element but no data manager, or a data manager but no element.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kvdm/platform/error.h>

#include "collections/kv_analysis_collection.h"
#include "collections/kv_data_collection.h"
#include "collections/kv_layer_collections.h"
#include "tests/platform/xml/parsed.h"
#include "tests/test_world.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(HalfBoundCollectionsTest, AnalysesAreReadAndFailToChangeWithoutADataManager) {
  TestWorld world;
  KVAnalysisCollection analyses(world.platform.gis_core);
  analyses.SetNode(
      xml::Parsed(R"(<ANALYSISCOLLECTION><ANALYSIS NAME="_a_" GUID="1" DIRNAME="D:\a\"/>)"
                  R"(<ANALYSIS NAME="_b_" GUID="2" DIRNAME=""/></ANALYSISCOLLECTION>)"));
  EXPECT_THAT(Texts(analyses.AnalysesList()), ElementsAre("a", "b"));
  EXPECT_EQ(analyses.GetAnalysis("a")->AnalysisGUID(), "1");
  EXPECT_RUNTIME_ERROR(analyses.CreateAnalysis("c"), kObjectNotSet);
  EXPECT_RUNTIME_ERROR(analyses.GetAnalysis("\""), kObjectNotSet);
  EXPECT_RUNTIME_ERROR(analyses.DeleteAnalysis("a"), kObjectNotSet);
  EXPECT_TRUE(analyses.DeleteAnalysisByGUID("2"));
  EXPECT_THAT(Texts(analyses.AnalysesList()), IsEmpty());
}

TEST(HalfBoundCollectionsTest, AnalysesAnswerNeutrallyWithoutAnElement) {
  TestWorld world;
  KVAnalysisCollection analyses(world.platform.gis_core);
  analyses.SetDataManager(world.manager->Reference());
  EXPECT_FALSE(analyses.AnalysesList());
  EXPECT_FALSE(analyses.CreateAnalysis("a"));
  EXPECT_FALSE(analyses.DeleteAnalysis("a"));
  EXPECT_FALSE(analyses.GetAnalysis("a"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

template <class Collection>
void ExpectLayersToFailWithoutADataManager(const char* tag, std::string (Collection::*folder)(),
                                           bool (Collection::*create)(std::string_view)) {
  TestWorld world;
  Collection layers(world.platform.gis_core);
  layers.SetNode(xml::Element::Create(tag));
  EXPECT_RUNTIME_ERROR(static_cast<void>((layers.*folder)()), kObjectNotSet);
  EXPECT_RUNTIME_ERROR((layers.*create)("A"), kObjectNotSet);
}

TEST(HalfBoundCollectionsTest, LayersHaveNoFolderWithoutADataManager) {
  ExpectLayersToFailWithoutADataManager("STORELAYERCOLLECTION",
                                        &KVStoreLayerCollection::StoreLayersDir,
                                        &KVStoreLayerCollection::CreateStoreLayer);
  ExpectLayersToFailWithoutADataManager("CUSTLAYERCOLLECTION",
                                        &KVCustLayerCollection::CustLayersDir,
                                        &KVCustLayerCollection::CreateCustLayer);
}

TEST(HalfBoundCollectionsTest, TheFolderOfDataItemsNeedsNoElement) {
  TestWorld world;
  KVDataCollection items(world.platform.gis_core);
  items.SetDataManager(world.manager->Reference());
  EXPECT_EQ(items.DataItemsDir(), R"(D:\Data\Data\)");
}

TEST(HalfBoundCollectionsTest, FailuresOfDataItemsAreNotReportedWithoutADataManager) {
  TestWorld world;
  KVDataCollection items(world.platform.gis_core);
  const auto node = xml::Element::Create("DATACOLLECTION");
  items.SetNode(node);
  EXPECT_EQ(items.DataItemsList(), nullptr);
  EXPECT_EQ(items.GetDataItemByGUID("A"), nullptr);
  EXPECT_EQ(items.GetDataItem("a\"b"), nullptr);
  EXPECT_FALSE(items.DeleteDataItem("A"));
  EXPECT_FALSE(items.CreateDataItem("A"));
  EXPECT_EQ(node.Xml(), "<DATACOLLECTION/>");
}

TEST(HalfBoundCollectionsTest, DataItemsAreDeletedButNotSavedWithoutADataManager) {
  TestWorld world;
  KVDataCollection items(world.platform.gis_core);
  const auto node = xml::Parsed(
      "<DATACOLLECTION><SADATACOLLECTION><DATAITEM NAME='A'/></SADATACOLLECTION></DATACOLLECTION>");
  items.SetNode(node);
  EXPECT_TRUE(items.DeleteDataItem("A"));
  EXPECT_EQ(node.Xml(), "<DATACOLLECTION><SADATACOLLECTION/></DATACOLLECTION>");
  EXPECT_EQ(world.StoredCatalogue(), "");
}

TEST(HalfBoundCollectionsTest, TheCauseStaysAttachedToAReportThatFailed) {
  TestWorld world;
  world.platform.files->RefuseWrites(R"(D:\Data)");
  try {
    world.manager->DataCollection()->DataItemsDir();
    FAIL() << "no error";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(ErrorChain(error).back().number(), kPermissionDenied);
  }
}

}  // namespace
}  // namespace kvdm
