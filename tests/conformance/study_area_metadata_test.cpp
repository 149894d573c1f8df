// Layer metadata of study areas.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/conformance/recording_metadata.h"
#include "tests/conformance/results.h"
#include "tests/conformance/world.h"

namespace kvdm::conformance {
namespace {

using testing::IsEmpty;

const std::string kRoot = "Velk/Kelvaro8/";

constexpr char kPlace[] = "<SAPROPERTIES/>";
constexpr char kProperties[] =
    R"(<SAPROPERTIES><PROPERTY NAME="TYPE" VALUE="t"/><PROPERTY NAME="MAINLAYER" VALUE="m"/>)"
    R"(<PROPERTY NAME="FEATURESLIST" VALUE="f"/></SAPROPERTIES>)";

Pairs Exported() {
  return {{kRoot + "LayerType", "Study Area"},
          {kRoot + "Name", "A"},
          {kRoot + "GUID", "{1}"},
          {kRoot + "Type", "t"},
          {kRoot + "MainLayer", "m"},
          {kRoot + "FeaturesList", "f"}};
}

// What is exported of a study area that has no more than a name.
Pairs Blank(const std::string& name) {
  return {{kRoot + "LayerType", "Study Area"},
          {kRoot + "Name", name},
          {kRoot + "GUID", ""},
          {kRoot + "Type", ""},
          {kRoot + "MainLayer", ""},
          {kRoot + "FeaturesList", ""}};
}

std::string AreaWith(const std::string& attributes, const std::string& content) {
  return "<STUDYAREA NAME=\"_A_\"" + attributes + ">" + content + "</STUDYAREA>";
}

// An open world with the study area A.
struct MetadataWorld : OpenWorld {
  MetadataWorld(const std::string& attributes, const std::string& content)
      : OpenWorld(AreaWith(attributes, content)),
        metadata(Query<IKVMetadata>(Manager()->StudyAreaCollection()->GetStudyArea("A"))) {}

  void Import(const Pairs& pairs) {
    metadata->ImportMetadata(std::make_shared<RecordingMetadata>(pairs));
  }

  std::shared_ptr<IKVMetadata> metadata;
};

TEST(StudyAreaMetadataConformance, ExportPutsValuesInOrder) {
  MetadataWorld world(R"( GUID="{1}")", kProperties);
  const auto layer = std::make_shared<RecordingMetadata>(Pairs{});
  world.metadata->ExportMetadata(layer);
  std::vector<std::string> calls = {"ReadDocument", "PrepareForUpdate"};
  for (const auto& [path, value] : Exported()) calls.push_back("PutValue " + path);
  calls.emplace_back("WriteDocument");
  EXPECT_EQ(layer->calls, calls);
  EXPECT_EQ(PairsOf(*layer->written), Exported());
}

TEST(StudyAreaMetadataConformance, ExportMakesADocumentAndPutsEmptyTextsForMissingProperties) {
  MetadataWorld world(R"( GUID="{1}")", kPlace);
  const auto layer = std::make_shared<RecordingMetadata>();
  world.metadata->ExportMetadata(layer);
  ASSERT_NE(layer->written, nullptr);
  EXPECT_EQ(layer->written->GetValues(kRoot + "GUID"), std::vector<Value>{"{1}"});
  EXPECT_EQ(layer->written->GetValues(kRoot + "Type"), std::vector<Value>{""});
}

TEST(StudyAreaMetadataConformance, ImportTakesOverPropertiesAndIdentifier) {
  MetadataWorld world("", kPlace);
  EXPECT_TRUE(Saves(world, [&] { world.Import(Exported()); }));
  EXPECT_EQ(world.StudyAreas(), AreaWith(R"( GUID="{1}")", kProperties));
}

TEST(StudyAreaMetadataConformance, ImportNeverRenames) {
  MetadataWorld world("", kPlace);
  Pairs pairs = Exported();
  pairs[1].second = "Other";
  world.Import(pairs);
  EXPECT_TRUE(world.Manager()->StudyAreaCollection()->StudyAreaExists("A"));
}

TEST(StudyAreaMetadataConformance, ImportIgnoresAnotherLayerType) {
  for (const char* type : {"", "study area", "Store Layer"}) {
    MetadataWorld world("", kPlace);
    Pairs pairs = Exported();
    pairs[0].second = type;
    world.Import(pairs);
    EXPECT_EQ(world.StudyAreas(), AreaWith("", kPlace)) << type;
  }
}

TEST(StudyAreaMetadataConformance, ImportStopsQuietlyAtTheFirstMissingValue) {
  MetadataWorld world("", kPlace);
  Pairs pairs = Exported();
  pairs.erase(pairs.begin() + 4);
  world.Import(pairs);
  EXPECT_EQ(world.StudyAreas(),
            AreaWith("", R"(<SAPROPERTIES><PROPERTY NAME="TYPE" VALUE="t"/></SAPROPERTIES>)"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(StudyAreaMetadataConformance, ImportIgnoresAMissingDocument) {
  MetadataWorld world("", kPlace);
  const auto layer = std::make_shared<RecordingMetadata>();
  world.metadata->ImportMetadata(layer);
  layer->fails_to_read = true;
  world.metadata->ImportMetadata(layer);
  world.metadata->ImportMetadata(nullptr);
  world.Import({});
  EXPECT_EQ(world.StudyAreas(), AreaWith("", kPlace));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(StudyAreaMetadataConformance, ImportShowsThatThereIsNoPlaceForPropertiesAndGoesOn) {
  MetadataWorld world("", "<COMMENTS>c</COMMENTS>");
  world.Import(Exported());
  EXPECT_EQ(world.Texts(), (Texts{"Text 102", "Couldn't set TYPE property", "Text 102",
                                  "Couldn't set MAINLAYER property", "Text 102",
                                  "Couldn't set FEATURESLIST property"}));
  EXPECT_EQ(world.StudyAreas(), AreaWith(R"( GUID="{1}")", "<COMMENTS>c</COMMENTS>"));
}

TEST(StudyAreaMetadataConformance, ExportIsNotWrittenAfterAnError) {
  std::vector<std::string> calls = {"PrepareForUpdate", "WriteDocument"};
  for (const auto& [path, value] : Exported()) calls.push_back("PutValue " + path);
  for (const auto& call : calls) {
    MetadataWorld world(R"( GUID="{1}")", kProperties);
    const auto layer = std::make_shared<RecordingMetadata>(Pairs{});
    layer->failing_call = call;
    world.metadata->ExportMetadata(layer);
    EXPECT_EQ(layer->calls.back(), call);
    EXPECT_EQ(layer->written, nullptr);
    EXPECT_THAT(world.Messages(), IsEmpty());
  }
}

TEST(StudyAreaMetadataConformance, ExportShowsWhatItCannotRead) {
  MetadataWorld world("", "");
  const auto layer = std::make_shared<RecordingMetadata>(Pairs{});
  world.metadata->ExportMetadata(layer);
  EXPECT_EQ(world.Texts(),
            (Texts{"Can't find the attribute GUID", "Can't find TYPE property",
                   "Can't find MAINLAYER property", "Can't find FEATURESLIST property"}));
  EXPECT_EQ(PairsOf(*layer->written), Blank("A"));
}

TEST(StudyAreaMetadataConformance, ExportsNothingWithoutAName) {
  OpenWorld world("<STUDYAREA GUID='{1}'/>");
  const auto layer = std::make_shared<RecordingMetadata>(Pairs{});
  Query<IKVMetadata>(world.Manager()->StudyAreaCollection()->GetStudyAreaByGUID("{1}"))
      ->ExportMetadata(layer);
  EXPECT_EQ(layer->written, nullptr);
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(StudyAreaMetadataConformance, ImportTakesTheFirstOfSeveralValues) {
  MetadataWorld world("", kPlace);
  const auto set = SetOf(Exported());
  for (const auto& [path, value] : Exported()) set->AddValue(path, "second");
  world.metadata->ImportMetadata(std::make_shared<RecordingMetadata>(*set));
  EXPECT_EQ(world.StudyAreas(), AreaWith(R"( GUID="{1}")", kProperties));
}

TEST(StudyAreaMetadataConformance, UnboundExportsEmptyTexts) {
  World world;
  const auto unbound = world.New<IKVMetadata>("KVStudyArea");
  unbound->ImportMetadata(std::make_shared<RecordingMetadata>(Exported()));
  const auto layer = std::make_shared<RecordingMetadata>();
  unbound->ExportMetadata(layer);
  EXPECT_EQ(PairsOf(*layer->written), Blank(""));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

}  // namespace
}  // namespace kvdm::conformance
