// KVStoreLayerCollection and KVCustLayerCollection: creating layers, and their folder.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/conformance/families.h"

namespace kvdm::conformance {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

template <class Family>
class LayerCollectionConformance : public testing::Test {
 protected:
  // A path in the layers folder.
  static std::string Path(const std::string& name) {
    return std::string(R"(D:\Data\)") + Family::kFolder + "\\" + name;
  }
  static std::string Folder() { return std::string(R"(D:\Data\)") + Family::kFolder; }
};

TYPED_TEST_SUITE(LayerCollectionConformance, LayerFamilies);

TYPED_TEST(LayerCollectionConformance, GivesItsFolderAndCreatesItOnce) {
  OpenWorld world;
  world.Remove(this->Folder());
  EXPECT_EQ(TypeParam::Folder(*TypeParam::Of(world)), this->Folder());
  EXPECT_TRUE(world.FolderExists(this->Folder()));
  world.LockFolder(R"(D:\Data)");
  EXPECT_EQ(TypeParam::Folder(*TypeParam::Of(world)), this->Folder());
}

TYPED_TEST(LayerCollectionConformance, CreatesItsFolderOneLevelOnly) {
  OpenWorld world;
  world.Remove(R"(D:\Data)");
  EXPECT_EQ(OutcomeOf([&] { TypeParam::Folder(*TypeParam::Of(world)); }), Fails(76));
  EXPECT_FALSE(world.FolderExists(R"(D:\Data)"));
}

TYPED_TEST(LayerCollectionConformance, PassesOnThatItsFolderCannotBeMade) {
  OpenWorld world;
  world.Remove(this->Folder());
  world.LockFolder(R"(D:\Data)");
  EXPECT_EQ(OutcomeOf([&] { TypeParam::Folder(*TypeParam::Of(world)); }), Fails(70));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TYPED_TEST(LayerCollectionConformance, UnboundHasNoFolder) {
  World world;
  const auto all = world.New<typename TypeParam::Collection>(TypeParam::kCollectionClass);
  EXPECT_EQ(TypeParam::Folder(*all), "");
}

TYPED_TEST(LayerCollectionConformance, CreatesTheElementOnly) {
  FamilyWorld<TypeParam> world("");
  EXPECT_TRUE(TypeParam::Create(*TypeParam::Of(world), "Stores"));
  EXPECT_EQ(world.Metadata(),
            world.Inside(std::string("<") + TypeParam::kTag + " NAME=\"_Stores_\" GUID=\"" +
                         Guid(1) + "\" LAYERFILE=\"" + this->Path("Stores.lyr") +
                         "\" CREATIONTIME=\"" + kNow + "\"/>"));
  EXPECT_THAT(world.Tree(this->Folder()), IsEmpty());
}

TYPED_TEST(LayerCollectionConformance, RefusesAnExistingName) {
  FamilyWorld<TypeParam> world("");
  const auto all = TypeParam::Of(world);
  EXPECT_TRUE(TypeParam::Create(*all, "Stores"));
  EXPECT_FALSE(TypeParam::Create(*all, "Stores"));
  EXPECT_EQ(TextsOf(TypeParam::List(*all)), Texts{"Stores"});
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TYPED_TEST(LayerCollectionConformance, IsNotStoppedByANameThatIsWrappedTwice) {
  FamilyWorld<TypeParam> world(std::string("<") + TypeParam::kTag + " NAME='__North__'/>");
  EXPECT_TRUE(TypeParam::Create(*TypeParam::Of(world), "North"));
}

TYPED_TEST(LayerCollectionConformance, TakesTheNextLayerFileWhenOneIsThere) {
  OpenWorld world;
  const auto all = TypeParam::Of(world);
  for (const char* file : {"Stores.lyr", "Stores1.txt", "Stores2", "Stores33.lyr"}) {
    world.AddFile(this->Path(file));
  }
  EXPECT_TRUE(TypeParam::Create(*all, "Stores"));
  EXPECT_EQ(TypeParam::Get(*all, "Stores")->LayerFile(), this->Path("Stores3.lyr"));
  EXPECT_EQ(TypeParam::Get(*all, "Stores")->Name(), "Stores");
}

TYPED_TEST(LayerCollectionConformance, IsNotStoppedByFoldersAndHiddenFiles) {
  OpenWorld world;
  const auto all = TypeParam::Of(world);
  world.AddFolder(this->Path("Stores"));
  world.AddFile(this->Path("Stores.lyr"));
  world.SetHidden(this->Path("Stores.lyr"));
  EXPECT_TRUE(TypeParam::Create(*all, "Stores"));
  EXPECT_EQ(TypeParam::Get(*all, "Stores")->LayerFile(), this->Path("Stores.lyr"));
}

TYPED_TEST(LayerCollectionConformance, ReservesNoFileForALayerThatHasNone) {
  OpenWorld world;
  const auto all = TypeParam::Of(world);
  TypeParam::Create(*all, "A");
  TypeParam::Get(*all, "A")->SetName("B");
  EXPECT_TRUE(TypeParam::Create(*all, "A"));
  EXPECT_EQ(TypeParam::Get(*all, "A")->LayerFile(), TypeParam::Get(*all, "B")->LayerFile());
}

TYPED_TEST(LayerCollectionConformance, CreatesNothingWhenTheFolderCannotBeMade) {
  OpenWorld world;
  world.Remove(this->Folder());
  world.LockFolder(R"(D:\Data)");
  const std::string before = world.SavedText();
  EXPECT_EQ(OutcomeOf([&] { TypeParam::Create(*TypeParam::Of(world), "A"); }),
            FailsToReport(TypeParam::kCreateFailed));
  EXPECT_EQ(world.SavedText(), before);
}

TYPED_TEST(LayerCollectionConformance, NeedsNoHost) {
  World world;
  world.Manager()->SetWorkingDirectory(R"(D:\Data)");
  EXPECT_TRUE(TypeParam::Create(*TypeParam::Of(world), "A"));
  EXPECT_TRUE(TypeParam::Delete(*TypeParam::Of(world), "A"));
}

TYPED_TEST(LayerCollectionConformance, DeletingByNameTouchesNoFile) {
  FamilyWorld<TypeParam> world(std::string("<") + TypeParam::kTag +
                               " NAME='_A_' DIRNAME='Sub\\'/>");
  world.AddFile(this->Path("A.lyr"));
  world.AddFile(this->Path(R"(Sub\A.lyr)"));
  EXPECT_TRUE(TypeParam::Delete(*TypeParam::Of(world), "A"));
  EXPECT_EQ(world.Metadata(), world.Inside(""));
  EXPECT_THAT(world.Tree(this->Folder()), ElementsAre("A.lyr", R"(Sub\)", R"(Sub\A.lyr)"));
}

TEST(DeleteCustLayerByGuidConformance, TouchesNoFile) {
  FamilyWorld<CustLayerFamily> world(R"(<CUSTLAYER NAME="_A_" GUID="{1}" DIRNAME="Sub\"/>)");
  world.AddFile(R"(D:\Data\CustLayers\Sub\A.lyr)");
  world.AddFile(R"(D:\Data\StoreLayers\A.lyr)");
  EXPECT_TRUE(world.Manager()->CustLayerCollection()->DeleteCustLayerByGUID("{1}"));
  EXPECT_EQ(world.Metadata(), world.Inside(""));
  EXPECT_THAT(world.Tree(R"(D:\Data\CustLayers)"), ElementsAre(R"(Sub\)", R"(Sub\A.lyr)"));
  EXPECT_THAT(world.Tree(R"(D:\Data\StoreLayers)"), ElementsAre("A.lyr"));
}

TEST(DeleteStoreLayerByGuidConformance, WithoutDirNameRemovesTheWholeLayersFolder) {
  FamilyWorld<StoreLayerFamily> world("");
  const auto stores = world.Manager()->StoreLayerCollection();
  stores->CreateStoreLayer("A");
  stores->CreateStoreLayer("B");
  world.AddFile(R"(D:\Data\StoreLayers\B.lyr)");
  world.AddFile(R"(D:\Data\StoreLayers\Sub\A.lyr)");
  EXPECT_TRUE(stores->DeleteStoreLayerByGUID(Guid(1)));
  EXPECT_EQ(TextsOf(stores->StoreLayersList()), Texts{"B"});
  EXPECT_FALSE(world.FolderExists(R"(D:\Data\StoreLayers)"));
}

TEST(DeleteStoreLayerByGuidConformance, WithDirNameRemovesThatFolderOnly) {
  FamilyWorld<StoreLayerFamily> world(R"(<STORELAYER NAME="_A_" GUID="{1}" DIRNAME="Sub\"/>)");
  world.AddFile(R"(D:\Data\StoreLayers\B.lyr)");
  world.AddFile(R"(D:\Data\StoreLayers\Sub\A.lyr)");
  EXPECT_TRUE(world.Manager()->StoreLayerCollection()->DeleteStoreLayerByGUID("{1}"));
  EXPECT_THAT(world.Tree(R"(D:\Data\StoreLayers)"), ElementsAre("B.lyr"));
}

TEST(DeleteStoreLayerByGuidConformance, SucceedsWhenTheFolderStays) {
  FamilyWorld<StoreLayerFamily> world(R"(<STORELAYER NAME="_A_" GUID="{1}" DIRNAME="Gone\"/>)"
                                      R"(<STORELAYER NAME="_B_" GUID="{2}"/>)"
                                      R"(<STORELAYER NAME="_C_" GUID="{3}"/>)");
  world.AddFile(R"(D:\Data\StoreLayers\keep.lyr)");
  world.SetReadOnly(R"(D:\Data\StoreLayers\keep.lyr)");
  const auto stores = world.Manager()->StoreLayerCollection();
  EXPECT_TRUE(stores->DeleteStoreLayerByGUID("{1}"));
  EXPECT_TRUE(stores->DeleteStoreLayerByGUID("{2}"));
  EXPECT_THAT(world.Tree(R"(D:\Data\StoreLayers)"), ElementsAre("keep.lyr"));
  world.Remove(R"(D:\Data\StoreLayers)");
  EXPECT_TRUE(stores->DeleteStoreLayerByGUID("{3}"));
  EXPECT_THAT(TextsOf(stores->StoreLayersList()), IsEmpty());
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(DeleteStoreLayerByGuidConformance, NeverLeavesTheLayersFolder) {
  for (const char* folder :
       {R"(..\..\Precious\)", R"(..\)", R"(..\..\)", R"(Sub\..\..\)", "..", R"(\)"}) {
    FamilyWorld<StoreLayerFamily> world(std::string("<STORELAYER GUID='{1}' DIRNAME='") + folder +
                                        "'/>");
    world.AddFile(R"(D:\Precious\a.txt)");
    const auto before = world.Tree(R"(D:\)");
    EXPECT_TRUE(world.Manager()->StoreLayerCollection()->DeleteStoreLayerByGUID("{1}"));
    EXPECT_EQ(world.Tree(R"(D:\)"), before) << folder;
  }
}

}  // namespace
}  // namespace kvdm::conformance
