#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "items/kv_data_item.h"
#include "tests/saves.h"
#include "tests/test_world.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class DataItemTest : public ::testing::Test {
 protected:
  // The first item of a collection that holds `xml`.
  std::shared_ptr<IKVDataItem> Item(const std::string& xml) {
    world.LoadMetadata("<R><DATACOLLECTION>" + xml + "</DATACOLLECTION></R>");
    return world.manager->DataCollection()->GetDataItem("A");
  }

  TestWorld world;
};

TEST_F(DataItemTest, ReadsItsAttributes) {
  const auto item = Item(R"(<DATAITEM NAME="A" GUID="{1}" ADDITIONALINFO="x &amp; y"/>)");
  EXPECT_EQ(item->Name(), "A");
  EXPECT_EQ(item->GUID(), "{1}");
  EXPECT_EQ(item->AdditionalInfo(), "x & y");
}

TEST_F(DataItemTest, MissingAttributesReadAsEmpty) {
  const auto item = Item(R"(<DATAITEM NAME="A"/>)");
  EXPECT_EQ(item->GUID(), "");
  EXPECT_EQ(item->AdditionalInfo(), "");
  EXPECT_EQ(item->LayerFile(), "");
}

TEST_F(DataItemTest, TheNameIsStoredAsGivenAndSaved) {
  const auto item = Item(R"(<DATAITEM NAME="A"/>)");
  for (const char* name : {"_B_", "_", "", "店 \"1\""}) {
    SCOPED_TRACE(name);
    EXPECT_TRUE(Saves(world, [&] { item->SetName(name); }));
    EXPECT_EQ(item->Name(), name);
  }
  item->SetName("_B_");
  EXPECT_THAT(world.Metadata(), HasSubstr(R"(<DATAITEM NAME="_B_"/>)"));
}

TEST_F(DataItemTest, TwoItemsMayHaveTheSameName) {
  const auto item = Item(R"(<DATAITEM NAME="A"/><DATAITEM NAME="B"/>)");
  item->SetName("B");
  EXPECT_THAT(world.Metadata(), HasSubstr(R"(<DATAITEM NAME="B"/><DATAITEM NAME="B"/>)"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST_F(DataItemTest, AdditionalInfoIsSaved) {
  const auto item = Item(R"(<DATAITEM NAME="A"/>)");
  EXPECT_TRUE(Saves(world, [&] { item->SetAdditionalInfo("info"); }));
  EXPECT_EQ(item->AdditionalInfo(), "info");
}

TEST_F(DataItemTest, ARelativeFileFollowsTheDataFolderDirectly) {
  EXPECT_EQ(Item(R"(<DATAITEM NAME="A" FILE="Streets" PATHTYPE="RELATIVE"/>)")->LayerFile(),
            R"(D:\Data\Data\Streets)");
  EXPECT_TRUE(world.platform.files->FolderExists(R"(D:\Data\Data)"));
}

TEST_F(DataItemTest, AnyOtherPathTypeMeansAbsolute) {
  for (const char* path_type :
       {R"(PATHTYPE="ABSOLUTE")", R"(PATHTYPE="relative")", R"(PATHTYPE="Relative")",
        R"(PATHTYPE="RELATIVE ")", R"(PATHTYPE="")", ""}) {
    SCOPED_TRACE(path_type);
    EXPECT_EQ(
        Item(R"(<DATAITEM NAME="A" FILE="E:\x" )" + std::string(path_type) + "/>")->LayerFile(),
        R"(E:\x)");
  }
}

TEST_F(DataItemTest, ARelativePathWithoutAFileReadsAsEmpty) {
  EXPECT_EQ(Item(R"(<DATAITEM NAME="A" PATHTYPE="RELATIVE"/>)")->LayerFile(), "");
}

TEST_F(DataItemTest, ARelativeFileWhoseFolderCannotBeMadeReadsAsEmpty) {
  const auto item = Item(R"(<DATAITEM NAME="A" FILE="S" PATHTYPE="RELATIVE"/>)");
  world.platform.files->RefuseWrites(R"(D:\Data)");
  EXPECT_EQ(item->LayerFile(), "");
}

TEST_F(DataItemTest, AFileThatIsSetIsAbsoluteAndSaved) {
  const auto item = Item(R"(<DATAITEM NAME="A" FILE="S" PATHTYPE="RELATIVE"/>)");
  EXPECT_TRUE(Saves(world, [&] { item->SetLayerFile(R"(E:\y.shp)"); }));
  EXPECT_EQ(item->LayerFile(), R"(E:\y.shp)");
  EXPECT_THAT(world.Metadata(), HasSubstr(R"(FILE="E:\y.shp" PATHTYPE="ABSOLUTE")"));
}

TEST_F(DataItemTest, PathTypeIsWrittenAfterTheFile) {
  Item(R"(<DATAITEM NAME="A"/>)")->SetLayerFile("x");
  EXPECT_THAT(world.Metadata(), HasSubstr(R"(<DATAITEM NAME="A" FILE="x" PATHTYPE="ABSOLUTE"/>)"));
}

TEST_F(DataItemTest, KeepsNamedParameters) {
  const auto item = Item(R"(<DATAITEM NAME="A"/>)");
  EXPECT_TRUE(Saves(world, [&] { EXPECT_TRUE(item->SetParameter("p", "1")); }));
  EXPECT_TRUE(item->SetParameter("_q_", ""));
  EXPECT_TRUE(item->SetParameter("p", "2"));
  EXPECT_EQ(item->GetParameter("p"), "2");
  EXPECT_EQ(item->GetParameter("P"), "");
  EXPECT_THAT(Texts(item->ParametersList()), ElementsAre("p", "_q_"));
  EXPECT_TRUE(Saves(world, [&] { EXPECT_TRUE(item->ClearParametersList()); }));
  EXPECT_THAT(Texts(item->ParametersList()), IsEmpty());
}

TEST_F(DataItemTest, AParameterThatCannotBeSetSpeaksOfTheDataItem) {
  const auto item = Item(R"(<DATAITEM NAME="A"/>)");
  try {
    item->SetParameter("a\"b", "1");
    FAIL() << "no error";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.number(), kMemberNotSupported);
    EXPECT_EQ(error.unsent_message(), "Error while setting parameter of Dataitem");
  }
  EXPECT_EQ(item->GetParameter("a\"b"), "");
  EXPECT_THAT(Texts(item->ParametersList()), IsEmpty());
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST_F(DataItemTest, StaysUsableAfterItsRemoval) {
  world.LoadMetadata(
      R"(<R><DATACOLLECTION><SADATACOLLECTION><DATAITEM NAME="A" GUID="1"/></SADATACOLLECTION>)"
      R"(</DATACOLLECTION></R>)");
  const auto items = world.manager->DataCollection();
  const auto item = items->GetDataItemByGUID("1");
  EXPECT_TRUE(items->DeleteDataItemByGUID("1"));
  item->SetName("B");
  EXPECT_EQ(item->Name(), "B");
}

TEST_F(DataItemTest, HasNoMetadataExchangeAndNoLayerEdit) {
  const auto item = Item(R"(<DATAITEM NAME="A"/>)");
  EXPECT_EQ(Query<IKVMetadata>(item), nullptr);
  EXPECT_EQ(Query<IKVLayerEdit>(item), nullptr);
}

TEST(UnboundDataItemTest, AnswersWithNeutralResultsAndIgnoresSetters) {
  KVDataItem item;
  item.SetName("A");
  item.SetLayerFile("A");
  item.SetAdditionalInfo("A");
  EXPECT_EQ(item.Name(), "");
  EXPECT_EQ(item.LayerFile(), "");
  EXPECT_EQ(item.AdditionalInfo(), "");
  EXPECT_EQ(item.GUID(), "");
  EXPECT_FALSE(item.SetParameter("p", "1"));
  EXPECT_EQ(item.GetParameter("p"), "");
  EXPECT_EQ(item.ParametersList(), nullptr);
  EXPECT_FALSE(item.ClearParametersList());
}

TEST(UnboundDataItemTest, WithoutAnOwnerARelativeFileReadsAsEmpty) {
  KVDataItem item;
  const auto element = xml::Element::Create("DATAITEM");
  element->SetAttribute("FILE", "S");
  element->SetAttribute("PATHTYPE", "RELATIVE");
  item.AttachNode(element);
  EXPECT_EQ(item.LayerFile(), "");
}

TEST(UnboundDataItemTest, WithoutADataManagerSettersWriteAndAFailureHasNobodyToReportTo) {
  KVDataItem item;
  const auto element = xml::Element::Create("DATAITEM");
  item.AttachNode(element);
  item.SetName("A");
  EXPECT_EQ(element->Xml(), R"(<DATAITEM NAME="A"/>)");
  EXPECT_RUNTIME_ERROR(item.SetParameter("a\"b", "1"), kObjectNotSet);
}

}  // namespace
}  // namespace kvdm
