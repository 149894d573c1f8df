// Items that have an element but no data manager, or a data manager but no element.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "items/kv_analysis.h"
#include "items/kv_data_item.h"
#include "items/kv_layers.h"
#include "platform/memory/memory_platform.h"
#include "tests/platform/xml/parsed.h"
#include "tests/saves.h"
#include "tests/test_world.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using ::testing::IsEmpty;

class HalfBoundAnalysisTest : public ::testing::Test {
 protected:
  TestWorld world_;
  std::shared_ptr<KVAnalysis> analysis_ = std::make_shared<KVAnalysis>(world_.platform.gis_core);
  std::shared_ptr<IKVLayerEdit> edit_ = Query<IKVLayerEdit>(analysis_);
};

TEST_F(HalfBoundAnalysisTest, WithoutAnElementItAnswersNeutrallyAndSavesNothing) {
  analysis_->AttachDataManager(world_.manager->Reference());
  EXPECT_FALSE(Saves(world_, [&] {
    analysis_->SetName("x");
    analysis_->SetLayerFile("x");
    analysis_->SetComments("x");
    analysis_->SetCreationTime("x");
    EXPECT_FALSE(analysis_->SetParameter("A", "1"));
    EXPECT_FALSE(analysis_->ClearParametersList());
    edit_->SetLayerFile("x");
    edit_->SetGUID("x");
  }));
  EXPECT_EQ(analysis_->Name(), "");
  EXPECT_EQ(analysis_->LayerFile(), "");
  EXPECT_EQ(analysis_->Comments(), "");
  EXPECT_EQ(analysis_->CreationTime(), "");
  EXPECT_EQ(analysis_->AnalysisDir(), "");
  EXPECT_EQ(analysis_->AnalysisGUID(), "");
  EXPECT_EQ(analysis_->GetParameter("A"), "");
  EXPECT_FALSE(analysis_->ParametersList());
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(HalfBoundAnalysisTest, WithoutADataManagerItChangesButNeitherItsNameNorItsLayer) {
  const auto node = xml::Parsed(R"(<ANALYSIS NAME="_a_" GUID="1" LAYERFILE="l"/>)");
  analysis_->AttachNode(node);
  analysis_->SetName("x");
  edit_->SetLayerFile("x");
  edit_->SetGUID("x");
  EXPECT_EQ(node.Xml(), R"(<ANALYSIS NAME="_a_" GUID="1" LAYERFILE="l"/>)");
  analysis_->SetLayerFile("m");
  analysis_->SetCreationTime("t");
  analysis_->SetComments("c");
  EXPECT_TRUE(analysis_->SetParameter("A", "1"));
  EXPECT_EQ(node.Xml(),
            R"(<ANALYSIS NAME="_a_" GUID="1" LAYERFILE="m" CREATIONTIME="t"><COMMENTS>c</COMMENTS>)"
            R"(<PARAM NAME="A" VALUE="1"/></ANALYSIS>)");
  EXPECT_TRUE(analysis_->ClearParametersList());
  EXPECT_RUNTIME_ERROR(analysis_->SetParameter("\"", "1"), kObjectNotSet);
}

TEST_F(HalfBoundAnalysisTest, WithoutADataManagerAnImportKeepsTheIdentifier) {
  const auto node = xml::Parsed(R"(<ANALYSIS NAME="_a_" GUID="1"/>)");
  analysis_->AttachNode(node);
  ValueSet document;
  document.PutValue("Velk/Kelvaro8/LayerType", "Analysis Layer");
  document.PutValue("Velk/Kelvaro8/GUID", "2");
  document.PutValue("Velk/Kelvaro8/Comments", "c");
  analysis_->ImportMetadata(std::make_shared<MemoryLayerMetadata>(document));
  EXPECT_EQ(node.Xml(), R"(<ANALYSIS NAME="_a_" GUID="1"><COMMENTS>c</COMMENTS></ANALYSIS>)");
}

TEST_F(HalfBoundAnalysisTest, BindingAgainReplacesTheElement) {
  analysis_->AttachNode(xml::Parsed("<ANALYSIS GUID='1'/>"));
  analysis_->AttachNode(xml::Parsed("<ANALYSIS GUID='2'/>"));
  EXPECT_EQ(analysis_->AnalysisGUID(), "2");
}

template <class Layer>
class HalfBoundLayerTest : public ::testing::Test {
 protected:
  TestWorld world_;
  std::shared_ptr<Layer> layer_ = std::make_shared<Layer>(world_.platform.gis_core);
};

using Layers = ::testing::Types<KVCustLayer, KVStoreLayer>;
TYPED_TEST_SUITE(HalfBoundLayerTest, Layers);

TYPED_TEST(HalfBoundLayerTest, LayerEditNeedsBoth) {
  const auto edit = Query<IKVLayerEdit>(this->layer_->shared_from_this());
  edit->SetGUID("{2}");
  this->layer_->AttachNode(xml::Element::Create("LAYER"));
  edit->SetGUID("{2}");
  edit->SetLayerFile("f");
  EXPECT_EQ(this->layer_->GUID(), "");
  EXPECT_EQ(this->layer_->LayerFile(), "");
}

TYPED_TEST(HalfBoundLayerTest, WithoutADataManagerItChangesButNotItsName) {
  this->layer_->AttachNode(xml::Element::Create("LAYER"));
  this->layer_->SetNameField("n");
  EXPECT_TRUE(this->layer_->SetParameter("p", "1"));
  EXPECT_EQ(this->layer_->NameField(), "n");
  EXPECT_EQ(this->layer_->GetParameter("p"), "1");
  EXPECT_RUNTIME_ERROR(this->layer_->SetParameter("a\"b", "1"), kObjectNotSet);
  EXPECT_RUNTIME_ERROR(this->layer_->SetName("B"), kObjectNotSet);
}

TEST(HalfBoundDataItemTest, WithoutAnOwnerARelativeFileReadsAsEmpty) {
  KVDataItem item;
  item.AttachNode(xml::Parsed("<DATAITEM FILE='S' PATHTYPE='RELATIVE'/>"));
  EXPECT_EQ(item.LayerFile(), "");
}

TEST(HalfBoundDataItemTest, WithoutADataManagerItChanges) {
  KVDataItem item;
  const auto element = xml::Element::Create("DATAITEM");
  item.AttachNode(element);
  item.SetName("A");
  EXPECT_EQ(element.Xml(), R"(<DATAITEM NAME="A"/>)");
  EXPECT_RUNTIME_ERROR(item.SetParameter("a\"b", "1"), kObjectNotSet);
}

}  // namespace
}  // namespace kvdm
