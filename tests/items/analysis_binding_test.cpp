// Analyses without an element, without a data manager, or without both.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "items/kv_analysis.h"
#include "tests/platform/xml/parsed.h"
#include "tests/saves.h"
#include "tests/test_world.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class AnalysisBindingTest : public ::testing::Test {
 protected:
  TestWorld world_;
  std::shared_ptr<KVAnalysis> analysis_ = std::make_shared<KVAnalysis>(world_.platform.gis_core);
  std::shared_ptr<IKVLayerEdit> edit_ = Query<IKVLayerEdit>(analysis_);
};

void ExpectNothingReadable(KVAnalysis& analysis) {
  EXPECT_EQ(analysis.Name(), "");
  EXPECT_EQ(analysis.LayerFile(), "");
  EXPECT_EQ(analysis.Comments(), "");
  EXPECT_EQ(analysis.CreationTime(), "");
  EXPECT_EQ(analysis.AnalysisDir(), "");
  EXPECT_EQ(analysis.AnalysisGUID(), "");
  EXPECT_EQ(analysis.GetParameter("A"), "");
  EXPECT_FALSE(analysis.ParametersList());
}

void ExpectNothingChangeable(KVAnalysis& analysis, IKVLayerEdit& edit) {
  analysis.SetName("x");
  analysis.SetLayerFile("x");
  analysis.SetComments("x");
  analysis.SetCreationTime("x");
  EXPECT_FALSE(analysis.SetParameter("A", "1"));
  EXPECT_FALSE(analysis.ClearParametersList());
  edit.SetLayerFile("x");
  edit.SetGUID("x");
}

TEST_F(AnalysisBindingTest, AnUnboundAnalysisAnswersNeutrally) {
  ExpectNothingReadable(*analysis_);
  ExpectNothingChangeable(*analysis_, *edit_);
  ExpectNothingReadable(*analysis_);
}

TEST_F(AnalysisBindingTest, WithoutAnElementItAnswersNeutrallyAndSavesNothing) {
  analysis_->AttachDataManager(world_.manager->Reference());
  EXPECT_FALSE(Saves(world_, [&] {
    ExpectNothingChangeable(*analysis_, *edit_);
    ExpectNothingReadable(*analysis_);
  }));
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(AnalysisBindingTest, WithoutAnElementAPropertySetGetsEmptyNameAndComments) {
  std::shared_ptr<NamedValueSet> set;
  EXPECT_TRUE(analysis_->WriteToPropertySet(set));
  EXPECT_THAT(set->ListAll().names, ElementsAre("Name", "Comments"));
  EXPECT_THAT(set->ListAll().values, ElementsAre(Value(""), Value("")));
  EXPECT_TRUE(analysis_->ReadFromPropertySet(set));
}

TEST_F(AnalysisBindingTest, WithoutADataManagerItReadsAndWritesButNeitherRenamesNorEditsLayers) {
  const auto node = xml::Parsed(R"(<ANALYSIS NAME="_a_" GUID="1" LAYERFILE="l"/>)");
  analysis_->AttachNode(node);
  analysis_->SetName("x");
  edit_->SetLayerFile("x");
  edit_->SetGUID("x");
  EXPECT_EQ(node->Xml(), R"(<ANALYSIS NAME="_a_" GUID="1" LAYERFILE="l"/>)");
  analysis_->SetLayerFile("m");
  analysis_->SetCreationTime("t");
  analysis_->SetComments("c");
  EXPECT_TRUE(analysis_->SetParameter("A", "1"));
  EXPECT_EQ(node->Xml(),
            R"(<ANALYSIS NAME="_a_" GUID="1" LAYERFILE="m" CREATIONTIME="t"><COMMENTS>c</COMMENTS>)"
            R"(<PARAM NAME="A" VALUE="1"/></ANALYSIS>)");
  EXPECT_TRUE(analysis_->ClearParametersList());
}

TEST_F(AnalysisBindingTest, WithoutADataManagerAFailedReportReachesTheCaller) {
  analysis_->AttachNode(xml::Parsed("<ANALYSIS/>"));
  EXPECT_RUNTIME_ERROR(analysis_->SetParameter("\"", "1"), kObjectNotSet);
}

TEST_F(AnalysisBindingTest, BindingAgainReplacesTheElement) {
  analysis_->AttachNode(xml::Parsed("<ANALYSIS GUID='1'/>"));
  analysis_->AttachNode(xml::Parsed("<ANALYSIS GUID='2'/>"));
  EXPECT_EQ(analysis_->AnalysisGUID(), "2");
}

}  // namespace
}  // namespace kvdm
