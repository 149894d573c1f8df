// How names stand in the documents, and what look-ups and lists make of them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/test_world.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

TEST(StoredNamesTest, ANameIsStoredBetweenUnderscoresAndListedAsGiven) {
  TestWorld world;
  ASSERT_TRUE(world.manager->StudyAreaCollection()->CreateStudyArea("_x_"));
  EXPECT_THAT(world.StoredCatalogue(), HasSubstr("NAME=\"__x__\""));
  EXPECT_THAT(Texts(world.manager->StudyAreaCollection()->StudyAreasList()), ElementsAre("_x_"));
  EXPECT_TRUE(world.manager->StudyAreaCollection()->StudyAreaExists("_x_"));
  EXPECT_FALSE(world.manager->StudyAreaCollection()->StudyAreaExists("x"));
}

TEST(StoredNamesTest, ANameThatWasNotWrappedIsListedUnchanged) {
  TestWorld world;
  world.LoadCatalogue(
      R"(<STUDYAREACOLLECTION><STUDYAREA NAME="_"/><STUDYAREA NAME="a_"/><STUDYAREA NAME="b"/>)"
      R"(<STUDYAREA NAME="__"/></STUDYAREACOLLECTION>)");
  EXPECT_THAT(Texts(world.manager->StudyAreaCollection()->StudyAreasList()),
              ElementsAre("_", "a_", "b", ""));
}

TEST(StoredNamesTest, TheStudyAreaDefaultIsThereButNotListedByName) {
  TestWorld world;
  world.LoadCatalogue(R"(<STUDYAREACOLLECTION><STUDYAREA NAME="_Default_" GUID="{1}"/>)"
                      R"(<STUDYAREA NAME="_default_" GUID="{2}"/></STUDYAREACOLLECTION>)");
  const auto areas = world.manager->StudyAreaCollection();
  EXPECT_TRUE(areas->StudyAreaExists("Default"));
  EXPECT_THAT(Texts(areas->StudyAreasList()), ElementsAre("default"));
  EXPECT_THAT(Texts(areas->StudyAreasGUIDsList()), ElementsAre("{1}", "{2}"));
}

TEST(StoredNamesTest, ANameWithADoubleQuoteCanNotBeCreatedFoundOrRemoved) {
  TestWorld world;
  world.LoadMetadata(
      R"(<A><CUSTLAYERCOLLECTION><CUSTLAYER NAME='_a"b_' GUID="{1}"/></CUSTLAYERCOLLECTION></A>)");
  const auto layers = world.manager->CustLayerCollection();
  EXPECT_RUNTIME_ERROR(static_cast<void>(layers->CustLayerExists("a\"b")), kAutomationFailure);
  EXPECT_RUNTIME_ERROR(layers->CreateCustLayer("a\"b"), kMemberNotSupported);
  EXPECT_RUNTIME_ERROR(layers->DeleteCustLayer("a\"b"), kMemberNotSupported);
  EXPECT_THAT(Texts(layers->CustLayersList()), ElementsAre("a\"b"));
}

TEST(StoredNamesTest, AKeyIsNeverPartOfTheExpression) {
  TestWorld world;
  ASSERT_TRUE(world.manager->CustLayerCollection()->CreateCustLayer("a"));
  EXPECT_RUNTIME_ERROR(
      static_cast<void>(
          world.manager->CustLayerCollection()->CustLayerExistsByGUID("x\" or \"1\"=\"1")),
      kAutomationFailure);
}

TEST(StoredNamesTest, ListsTakeOnlyElementsOfTheItemsTag) {
  TestWorld world;
  world.LoadMetadata(
      "<A><CUSTLAYERCOLLECTION>text<!--c--><?p d?><custlayer NAME='_x_'/><OTHER NAME='_y_'/>"
      "<CUSTLAYER NAME='_b_'/><CUSTLAYER NAME='_a_'><CUSTLAYER NAME='_z_'/></CUSTLAYER>"
      "</CUSTLAYERCOLLECTION></A>");
  EXPECT_THAT(Texts(world.manager->CustLayerCollection()->CustLayersList()), ElementsAre("b", "a"));
}

TEST(StoredNamesTest, DataItemNamesAreNotWrapped) {
  TestWorld world;
  ASSERT_TRUE(world.manager->DataCollection()->CreateDataItem("Roads"));
  EXPECT_THAT(world.Metadata(), HasSubstr("<DATAITEM NAME=\"Roads\""));
  EXPECT_THAT(world.Metadata(), Not(HasSubstr("_Roads_")));
}

}  // namespace
}  // namespace kvdm
