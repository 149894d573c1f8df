// The exchange of a study area with the metadata of its layer.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/failing_services.h"
#include "platform/memory/memory_platform.h"
#include "studyarea/kv_study_area.h"
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
constexpr char kType[] = "Velk/Kelvaro8/Type";
constexpr char kMainLayer[] = "Velk/Kelvaro8/MainLayer";
constexpr char kFeaturesList[] = "Velk/Kelvaro8/FeaturesList";
constexpr char kBlank[] = R"(<STUDYAREA NAME="_a_" GUID="1"><SAPROPERTIES/></STUDYAREA>)";

class StudyAreaMetadataTest : public ::testing::Test {
 protected:
  StudyAreaMetadataTest() { Bind(kBlank); }

  void Bind(std::string_view xml) {
    node_ = xml::Parsed(xml);
    study_area_ = std::make_shared<KVStudyArea>(world_.platform.gis_core);
    study_area_->SetNode(node_);
    study_area_->SetDataManager(world_.manager->Reference());
  }
  static std::shared_ptr<MemoryLayerMetadata> Metadata(
      const std::vector<std::pair<std::string, Value>>& entries) {
    ValueSet document;
    for (const auto& [path, value] : entries) document.PutValue(path, value);
    return std::make_shared<MemoryLayerMetadata>(document);
  }

  TestWorld world_;
  std::shared_ptr<xml::Element> node_;
  std::shared_ptr<KVStudyArea> study_area_;
};

TEST_F(StudyAreaMetadataTest, ExportsItsDescriptionThenItsPropertiesInOrder) {
  EXPECT_TRUE(study_area_->SetProperty("FEATURESLIST", "1,2"));
  EXPECT_TRUE(study_area_->SetProperty("TYPE", "Ring"));
  const auto metadata = std::make_shared<MemoryLayerMetadata>();
  EXPECT_FALSE(Saves(world_, [&] { study_area_->ExportMetadata(metadata); }));
  const auto entries = metadata->ReadDocument()->ListAll();
  EXPECT_THAT(entries.names,
              ElementsAre(kLayerType, kName, kGuid, kType, kMainLayer, kFeaturesList));
  EXPECT_THAT(entries.values, ElementsAre(Value("Study Area"), Value("a"), Value("1"),
                                          Value("Ring"), Value(""), Value("1,2")));
}

TEST_F(StudyAreaMetadataTest, ExportKeepsOtherEntries) {
  const auto metadata = Metadata({{"Other/Path", "kept"}, {kType, "old"}});
  study_area_->ExportMetadata(metadata);
  EXPECT_THAT(
      metadata->ReadDocument()->ListAll().names,
      ElementsAre("Other/Path", kType, kLayerType, kName, kGuid, kMainLayer, kFeaturesList));
  EXPECT_THAT(metadata->ReadDocument()->GetValues(kType), ElementsAre(Value("")));
}

TEST_F(StudyAreaMetadataTest, ALayerWhoseDocumentCannotBeReadGetsANewOne) {
  const auto inner = Metadata({{"Other/Path", "lost"}});
  const auto counter = std::make_shared<FailureCounter>();
  counter->fail_at = 1;
  study_area_->ExportMetadata(std::make_shared<FailingLayerMetadata>(inner, counter));
  EXPECT_EQ(inner->ReadDocument()->ListAll().names.size(), 6U);
}

TEST_F(StudyAreaMetadataTest, AnExportThatFailsAnywhereLaterWritesNothing) {
  // The read, then preparing, six values and the write.
  for (int failing_call = 2; failing_call <= 9; ++failing_call) {
    SCOPED_TRACE(failing_call);
    const auto inner = Metadata({{"Other/Path", "kept"}});
    const auto counter = std::make_shared<FailureCounter>();
    counter->fail_at = failing_call;
    study_area_->ExportMetadata(std::make_shared<FailingLayerMetadata>(inner, counter));
    EXPECT_EQ(counter->calls, failing_call);
    EXPECT_THAT(inner->ReadDocument()->ListAll().names, ElementsAre("Other/Path"));
  }
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(StudyAreaMetadataTest, WithoutANameNothingIsExported) {
  Bind("<STUDYAREA GUID='1'/>");
  const auto metadata = std::make_shared<MemoryLayerMetadata>();
  study_area_->ExportMetadata(metadata);
  EXPECT_FALSE(metadata->ReadDocument());
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(StudyAreaMetadataTest, WhatTheExportCannotReadIsShownAndExportedEmpty) {
  Bind("<STUDYAREA NAME='_a_'/>");
  const auto metadata = std::make_shared<MemoryLayerMetadata>();
  study_area_->ExportMetadata(metadata);
  EXPECT_THAT(world_.Messages(),
              ElementsAre("Can't find the attribute GUID", "Can't find TYPE property",
                          "Can't find MAINLAYER property", "Can't find FEATURESLIST property"));
  EXPECT_THAT(
      metadata->ReadDocument()->ListAll().values,
      ElementsAre(Value("Study Area"), Value("a"), Value(""), Value(""), Value(""), Value("")));
}

TEST_F(StudyAreaMetadataTest, ImportTakesThePropertiesThenTheIdentifierAndSaves) {
  const auto metadata = Metadata({{kFeaturesList, "1,2"},
                                  {kGuid, "2"},
                                  {kMainLayer, "m"},
                                  {kType, 7},
                                  {kName, "other"},
                                  {kLayerType, "Study Area"}});
  EXPECT_TRUE(Saves(world_, [&] { study_area_->ImportMetadata(metadata); }));
  EXPECT_EQ(node_->Xml(),
            R"(<STUDYAREA NAME="_a_" GUID="2"><SAPROPERTIES><PROPERTY NAME="TYPE" VALUE="7"/>)"
            R"(<PROPERTY NAME="MAINLAYER" VALUE="m"/><PROPERTY NAME="FEATURESLIST" VALUE="1,2"/>)"
            R"(</SAPROPERTIES></STUDYAREA>)");
}

TEST_F(StudyAreaMetadataTest, ImportIgnoresAnotherKindOfLayer) {
  for (const char* type : {"Analysis Layer", "study area", "Study Area ", ""}) {
    SCOPED_TRACE(type);
    EXPECT_FALSE(Saves(world_, [&] {
      study_area_->ImportMetadata(Metadata({{kLayerType, type}, {kType, "x"}, {kGuid, "2"}}));
    }));
    EXPECT_EQ(node_->Xml(), kBlank);
  }
}

TEST_F(StudyAreaMetadataTest, ImportIgnoresALayerWithoutATypeOrADocument) {
  study_area_->ImportMetadata(Metadata({{kType, "x"}, {kGuid, "2"}}));
  study_area_->ImportMetadata(std::make_shared<MemoryLayerMetadata>());
  study_area_->ImportMetadata(nullptr);
  study_area_->ExportMetadata(nullptr);
  EXPECT_EQ(node_->Xml(), kBlank);
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(StudyAreaMetadataTest, ImportStopsAtTheFirstValueThatIsMissing) {
  study_area_->ImportMetadata(
      Metadata({{kLayerType, "Study Area"}, {kType, "t"}, {kFeaturesList, "f"}, {kGuid, "2"}}));
  EXPECT_EQ(study_area_->GetProperty("TYPE"), Value("t"));
  EXPECT_EQ(study_area_->GetProperty("FEATURESLIST"), Value(""));
  EXPECT_EQ(study_area_->GUID(), "1");
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(StudyAreaMetadataTest, ImportWithoutThePropertiesElementStillTakesTheIdentifier) {
  Bind("<STUDYAREA GUID='1'/>");
  study_area_->ImportMetadata(Metadata({{kLayerType, "Study Area"},
                                        {kType, "t"},
                                        {kMainLayer, "m"},
                                        {kFeaturesList, "f"},
                                        {kGuid, "2"}}));
  EXPECT_EQ(study_area_->GUID(), "2");
  EXPECT_EQ(world_.Messages().size(), 6U);
}

TEST_F(StudyAreaMetadataTest, UsesTheFirstOfSeveralValues) {
  ValueSet document;
  for (const char* path : {kType, kMainLayer, kFeaturesList, kGuid}) {
    document.AddValue(path, "first");
    document.AddValue(path, "second");
  }
  document.AddValue(kLayerType, "Study Area");
  document.AddValue(kLayerType, "Analysis Layer");
  study_area_->ImportMetadata(std::make_shared<MemoryLayerMetadata>(document));
  EXPECT_EQ(study_area_->GUID(), "first");
  EXPECT_EQ(study_area_->GetProperty("MAINLAYER"), Value("first"));
}

TEST_F(StudyAreaMetadataTest, ExportAndImportNeverChangeTheName) {
  const auto metadata = std::make_shared<MemoryLayerMetadata>();
  study_area_->ExportMetadata(metadata);
  study_area_->SetName("b");
  study_area_->ImportMetadata(metadata);
  EXPECT_EQ(study_area_->Name(), "b");
}

TEST_F(StudyAreaMetadataTest, AnUnboundStudyAreaExportsEmptyTextsAndImportsNothing) {
  const auto unbound = std::make_shared<KVStudyArea>(world_.platform.gis_core);
  const auto metadata = std::make_shared<MemoryLayerMetadata>();
  unbound->ExportMetadata(metadata);
  EXPECT_THAT(
      metadata->ReadDocument()->ListAll().values,
      ElementsAre(Value("Study Area"), Value(""), Value(""), Value(""), Value(""), Value("")));
  unbound->ImportMetadata(metadata);
  EXPECT_EQ(unbound->GUID(), "");
}

}  // namespace
}  // namespace kvdm
