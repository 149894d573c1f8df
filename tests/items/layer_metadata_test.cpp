// The metadata exchange of customer and store layers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "items/kv_layers.h"
#include "platform/memory/failing_services.h"
#include "platform/xml/limits.h"
#include "tests/test_world.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using Entry = std::pair<std::string, Value>;

// A document that holds `entries`, their paths below "Velk/Kelvaro8/".
ValueSet Document(const std::vector<Entry>& entries) {
  ValueSet document;
  for (const auto& [path, value] : entries) document.PutValue("Velk/Kelvaro8/" + path, value);
  return document;
}

// The entries of a layer's document, in order, as `path=value`.
std::vector<std::string> Entries(LayerMetadata& metadata) {
  std::vector<std::string> entries;
  const auto listing = metadata.ReadDocument()->ListAll();
  for (std::size_t i = 0; i < listing.names.size(); ++i) {
    entries.push_back(listing.names[i] + "=" + ToText(listing.values[i]));
  }
  return entries;
}

// A world with the customer layer A and the store layer A, every attribute set.
class LayerMetadataTest : public ::testing::Test {
 protected:
  LayerMetadataTest() {
    constexpr char kAttributes[] =
        R"(NAME="_A_" GUID="{1}" LAYERFILE="f" CREATIONTIME="t" STUDYAREANAME="s" IDFIELD="i")"
        R"( LINKFIELD="l" NAMEFIELD="n" ISINTERNALDATA="TRUE")";
    constexpr char kContent[] = "<COMMENTS>a\nb</COMMENTS><PARAM NAME='p' VALUE='1'/>";
    const std::string rest = std::string(" ") + kAttributes + ">" + kContent + "</";
    world.LoadMetadata("<R><CUSTLAYERCOLLECTION><CUSTLAYER" + rest +
                       "CUSTLAYER></CUSTLAYERCOLLECTION><STORELAYERCOLLECTION><STORELAYER" + rest +
                       "STORELAYER></STORELAYERCOLLECTION></R>");
    cust = world.manager->CustLayerCollection()->GetCustLayer("A");
    store = world.manager->StoreLayerCollection()->GetStoreLayer("A");
  }

  void ImportIntoCust(const std::vector<Entry>& entries) {
    Query<IKVMetadata>(cust)->ImportMetadata(
        std::make_shared<MemoryLayerMetadata>(Document(entries)));
  }
  void ImportIntoStore(const std::vector<Entry>& entries) {
    Query<IKVMetadata>(store)->ImportMetadata(
        std::make_shared<MemoryLayerMetadata>(Document(entries)));
  }

  TestWorld world;
  std::shared_ptr<IKVCustLayer> cust;
  std::shared_ptr<IKVStoreLayer> store;
  std::shared_ptr<MemoryLayerMetadata> metadata = std::make_shared<MemoryLayerMetadata>();
};

const std::vector<Entry> kCustEntries = {
    {"LayerType", "Customer Layer"},
    {"Name", "New"},
    {"GUID", "{9}"},
    {"IDField", "i9"},
    {"LinkField", "l9"},
    {"NameField", "n9"},
    {"Comments", "c9"},
    {"IsInternalData", false},
};
const std::vector<Entry> kStoreEntries = {
    {"LayerType", "Store Layer"}, {"Name", "New"},    {"GUID", "{9}"},           {"IDField", "i9"},
    {"NameField", "n9"},          {"Comments", "c9"}, {"IsInternalData", false},
};

std::vector<Entry> Without(const std::vector<Entry>& entries, const std::string& path) {
  std::vector<Entry> rest = entries;
  std::erase_if(rest, [&](const Entry& entry) { return entry.first == path; });
  return rest;
}

std::vector<Entry> With(const std::vector<Entry>& entries, const std::string& path,
                        const Value& value) {
  std::vector<Entry> changed = entries;
  for (auto& entry : changed) {
    if (entry.first == path) entry.second = value;
  }
  return changed;
}

TEST_F(LayerMetadataTest, ACustomerLayerExportsInOrder) {
  Query<IKVMetadata>(cust)->ExportMetadata(metadata);
  EXPECT_THAT(Entries(*metadata),
              ElementsAre("Velk/Kelvaro8/LayerType=Customer Layer", "Velk/Kelvaro8/Name=A",
                          "Velk/Kelvaro8/GUID={1}", "Velk/Kelvaro8/IDField=i",
                          "Velk/Kelvaro8/LinkField=l", "Velk/Kelvaro8/NameField=n",
                          "Velk/Kelvaro8/Comments=a\r\nb", "Velk/Kelvaro8/IsInternalData=-1"));
}

TEST_F(LayerMetadataTest, AStoreLayerExportsInOrder) {
  Query<IKVMetadata>(store)->ExportMetadata(metadata);
  EXPECT_THAT(
      Entries(*metadata),
      ElementsAre("Velk/Kelvaro8/LayerType=Store Layer", "Velk/Kelvaro8/Name=A",
                  "Velk/Kelvaro8/GUID={1}", "Velk/Kelvaro8/IDField=i", "Velk/Kelvaro8/NameField=n",
                  "Velk/Kelvaro8/Comments=a\r\nb", "Velk/Kelvaro8/IsInternalData=-1"));
}

TEST_F(LayerMetadataTest, ExportsInternalDataAsABoolean) {
  cust->SetIsInternalData(false);
  Query<IKVMetadata>(cust)->ExportMetadata(metadata);
  EXPECT_EQ(metadata->ReadDocument()->GetValues("Velk/Kelvaro8/IsInternalData"),
            std::vector<Value>{Value(false)});
}

TEST_F(LayerMetadataTest, ExportKeepsWhatElseIsThere) {
  metadata = std::make_shared<MemoryLayerMetadata>(Document({{"Other", "o"}, {"Name", "Old"}}));
  Query<IKVMetadata>(store)->ExportMetadata(metadata);
  const auto document = metadata->ReadDocument();
  EXPECT_EQ(document->GetValues("Velk/Kelvaro8/Other"), std::vector<Value>{Value("o")});
  EXPECT_EQ(document->GetValues("Velk/Kelvaro8/Name"), std::vector<Value>{Value("A")});
}

TEST_F(LayerMetadataTest, ACustomerLayerImportsAllButItsName) {
  ImportIntoCust(kCustEntries);
  EXPECT_THAT(
      world.Metadata(),
      HasSubstr(R"(<CUSTLAYER NAME="_A_" GUID="{9}" LAYERFILE="f" CREATIONTIME="t")"
                R"( STUDYAREANAME="s" IDFIELD="i9" LINKFIELD="l9" NAMEFIELD="n9")"
                R"( ISINTERNALDATA="FALSE"><COMMENTS>c9</COMMENTS><PARAM NAME="p" VALUE="1"/>)"));
}

TEST_F(LayerMetadataTest, AStoreLayerImportsAllButItsNameAndLinkField) {
  ImportIntoStore(kStoreEntries);
  EXPECT_THAT(
      world.Metadata(),
      HasSubstr(R"(<STORELAYER NAME="_A_" GUID="{9}" LAYERFILE="f" CREATIONTIME="t")"
                R"( STUDYAREANAME="s" IDFIELD="i9" LINKFIELD="l" NAMEFIELD="n9")"
                R"( ISINTERNALDATA="FALSE"><COMMENTS>c9</COMMENTS><PARAM NAME="p" VALUE="1"/>)"));
}

TEST_F(LayerMetadataTest, ImportTakesTheFirstValueOfAPath) {
  auto document = Document(kStoreEntries);
  document.AddValue("Velk/Kelvaro8/IDField", "second");
  Query<IKVMetadata>(store)->ImportMetadata(std::make_shared<MemoryLayerMetadata>(document));
  EXPECT_EQ(store->IDField(), "i9");
}

TEST_F(LayerMetadataTest, ImportReadsInternalDataAsTextOrNumber) {
  store->SetIsInternalData(false);
  for (const auto& value : {Value(true), Value("True"), Value("-1"), Value(1)}) {
    ImportIntoStore(With(kStoreEntries, "IsInternalData", false));
    ImportIntoStore(With(kStoreEntries, "IsInternalData", value));
    EXPECT_TRUE(store->IsInternalData()) << ToText(value);
  }
}

TEST_F(LayerMetadataTest, MetadataOfAnotherKindOrNoneChangesNothing) {
  const auto before = world.Metadata();
  for (const char* other : {"Analysis Layer", "Study Area", "customer layer", "store layer", ""}) {
    ImportIntoCust(With(kCustEntries, "LayerType", other));
    ImportIntoStore(With(kStoreEntries, "LayerType", other));
  }
  ImportIntoCust(kStoreEntries);
  ImportIntoStore(kCustEntries);
  ImportIntoCust(Without(kCustEntries, "LayerType"));
  ImportIntoStore(Without(kStoreEntries, "LayerType"));
  ImportIntoCust(With(kCustEntries, "LayerType", Null()));
  Query<IKVMetadata>(cust)->ImportMetadata(metadata);
  Query<IKVMetadata>(store)->ImportMetadata(metadata);
  Query<IKVMetadata>(cust)->ImportMetadata(nullptr);
  Query<IKVMetadata>(store)->ImportMetadata(nullptr);
  EXPECT_EQ(world.Metadata(), before);
  EXPECT_THAT(world.Messages(), IsEmpty());
}

// What of IDField, LinkField, NameField, Comments, GUID and IsInternalData was taken over.
std::string Imported(IKVCustLayer& layer) {
  return std::string(layer.IDField() == "i9" ? "I" : "") + (layer.LinkField() == "l9" ? "L" : "") +
         (layer.NameField() == "n9" ? "N" : "") + (layer.Comments() == "c9" ? "C" : "") +
         (layer.GUID() == "{9}" ? "G" : "") + (layer.IsInternalData() ? "" : "D");
}

std::string Imported(IKVStoreLayer& layer) {
  return std::string(layer.IDField() == "i9" ? "I" : "") + (layer.NameField() == "n9" ? "N" : "") +
         (layer.Comments() == "c9" ? "C" : "") + (layer.GUID() == "{9}" ? "G" : "") +
         (layer.IsInternalData() ? "" : "D");
}

struct StopRow {
  const char* missing;
  const char* imported;
};

class CustImportStopTest : public LayerMetadataTest,
                           public ::testing::WithParamInterface<StopRow> {};

TEST_P(CustImportStopTest, StopsQuietlyAtTheFirstError) {
  ImportIntoCust(Without(kCustEntries, GetParam().missing));
  EXPECT_EQ(Imported(*cust), GetParam().imported) << GetParam().missing;
  EXPECT_THAT(world.Messages(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(AtEachStep, CustImportStopTest,
                         ::testing::Values(StopRow{"IDField", ""}, StopRow{"LinkField", "I"},
                                           StopRow{"NameField", "IL"}, StopRow{"Comments", "ILN"},
                                           StopRow{"GUID", "ILNC"},
                                           StopRow{"IsInternalData", "ILNCG"},
                                           StopRow{"Name", "ILNCGD"}),
                         [](const auto& row) { return std::string(row.param.missing); });

class StoreImportStopTest : public LayerMetadataTest,
                            public ::testing::WithParamInterface<StopRow> {};

TEST_P(StoreImportStopTest, StopsQuietlyAtTheFirstError) {
  ImportIntoStore(Without(kStoreEntries, GetParam().missing));
  EXPECT_EQ(Imported(*store), GetParam().imported) << GetParam().missing;
  EXPECT_THAT(world.Messages(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(AtEachStep, StoreImportStopTest,
                         ::testing::Values(StopRow{"IDField", ""}, StopRow{"NameField", "I"},
                                           StopRow{"Comments", "IN"}, StopRow{"GUID", "INC"},
                                           StopRow{"IsInternalData", "INCG"},
                                           StopRow{"Name", "INCGD"}),
                         [](const auto& row) { return std::string(row.param.missing); });

TEST_F(LayerMetadataTest, AFailedIdentifierEndsTheImportOfACustomerLayer) {
  ImportIntoCust(With(kCustEntries, "GUID", std::string(xml::kMaxValueBytes + 1, 'x')));
  EXPECT_EQ(Imported(*cust), "ILNC");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST_F(LayerMetadataTest, AFailedIdentifierIsShownAndTheImportOfAStoreLayerGoesOn) {
  ImportIntoStore(With(kStoreEntries, "GUID", std::string(xml::kMaxValueBytes + 1, 'x')));
  EXPECT_EQ(Imported(*store), "INCD");
  EXPECT_THAT(world.Messages(),
              ElementsAre("Kelvaro Data Manager: Couldn't change the Customer Layer GUID"));
}

TEST_F(LayerMetadataTest, AnUnboundLayerImportsNothingAndExportsBlanks) {
  KVCustLayer layer(world.platform.gis_core);
  layer.ImportMetadata(std::make_shared<MemoryLayerMetadata>(Document(kCustEntries)));
  layer.ExportMetadata(metadata);
  EXPECT_THAT(Entries(*metadata),
              ElementsAre("Velk/Kelvaro8/LayerType=Customer Layer",
                          "Velk/Kelvaro8/Name=", "Velk/Kelvaro8/GUID=", "Velk/Kelvaro8/IDField=",
                          "Velk/Kelvaro8/LinkField=", "Velk/Kelvaro8/NameField=",
                          "Velk/Kelvaro8/Comments=", "Velk/Kelvaro8/IsInternalData=0"));
}

TEST_F(LayerMetadataTest, ExportWithoutMetadataEndsQuietly) {
  Query<IKVMetadata>(cust)->ExportMetadata(nullptr);
  Query<IKVMetadata>(store)->ExportMetadata(nullptr);
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST_F(LayerMetadataTest, ExportAndImportLeaveTheItemAsItWas) {
  const auto before = world.Metadata();
  Query<IKVMetadata>(store)->ExportMetadata(metadata);
  store->SetComments("other");
  Query<IKVMetadata>(store)->ImportMetadata(metadata);
  EXPECT_EQ(store->Comments(), "a\r\r\nb");
  store->SetComments("a\nb");
  EXPECT_EQ(world.Metadata(), before);
}

// A document that cannot be read is no error: only then the export starts from an empty one.
TEST_F(LayerMetadataTest, ExportStopsWithoutWritingBackAtAnyErrorButThatOfReading) {
  const auto counter = std::make_shared<FailureCounter>();
  Query<IKVMetadata>(store)->ExportMetadata(metadata);
  const auto complete = Entries(*metadata);
  const auto stored = std::vector<Entry>{{"LayerType", "Old"}};
  for (counter->fail_at = 1; counter->fail_at < 50; ++counter->fail_at) {
    counter->calls = 0;
    metadata = std::make_shared<MemoryLayerMetadata>(Document(stored));
    Query<IKVMetadata>(store)->ExportMetadata(
        std::make_shared<FailingLayerMetadata>(metadata, counter));
    const bool failed = counter->calls >= counter->fail_at;
    const bool written = counter->fail_at == 1 || !failed;
    EXPECT_EQ(Entries(*metadata).size(), written ? complete.size() : 1U) << counter->fail_at;
    if (!failed) break;
  }
  // Reading, preparing, seven values and writing.
  EXPECT_EQ(counter->calls, 10);
  EXPECT_THAT(world.Messages(), IsEmpty());
}

}  // namespace
}  // namespace kvdm
