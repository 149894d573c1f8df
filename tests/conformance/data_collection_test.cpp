// KVDataCollection: data items directly in the collection, and in its group.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/conformance/families.h"

namespace kvdm::conformance {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kDataListFailed[] = "Couldn't get Data List for the study area";
constexpr char kDataGetFailed[] = "Couldn't get Data item shape file";
constexpr char kDataCreateFailed[] = "Couldn't Create Data";
constexpr char kDataDeleteFailed[] = "Couldn't Delete Data";

using DataWorld = FamilyWorld<DataItemFamily>;

std::shared_ptr<IKVDataCollection> Items(World& world) { return world.Manager()->DataCollection(); }

std::string Group(const std::string& items) {
  return "<SADATACOLLECTION>" + items + "</SADATACOLLECTION>";
}

TEST(DataCollectionConformance, UnboundAnswersNeutrally) {
  World world;
  const auto items = world.New<IKVDataCollection>("KVDataCollection");
  EXPECT_EQ(items->DataItemsList(), nullptr);
  EXPECT_EQ(items->DataItemsGUIDsList(), nullptr);
  EXPECT_FALSE(items->CreateDataItem("a\"b"));
  EXPECT_FALSE(items->DeleteDataItem("a\"b"));
  EXPECT_FALSE(items->DeleteDataItemByGUID("a\"b"));
  EXPECT_EQ(items->GetDataItem("a\"b"), nullptr);
  EXPECT_EQ(items->GetDataItemByGUID("a\"b"), nullptr);
  EXPECT_FALSE(items->DataItemExists("a\"b"));
  EXPECT_FALSE(items->DataItemExistsByGUID("a\"b"));
  EXPECT_EQ(items->DataItemsDir(), "");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(DataCollectionConformance, GivesItsFolderAndCreatesIt) {
  OpenWorld world;
  EXPECT_EQ(Items(world)->DataItemsDir(), R"(D:\Data\Data\)");
  EXPECT_TRUE(world.FolderExists(R"(D:\Data\Data)"));
  world.LockFolder(R"(D:\Data)");
  EXPECT_EQ(Items(world)->DataItemsDir(), R"(D:\Data\Data\)");
}

TEST(DataCollectionConformance, CannotReportThatItsFolderCannotBeMade) {
  OpenWorld world;
  world.LockFolder(R"(D:\Data)");
  EXPECT_EQ(OutcomeOf([&] { Items(world)->DataItemsDir(); }),
            FailsToReport("Couldn't get Data Dir"));
  world.Remove(R"(D:\Data)");
  EXPECT_EQ(OutcomeOf([&] { Items(world)->DataItemsDir(); }),
            FailsToReport("Couldn't get Data Dir"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(DataCollectionConformance, ListsTheItemsOfItsFirstGroupAsStored) {
  DataWorld world(R"(<DATAITEM NAME="Direct" GUID="{0}"/>)" +
                  Group(R"(<DATAITEM NAME="_B_" GUID="_x_"/><!--c--><OTHER NAME="C"/><DATAITEM/>)"
                        R"(<DATAITEM NAME="A" GUID="{2}"/>)") +
                  Group(R"(<DATAITEM NAME="Second" GUID="{3}"/>)"));
  EXPECT_EQ(TextsOf(Items(world)->DataItemsList()), (Texts{"_B_", "(null)", "A"}));
  EXPECT_EQ(TextsOf(Items(world)->DataItemsGUIDsList()), (Texts{"_x_", "(null)", "{2}"}));
}

TEST(DataCollectionConformance, ListsNothingOfAnEmptyGroup) {
  DataWorld world("<SADATACOLLECTION/>");
  EXPECT_THAT(TextsOf(Items(world)->DataItemsList()), IsEmpty());
  EXPECT_THAT(TextsOf(Items(world)->DataItemsGUIDsList()), IsEmpty());
}

TEST(DataCollectionConformance, CannotReportAMissingGroup) {
  DataWorld world(R"(<DATAITEM NAME="A" GUID="{1}"/>)");
  const auto items = Items(world);
  EXPECT_EQ(OutcomeOf([&] { items->DataItemsList(); }), FailsToReport(kDataListFailed));
  EXPECT_EQ(OutcomeOf([&] { items->DataItemsGUIDsList(); }), FailsToReport(kDataListFailed));
  EXPECT_EQ(OutcomeOf([&] { items->GetDataItemByGUID("{1}"); }), FailsToReport(kDataGetFailed));
  EXPECT_EQ(OutcomeOf([&] { items->DeleteDataItem("A"); }), FailsToReport(kDataDeleteFailed));
  EXPECT_EQ(OutcomeOf([&] { items->DeleteDataItemByGUID("{1}"); }),
            FailsToReport(kDataDeleteFailed));
  EXPECT_THAT(world.Messages(), IsEmpty());
  EXPECT_EQ(world.Metadata(), DataWorld::Inside(R"(<DATAITEM NAME="A" GUID="{1}"/>)"));
}

TEST(DataCollectionConformance, GetsByNameDirectlyAndByGuidInTheGroup) {
  DataWorld world(R"(<DATAITEM NAME="A" GUID="{1}"/>)" +
                  Group(R"(<DATAITEM NAME="B" GUID="{2}"/>)"));
  const auto items = Items(world);
  EXPECT_EQ(items->GetDataItem("A")->GUID(), "{1}");
  EXPECT_EQ(items->GetDataItem("B"), nullptr);
  EXPECT_EQ(items->GetDataItem("a"), nullptr);
  EXPECT_EQ(items->GetDataItemByGUID("{2}")->Name(), "B");
  EXPECT_EQ(items->GetDataItemByGUID("{1}"), nullptr);
  EXPECT_NE(items->GetDataItem("A"), items->GetDataItem("A"));
}

TEST(DataCollectionConformance, TestsDirectItemsForTheWrappedName) {
  DataWorld world(R"(<DATAITEM NAME="A" GUID="{1}"/><DATAITEM NAME="_B_" GUID="{2}"/>)" +
                  Group(R"(<DATAITEM NAME="_C_" GUID="{3}"/>)"));
  const auto items = Items(world);
  EXPECT_FALSE(items->DataItemExists("A"));
  EXPECT_TRUE(items->DataItemExists("B"));
  EXPECT_FALSE(items->DataItemExists("_B_"));
  EXPECT_FALSE(items->DataItemExists("C"));
  EXPECT_TRUE(items->DataItemExistsByGUID("{1}"));
  EXPECT_FALSE(items->DataItemExistsByGUID("{3}"));
}

TEST(DataCollectionConformance, FailsOnADoubleQuote) {
  DataWorld world(Group(""));
  const auto items = Items(world);
  EXPECT_EQ(OutcomeOf([&] { items->DataItemExists("a\"b"); }), Fails(-2147467259));
  EXPECT_EQ(OutcomeOf([&] { items->DataItemExistsByGUID("a\"b"); }), Fails(-2147467259));
  EXPECT_EQ(OutcomeOf([&] { items->GetDataItem("a\"b"); }), FailsToReport(kDataGetFailed));
  EXPECT_EQ(OutcomeOf([&] { items->GetDataItemByGUID("a\"b"); }), FailsToReport(kDataGetFailed));
  EXPECT_EQ(OutcomeOf([&] { items->CreateDataItem("a\"b"); }), FailsToReport(kDataCreateFailed));
  EXPECT_EQ(OutcomeOf([&] { items->DeleteDataItem("a\"b"); }), FailsToReport(kDataDeleteFailed));
  EXPECT_EQ(OutcomeOf([&] { items->DeleteDataItemByGUID("a\"b"); }),
            FailsToReport(kDataDeleteFailed));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(CreateDataItemConformance, AddsTheElementMakesTheFolderAndSaves) {
  DataWorld world("<SADATACOLLECTION/>");
  EXPECT_TRUE(Saves(world, [&] { EXPECT_TRUE(Items(world)->CreateDataItem("Streets")); }));
  EXPECT_EQ(world.Metadata(),
            DataWorld::Inside("<SADATACOLLECTION/><DATAITEM NAME=\"Streets\" GUID=\"" + Guid(1) +
                              "\" FILE=\"Streets\" PATHTYPE=\"RELATIVE\"/>"));
  EXPECT_TRUE(world.FolderExists(R"(D:\Data\Data)"));
  EXPECT_THAT(world.Tree(R"(D:\Data\Data)"), IsEmpty());
}

TEST(CreateDataItemConformance, RefusesAnExistingName) {
  DataWorld world("");
  EXPECT_TRUE(Items(world)->CreateDataItem("Streets"));
  const std::string before = world.Metadata();
  EXPECT_FALSE(Saves(world, [&] { EXPECT_FALSE(Items(world)->CreateDataItem("Streets")); }));
  EXPECT_EQ(world.Metadata(), before);
  EXPECT_TRUE(Items(world)->CreateDataItem("streets"));
}

TEST(CreateDataItemConformance, StoresAnyNameAsGiven) {
  OpenWorld world;
  for (const char* name : {"", "_", "_a_", "\xE4\xB8\xAD\xC3\xA9", "a'b", "a&b<c>", " "}) {
    EXPECT_TRUE(Items(world)->CreateDataItem(name)) << name;
    EXPECT_EQ(Items(world)->GetDataItem(name)->Name(), name);
  }
}

TEST(CreateDataItemConformance, IsNotStoppedByTheGroupOrAWrappedName) {
  DataWorld world(R"(<DATAITEM NAME="_A_"/>)" + Group(R"(<DATAITEM NAME="A"/>)"));
  EXPECT_TRUE(Items(world)->CreateDataItem("A"));
}

TEST(CreateDataItemConformance, TakesTheNextFileWhenOneIsThere) {
  OpenWorld world;
  world.AddFile(R"(D:\Data\Data\Streets.shp)");
  world.AddFolder(R"(D:\Data\Data\Streets1)");
  EXPECT_TRUE(Items(world)->CreateDataItem("Streets"));
  EXPECT_EQ(Items(world)->GetDataItem("Streets")->LayerFile(), R"(D:\Data\Data\Streets1)");
}

TEST(CreateDataItemConformance, CannotReportThatTheFolderCannotBeMade) {
  DataWorld world("");
  world.LockFolder(R"(D:\Data)");
  EXPECT_FALSE(Saves(world, [&] {
    EXPECT_EQ(OutcomeOf([&] { Items(world)->CreateDataItem("A"); }),
              FailsToReport(kDataCreateFailed));
  }));
  EXPECT_EQ(world.Metadata(), DataWorld::Inside(""));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(CreateDataItemConformance, MakesAnItemThatTheOtherOperationsDoNotFind) {
  DataWorld world("");
  Items(world)->CreateDataItem("Streets");
  EXPECT_FALSE(Items(world)->DataItemExists("Streets"));
  EXPECT_TRUE(Items(world)->DataItemExistsByGUID(Guid(1)));
  EXPECT_EQ(OutcomeOf([&] { Items(world)->DataItemsList(); }), FailsToReport(kDataListFailed));
  EXPECT_EQ(OutcomeOf([&] { Items(world)->DeleteDataItem("Streets"); }),
            FailsToReport(kDataDeleteFailed));
}

TEST(DeleteDataItemConformance, RemovesFromTheGroupAndSaves) {
  const std::string direct = R"(<DATAITEM NAME="A" GUID="{1}"/>)";
  for (const bool by_guid : {false, true}) {
    DataWorld world(direct + Group(R"(<DATAITEM NAME="A" GUID="{1}"/><DATAITEM NAME="B"/>)"));
    world.AddFile(R"(D:\Data\Data\A.shp)");
    EXPECT_TRUE(Saves(world, [&] {
      EXPECT_TRUE(by_guid ? Items(world)->DeleteDataItemByGUID("{1}")
                          : Items(world)->DeleteDataItem("A"));
    }));
    EXPECT_EQ(world.Metadata(), DataWorld::Inside(direct + Group(R"(<DATAITEM NAME="B"/>)")));
    EXPECT_THAT(world.Tree(R"(D:\Data\Data)"), ElementsAre("A.shp"));
  }
}

TEST(DeleteDataItemConformance, LeavesViewsWithTheirElement) {
  DataWorld world(Group(R"(<DATAITEM NAME="A" GUID="{1}"/>)"));
  const auto item = Items(world)->GetDataItemByGUID("{1}");
  EXPECT_TRUE(Items(world)->DeleteDataItem("A"));
  item->SetName("B");
  EXPECT_EQ(item->Name(), "B");
  EXPECT_THAT(TextsOf(Items(world)->DataItemsList()), IsEmpty());
}

TEST(DeleteDataItemConformance, DoesNothingForAnUnknownKey) {
  DataWorld world(Group(R"(<DATAITEM NAME="_A_" GUID="{1}"/>)"));
  EXPECT_FALSE(Saves(world, [&] {
    for (const char* key : {"A", "a", "", "1"}) {
      EXPECT_FALSE(Items(world)->DeleteDataItem(key)) << key;
      EXPECT_FALSE(Items(world)->DeleteDataItemByGUID(key)) << key;
    }
  }));
  EXPECT_EQ(TextsOf(Items(world)->DataItemsList()), Texts{"_A_"});
}

}  // namespace
}  // namespace kvdm::conformance
