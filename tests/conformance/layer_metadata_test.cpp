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

// What is exported of an item that has no more than a name.
template <class Family>
Pairs Blank(const std::string& name) {
  Pairs pairs = Without(kRoot + "AnalysisParams/p", Family::Exported());
  for (auto& [path, value] : pairs)
    value = path == kRoot + "IsInternalData" ? Value(false) : Value("");
  return Changed(kRoot + "LayerType", Family::kType, Changed(kRoot + "Name", name, pairs));
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

using ItemMetadata = testing::Types<AnalysisMetadata, StoreLayerMetadata, CustLayerMetadata>;
TYPED_TEST_SUITE(LayerMetadataConformance, ItemMetadata);

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
  std::vector<std::string> calls = {"PrepareForUpdate", "WriteDocument"};
  for (const auto& [path, value] : TypeParam::Exported()) calls.push_back("PutValue " + path);
  for (const auto& call : calls) {
    ItemWorld<TypeParam> world(TypeParam::Attributes(), TypeParam::Content());
    const auto metadata = std::make_shared<RecordingMetadata>(Pairs{});
    metadata->failing_call = call;
    this->Export(world, metadata);
    EXPECT_EQ(metadata->written, nullptr);
    EXPECT_EQ(metadata->calls.back(), call);
    EXPECT_THAT(world.Messages(), IsEmpty());
  }
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

TYPED_TEST(LayerMetadataConformance, UnboundExportsEmptyValues) {
  World world;
  const auto unbound = world.New<IKVMetadata>(TypeParam::kClass);
  unbound->ImportMetadata(std::make_shared<RecordingMetadata>(TypeParam::Exported()));
  const auto metadata = std::make_shared<RecordingMetadata>();
  unbound->ExportMetadata(metadata);
  EXPECT_EQ(PairsOf(*metadata->written), Blank<TypeParam>(""));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TYPED_TEST(LayerMetadataConformance, ImportTakesTheFirstOfSeveralValues) {
  ItemWorld<TypeParam> world("");
  const auto set = SetOf(TypeParam::Exported());
  for (const auto& [path, value] : Blank<TypeParam>("A")) set->AddValue(path, "second");
  this->Import(world, std::make_shared<RecordingMetadata>(*set));
  EXPECT_EQ(world.Metadata(),
            ItemWorld<TypeParam>::With(TypeParam::Attributes(), TypeParam::Content()));
}

template <class Family>
class FieldImportConformance : public LayerMetadataConformance<Family> {};

using LayersMetadata = testing::Types<StoreLayerMetadata, CustLayerMetadata>;
TYPED_TEST_SUITE(FieldImportConformance, LayersMetadata);

TYPED_TEST(FieldImportConformance, SetsEverythingInOrder) {
  ItemWorld<TypeParam> world("");
  this->Import(world, TypeParam::Exported());
  EXPECT_EQ(world.Metadata(), world.With(TypeParam::Attributes(), TypeParam::Content()));
}

TYPED_TEST(FieldImportConformance, EndsAtTheFirstMissingValue) {
  // The values in the order in which they are taken over.
  std::vector<std::string> paths;
  for (const char* name :
       {"IDField", "LinkField", "NameField", "Comments", "GUID", "IsInternalData"}) {
    const Pairs all = TypeParam::Exported();
    if (Without(kRoot + name, all).size() < all.size()) paths.push_back(kRoot + name);
  }
  Pairs expected = Blank<TypeParam>("A");
  for (const auto& path : paths) {
    ItemWorld<TypeParam> world("");
    this->Import(world, Without(path, TypeParam::Exported()));
    const auto imported = std::make_shared<RecordingMetadata>();
    this->Export(world, imported);
    EXPECT_EQ(PairsOf(*imported->written), expected) << path;
    EXPECT_THAT(world.Messages(), IsEmpty());
    const auto value = SetOf(TypeParam::Exported())->GetValues(path).front();
    expected = Changed(path, value, expected);
  }
}

TYPED_TEST(FieldImportConformance, NeedsNoName) {
  ItemWorld<TypeParam> world("");
  this->Import(world, Without(kRoot + "Name", TypeParam::Exported()));
  EXPECT_EQ(world.Metadata(), world.With(TypeParam::Attributes(), TypeParam::Content()));
}

TYPED_TEST(FieldImportConformance, ReadsABooleanFromTextOrNumber) {
  for (const Value& value : {Value("True"), Value("-1"), Value(1)}) {
    ItemWorld<TypeParam> world("");
    this->Import(world, Changed(kRoot + "IsInternalData", value, TypeParam::Exported()));
    EXPECT_TRUE(world.item->IsInternalData()) << ToText(value);
  }
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

TEST_F(AnalysisImportConformance, SkipsTheStepThatFails) {
  const std::string comments = "<COMMENTS>c</COMMENTS>";
  const std::string parameter = R"(<PARAM NAME="p" VALUE="1"/>)";
  const std::string guid = R"( GUID="{1}")";
  using World = ItemWorld<AnalysisMetadata>;
  for (const auto& [call, left] :
       {std::pair{"GetValues " + kRoot + "LayerType", World::With("")},
        std::pair{"GetValues " + kRoot + "GUID", World::With("", comments + parameter)},
        std::pair{"GetValues " + kRoot + "Comments", World::With(guid, parameter)},
        std::pair{std::string("ListAll"), World::With(guid, comments)}}) {
    World world("");
    const auto metadata = std::make_shared<RecordingMetadata>(AnalysisMetadata::Exported());
    metadata->failing_call = call;
    Import(world, metadata);
    EXPECT_EQ(world.Metadata(), left) << call;
  }
}

TEST_F(AnalysisImportConformance, TakesTheLastOfSeveralValuesOfAParameter) {
  ItemWorld<AnalysisMetadata> world("");
  const auto set = SetOf(AnalysisMetadata::Exported());
  set->AddValue(kRoot + "AnalysisParams/p", "2");
  Import(world, std::make_shared<RecordingMetadata>(*set));
  EXPECT_EQ(world.item->GetParameter("p"), "2");
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
