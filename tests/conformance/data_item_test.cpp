// KVDataItem: its properties.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/conformance/families.h"

namespace kvdm::conformance {
namespace {

using testing::IsEmpty;

using DataItemWorld = ItemWorld<DataItemFamily>;

TEST(DataItemConformance, ReadsItsAttributesAsStored) {
  DataItemWorld world(R"( GUID="{1}" ADDITIONALINFO="i")");
  EXPECT_EQ(world.item->Name(), "_A_");
  EXPECT_EQ(world.item->GUID(), "{1}");
  EXPECT_EQ(world.item->AdditionalInfo(), "i");
}

TEST(DataItemConformance, ReadsMissingAttributesAsEmpty) {
  FamilyWorld<DataItemFamily> world(R"(<DATAITEM NAME="A"/><SADATACOLLECTION>)"
                                    R"(<DATAITEM GUID="{2}"/></SADATACOLLECTION>)");
  const auto item = world.Manager()->DataCollection()->GetDataItem("A");
  EXPECT_EQ(item->GUID(), "");
  EXPECT_EQ(item->AdditionalInfo(), "");
  EXPECT_EQ(item->LayerFile(), "");
  EXPECT_EQ(world.Manager()->DataCollection()->GetDataItemByGUID("{2}")->Name(), "");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(DataItemConformance, CompletesARelativeFileOnly) {
  struct Row {
    const char* attributes;
    const char* file;
  };
  for (const Row& row :
       {Row{R"( FILE="a" PATHTYPE="RELATIVE")", R"(D:\Data\Data\a)"},
        Row{R"( FILE="\a" PATHTYPE="RELATIVE")", R"(D:\Data\Data\\a)"},
        Row{R"( FILE="a" PATHTYPE="relative")", "a"}, Row{R"( FILE="a" PATHTYPE="Relative")", "a"},
        Row{R"( FILE="a" PATHTYPE="RELATIVE ")", "a"}, Row{R"( FILE="a" PATHTYPE="")", "a"},
        Row{R"( FILE="a" PATHTYPE="ABSOLUTE")", "a"}, Row{R"( FILE="a")", "a"},
        Row{R"( PATHTYPE="RELATIVE")", ""}}) {
    DataItemWorld world(row.attributes);
    EXPECT_EQ(world.item->LayerFile(), row.file) << row.attributes;
  }
}

TEST(DataItemConformance, FollowsTheWorkingDirectory) {
  DataItemWorld world(R"( FILE="a" PATHTYPE="RELATIVE")");
  world.AddFolder(R"(D:\Other)");
  world.Manager()->SetWorkingDirectory(R"(D:\Other)");
  EXPECT_EQ(world.item->LayerFile(), R"(D:\Other\Data\a)");
}

TEST(DataItemConformance, HasNoRelativeFileWithoutADataFolder) {
  DataItemWorld world(R"( FILE="a" PATHTYPE="RELATIVE")");
  world.LockFolder(R"(D:\Data)");
  EXPECT_EQ(world.item->LayerFile(), "");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(DataItemConformance, MarksItsFileAbsoluteAndSaves) {
  DataItemWorld world(R"( FILE="a" PATHTYPE="RELATIVE")");
  EXPECT_TRUE(Saves(world, [&] { world.item->SetLayerFile(R"(D:\b.shp)"); }));
  EXPECT_EQ(world.Metadata(), world.With(R"( FILE="D:\b.shp" PATHTYPE="ABSOLUTE")"));
  EXPECT_EQ(world.item->LayerFile(), R"(D:\b.shp)");
}

TEST(DataItemConformance, SetsNameAndInfoAndSaves) {
  DataItemWorld world("");
  EXPECT_TRUE(Saves(world, [&] { world.item->SetName("B"); }));
  EXPECT_TRUE(Saves(world, [&] { world.item->SetAdditionalInfo("i"); }));
  EXPECT_EQ(world.Metadata(), world.Inside(R"(<DATAITEM NAME="B" ADDITIONALINFO="i"/>)"));
}

TEST(DataItemConformance, MayHaveTheNameOfAnother) {
  FamilyWorld<DataItemFamily> world(R"(<DATAITEM NAME="A" GUID="{1}"/><DATAITEM NAME="B"/>)");
  const auto items = world.Manager()->DataCollection();
  items->GetDataItem("B")->SetName("A");
  EXPECT_EQ(world.Metadata(),
            world.Inside(R"(<DATAITEM NAME="A" GUID="{1}"/><DATAITEM NAME="A"/>)"));
  EXPECT_EQ(items->GetDataItem("A")->GUID(), "{1}");
}

TEST(DataItemConformance, StoresAnyNameAsGiven) {
  DataItemWorld world("");
  for (const char* name : {"a\"b", "_", "_B_", ""}) {
    world.item->SetName(name);
    EXPECT_EQ(world.item->Name(), name);
  }
}

TEST(DataItemConformance, PassesOnWhatItCannotStore) {
  DataItemWorld world("");
  EXPECT_FALSE(Saves(world, [&] {
    EXPECT_EQ(OutcomeOf([&] { world.item->SetName(TooLong()); }), Fails(7));
    EXPECT_EQ(OutcomeOf([&] { world.item->SetLayerFile(TooLong()); }), Fails(7));
    EXPECT_EQ(OutcomeOf([&] { world.item->SetAdditionalInfo(TooLong()); }), Fails(7));
  }));
  EXPECT_EQ(world.Metadata(), world.With(""));
}

TEST(DataItemConformance, UnboundAnswersNeutrally) {
  World world;
  const auto item = world.New<IKVDataItem>("KVDataItem");
  item->SetName("A");
  item->SetLayerFile("A");
  item->SetAdditionalInfo("A");
  EXPECT_EQ(item->Name(), "");
  EXPECT_EQ(item->LayerFile(), "");
  EXPECT_EQ(item->AdditionalInfo(), "");
  EXPECT_EQ(item->GUID(), "");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

}  // namespace
}  // namespace kvdm::conformance
