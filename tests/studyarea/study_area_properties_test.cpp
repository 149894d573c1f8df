// The free-form properties of a study area.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kvdm/platform/portable/portable_services.h>

#include "studyarea/kv_study_area.h"
#include "tests/platform/xml/parsed.h"
#include "tests/saves.h"
#include "tests/test_world.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class StudyAreaPropertiesTest : public ::testing::Test {
 protected:
  StudyAreaPropertiesTest() { Bind("<STUDYAREA><SAPROPERTIES/></STUDYAREA>"); }

  void Bind(std::string_view xml) {
    node_ = xml::Parsed(xml);
    study_area_ = std::make_shared<KVStudyArea>(world_.platform.gis_core);
    study_area_->SetNode(node_);
    study_area_->SetDataManager(world_.manager->Reference());
  }

  TestWorld world_;
  std::shared_ptr<xml::Element> node_;
  std::shared_ptr<KVStudyArea> study_area_;
};

TEST_F(StudyAreaPropertiesTest, ANewPropertyComesLastAndIsSaved) {
  Bind("<STUDYAREA><SAPROPERTIES><PROPERTY NAME='A' VALUE='1'/></SAPROPERTIES></STUDYAREA>");
  EXPECT_TRUE(Saves(world_, [&] { EXPECT_TRUE(study_area_->SetProperty("B", "2")); }));
  EXPECT_EQ(node_->Xml(), R"(<STUDYAREA><SAPROPERTIES><PROPERTY NAME="A" VALUE="1"/>)"
                          R"(<PROPERTY NAME="B" VALUE="2"/></SAPROPERTIES></STUDYAREA>)");
  EXPECT_EQ(study_area_->GetProperty("B"), Value("2"));
}

TEST_F(StudyAreaPropertiesTest, ChangingAPropertyDoesNotSave) {
  EXPECT_TRUE(study_area_->SetProperty("A", "1"));
  EXPECT_FALSE(Saves(world_, [&] { EXPECT_TRUE(study_area_->SetProperty("A", "2")); }));
  EXPECT_EQ(study_area_->GetProperty("A"), Value("2"));
}

TEST_F(StudyAreaPropertiesTest, TheFirstOfTwoPropertiesOfOneNameCounts) {
  Bind(
      "<STUDYAREA><SAPROPERTIES><PROPERTY NAME='A' VALUE='1'/><PROPERTY NAME='A' VALUE='2'/>"
      "</SAPROPERTIES></STUDYAREA>");
  EXPECT_TRUE(study_area_->SetProperty("A", "3"));
  EXPECT_EQ(study_area_->GetProperty("A"), Value("3"));
  EXPECT_THAT(node_->Xml(), ::testing::HasSubstr(R"(VALUE="2")"));
}

TEST_F(StudyAreaPropertiesTest, NamesAreMatchedExactlyAndNotWrapped) {
  EXPECT_TRUE(study_area_->SetProperty("TYPE", "Ring"));
  for (const char* name : {"type", "_TYPE_", "TYPE ", ""}) {
    EXPECT_EQ(study_area_->GetProperty(name), Value("")) << name;
  }
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(StudyAreaPropertiesTest, HoldsAnyNameAndText) {
  for (const char* text : {"", "_", "北京", "a\\b", "<&>'", "tab\t", " blanks "}) {
    SCOPED_TRACE(text);
    EXPECT_TRUE(study_area_->SetProperty(text, text));
    EXPECT_EQ(study_area_->GetProperty(text), Value(text));
  }
}

TEST_F(StudyAreaPropertiesTest, ValuesBecomeTheirTexts) {
  const std::pair<Value, const char*> cases[] = {
      {true, "-1"}, {false, "0"}, {42, "42"}, {Value(), ""}, {"text", "text"}};
  for (const auto& [value, text] : cases) {
    SCOPED_TRACE(text);
    EXPECT_TRUE(study_area_->SetProperty("A", value));
    EXPECT_EQ(study_area_->GetProperty("A"), Value(text));
  }
}

TEST_F(StudyAreaPropertiesTest, NullIsRefusedQuietlyAndChangesNothing) {
  EXPECT_TRUE(study_area_->SetProperty("A", "1"));
  const auto before = node_->Xml();
  EXPECT_FALSE(study_area_->SetProperty("A", Null()));
  EXPECT_FALSE(study_area_->SetProperty("B", Null()));
  EXPECT_EQ(node_->Xml(), before);
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(StudyAreaPropertiesTest, APropertyStoredWithoutAValueIsNull) {
  Bind("<STUDYAREA><SAPROPERTIES><PROPERTY NAME='A'/></SAPROPERTIES></STUDYAREA>");
  EXPECT_TRUE(study_area_->GetProperty("A").IsNull());
}

TEST_F(StudyAreaPropertiesTest, TheCountIsAlwaysZero) {
  EXPECT_TRUE(study_area_->SetProperty("A", "1"));
  EXPECT_EQ(study_area_->Count(), 0);
  EXPECT_EQ(KVStudyArea(world_.platform.gis_core).Count(), 0);
}

TEST_F(StudyAreaPropertiesTest, ADoubleQuoteInANameFailsWithoutAMessage) {
  EXPECT_FALSE(Saves(world_, [&] { EXPECT_FALSE(study_area_->SetProperty("a\"b", "1")); }));
  EXPECT_EQ(study_area_->GetProperty("a\"b"), Value(""));
  EXPECT_EQ(study_area_->GetProperty(R"(x" or "1"="1)"), Value(""));
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(StudyAreaPropertiesTest, WithoutThePropertiesElementReadingShowsAMessage) {
  Bind("<STUDYAREA/>");
  EXPECT_EQ(study_area_->GetProperty("TYPE"), Value(""));
  EXPECT_THAT(
      world_.platform.box->Messages(),
      ElementsAre(ShownMessage{"Can't find TYPE property", "Kelvaro", MessageStyle::kExclamation}));
}

TEST_F(StudyAreaPropertiesTest, WithoutThePropertiesElementWritingShowsTwoMessages) {
  Bind("<STUDYAREA/>");
  EXPECT_FALSE(Saves(world_, [&] { EXPECT_FALSE(study_area_->SetProperty("TYPE", "1")); }));
  EXPECT_THAT(
      world_.platform.box->Messages(),
      ElementsAre(
          ShownMessage{MakePortableSiblings()->CreateResourceFinder()->FindString("102"), "KVDM",
                       MessageStyle::kPlain},
          ShownMessage{"Couldn't set TYPE property", "Kelvaro", MessageStyle::kExclamation}));
  EXPECT_EQ(node_->Xml(), "<STUDYAREA/>");
}

TEST_F(StudyAreaPropertiesTest, WithoutTheTextsWritingWithoutThePropertiesElementIsQuiet) {
  world_.manager = std::make_shared<KVDataManager>(world_.platform.Bundle());
  Bind("<STUDYAREA/>");
  EXPECT_FALSE(study_area_->SetProperty("TYPE", "1"));
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

}  // namespace
}  // namespace kvdm
