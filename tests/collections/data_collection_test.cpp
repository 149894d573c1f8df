#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kvdm/platform/error.h>

#include "collections/kv_data_collection.h"
#include "tests/saves.h"
#include "tests/test_world.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr char kFirstGuid[] = "{00000000-0000-4000-8000-000000000001}";

class DataCollectionTest : public ::testing::Test {
 protected:
  // Replaces the metadata: `direct` stands in the collection, `grouped` in its group.
  void Load(const std::string& direct, const std::string& grouped) {
    world.LoadMetadata("<R><DATACOLLECTION>" + direct + "<SADATACOLLECTION>" + grouped +
                       "</SADATACOLLECTION></DATACOLLECTION></R>");
    items = world.manager->DataCollection();
  }

  template <class Act>
  void ExpectUnsent(const char* message, Act&& act) {
    try {
      act();
      ADD_FAILURE() << "no error for " << message;
    } catch (const RuntimeError& error) {
      EXPECT_EQ(error.number(), kMemberNotSupported);
      EXPECT_EQ(error.unsent_message(), message);
    }
    EXPECT_THAT(world.Messages(), IsEmpty());
  }

  TestWorld world;
  std::shared_ptr<IKVDataCollection> items = world.manager->DataCollection();
};

TEST_F(DataCollectionTest, CreatesAnItemWithItsAttributesInOrderDirectlyInTheCollection) {
  EXPECT_TRUE(items->CreateDataItem("Streets"));
  EXPECT_THAT(world.Metadata(),
              HasSubstr(R"(<DATACOLLECTION><DATAITEM NAME="Streets")"
                        R"( GUID="{00000000-0000-4000-8000-000000000001}" FILE="Streets")"
                        R"( PATHTYPE="RELATIVE"/></DATACOLLECTION>)"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST_F(DataCollectionTest, CreatesANameOnlyOnce) {
  EXPECT_TRUE(Saves(world, [&] { EXPECT_TRUE(items->CreateDataItem("Streets")); }));
  EXPECT_FALSE(Saves(world, [&] { EXPECT_FALSE(items->CreateDataItem("Streets")); }));
}

TEST_F(DataCollectionTest, CreatesANameThatOnlyTheGroupHas) {
  Load("", R"(<DATAITEM NAME="Streets" GUID="1"/>)");
  EXPECT_TRUE(items->CreateDataItem("Streets"));
  EXPECT_THAT(Texts(items->DataItemsList()), ElementsAre("Streets"));
}

TEST_F(DataCollectionTest, WritesNoFileForAnItem) {
  items->CreateDataItem("Streets");
  EXPECT_TRUE(world.platform.files->FolderExists(R"(D:\Data\Data)"));
  EXPECT_THAT(world.platform.files->Tree(R"(D:\Data\Data)"), IsEmpty());
}

TEST_F(DataCollectionTest, ReservesAFileNameThatNoFileHas) {
  world.platform.files->AddFile(R"(D:\Data\Data\Streets.shp)");
  items->CreateDataItem("Streets");
  EXPECT_EQ(items->GetDataItem("Streets")->LayerFile(), R"(D:\Data\Data\Streets1)");
}

TEST_F(DataCollectionTest, TheFolderIsMadeOnFirstUseAndEndsWithABackslash) {
  EXPECT_EQ(items->DataItemsDir(), R"(D:\Data\Data\)");
  EXPECT_TRUE(world.platform.files->FolderExists(R"(D:\Data\Data)"));
  EXPECT_EQ(items->DataItemsDir(), R"(D:\Data\Data\)");
}

TEST_F(DataCollectionTest, TheFolderNeedsNoElement) {
  KVDataCollection unbound(world.platform.gis_core);
  unbound.SetDataManager(world.manager->Reference());
  EXPECT_EQ(unbound.DataItemsDir(), R"(D:\Data\Data\)");
}

TEST_F(DataCollectionTest, ExistsLooksForTheWrappedName) {
  items->CreateDataItem("Streets");
  EXPECT_FALSE(items->DataItemExists("Streets"));
  items->CreateDataItem("_Streets_");
  EXPECT_TRUE(items->DataItemExists("Streets"));
  EXPECT_TRUE(items->DataItemExistsByGUID(kFirstGuid));
  EXPECT_FALSE(items->DataItemExistsByGUID("Streets"));
}

TEST_F(DataCollectionTest, ExistsLooksInTheCollectionOnly) {
  Load("", R"(<DATAITEM NAME="_A_" GUID="1"/>)");
  EXPECT_FALSE(items->DataItemExists("A"));
  EXPECT_FALSE(items->DataItemExistsByGUID("1"));
}

TEST_F(DataCollectionTest, GetByNameLooksInTheCollectionOnly) {
  Load(R"(<DATAITEM NAME="A" GUID="1"/><DATAITEM NAME="A" GUID="2"/>)",
       R"(<DATAITEM NAME="B" GUID="3"/>)");
  EXPECT_EQ(items->GetDataItem("A")->GUID(), "1");
  EXPECT_EQ(items->GetDataItem("B"), nullptr);
}

TEST_F(DataCollectionTest, GetByGuidLooksInTheGroupOnly) {
  Load(R"(<DATAITEM NAME="A" GUID="1"/>)", R"(<DATAITEM NAME="B" GUID="3"/>)");
  EXPECT_EQ(items->GetDataItemByGUID("1"), nullptr);
  EXPECT_EQ(items->GetDataItemByGUID("3")->Name(), "B");
}

TEST_F(DataCollectionTest, ListsTheGroupInDocumentOrderAsStored) {
  Load(R"(<DATAITEM NAME="Z" GUID="0"/>)",
       R"(<DATAITEM NAME="_B_" GUID="_2_"/><!-- --><OTHER NAME="x"/>)"
       R"(<DATAITEM NAME="A" GUID="1"/><DATAITEM/>)");
  EXPECT_THAT(Texts(items->DataItemsList()), ElementsAre("_B_", "A", "(null)"));
  EXPECT_THAT(Texts(items->DataItemsGUIDsList()), ElementsAre("_2_", "1", "(null)"));
}

TEST_F(DataCollectionTest, TheFirstGroupCounts) {
  world.LoadMetadata(
      R"(<R><DATACOLLECTION><SADATACOLLECTION/><SADATACOLLECTION><DATAITEM NAME="A"/>)"
      R"(</SADATACOLLECTION></DATACOLLECTION></R>)");
  EXPECT_THAT(Texts(world.manager->DataCollection()->DataItemsList()), IsEmpty());
}

TEST_F(DataCollectionTest, DeletesFromTheGroupAndSaves) {
  Load(R"(<DATAITEM NAME="A" GUID="1"/>)",
       R"(<DATAITEM NAME="A" GUID="2"/><DATAITEM NAME="B" GUID="3"/>)");
  world.platform.files->AddFile(R"(D:\Data\Data\A.shp)");
  EXPECT_TRUE(Saves(world, [&] { EXPECT_TRUE(items->DeleteDataItem("A")); }));
  EXPECT_TRUE(Saves(world, [&] { EXPECT_TRUE(items->DeleteDataItemByGUID("3")); }));
  EXPECT_THAT(Texts(items->DataItemsList()), IsEmpty());
  EXPECT_EQ(items->GetDataItem("A")->GUID(), "1");
  EXPECT_TRUE(world.platform.files->ReadFile(R"(D:\Data\Data\A.shp)"));
}

TEST_F(DataCollectionTest, DeletingWhatIsNotInTheGroupChangesNothing) {
  Load(R"(<DATAITEM NAME="A" GUID="1"/>)", R"(<DATAITEM NAME="_B_" GUID="2"/>)");
  EXPECT_FALSE(Saves(world, [&] {
    EXPECT_FALSE(items->DeleteDataItem("A"));
    EXPECT_FALSE(items->DeleteDataItem("B"));
    EXPECT_FALSE(items->DeleteDataItemByGUID("1"));
  }));
  EXPECT_THAT(Texts(items->DataItemsList()), ElementsAre("_B_"));
}

TEST_F(DataCollectionTest, KeepsOddNames) {
  for (const char* name : {"", "_", "_a_", "店舗", "a'b", "a&b<c>", " "}) {
    SCOPED_TRACE(name);
    ASSERT_TRUE(items->CreateDataItem(name));
    EXPECT_EQ(items->GetDataItem(name)->Name(), name);
  }
}

// Failures.

TEST_F(DataCollectionTest, AMissingGroupCannotBeReported) {
  items->CreateDataItem("Streets");
  ExpectUnsent("Couldn't get Data List for the study area", [&] { items->DataItemsList(); });
  ExpectUnsent("Couldn't get Data List for the study area", [&] { items->DataItemsGUIDsList(); });
  ExpectUnsent("Couldn't get Data item shape file", [&] { items->GetDataItemByGUID(kFirstGuid); });
  ExpectUnsent("Couldn't Delete Data", [&] { items->DeleteDataItem("Streets"); });
  ExpectUnsent("Couldn't Delete Data", [&] { items->DeleteDataItemByGUID(kFirstGuid); });
  EXPECT_NE(items->GetDataItem("Streets"), nullptr);
}

TEST_F(DataCollectionTest, AKeyWithADoubleQuoteFailsInTheQuery) {
  Load("", "");
  const char* key = R"(x" or "1"="1)";
  EXPECT_RUNTIME_ERROR(items->DataItemExists(key), kAutomationFailure);
  EXPECT_RUNTIME_ERROR(items->DataItemExistsByGUID(key), kAutomationFailure);
  ExpectUnsent("Couldn't get Data item shape file", [&] { items->GetDataItem(key); });
  ExpectUnsent("Couldn't get Data item shape file", [&] { items->GetDataItemByGUID(key); });
  ExpectUnsent("Couldn't Create Data", [&] { items->CreateDataItem(key); });
  ExpectUnsent("Couldn't Delete Data", [&] { items->DeleteDataItem(key); });
  ExpectUnsent("Couldn't Delete Data", [&] { items->DeleteDataItemByGUID(key); });
}

TEST_F(DataCollectionTest, AFolderThatCannotBeMadeFailsTheCreation) {
  world.platform.files->RefuseWrites(R"(D:\Data)");
  ExpectUnsent("Couldn't get Data Dir", [&] { items->DataItemsDir(); });
  ExpectUnsent("Couldn't Create Data", [&] { items->CreateDataItem("A"); });
  EXPECT_THAT(world.Metadata(), Not(HasSubstr("DATAITEM")));
}

TEST_F(DataCollectionTest, TheCauseStaysAttachedToAReportThatFailed) {
  world.platform.files->RefuseWrites(R"(D:\Data)");
  try {
    items->DataItemsDir();
    FAIL() << "no error";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(ErrorChain(error).back().number(), kPermissionDenied);
  }
}

// With neither an element nor a data manager, as a client creates it.
TEST(UnboundDataCollectionTest, AnswersWithNeutralResults) {
  TestWorld world;
  KVDataCollection items(world.platform.gis_core);
  EXPECT_EQ(items.DataItemsList(), nullptr);
  EXPECT_EQ(items.DataItemsGUIDsList(), nullptr);
  EXPECT_EQ(items.GetDataItem("A"), nullptr);
  EXPECT_EQ(items.GetDataItemByGUID("A"), nullptr);
  EXPECT_FALSE(items.CreateDataItem("A"));
  EXPECT_FALSE(items.DeleteDataItem("A"));
  EXPECT_FALSE(items.DeleteDataItemByGUID("A"));
  EXPECT_FALSE(items.DataItemExists("A"));
  EXPECT_FALSE(items.DataItemExistsByGUID("A"));
  EXPECT_EQ(items.DataItemsDir(), "");
}

TEST(UnboundDataCollectionTest, WithoutADataManagerFailuresAreNotReported) {
  TestWorld world;
  KVDataCollection items(world.platform.gis_core);
  const auto node = xml::Element::Create("DATACOLLECTION");
  items.SetNode(node);
  EXPECT_EQ(items.DataItemsList(), nullptr);
  EXPECT_EQ(items.GetDataItemByGUID("A"), nullptr);
  EXPECT_EQ(items.GetDataItem("a\"b"), nullptr);
  EXPECT_FALSE(items.DeleteDataItem("A"));
  EXPECT_FALSE(items.CreateDataItem("A"));
  EXPECT_EQ(node->Xml(), "<DATACOLLECTION/>");
}

TEST(UnboundDataCollectionTest, WithoutADataManagerItemsAreDeletedButNotSaved) {
  TestWorld world;
  KVDataCollection items(world.platform.gis_core);
  const auto node = xml::Element::Create("DATACOLLECTION");
  const auto group = xml::Element::Create("SADATACOLLECTION");
  const auto item = xml::Element::Create("DATAITEM");
  item->SetAttribute("NAME", "A");
  group->Append(item);
  node->Append(group);
  items.SetNode(node);
  EXPECT_TRUE(items.DeleteDataItem("A"));
  EXPECT_EQ(group->Xml(), "<SADATACOLLECTION/>");
  EXPECT_EQ(world.StoredCatalogue(), "");
}

}  // namespace
}  // namespace kvdm
