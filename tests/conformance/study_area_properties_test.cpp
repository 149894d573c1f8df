// KVStudyArea as a property set.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/conformance/results.h"
#include "tests/conformance/world.h"

namespace kvdm::conformance {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// An open world with the study area A, which has this content, as a property set.
struct PropertiesWorld : OpenWorld {
  explicit PropertiesWorld(const std::string& content)
      : OpenWorld("<STUDYAREA NAME=\"_A_\">" + content + "</STUDYAREA>"),
        properties(Query<IKVPropertySet>(Manager()->StudyAreaCollection()->GetStudyArea("A"))) {}

  std::shared_ptr<IKVPropertySet> properties;
};

std::string AreaHolding(const std::string& content) {
  return "<STUDYAREA NAME=\"_A_\">" + content + "</STUDYAREA>";
}

TEST(StudyAreaPropertiesConformance, CountIsAlwaysZero) {
  PropertiesWorld world("<SAPROPERTIES/>");
  world.properties->SetProperty("TYPE", "x");
  EXPECT_EQ(world.properties->Count(), 0);
}

TEST(StudyAreaPropertiesConformance, ANewPropertyIsAppendedAndSaved) {
  PropertiesWorld world(R"(<SAPROPERTIES><PROPERTY NAME="A" VALUE="1"/></SAPROPERTIES>)");
  EXPECT_TRUE(Saves(world, [&] { EXPECT_TRUE(world.properties->SetProperty("B", "2")); }));
  EXPECT_EQ(world.StudyAreas(), AreaHolding(R"(<SAPROPERTIES><PROPERTY NAME="A" VALUE="1"/>)"
                                            R"(<PROPERTY NAME="B" VALUE="2"/></SAPROPERTIES>)"));
}

TEST(StudyAreaPropertiesConformance, AChangedPropertyWaitsForTheNextSave) {
  PropertiesWorld world(R"(<SAPROPERTIES><PROPERTY NAME="A" VALUE="1"/></SAPROPERTIES>)");
  EXPECT_FALSE(Saves(world, [&] { EXPECT_TRUE(world.properties->SetProperty("A", "2")); }));
  EXPECT_EQ(world.properties->GetProperty("A"), Value("2"));
  EXPECT_EQ(world.StudyAreas(),
            AreaHolding(R"(<SAPROPERTIES><PROPERTY NAME="A" VALUE="2"/></SAPROPERTIES>)"));
}

TEST(StudyAreaPropertiesConformance, ReadsTheFirstOfTwoAndAMissingValueAsNull) {
  PropertiesWorld world(R"(<SAPROPERTIES><PROPERTY NAME="A" VALUE="1"/>)"
                        R"(<PROPERTY NAME="A" VALUE="2"/><PROPERTY NAME="B"/></SAPROPERTIES>)");
  EXPECT_EQ(world.properties->GetProperty("A"), Value("1"));
  EXPECT_TRUE(world.properties->GetProperty("B").IsNull());
  EXPECT_TRUE(world.properties->SetProperty("A", "3"));
  EXPECT_EQ(world.properties->GetProperty("A"), Value("3"));
}

TEST(StudyAreaPropertiesConformance, UnknownNamesReadAsEmptyText) {
  PropertiesWorld world(R"(<SAPROPERTIES><PROPERTY NAME="A" VALUE="1"/></SAPROPERTIES>)");
  for (const char* name : {"a", "_A_", "", "B"}) {
    EXPECT_EQ(world.properties->GetProperty(name), Value("")) << name;
  }
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(StudyAreaPropertiesConformance, StoresTheTextOfAnyValue) {
  struct Row {
    Value value;
    const char* stored;
  };
  for (const Row& row :
       {Row{true, "-1"}, Row{false, "0"}, Row{42, "42"}, Row{"x", "x"}, Row{Value(), ""}}) {
    PropertiesWorld world("<SAPROPERTIES/>");
    EXPECT_TRUE(world.properties->SetProperty("A", row.value));
    EXPECT_EQ(world.properties->GetProperty("A"), Value(row.stored));
  }
}

TEST(StudyAreaPropertiesConformance, KeepsAnyNameAndText) {
  PropertiesWorld world("<SAPROPERTIES/>");
  for (const char* text : {"", "_", "\xE4\xB8\xAD", "a\\b", "<&>'", "tab\t", " blanks "}) {
    EXPECT_TRUE(world.properties->SetProperty(text, text));
    EXPECT_EQ(world.properties->GetProperty(text), Value(text));
  }
}

TEST(StudyAreaPropertiesConformance, NullCannotBeStored) {
  PropertiesWorld world("<SAPROPERTIES/>");
  EXPECT_FALSE(Saves(world, [&] { EXPECT_FALSE(world.properties->SetProperty("A", Null{})); }));
  EXPECT_EQ(world.StudyAreas(), AreaHolding("<SAPROPERTIES/>"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(StudyAreaPropertiesConformance, ShowsThatThereIsNoPlaceToReadFrom) {
  PropertiesWorld world("<OTHER><SAPROPERTIES/></OTHER>");
  EXPECT_EQ(world.properties->GetProperty("TYPE"), Value(""));
  EXPECT_THAT(world.Messages(), ElementsAre(Message{"Can't find TYPE property", "Kelvaro", 48}));
}

TEST(StudyAreaPropertiesConformance, ShowsThatThereIsNoPlaceToWriteTo) {
  PropertiesWorld world("");
  EXPECT_FALSE(Saves(world, [&] { EXPECT_FALSE(world.properties->SetProperty("TYPE", "x")); }));
  ASSERT_EQ(world.Messages().size(), 2U);
  EXPECT_EQ(world.Messages()[0].text, "Text 102");
  EXPECT_EQ(world.Messages()[0].style, 0);
  EXPECT_EQ(world.Messages()[1], (Message{"Couldn't set TYPE property", "Kelvaro", 48}));
}

TEST(StudyAreaPropertiesConformance, WithoutTheTextsNothingIsShownWhenThereIsNoPlace) {
  World world;
  world.PutStudyAreas(R"(<STUDYAREA NAME="_A_"/>)");
  const auto area = world.Manager()->StudyAreaCollection()->GetStudyArea("A");
  EXPECT_FALSE(Query<IKVPropertySet>(area)->SetProperty("TYPE", "x"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(StudyAreaPropertiesConformance, ADoubleQuoteInANameEndsQuietly) {
  PropertiesWorld world("<SAPROPERTIES/>");
  EXPECT_EQ(world.properties->GetProperty("a\"b"), Value(""));
  EXPECT_FALSE(world.properties->SetProperty("a\"b", "x"));
  EXPECT_THAT(world.Messages(), IsEmpty());
  EXPECT_EQ(world.StudyAreas(), "<STUDYAREA NAME=\"_A_\"><SAPROPERTIES/></STUDYAREA>");
}

TEST(StudyAreaPropertiesConformance, UnboundAnswersNeutrally) {
  World world;
  const auto properties = world.New<IKVPropertySet>("KVStudyArea");
  EXPECT_EQ(properties->Count(), 0);
  EXPECT_EQ(properties->GetProperty("TYPE"), Value(""));
  EXPECT_FALSE(properties->SetProperty("TYPE", "x"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

}  // namespace
}  // namespace kvdm::conformance
