// KVStudyArea: its properties.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/conformance/results.h"
#include "tests/conformance/world.h"

namespace kvdm::conformance {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// An open world whose catalogue holds the study area A with these attributes and this content.
struct AreaWorld : OpenWorld {
  explicit AreaWorld(const std::string& attributes, const std::string& content = {})
      : OpenWorld("<STUDYAREA NAME=\"_A_\"" + attributes + ">" + content + "</STUDYAREA>"),
        area(Manager()->StudyAreaCollection()->GetStudyArea("A")) {}

  std::shared_ptr<IKVStudyArea> area;
};

std::string Area(const std::string& rest) { return "<STUDYAREA NAME=\"_A_\"" + rest; }

TEST(StudyAreaConformance, ReadsItsAttributes) {
  AreaWorld world(R"( GUID="{1}" DIRNAME="D:\A\" LAYERFILE="D:\A\a.lyr" DATASET="_Set_")");
  EXPECT_EQ(world.area->Name(), "A");
  EXPECT_EQ(world.area->GUID(), "{1}");
  EXPECT_EQ(world.area->StudyAreaDir(), R"(D:\A\)");
  EXPECT_EQ(world.area->LayerFile(), R"(D:\A\a.lyr)");
  EXPECT_EQ(world.area->Dataset(), "Set");
  EXPECT_EQ(world.area->Comments(), "");
}

TEST(StudyAreaConformance, ReadsMissingAttributes) {
  AreaWorld world("");
  EXPECT_EQ(world.area->StudyAreaDir(), "");
  EXPECT_EQ(world.area->LayerFile(), "");
  EXPECT_THAT(world.Messages(), IsEmpty());
  EXPECT_EQ(world.area->GUID(), "");
  EXPECT_EQ(world.area->Dataset(), "");
  EXPECT_THAT(world.Messages(),
              ElementsAre(Message{"Can't find the attribute GUID", "Kelvaro", 48},
                          Message{"Can't find the attribute DATASET", "Kelvaro", 48}));
}

TEST(StudyAreaConformance, FailsWithoutAName) {
  OpenWorld world(R"(<STUDYAREA GUID="{1}"/>)");
  const auto area = world.Manager()->StudyAreaCollection()->GetStudyAreaByGUID("{1}");
  EXPECT_EQ(OutcomeOf([&] { area->Name(); }), Fails(94));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(StudyAreaConformance, UnwrapsNameAndDatasetOnlyBetweenUnderscores) {
  struct Row {
    const char* stored;
    const char* read;
  };
  for (const Row& row : {Row{"_a_", "a"}, Row{"__", ""}, Row{"_", "_"}, Row{"a_", "a_"},
                         Row{"_a", "_a"}, Row{"", ""}, Row{"__a__", "_a_"}, Row{"a", "a"}}) {
    OpenWorld world(std::string("<STUDYAREA GUID=\"{1}\" NAME=\"") + row.stored + "\" DATASET=\"" +
                    row.stored + "\"/>");
    const auto area = world.Manager()->StudyAreaCollection()->GetStudyAreaByGUID("{1}");
    EXPECT_EQ(area->Name(), row.read) << row.stored;
    EXPECT_EQ(area->Dataset(), row.read) << row.stored;
  }
}

TEST(StudyAreaConformance, RenamesAndSaves) {
  AreaWorld world(R"( DIRNAME="D:\A\" LAYERFILE="D:\A\a.lyr")");
  EXPECT_TRUE(Saves(world, [&] { world.area->SetName("B"); }));
  EXPECT_EQ(world.StudyAreas(),
            R"(<STUDYAREA NAME="_B_" DIRNAME="D:\A\" LAYERFILE="D:\A\a.lyr"/>)");
}

TEST(StudyAreaConformance, KeepsItsNameWhenTheNewOneIsTaken) {
  OpenWorld world(R"(<STUDYAREA NAME="_A_"/><STUDYAREA NAME="_B_"/>)");
  const auto area = world.Manager()->StudyAreaCollection()->GetStudyArea("A");
  for (const char* name : {"A", "B"}) {
    EXPECT_FALSE(Saves(world, [&] { area->SetName(name); })) << name;
    EXPECT_EQ(area->Name(), "A");
  }
  EXPECT_THAT(world.Messages(), IsEmpty());
  area->SetName("b");
  EXPECT_EQ(area->Name(), "b");
}

TEST(StudyAreaConformance, ShowsThatANameCannotBeChecked) {
  AreaWorld world("");
  EXPECT_FALSE(Saves(world, [&] { world.area->SetName("a\"b"); }));
  EXPECT_EQ(world.area->Name(), "A");
  EXPECT_THAT(world.Messages(),
              ElementsAre(Message{"Kelvaro Data Manager: Couldn't change the study area name",
                                  "Kelvaro", 48}));
}

TEST(StudyAreaConformance, SetsAttributesAsGivenAndSaves) {
  AreaWorld world("");
  const auto edit = Query<IKVLayerEdit>(world.area);
  EXPECT_TRUE(Saves(world, [&] { world.area->SetDataset("Set"); }));
  EXPECT_TRUE(Saves(world, [&] { edit->SetLayerFile("a.lyr"); }));
  EXPECT_TRUE(Saves(world, [&] { edit->SetGUID("no guid"); }));
  EXPECT_TRUE(Saves(world, [&] { Query<IKVStudyArea2>(world.area)->SetStudyAreaDir("no\\dir"); }));
  EXPECT_EQ(world.StudyAreas(),
            Area(R"( DATASET="_Set_" LAYERFILE="a.lyr" GUID="no guid" DIRNAME="no\dir"/>)"));
  EXPECT_EQ(world.area->Dataset(), "Set");
}

TEST(StudyAreaConformance, ShowsWhatCouldNotBeChanged) {
  const std::string text = TooLong();
  AreaWorld world(R"( GUID="{1}")");
  const auto edit = Query<IKVLayerEdit>(world.area);
  world.area->SetDataset(text);
  edit->SetLayerFile(text);
  edit->SetGUID(text);
  Query<IKVStudyArea2>(world.area)->SetStudyAreaDir(text);
  world.area->SetName(text);
  EXPECT_THAT(world.Texts(),
              ElementsAre("Kelvaro Data Manager: Couldn't change the study area datasetname",
                          "Kelvaro Data Manager: Couldn't change the study area layer file",
                          "Kelvaro Data Manager: Couldn't change the Study Area GUID",
                          "Kelvaro Data Manager: Couldn't change the study area folder",
                          "Kelvaro Data Manager: Couldn't change the study area name"));
  for (const Message& message : world.Messages()) EXPECT_EQ(message.style, 48);
  EXPECT_EQ(world.StudyAreas(), Area(R"( GUID="{1}"/>)"));
}

TEST(StudyAreaConformance, ShowsAPlainBoxForCommentsThatCouldNotBeSet) {
  AreaWorld world("");
  EXPECT_FALSE(Saves(world, [&] { world.area->SetComments(TooLong()); }));
  ASSERT_EQ(world.Messages().size(), 1U);
  EXPECT_EQ(world.Messages()[0].style, 0);
  EXPECT_NE(world.Messages()[0].text, "");
  EXPECT_EQ(world.area->Comments(), "");
}

TEST(StudyAreaConformance, WritesCommentsAsTheLastChildAndSaves) {
  AreaWorld world("", "<SAPROPERTIES/>");
  EXPECT_TRUE(Saves(world, [&] { world.area->SetComments(" two  words "); }));
  EXPECT_EQ(world.StudyAreas(),
            Area("><SAPROPERTIES/><COMMENTS> two  words </COMMENTS></STUDYAREA>"));
  EXPECT_EQ(world.area->Comments(), " two  words ");
}

TEST(StudyAreaConformance, OverwritesExistingComments) {
  AreaWorld world("", "<COMMENTS>old</COMMENTS><SAPROPERTIES/>");
  world.area->SetComments("new");
  EXPECT_EQ(world.StudyAreas(), Area("><COMMENTS>new</COMMENTS><SAPROPERTIES/></STUDYAREA>"));
  world.area->SetComments("");
  EXPECT_EQ(world.area->Comments(), "");
}

TEST(StudyAreaConformance, WidensEveryLineFeedOfItsComments) {
  struct Row {
    const char* set;
    const char* read;
  };
  for (const Row& row : {Row{"a\nb", "a\r\nb"}, Row{"a\r\nb", "a\r\r\nb"}, Row{"\n\n", "\r\n\r\n"},
                         Row{"a\rb", "a\rb"}, Row{"", ""}}) {
    AreaWorld world("");
    world.area->SetComments(row.set);
    EXPECT_EQ(world.area->Comments(), row.read);
  }
}

TEST(StudyAreaConformance, ReadsCommentsOfALoadedCatalogueWithCrLf) {
  AreaWorld world("", "<COMMENTS>one\r\ntwo</COMMENTS>");
  EXPECT_EQ(world.area->Comments(), "one\r\ntwo");
}

TEST(StudyAreaConformance, UnboundAnswersNeutrally) {
  World world;
  const auto area = world.New<IKVStudyArea>("KVStudyArea");
  EXPECT_EQ(area->Name(), "");
  EXPECT_EQ(area->LayerFile(), "");
  EXPECT_EQ(area->StudyAreaDir(), "");
  EXPECT_EQ(area->Comments(), "");
  EXPECT_EQ(area->Dataset(), "");
  EXPECT_EQ(area->GUID(), "");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(StudyAreaConformance, UnboundSettersDoNothing) {
  World world;
  const auto area = world.New<IKVStudyArea>("KVStudyArea");
  area->SetName("A");
  area->SetComments("A");
  area->SetDataset("A");
  Query<IKVLayerEdit>(area)->SetLayerFile("A");
  Query<IKVLayerEdit>(area)->SetGUID("A");
  Query<IKVStudyArea2>(area)->SetStudyAreaDir("A");
  EXPECT_EQ(area->Name(), "");
  EXPECT_EQ(area->Comments(), "");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

}  // namespace
}  // namespace kvdm::conformance
