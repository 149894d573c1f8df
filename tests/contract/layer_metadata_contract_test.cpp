// What every layer metadata does.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include <kvdm/platform/portable/sidecar_metadata.h>

#include "platform/memory/memory_platform.h"
#include "tests/contract/implementations.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using testing::ElementsAre;

struct MetadataImplementation {
  std::string name;
  std::shared_ptr<LayerMetadata> (*make)(const MemoryPlatform& world);
};

std::shared_ptr<LayerMetadata> MakeInMemory(const MemoryPlatform& /*world*/) {
  return std::make_shared<MemoryLayerMetadata>();
}

std::shared_ptr<LayerMetadata> MakeSidecar(const MemoryPlatform& world) {
  return MakeSidecarMetadata(world.Bundle(), "D:\\stores.shp");
}

std::shared_ptr<LayerMetadata> MakeBesideForeign(const MemoryPlatform& world) {
  world.files->AddFile("D:\\stores.shp.xml", "<metadata><idinfo/></metadata>");
  return MakeSidecar(world);
}

class LayerMetadataContractTest : public testing::TestWithParam<MetadataImplementation> {
 protected:
  // Nothing where reading fails.
  std::shared_ptr<NamedValueSet> ReadOrNothing() {
    try {
      return metadata_->ReadDocument();
    } catch (const RuntimeError&) {
      return nullptr;
    }
  }

  MemoryPlatform world_;
  std::shared_ptr<LayerMetadata> metadata_ = GetParam().make(world_);
};

INSTANTIATE_TEST_SUITE_P(All, LayerMetadataContractTest,
                         testing::Values(MetadataImplementation{"Memory", MakeInMemory},
                                         MetadataImplementation{"Sidecar", MakeSidecar},
                                         MetadataImplementation{"BesideForeign",
                                                                MakeBesideForeign}),
                         kByName);

TEST_P(LayerMetadataContractTest, HasNoDocumentAtFirst) { EXPECT_EQ(ReadOrNothing(), nullptr); }

TEST_P(LayerMetadataContractTest, AWrittenDocumentIsRead) {
  const auto document = std::make_shared<ValueSet>();
  document->PutValue("Velk/Kelvaro8/Comments", "two\r\nlines");
  document->PutValue("Velk/Kelvaro8/IsInternalData", false);
  document->PutValue("Velk/Kelvaro8/AnalysisParams/Radius <km>", 2.5);
  metadata_->WriteDocument(document);
  const auto read = metadata_->ReadDocument()->ListAll();
  EXPECT_EQ(read.names, document->ListAll().names);
  EXPECT_EQ(read.values, document->ListAll().values);
}

TEST_P(LayerMetadataContractTest, SeveralValuesUnderOnePathAreKept) {
  const auto document = std::make_shared<ValueSet>();
  document->AddValue("fields", "ID");
  document->AddValue("fields", "NAME");
  metadata_->WriteDocument(document);
  EXPECT_THAT(metadata_->ReadDocument()->GetValues("fields"),
              ElementsAre(Value("ID"), Value("NAME")));
}

TEST_P(LayerMetadataContractTest, ChangesAreNotTheLayersBeforeTheyAreWritten) {
  const auto document = std::make_shared<ValueSet>();
  document->PutValue("name", "old");
  metadata_->WriteDocument(document);
  document->PutValue("name", "changed after writing");
  metadata_->ReadDocument()->PutValue("name", "changed after reading");
  EXPECT_THAT(metadata_->ReadDocument()->GetValues("name"), ElementsAre(Value("old")));
}

TEST_P(LayerMetadataContractTest, AnEmptyDocumentIsADocument) {
  metadata_->WriteDocument(std::make_shared<ValueSet>());
  EXPECT_EQ(metadata_->ReadDocument()->EntryCount(), 0);
}

TEST_P(LayerMetadataContractTest, WritingNothingFails) {
  EXPECT_RUNTIME_ERROR(metadata_->WriteDocument(nullptr), kObjectNotSet);
  EXPECT_EQ(ReadOrNothing(), nullptr);
}

TEST_P(LayerMetadataContractTest, ValuesKeepTypeAndContent) {
  using Doubles = std::numeric_limits<double>;
  const std::vector<Value> values = {
      Value(),
      Null{},
      true,
      false,
      std::numeric_limits<std::int32_t>::min(),
      std::numeric_limits<std::int32_t>::max(),
      0.1,
      -0.0,
      1.0 / 3,
      Doubles::max(),
      Doubles::denorm_min(),
      Doubles::infinity(),
      DateTime{},
      DateTime{2026, 1, 5, 0, 7, 9},
      "",
      " blanks ",
      "lines\r\nand\rmore\n\ttab",
      "<A B=\"1\">&amp;'\"</A>",
      "\u00FC\u65E5\U0001F600\uFFFD",
      std::string("nul\0 and \x01\x1F", 11),
      "not UTF-8: \xFF\xC3",
      "\uFFFE\uFFFF",
  };
  const auto document = std::make_shared<ValueSet>();
  for (const Value& value : values) document->AddValue("path", value);
  metadata_->WriteDocument(document);
  EXPECT_EQ(metadata_->ReadDocument()->GetValues("path"), values);
}

TEST_P(LayerMetadataContractTest, LongTextsAreKept) {
  std::string text;
  while (text.size() < 4'000'000) text += "<\u00FC\u65E5\U0001F600>\r\n";
  const auto document = std::make_shared<ValueSet>();
  document->PutValue("path", text);
  metadata_->WriteDocument(document);
  EXPECT_TRUE(metadata_->ReadDocument()->GetValues("path") == std::vector<Value>{text});
}

}  // namespace
}  // namespace kvdm
