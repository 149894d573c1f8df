// Layer metadata of analyses, store layers and customer layers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/conformance/families.h"
#include "tests/conformance/recording_metadata.h"

namespace kvdm::conformance {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string kRoot = "Velk/Kelvaro8/";

// What to import and export for each kind of item.
struct AnalysisMetadata : AnalysisFamily {
  static constexpr char kType[] = "Analysis Layer";
  static Pairs Exported() {
    return {{kRoot + "LayerType", kType},
            {kRoot + "Name", "A"},
            {kRoot + "GUID", "{1}"},
            {kRoot + "Comments", "c"},
            {kRoot + "AnalysisParams/p", "1"}};
  }
  static std::string Attributes() { return R"( GUID="{1}")"; }
  static std::string Content() { return R"(<COMMENTS>c</COMMENTS><PARAM NAME="p" VALUE="1"/>)"; }
};

struct StoreLayerMetadata : StoreLayerFamily {
  static constexpr char kType[] = "Store Layer";
  static Pairs Exported() {
    return {{kRoot + "LayerType", kType},    {kRoot + "Name", "A"},      {kRoot + "GUID", "{1}"},
            {kRoot + "IDField", "i"},        {kRoot + "NameField", "n"}, {kRoot + "Comments", "c"},
            {kRoot + "IsInternalData", true}};
  }
  static std::string Attributes() {
    return R"( IDFIELD="i" NAMEFIELD="n" GUID="{1}" ISINTERNALDATA="TRUE")";
  }
  static std::string Content() { return "<COMMENTS>c</COMMENTS>"; }
};

struct CustLayerMetadata : CustLayerFamily {
  static constexpr char kType[] = "Customer Layer";
  static Pairs Exported() {
    return {{kRoot + "LayerType", kType}, {kRoot + "Name", "A"},
            {kRoot + "GUID", "{1}"},      {kRoot + "IDField", "i"},
            {kRoot + "LinkField", "l"},   {kRoot + "NameField", "n"},
            {kRoot + "Comments", "c"},    {kRoot + "IsInternalData", true}};
  }
  static std::string Attributes() {
    return R"( IDFIELD="i" LINKFIELD="l" NAMEFIELD="n" GUID="{1}" ISINTERNALDATA="TRUE")";
  }
  static std::string Content() { return "<COMMENTS>c</COMMENTS>"; }
};

// `pairs` without `path`.
Pairs Without(const std::string& path, Pairs pairs) {
  std::erase_if(pairs, [&](const auto& pair) { return pair.first == path; });
  return pairs;
}

// `pairs` with another value under `path`.
Pairs Changed(const std::string& path, const Value& value, Pairs pairs) {
  for (auto& pair : pairs) {
    if (pair.first == path) pair.second = value;
  }
  return pairs;
}

template <class Family>
class LayerMetadataConformance : public testing::Test {
 protected:
  static void Import(ItemWorld<Family>& world, const std::shared_ptr<LayerMetadata>& metadata) {
    Query<IKVMetadata>(world.item)->ImportMetadata(metadata);
  }
  static void Import(ItemWorld<Family>& world, const Pairs& pairs) {
    Import(world, std::make_shared<RecordingMetadata>(pairs));
  }
  static void Export(ItemWorld<Family>& world, const std::shared_ptr<LayerMetadata>& metadata) {
    Query<IKVMetadata>(world.item)->ExportMetadata(metadata);
  }
};

using Families = testing::Types<AnalysisMetadata, StoreLayerMetadata, CustLayerMetadata>;
TYPED_TEST_SUITE(LayerMetadataConformance, Families);

TYPED_TEST(LayerMetadataConformance, ExportPutsValuesInOrder) {
  ItemWorld<TypeParam> world(TypeParam::Attributes(), TypeParam::Content());
  const auto metadata = std::make_shared<RecordingMetadata>(Pairs{{"Other", "x"}});
  this->Export(world, metadata);
  std::vector<std::string> calls = {"ReadDocument", "PrepareForUpdate"};
  for (const auto& [path, value] : TypeParam::Exported()) calls.push_back("PutValue " + path);
  calls.emplace_back("WriteDocument");
  EXPECT_EQ(metadata->calls, calls);
  Pairs pairs = TypeParam::Exported();
  pairs.insert(pairs.begin(), {"Other", "x"});
  ASSERT_NE(metadata->written, nullptr);
  EXPECT_EQ(PairsOf(*metadata->written), pairs);
}

TYPED_TEST(LayerMetadataConformance, ExportMakesADocumentWhenThereIsNone) {
  for (const bool fails : {false, true}) {
    ItemWorld<TypeParam> world(TypeParam::Attributes(), TypeParam::Content());
    const auto metadata = std::make_shared<RecordingMetadata>();
    metadata->fails_to_read = fails;
    this->Export(world, metadata);
    ASSERT_NE(metadata->written, nullptr);
    EXPECT_EQ(PairsOf(*metadata->written), TypeParam::Exported());
  }
}

TYPED_TEST(LayerMetadataConformance, ExportIsNotWrittenAfterAnError) {
  ItemWorld<TypeParam> world(TypeParam::Attributes(), TypeParam::Content());
  const auto metadata = std::make_shared<RecordingMetadata>(Pairs{});
  metadata->failing_paths = {kRoot + "Comments"};
  this->Export(world, metadata);
  EXPECT_EQ(metadata->written, nullptr);
  EXPECT_EQ(metadata->calls.back(), "PutValue " + kRoot + "Comments");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TYPED_TEST(LayerMetadataConformance, ExportChangesNothingInTheItemAndSavesNothing) {
  ItemWorld<TypeParam> world(TypeParam::Attributes(), TypeParam::Content());
  const std::string before = world.Metadata();
  EXPECT_FALSE(Saves(world, [&] { this->Export(world, std::make_shared<RecordingMetadata>()); }));
  EXPECT_EQ(world.Metadata(), before);
}

TYPED_TEST(LayerMetadataConformance, ExportPutsCommentsWithCrLf) {
  ItemWorld<TypeParam> world("", "<COMMENTS>one\ntwo</COMMENTS>");
  const auto metadata = std::make_shared<RecordingMetadata>();
  this->Export(world, metadata);
  EXPECT_THAT(metadata->written->GetValues(kRoot + "Comments"), ElementsAre(Value("one\r\ntwo")));
}

TYPED_TEST(LayerMetadataConformance, ImportTakesOverAllButTheName) {
  ItemWorld<TypeParam> world("");
  this->Import(world, Changed(kRoot + "Name", "Other", TypeParam::Exported()));
  const auto expected = ItemWorld<TypeParam>(TypeParam::Attributes(), TypeParam::Content()).item;
  EXPECT_EQ(world.item->Name(), "A");
  EXPECT_EQ(world.item->Comments(), expected->Comments());
  EXPECT_EQ(TypeParam::GuidOf(*world.item), TypeParam::GuidOf(*expected));
  EXPECT_EQ(TextsOf(world.item->ParametersList()), TextsOf(expected->ParametersList()));
  EXPECT_EQ(world.item->CreationTime(), "");
  EXPECT_EQ(world.item->LayerFile(), "");
}

TYPED_TEST(LayerMetadataConformance, ImportSaves) {
  ItemWorld<TypeParam> world("");
  EXPECT_TRUE(Saves(world, [&] { this->Import(world, TypeParam::Exported()); }));
}

TYPED_TEST(LayerMetadataConformance, ImportUndoesAnExport) {
  ItemWorld<TypeParam> world(TypeParam::Attributes(), TypeParam::Content());
  const std::string before = world.Metadata();
  const auto metadata = std::make_shared<RecordingMetadata>();
  this->Export(world, metadata);
  this->Import(world, PairsOf(*metadata->written));
  EXPECT_EQ(world.Metadata(), before);
}

TYPED_TEST(LayerMetadataConformance, ImportIgnoresAnotherLayerType) {
  for (const char* type : {"", "analysis layer", "Study Area", "Other", "Analysis Layer",
                           "Store Layer", "Customer Layer"}) {
    if (type == std::string(TypeParam::kType)) continue;
    ItemWorld<TypeParam> world("");
    this->Import(world, Changed(kRoot + "LayerType", type, TypeParam::Exported()));
    EXPECT_EQ(world.Metadata(), world.With("")) << type;
  }
}

TYPED_TEST(LayerMetadataConformance, ImportIgnoresAMissingLayerType) {
  ItemWorld<TypeParam> world("");
  this->Import(world, Without(kRoot + "LayerType", TypeParam::Exported()));
  this->Import(world, Pairs{});
  EXPECT_EQ(world.Metadata(), world.With(""));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TYPED_TEST(LayerMetadataConformance, ImportIgnoresAMissingDocument) {
  ItemWorld<TypeParam> world("");
  const auto metadata = std::make_shared<RecordingMetadata>();
  this->Import(world, metadata);
  metadata->fails_to_read = true;
  this->Import(world, metadata);
  this->Import(world, std::shared_ptr<LayerMetadata>());
  EXPECT_EQ(world.Metadata(), world.With(""));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TYPED_TEST(LayerMetadataConformance, UnboundDoesNothingToAnyone) {
  World world;
  const auto unbound = world.New<IKVMetadata>(TypeParam::kClass);
  unbound->ImportMetadata(std::make_shared<RecordingMetadata>(TypeParam::Exported()));
  unbound->ExportMetadata(std::make_shared<RecordingMetadata>());
  EXPECT_THAT(world.Messages(), IsEmpty());
}

template <class Family>
class FieldImportConformance : public LayerMetadataConformance<Family> {};

using Layers = testing::Types<StoreLayerMetadata, CustLayerMetadata>;
TYPED_TEST_SUITE(FieldImportConformance, Layers);

TYPED_TEST(FieldImportConformance, SetsEverythingInOrder) {
  ItemWorld<TypeParam> world("");
  this->Import(world, TypeParam::Exported());
  EXPECT_EQ(world.Metadata(), world.With(TypeParam::Attributes(), TypeParam::Content()));
}

TYPED_TEST(FieldImportConformance, EndsAtTheFirstMissingValue) {
  ItemWorld<TypeParam> world("");
  this->Import(world, Without(kRoot + "Comments", TypeParam::Exported()));
  EXPECT_EQ(world.item->IDField(), "i");
  EXPECT_EQ(world.item->NameField(), "n");
  EXPECT_EQ(world.item->GUID(), "");
  EXPECT_FALSE(world.item->IsInternalData());
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TYPED_TEST(FieldImportConformance, EndsQuietlyAtAValueThatIsNoText) {
  ItemWorld<TypeParam> world("");
  this->Import(world, Changed(kRoot + "IDField", Null{}, TypeParam::Exported()));
  EXPECT_EQ(world.Metadata(), world.With(""));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TYPED_TEST(FieldImportConformance, EndsQuietlyAtAValueThatIsNoBoolean) {
  ItemWorld<TypeParam> world("");
  this->Import(world, Changed(kRoot + "IsInternalData", "maybe", TypeParam::Exported()));
  EXPECT_EQ(world.item->GUID(), "{1}");
  EXPECT_FALSE(world.item->IsInternalData());
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TYPED_TEST(FieldImportConformance, CarriesNoParameters) {
  ItemWorld<TypeParam> world("", R"(<PARAM NAME="p" VALUE="1"/>)");
  const auto metadata = std::make_shared<RecordingMetadata>();
  this->Export(world, metadata);
  EXPECT_THAT(metadata->written->GetValues(kRoot + "AnalysisParams/p"), IsEmpty());
  Pairs pairs = TypeParam::Exported();
  pairs.emplace_back(kRoot + "AnalysisParams/q", "2");
  this->Import(world, pairs);
  EXPECT_EQ(TextsOf(world.item->ParametersList()), Texts{"p"});
}

class AnalysisImportConformance : public LayerMetadataConformance<AnalysisMetadata> {};

TEST_F(AnalysisImportConformance, SkipsWhatFails) {
  ItemWorld<AnalysisMetadata> world("");
  Pairs pairs = Without(kRoot + "GUID", AnalysisMetadata::Exported());
  pairs = Changed(kRoot + "Comments", Null{}, pairs);
  pairs.emplace_back(kRoot + "AnalysisParams/a\"b", "2");
  pairs.emplace_back(kRoot + "AnalysisParams/q", "3");
  Import(world, pairs);
  EXPECT_EQ(TextsOf(world.item->ParametersList()), (Texts{"p", "q"}));
  EXPECT_EQ(world.item->AnalysisGUID(), "");
  EXPECT_EQ(world.item->Comments(), "");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST_F(AnalysisImportConformance, SkipsAnIdentifierThatCannotBeStored) {
  ItemWorld<AnalysisMetadata> world("");
  Import(world, Changed(kRoot + "GUID", TooLong(), AnalysisMetadata::Exported()));
  EXPECT_EQ(world.item->Comments(), "c");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST_F(AnalysisImportConformance, KeepsOtherParametersAndIgnoresOtherPaths) {
  ItemWorld<AnalysisMetadata> world("", R"(<PARAM NAME="own" VALUE="0"/>)");
  Pairs pairs = AnalysisMetadata::Exported();
  pairs.emplace_back(kRoot + "Other", "x");
  pairs.emplace_back(kRoot + "analysisparams/x", "x");
  pairs.emplace_back("AnalysisParams/x", "x");
  pairs.emplace_back(kRoot + "AnalysisParams", "x");
  pairs.emplace_back(kRoot + "AnalysisParams/a/b", 2);
  pairs.emplace_back(kRoot + "AnalysisParams/", "empty");
  Import(world, pairs);
  EXPECT_EQ(TextsOf(world.item->ParametersList()), (Texts{"own", "p", "a/b", ""}));
  EXPECT_EQ(world.item->GetParameter("a/b"), "2");
  EXPECT_EQ(world.item->GetParameter(""), "empty");
}

TEST_F(AnalysisImportConformance, FindsParametersThatWereClearedSinceAnEarlierExport) {
  ItemWorld<AnalysisMetadata> world("");
  world.item->SetParameter("A", "1");
  world.item->SetParameter("B", "2");
  const auto metadata = std::make_shared<RecordingMetadata>(Pairs{});
  Export(world, metadata);
  world.item->ClearParametersList();
  Export(world, metadata);
  EXPECT_THAT(metadata->written->GetValues(kRoot + "AnalysisParams/A"), ElementsAre(Value("1")));
  Import(world, metadata);
  EXPECT_EQ(TextsOf(world.item->ParametersList()), (Texts{"A", "B"}));
}

TEST(ReportInImportConformance, EndsTheImportOfACustomerLayer) {
  ItemWorld<CustLayerMetadata> world("");
  Query<IKVMetadata>(world.item)
      ->ImportMetadata(std::make_shared<RecordingMetadata>(
          Changed(kRoot + "GUID", TooLong(), CustLayerMetadata::Exported())));
  EXPECT_EQ(world.item->Comments(), "c");
  EXPECT_FALSE(world.item->IsInternalData());
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(ReportInImportConformance, IsShownInTheImportOfAStoreLayerWhichGoesOn) {
  ItemWorld<StoreLayerMetadata> world("");
  Query<IKVMetadata>(world.item)
      ->ImportMetadata(std::make_shared<RecordingMetadata>(
          Changed(kRoot + "GUID", TooLong(), StoreLayerMetadata::Exported())));
  EXPECT_TRUE(world.item->IsInternalData());
  EXPECT_EQ(world.Texts(), Texts{"Kelvaro Data Manager: Couldn't change the Customer Layer GUID"});
}

}  // namespace
}  // namespace kvdm::conformance
