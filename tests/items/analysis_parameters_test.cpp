// The named parameters of an analysis, and their way into and out of a property set.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "items/kv_analysis.h"
#include "platform/memory/failing_services.h"
#include "platform/portable/value_set.h"
#include "tests/late_report.h"
#include "tests/platform/xml/parsed.h"
#include "tests/saves.h"
#include "tests/test_world.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class AnalysisParametersTest : public ::testing::Test {
 protected:
  AnalysisParametersTest() { Bind(R"(<ANALYSIS NAME="_a_"/>)"); }

  void Bind(std::string_view xml) { Bind(xml::Parsed(xml)); }
  void Bind(std::shared_ptr<xml::Element> node) {
    node_ = std::move(node);
    analysis_ = std::make_shared<KVAnalysis>(world_.platform.gis_core);
    analysis_->AttachNode(node_);
    analysis_->AttachDataManager(world_.manager->Reference());
  }

  TestWorld world_;
  std::shared_ptr<xml::Element> node_;
  std::shared_ptr<KVAnalysis> analysis_;
};

TEST_F(AnalysisParametersTest, ANewParameterComesLastAndIsSaved) {
  Bind("<ANALYSIS><COMMENTS/></ANALYSIS>");
  EXPECT_TRUE(Saves(world_, [&] { EXPECT_TRUE(analysis_->SetParameter("A", "1")); }));
  EXPECT_EQ(node_->Xml(), R"(<ANALYSIS><COMMENTS/><PARAM NAME="A" VALUE="1"/></ANALYSIS>)");
}

TEST_F(AnalysisParametersTest, SettingAParameterAgainOverwritesItAndSaves) {
  EXPECT_TRUE(analysis_->SetParameter("A", "1"));
  EXPECT_TRUE(Saves(world_, [&] { EXPECT_TRUE(analysis_->SetParameter("A", "2")); }));
  EXPECT_EQ(node_->Xml(), R"(<ANALYSIS NAME="_a_"><PARAM NAME="A" VALUE="2"/></ANALYSIS>)");
  EXPECT_THAT(Texts(analysis_->ParametersList()), ElementsAre("A"));
}

TEST_F(AnalysisParametersTest, OfTwoParametersOfOneNameTheFirstCountsAndBothAreListed) {
  Bind("<ANALYSIS><PARAM NAME='A' VALUE='1'/><PARAM NAME='A' VALUE='2'/></ANALYSIS>");
  EXPECT_EQ(analysis_->GetParameter("A"), "1");
  EXPECT_TRUE(analysis_->SetParameter("A", "3"));
  EXPECT_EQ(node_->Xml(),
            R"(<ANALYSIS><PARAM NAME="A" VALUE="3"/><PARAM NAME="A" VALUE="2"/></ANALYSIS>)");
  EXPECT_THAT(Texts(analysis_->ParametersList()), ElementsAre("A", "A"));
}

TEST_F(AnalysisParametersTest, NamesAreMatchedExactlyAndNotWrapped) {
  EXPECT_TRUE(analysis_->SetParameter("Size", "1"));
  for (const char* name : {"size", "_Size_", "Size ", ""}) {
    EXPECT_EQ(analysis_->GetParameter(name), "") << name;
  }
}

TEST_F(AnalysisParametersTest, HoldAnyNameAndText) {
  for (const char* text : {"", "_", "北京", "a\\b", "<&>'", "tab\t", " blanks ", "Velk/x"}) {
    SCOPED_TRACE(text);
    EXPECT_TRUE(analysis_->SetParameter(text, text));
    EXPECT_EQ(analysis_->GetParameter(text), text);
  }
}

TEST_F(AnalysisParametersTest, TheListHoldsDirectChildrenInOrderAndNullForAMissingName) {
  Bind(
      "<ANALYSIS><PARAM NAME='B'/><param NAME='x'/>text<!-- c --><GROUP><PARAM NAME='y'/></GROUP>"
      "<PARAM/><PARAM NAME='_A_'/></ANALYSIS>");
  EXPECT_THAT(Texts(analysis_->ParametersList()), ElementsAre("B", "(null)", "_A_"));
}

TEST_F(AnalysisParametersTest, TheListIsEmptyWithoutParameters) {
  EXPECT_THAT(Texts(analysis_->ParametersList()), IsEmpty());
}

TEST_F(AnalysisParametersTest, AParameterWithoutAValueReadsAsEmpty) {
  Bind("<ANALYSIS><PARAM NAME='A'/></ANALYSIS>");
  EXPECT_EQ(analysis_->GetParameter("A"), "");
}

TEST_F(AnalysisParametersTest, ADoubleQuoteInANameFails) {
  const auto before = node_->Xml();
  EXPECT_FALSE(Saves(world_, [&] {
    EXPECT_EQ(UnsentMessage([&] { return analysis_->SetParameter("a\"b", "1"); }),
              "Error while setting parameter of analysis");
  }));
  EXPECT_EQ(analysis_->GetParameter("a\"b"), "");
  EXPECT_EQ(node_->Xml(), before);
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(AnalysisParametersTest, ClearingRemovesEveryDirectParameterAndSaves) {
  Bind(
      "<ANALYSIS><PARAM NAME='A'/><PARAM NAME='B'/><COMMENTS>c</COMMENTS><PARAM/>"
      "<GROUP><PARAM/></GROUP></ANALYSIS>");
  EXPECT_TRUE(Saves(world_, [&] { EXPECT_TRUE(analysis_->ClearParametersList()); }));
  EXPECT_EQ(node_->Xml(), "<ANALYSIS><COMMENTS>c</COMMENTS><GROUP><PARAM/></GROUP></ANALYSIS>");
}

TEST_F(AnalysisParametersTest, ClearingNothingSavesAsWell) {
  EXPECT_TRUE(Saves(world_, [&] { EXPECT_TRUE(analysis_->ClearParametersList()); }));
}

TEST_F(AnalysisParametersTest, WritesParametersThenNameAndCommentsIntoASet) {
  Bind(
      "<ANALYSIS NAME='_a_'><COMMENTS>one\ntwo</COMMENTS><PARAM NAME='B' VALUE='2'/>"
      "<PARAM NAME='A'/></ANALYSIS>");
  std::shared_ptr<NamedValueSet> set = std::make_shared<ValueSet>();
  EXPECT_TRUE(analysis_->WriteToPropertySet(set));
  const auto entries = set->ListAll();
  EXPECT_THAT(entries.names, ElementsAre("B", "A", "Name", "Comments"));
  EXPECT_THAT(entries.values,
              ElementsAre(Value("2"), Value(Null()), Value("a"), Value("one\r\ntwo")));
}

TEST_F(AnalysisParametersTest, MakesASetWhenGivenNone) {
  std::shared_ptr<NamedValueSet> set;
  EXPECT_TRUE(analysis_->WriteToPropertySet(set));
  ASSERT_TRUE(set);
  EXPECT_THAT(set->ListAll().names, ElementsAre("Name", "Comments"));
}

TEST_F(AnalysisParametersTest, KeepsOtherEntriesOfASetAndOverwritesItsOwn) {
  Bind("<ANALYSIS NAME='_a_'><PARAM NAME='Name' VALUE='parameter'/></ANALYSIS>");
  std::shared_ptr<NamedValueSet> set = std::make_shared<ValueSet>();
  set->PutValue("Comments", "old");
  set->PutValue("Other", "kept");
  EXPECT_TRUE(analysis_->WriteToPropertySet(set));
  EXPECT_THAT(set->ListAll().names, ElementsAre("Comments", "Other", "Name"));
  EXPECT_THAT(set->ListAll().values, ElementsAre(Value(""), Value("kept"), Value("a")));
}

TEST_F(AnalysisParametersTest, WritingThatFailsKeepsWhatWasPut) {
  for (const char* xml : {"<ANALYSIS NAME='_a_'><PARAM NAME='A' VALUE='1'/><PARAM/></ANALYSIS>",
                          "<ANALYSIS><PARAM NAME='A' VALUE='1'/></ANALYSIS>"}) {
    SCOPED_TRACE(xml);
    Bind(xml);
    std::shared_ptr<NamedValueSet> set;
    EXPECT_FALSE(analysis_->WriteToPropertySet(set));
    ASSERT_TRUE(set);
    EXPECT_THAT(set->ListAll().names, ElementsAre("A"));
  }
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(AnalysisParametersTest, ReadsNameCommentsAndParametersFromASet) {
  const auto set = std::make_shared<ValueSet>();
  set->PutValue("Size", 5);
  set->PutValue("Name", "New");
  set->PutValue("name", "lower");
  set->PutValue("Comments", "text");
  set->PutValue("Flag", true);
  EXPECT_TRUE(Saves(world_, [&] { EXPECT_TRUE(analysis_->ReadFromPropertySet(set)); }));
  EXPECT_EQ(node_->Xml(), R"(<ANALYSIS NAME="_New_"><PARAM NAME="Size" VALUE="5"/>)"
                          R"(<PARAM NAME="name" VALUE="lower"/><COMMENTS>text</COMMENTS>)"
                          R"(<PARAM NAME="Flag" VALUE="-1"/></ANALYSIS>)");
}

TEST_F(AnalysisParametersTest, ReadingKeepsTheNameWhenTheNewOneIsTaken) {
  EXPECT_TRUE(world_.manager->AnalysisCollection()->CreateAnalysis("Taken"));
  const auto set = std::make_shared<ValueSet>();
  set->PutValue("Name", "Taken");
  EXPECT_TRUE(analysis_->ReadFromPropertySet(set));
  EXPECT_EQ(analysis_->Name(), "a");
}

TEST_F(AnalysisParametersTest, ReadingKeepsParametersThatTheSetLacks) {
  EXPECT_TRUE(analysis_->SetParameter("Old", "1"));
  EXPECT_TRUE(analysis_->ReadFromPropertySet(std::make_shared<ValueSet>()));
  EXPECT_EQ(analysis_->GetParameter("Old"), "1");
}

TEST_F(AnalysisParametersTest, ReadingSkipsEntriesThatFail) {
  const auto set = std::make_shared<ValueSet>();
  set->PutValue("Name", "a\"b");
  set->PutValue("Comments", Null());
  set->PutValue("a\"b", "1");
  set->PutValue("Nothing", Null());
  set->PutValue("Last", "1");
  EXPECT_TRUE(analysis_->ReadFromPropertySet(set));
  EXPECT_EQ(node_->Xml(), R"(<ANALYSIS NAME="_a_"><PARAM NAME="Nothing" VALUE=""/>)"
                          R"(<PARAM NAME="Last" VALUE="1"/></ANALYSIS>)");
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(AnalysisParametersTest, ReadingGivesFalseForNoSetAndForOneThatCannotBeRead) {
  EXPECT_FALSE(analysis_->ReadFromPropertySet(nullptr));
  const auto values = std::make_shared<ValueSet>();
  values->PutValue("A", "1");
  for (const int failing_call : {1, 2}) {
    const auto counter = std::make_shared<FailureCounter>();
    counter->fail_at = failing_call;
    EXPECT_FALSE(
        analysis_->ReadFromPropertySet(std::make_shared<FailingNamedValueSet>(values, counter)));
  }
  EXPECT_EQ(node_->Xml(), R"(<ANALYSIS NAME="_a_"/>)");
}

TEST_F(AnalysisParametersTest, AWrittenSetReadsBack) {
  EXPECT_TRUE(analysis_->SetParameter("A", "1"));
  analysis_->SetComments("text");
  std::shared_ptr<NamedValueSet> set;
  EXPECT_TRUE(analysis_->WriteToPropertySet(set));
  Bind("<ANALYSIS NAME='_other_'/>");
  EXPECT_TRUE(analysis_->ReadFromPropertySet(set));
  EXPECT_EQ(node_->Xml(),
            R"(<ANALYSIS NAME="_a_"><PARAM NAME="A" VALUE="1"/><COMMENTS>text</COMMENTS>)"
            "</ANALYSIS>");
}

}  // namespace
}  // namespace kvdm
