// The properties of an analysis, and its layer editing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "items/kv_analysis.h"
#include "tests/full_element.h"
#include "tests/late_report.h"
#include "tests/platform/xml/parsed.h"
#include "tests/saves.h"
#include "tests/test_world.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

// A world with the analyses Sales, which the test is about, and Costs.
class AnalysisTest : public ::testing::Test {
 protected:
  AnalysisTest() {
    const auto analyses = world_.manager->AnalysisCollection();
    EXPECT_TRUE(analyses->CreateAnalysis("Sales"));
    EXPECT_TRUE(analyses->CreateAnalysis("Costs"));
    sales_ = analyses->GetAnalysis("Sales");
    edit_ = Query<IKVLayerEdit>(sales_);
  }

  // An analysis over `node`, bound to the data manager.
  [[nodiscard]] std::shared_ptr<KVAnalysis> Bound(std::shared_ptr<xml::Element> node) const {
    auto analysis = std::make_shared<KVAnalysis>(world_.platform.gis_core);
    analysis->AttachNode(std::move(node));
    analysis->AttachDataManager(world_.manager->Reference());
    return analysis;
  }

  TestWorld world_;
  std::shared_ptr<IKVAnalysis> sales_;
  std::shared_ptr<IKVLayerEdit> edit_;
};

TEST_F(AnalysisTest, HasThreeInterfaces) {
  EXPECT_TRUE(Query<IKVAnalysis>(sales_));
  EXPECT_TRUE(Query<IKVLayerEdit>(sales_));
  EXPECT_TRUE(Query<IKVMetadata>(sales_));
  EXPECT_FALSE(Query<IKVPropertySet>(sales_));
  EXPECT_EQ(Query<IKVAnalysis>(edit_), sales_);
}

TEST_F(AnalysisTest, ReadsItsAttributesAsStored) {
  const auto analysis = Bound(xml::Parsed(
      R"(<ANALYSIS NAME="_a_" GUID="_g_" DIRNAME="d" LAYERFILE="l" CREATIONTIME="t"/>)"));
  EXPECT_EQ(analysis->Name(), "a");
  EXPECT_EQ(analysis->AnalysisGUID(), "_g_");
  EXPECT_EQ(analysis->AnalysisDir(), "d");
  EXPECT_EQ(analysis->LayerFile(), "l");
  EXPECT_EQ(analysis->CreationTime(), "t");
  EXPECT_EQ(analysis->Comments(), "");
}

TEST_F(AnalysisTest, ANameLosesOneUnderscoreAtEachEnd) {
  const std::pair<const char*, const char*> cases[] = {
      {"_", "_"}, {"__", ""}, {"a_", "a_"}, {"_a", "_a"}, {"_a_", "a"}, {"", ""}, {"__a__", "_a_"}};
  for (const auto& [stored, expected] : cases) {
    EXPECT_EQ(Bound(xml::Parsed("<ANALYSIS NAME='" + std::string(stored) + "'/>"))->Name(),
              expected)
        << stored;
  }
}

TEST_F(AnalysisTest, OtherMissingAttributesReadAsEmpty) {
  const auto analysis = Bound(xml::Parsed("<ANALYSIS/>"));
  EXPECT_EQ(analysis->AnalysisGUID(), "");
  EXPECT_EQ(analysis->AnalysisDir(), "");
  EXPECT_EQ(analysis->LayerFile(), "");
  EXPECT_EQ(analysis->CreationTime(), "");
  EXPECT_RUNTIME_ERROR(analysis->Name(), kInvalidUseOfNull);
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(AnalysisTest, RenamingWrapsTheNameAndDoesNotSave) {
  EXPECT_FALSE(Saves(world_, [&] { sales_->SetName("Rents"); }));
  EXPECT_EQ(sales_->Name(), "Rents");
  EXPECT_THAT(world_.Metadata(), HasSubstr(R"(<ANALYSIS NAME="_Rents_")"));
  EXPECT_EQ(sales_->AnalysisDir(), R"(D:\Data\Analyses\Sales\)");
}

TEST_F(AnalysisTest, RenamingToANameInUseKeepsTheOldNameSilently) {
  for (const char* name : {"Costs", "Sales"}) {
    sales_->SetName(name);
    EXPECT_EQ(sales_->Name(), "Sales") << name;
  }
  sales_->SetName("costs");
  EXPECT_EQ(sales_->Name(), "costs");
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(AnalysisTest, ARenamingThatFailsEndsInAnUnsentReport) {
  constexpr char kMessage[] = "Kelvaro Data Manager: Couldn't rename the Analysis";
  EXPECT_EQ(UnsentMessage([&] { sales_->SetName("a\"b"); }), kMessage);
  EXPECT_EQ(UnsentMessage([&] { Bound(FullElement("ANALYSIS"))->SetName("x"); }), kMessage);
  EXPECT_EQ(sales_->Name(), "Sales");
}

TEST_F(AnalysisTest, WithoutAMetadataDocumentRenamingShowsOneMessageAndFails) {
  world_.LoadMetadata("<broken");
  EXPECT_EQ(UnsentMessage([&] { sales_->SetName("Rents"); }),
            "Kelvaro Data Manager: Couldn't rename the Analysis");
  EXPECT_THAT(world_.Messages(),
              ::testing::ElementsAre("Cannot get analysis collection from metadata"));
}

TEST_F(AnalysisTest, TheLayerFileIsStoredAsGivenAndSaved) {
  EXPECT_TRUE(Saves(world_, [&] { sales_->SetLayerFile("any path"); }));
  EXPECT_EQ(sales_->LayerFile(), "any path");
  EXPECT_THAT(world_.Metadata(), ::testing::Not(HasSubstr("PATHTYPE")));
}

TEST_F(AnalysisTest, TheCreationTimeIsAnyTextAndNotSaved) {
  EXPECT_FALSE(Saves(world_, [&] { sales_->SetCreationTime("yesterday"); }));
  EXPECT_EQ(sales_->CreationTime(), "yesterday");
}

TEST_F(AnalysisTest, CommentsWithBareLineFeedsComeBackWithCrLf) {
  EXPECT_TRUE(Saves(world_, [&] { sales_->SetComments("one\ntwo\n\n"); }));
  EXPECT_EQ(sales_->Comments(), "one\r\ntwo\r\n\r\n");
}

TEST_F(AnalysisTest, EveryLineFeedOfTheCommentsGainsACarriageReturnUntilReloaded) {
  sales_->SetComments("one\r\ntwo");
  EXPECT_EQ(sales_->Comments(), "one\r\r\ntwo");
  world_.LoadMetadata(world_.Metadata());
  EXPECT_EQ(world_.manager->AnalysisCollection()->GetAnalysis("Sales")->Comments(), "one\r\ntwo");
}

TEST_F(AnalysisTest, CommentsAreOneLastChildThatIsOverwritten) {
  const auto node = xml::Parsed("<ANALYSIS><PARAM/></ANALYSIS>");
  const auto analysis = Bound(node);
  analysis->SetComments(" first ");
  analysis->SetComments(" <second> ");
  EXPECT_EQ(node->Xml(), "<ANALYSIS><PARAM/><COMMENTS> &lt;second&gt; </COMMENTS></ANALYSIS>");
  EXPECT_EQ(analysis->Comments(), " <second> ");
}

TEST_F(AnalysisTest, SettersWithoutATrapPassTheErrorOn) {
  const auto full = Bound(FullElement("ANALYSIS"));
  EXPECT_FALSE(Saves(world_, [&] {
    EXPECT_RUNTIME_ERROR(full->SetLayerFile("x"), kOutOfMemory);
    EXPECT_RUNTIME_ERROR(full->SetComments(std::string(xml::kMaxValueBytes + 1, 'x')),
                         kOutOfMemory);
  }));
}

TEST_F(AnalysisTest, ACreationTimeThatCannotBeSetIsIgnored) {
  const auto full = Bound(FullElement("ANALYSIS"));
  full->SetCreationTime("x");
  EXPECT_EQ(full->CreationTime(), "");
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(AnalysisTest, LayerEditingStoresAndSaves) {
  EXPECT_TRUE(Saves(world_, [&] { edit_->SetLayerFile("x.lyr"); }));
  EXPECT_TRUE(Saves(world_, [&] { edit_->SetGUID("any text"); }));
  EXPECT_EQ(sales_->LayerFile(), "x.lyr");
  EXPECT_EQ(sales_->AnalysisGUID(), "any text");
  EXPECT_EQ(world_.manager->AnalysisCollection()->GetAnalysisByGUID("any text")->Name(), "Sales");
}

TEST_F(AnalysisTest, LayerEditingThatFailsEndsInAnUnsentReport) {
  const auto edit = Query<IKVLayerEdit>(Bound(FullElement("ANALYSIS")));
  EXPECT_FALSE(Saves(world_, [&] {
    EXPECT_EQ(UnsentMessage([&] { edit->SetLayerFile("x"); }),
              "Kelvaro Data Manager: Couldn't change the Analysis Layer layer file");
    EXPECT_EQ(UnsentMessage([&] { edit->SetGUID("x"); }),
              "Kelvaro Data Manager: Couldn't change the Analysis Layer GUID");
  }));
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(AnalysisTest, TheEditingFacetKeepsTheAnalysisAlive) {
  sales_.reset();
  edit_->SetGUID("1");
  EXPECT_EQ(Query<IKVAnalysis>(edit_)->AnalysisGUID(), "1");
}

TEST_F(AnalysisTest, AnAnalysisThatWasDeletedIsStillEdited) {
  EXPECT_TRUE(world_.manager->AnalysisCollection()->DeleteAnalysis("Sales"));
  sales_->SetName("Gone");
  sales_->SetComments("text");
  EXPECT_EQ(sales_->Name(), "Gone");
  EXPECT_EQ(sales_->Comments(), "text");
  EXPECT_THAT(world_.Metadata(), ::testing::Not(HasSubstr("Gone")));
}

}  // namespace
}  // namespace kvdm
