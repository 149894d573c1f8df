// The exchange of an analysis with the metadata of its layer.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "items/kv_analysis.h"
#include "platform/memory/failing_services.h"
#include "platform/memory/memory_platform.h"
#include "tests/platform/xml/parsed.h"
#include "tests/saves.h"
#include "tests/test_world.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char kLayerType[] = "Velk/Kelvaro8/LayerType";
constexpr char kName[] = "Velk/Kelvaro8/Name";
constexpr char kGuid[] = "Velk/Kelvaro8/GUID";
constexpr char kComments[] = "Velk/Kelvaro8/Comments";
constexpr char kParameters[] = "Velk/Kelvaro8/AnalysisParams/";

class AnalysisMetadataTest : public ::testing::Test {
 protected:
  AnalysisMetadataTest() { Bind(R"(<ANALYSIS NAME="_a_" GUID="1"/>)"); }

  void Bind(std::string_view xml) {
    node_ = xml::Parsed(xml);
    analysis_ = std::make_shared<KVAnalysis>(world_.platform.gis_core);
    analysis_->AttachNode(node_);
    analysis_->AttachDataManager(world_.manager->Reference());
  }
  // Metadata of an analysis layer with the entries given.
  static std::shared_ptr<MemoryLayerMetadata> Metadata(
      const std::vector<std::pair<std::string, Value>>& entries) {
    ValueSet document;
    for (const auto& [path, value] : entries) document.PutValue(path, value);
    return std::make_shared<MemoryLayerMetadata>(document);
  }

  TestWorld world_;
  std::shared_ptr<xml::Element> node_;
  std::shared_ptr<KVAnalysis> analysis_;
};

TEST_F(AnalysisMetadataTest, ExportsItsDescriptionThenItsParametersInOrder) {
  Bind(
      "<ANALYSIS NAME='_a_' GUID='1'><PARAM NAME='B' VALUE='2'/><COMMENTS>one\ntwo</COMMENTS>"
      "<GROUP><PARAM NAME='x' VALUE='y'/></GROUP><PARAM NAME='A' VALUE='1'/></ANALYSIS>");
  const auto metadata = std::make_shared<MemoryLayerMetadata>();
  EXPECT_FALSE(Saves(world_, [&] { analysis_->ExportMetadata(metadata); }));
  const auto entries = metadata->ReadDocument()->ListAll();
  EXPECT_THAT(entries.names,
              ElementsAre(kLayerType, kName, kGuid, kComments, std::string(kParameters) + "B",
                          std::string(kParameters) + "A"));
  EXPECT_THAT(entries.values, ElementsAre(Value("Analysis Layer"), Value("a"), Value("1"),
                                          Value("one\r\ntwo"), Value("2"), Value("1")));
}

TEST_F(AnalysisMetadataTest, ExportReplacesItsOwnEntriesAndKeepsAllOthers) {
  const auto metadata = Metadata({{"Other/Path", "kept"}, {kName, "old"}});
  analysis_->ExportMetadata(metadata);
  const auto entries = metadata->ReadDocument()->ListAll();
  EXPECT_THAT(entries.names, ElementsAre("Other/Path", kName, kLayerType, kGuid, kComments));
  EXPECT_EQ(entries.values[0], Value("kept"));
  EXPECT_EQ(entries.values[1], Value("a"));
}

TEST_F(AnalysisMetadataTest, ParametersOfAnEarlierExportStay) {
  const auto metadata = std::make_shared<MemoryLayerMetadata>();
  EXPECT_TRUE(analysis_->SetParameter("A", "1"));
  EXPECT_TRUE(analysis_->SetParameter("B", "2"));
  analysis_->ExportMetadata(metadata);
  EXPECT_TRUE(analysis_->ClearParametersList());
  analysis_->ExportMetadata(metadata);
  EXPECT_THAT(metadata->ReadDocument()->GetValues(std::string(kParameters) + "A"),
              ElementsAre(Value("1")));
  EXPECT_THAT(metadata->ReadDocument()->GetValues(std::string(kParameters) + "B"),
              ElementsAre(Value("2")));
}

// Layer metadata that tells the order of the calls to it and to its document.
class RecordingMetadata : public LayerMetadata, public NamedValueSet {
 public:
  std::shared_ptr<NamedValueSet> ReadDocument() override {
    calls.emplace_back("read");
    return {std::shared_ptr<void>(), this};
  }
  void WriteDocument(const std::shared_ptr<NamedValueSet>&) override {
    calls.emplace_back("write");
  }
  std::vector<Value> GetValues(std::string_view) override { return {}; }
  void PutValue(std::string_view path, const Value&) override { calls.emplace_back(path); }
  Listing ListAll() override { return {}; }
  int EntryCount() override { return 0; }
  void PrepareForUpdate() override { calls.emplace_back("prepare"); }

  std::vector<std::string> calls;
};

TEST_F(AnalysisMetadataTest, ExportReadsPreparesOncePutsAndWrites) {
  const auto metadata = std::make_shared<RecordingMetadata>();
  analysis_->ExportMetadata(metadata);
  EXPECT_THAT(metadata->calls,
              ElementsAre("read", "prepare", kLayerType, kName, kGuid, kComments, "write"));
}

TEST_F(AnalysisMetadataTest, ALayerWhoseDocumentCannotBeReadGetsANewOne) {
  const auto inner = Metadata({{"Other/Path", "lost"}});
  const auto counter = std::make_shared<FailureCounter>();
  counter->fail_at = 1;
  analysis_->ExportMetadata(std::make_shared<FailingLayerMetadata>(inner, counter));
  EXPECT_THAT(inner->ReadDocument()->ListAll().names,
              ElementsAre(kLayerType, kName, kGuid, kComments));
}

TEST_F(AnalysisMetadataTest, AnExportThatFailsAnywhereLaterWritesNothing) {
  // The read, then preparing, four values and the write.
  for (int failing_call = 2; failing_call <= 7; ++failing_call) {
    SCOPED_TRACE(failing_call);
    const auto inner = Metadata({{"Other/Path", "kept"}});
    const auto counter = std::make_shared<FailureCounter>();
    counter->fail_at = failing_call;
    analysis_->ExportMetadata(std::make_shared<FailingLayerMetadata>(inner, counter));
    EXPECT_EQ(counter->calls, failing_call);
    EXPECT_THAT(inner->ReadDocument()->ListAll().names, ElementsAre("Other/Path"));
  }
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(AnalysisMetadataTest, AnAnalysisThatCannotBeReadExportsNothing) {
  for (const char* xml : {"<ANALYSIS GUID='1'/>", "<ANALYSIS NAME='_a_'><PARAM/></ANALYSIS>"}) {
    SCOPED_TRACE(xml);
    Bind(xml);
    const auto metadata = std::make_shared<MemoryLayerMetadata>();
    analysis_->ExportMetadata(metadata);
    EXPECT_FALSE(metadata->ReadDocument());
  }
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(AnalysisMetadataTest, AnUnboundAnalysisExportsEmptyTexts) {
  const auto metadata = std::make_shared<MemoryLayerMetadata>();
  std::make_shared<KVAnalysis>(world_.platform.gis_core)->ExportMetadata(metadata);
  EXPECT_THAT(metadata->ReadDocument()->ListAll().values,
              ElementsAre(Value("Analysis Layer"), Value(""), Value(""), Value("")));
}

TEST_F(AnalysisMetadataTest, NoMetadataIsIgnored) {
  analysis_->ExportMetadata(nullptr);
  analysis_->ImportMetadata(nullptr);
  EXPECT_EQ(node_->Xml(), R"(<ANALYSIS NAME="_a_" GUID="1"/>)");
}

TEST_F(AnalysisMetadataTest, ImportTakesIdentifierCommentsAndParametersAndSaves) {
  const auto metadata = Metadata({{std::string(kParameters) + "A/B", 5},
                                  {kName, "other"},
                                  {kLayerType, "Analysis Layer"},
                                  {kComments, "text"},
                                  {kGuid, "2"},
                                  {std::string(kParameters) + "C", "6"}});
  EXPECT_TRUE(Saves(world_, [&] { analysis_->ImportMetadata(metadata); }));
  EXPECT_EQ(node_->Xml(), R"(<ANALYSIS NAME="_a_" GUID="2"><COMMENTS>text</COMMENTS>)"
                          R"(<PARAM NAME="A/B" VALUE="5"/><PARAM NAME="C" VALUE="6"/></ANALYSIS>)");
}

TEST_F(AnalysisMetadataTest, ImportIgnoresAnotherKindOfLayer) {
  for (const char* type : {"Store Layer", "Customer Layer", "Study Area", "analysis layer", ""}) {
    SCOPED_TRACE(type);
    EXPECT_FALSE(Saves(world_, [&] {
      analysis_->ImportMetadata(Metadata({{kLayerType, type}, {kGuid, "2"}, {kComments, "x"}}));
    }));
    EXPECT_EQ(node_->Xml(), R"(<ANALYSIS NAME="_a_" GUID="1"/>)");
  }
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(AnalysisMetadataTest, ImportStopsWithoutALayerTypeOrADocument) {
  analysis_->ImportMetadata(Metadata({{kGuid, "2"}, {kComments, "x"}}));
  analysis_->ImportMetadata(Metadata({{kLayerType, Null()}, {kGuid, "2"}}));
  analysis_->ImportMetadata(std::make_shared<MemoryLayerMetadata>());
  EXPECT_EQ(node_->Xml(), R"(<ANALYSIS NAME="_a_" GUID="1"/>)");
}

TEST_F(AnalysisMetadataTest, ImportOfAnEmptyParameterNameSetsAParameterWithoutAName) {
  analysis_->ImportMetadata(Metadata({{kLayerType, "Analysis Layer"}, {kParameters, "v"}}));
  EXPECT_EQ(node_->Xml(), R"(<ANALYSIS NAME="_a_" GUID="1"><PARAM NAME="" VALUE="v"/></ANALYSIS>)");
}

TEST_F(AnalysisMetadataTest, ImportIgnoresAllOtherPaths) {
  analysis_->ImportMetadata(Metadata({{kLayerType, "Analysis Layer"},
                                      {"Velk/Kelvaro8/IDField", "x"},
                                      {"Velk/Kelvaro8/AnalysisParams", "x"},
                                      {"velk/kelvaro8/analysisparams/A", "x"},
                                      {"x/Velk/Kelvaro8/AnalysisParams/A", "x"},
                                      {"Velk/Kelvaro8/analysisParams/A", "x"}}));
  EXPECT_EQ(node_->Xml(), R"(<ANALYSIS NAME="_a_" GUID="1"/>)");
}

TEST_F(AnalysisMetadataTest, ImportSkipsStepsThatFailAndGoesOn) {
  analysis_->ImportMetadata(Metadata({{kLayerType, "Analysis Layer"},
                                      {kGuid, Null()},
                                      {kComments, Null()},
                                      {std::string(kParameters) + "a\"b", "x"},
                                      {std::string(kParameters) + "Null", Null()},
                                      {std::string(kParameters) + "Last", "1"}}));
  EXPECT_EQ(node_->Xml(),
            R"(<ANALYSIS NAME="_a_" GUID="1"><PARAM NAME="Last" VALUE="1"/></ANALYSIS>)");
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(AnalysisMetadataTest, EachStepOfAnImportMayFailAlone) {
  const auto inner = Metadata({{kLayerType, "Analysis Layer"},
                               {kGuid, "2"},
                               {kComments, "c"},
                               {std::string(kParameters) + "A", "1"}});
  // Reading the document, its layer type, its identifier, its comments, its entries.
  const char* const results[] = {
      R"(<ANALYSIS GUID="1"/>)", R"(<ANALYSIS GUID="1"/>)",
      R"(<ANALYSIS GUID="1"><COMMENTS>c</COMMENTS><PARAM NAME="A" VALUE="1"/></ANALYSIS>)",
      R"(<ANALYSIS GUID="2"><PARAM NAME="A" VALUE="1"/></ANALYSIS>)",
      R"(<ANALYSIS GUID="2"><COMMENTS>c</COMMENTS></ANALYSIS>)"};
  int failing_call = 0;
  for (const char* result : results) {
    Bind("<ANALYSIS GUID='1'/>");
    const auto counter = std::make_shared<FailureCounter>();
    counter->fail_at = ++failing_call;
    analysis_->ImportMetadata(std::make_shared<FailingLayerMetadata>(inner, counter));
    EXPECT_EQ(node_->Xml(), result) << failing_call;
  }
}

TEST_F(AnalysisMetadataTest, ImportKeepsParametersThatTheMetadataLacks) {
  EXPECT_TRUE(analysis_->SetParameter("Old", "1"));
  analysis_->ImportMetadata(Metadata({{kLayerType, "Analysis Layer"}}));
  EXPECT_EQ(analysis_->GetParameter("Old"), "1");
}

TEST_F(AnalysisMetadataTest, ImportUsesTheFirstOfSeveralValuesAndTheLastOfAParameters) {
  ValueSet document;
  for (const char* value : {"Analysis Layer", "Store Layer"}) document.AddValue(kLayerType, value);
  for (const char* value : {"2", "3"}) document.AddValue(kGuid, value);
  for (const char* value : {"x", "y"}) document.AddValue(std::string(kParameters) + "A", value);
  analysis_->ImportMetadata(std::make_shared<MemoryLayerMetadata>(document));
  EXPECT_EQ(analysis_->AnalysisGUID(), "2");
  EXPECT_EQ(analysis_->GetParameter("A"), "y");
}

TEST_F(AnalysisMetadataTest, ExportAndImportKeepTheNameAlsoWhenTheMetadataHasAnother) {
  const auto metadata = std::make_shared<MemoryLayerMetadata>();
  analysis_->ExportMetadata(metadata);
  analysis_->SetName("b");
  analysis_->ImportMetadata(metadata);
  EXPECT_EQ(analysis_->Name(), "b");
}

TEST_F(AnalysisMetadataTest, AnExportedAnalysisIsImportedElsewhere) {
  Bind(
      "<ANALYSIS NAME='_a_' GUID='1'><COMMENTS>c</COMMENTS><PARAM NAME='A' VALUE='1'/>"
      "<PARAM NAME='北' VALUE=''/></ANALYSIS>");
  const auto metadata = std::make_shared<MemoryLayerMetadata>();
  analysis_->ExportMetadata(metadata);
  Bind("<ANALYSIS NAME='_b_' GUID='9'/>");
  analysis_->ImportMetadata(metadata);
  EXPECT_EQ(node_->Xml(),
            R"(<ANALYSIS NAME="_b_" GUID="1"><COMMENTS>c</COMMENTS><PARAM NAME="A" VALUE="1"/>)"
            R"(<PARAM NAME="北" VALUE=""/></ANALYSIS>)");
}

TEST_F(AnalysisMetadataTest, WithoutADataManagerImportKeepsTheIdentifier) {
  analysis_ = std::make_shared<KVAnalysis>(world_.platform.gis_core);
  analysis_->AttachNode(node_);
  analysis_->ImportMetadata(
      Metadata({{kLayerType, "Analysis Layer"}, {kGuid, "2"}, {kComments, "c"}}));
  EXPECT_EQ(node_->Xml(), R"(<ANALYSIS NAME="_a_" GUID="1"><COMMENTS>c</COMMENTS></ANALYSIS>)");
}

}  // namespace
}  // namespace kvdm
