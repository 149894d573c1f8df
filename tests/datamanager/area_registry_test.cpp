#include "datamanager/area_registry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/saves.h"
#include "tests/test_world.h"

namespace kvdm {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr char kCollections[] =
    "<KVDATACOLLECTION><STUDYAREACOLLECTION/><CUSTOMERCOLLECTION/><STORECOLLECTION/>"
    "</KVDATACOLLECTION>";

constexpr char kFirstGuid[] = "{00000000-0000-4000-8000-000000000001}";

// A world whose metadata has the three collections, all empty.
class AreaRegistryTest : public ::testing::Test {
 protected:
  AreaRegistryTest() { world.LoadMetadata(kCollections); }

  // Makes `xml` the content of the collection `tag`.
  void Fill(const std::string& tag, const std::string& xml) {
    world.LoadMetadata("<KVDATACOLLECTION><" + tag + ">" + xml + "</" + tag +
                       "></KVDATACOLLECTION>");
  }

  TestWorld world;
  AreaRegistry& areas = world.manager->Areas();
};

// Study areas.

TEST_F(AreaRegistryTest, CreatesAStudyAreaWithAttributesAndChildrenInOrder) {
  EXPECT_TRUE(areas.CreateStudyArea("North"));
  EXPECT_THAT(world.Metadata(),
              HasSubstr(R"(<STUDYAREACOLLECTION><STUDYAREA NAME="_North_")"
                        R"( GUID="{00000000-0000-4000-8000-000000000001}" DIRNAME="Study Area ")"
                        R"( SHAPEFILE="Study Area.shp"><ANALYSISCOLLECTION/><LAYERCOLLECTION/>)"
                        R"(<SADATACOLLECTION/><SAPROPERTIES/></STUDYAREA></STUDYAREACOLLECTION>)"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST_F(AreaRegistryTest, CreatesTheFoldersOfAStudyArea) {
  areas.CreateStudyArea("North");
  EXPECT_THAT(world.platform.files->Tree(R"(D:\Data\Study Area )"),
              ElementsAre(R"(Analyses\)", R"(Data\)", R"(Layers\)", R"(Tables\)"));
}

TEST_F(AreaRegistryTest, NumbersTheFoldersOfFurtherStudyAreas) {
  areas.CreateStudyArea("North");
  areas.CreateStudyArea("South");
  areas.CreateStudyArea("West");
  EXPECT_EQ(areas.GetStudyArea("South")->StudyAreaDir(), "Study Area 1");
  EXPECT_EQ(areas.GetStudyArea("West")->StudyAreaDir(), "Study Area 2");
  EXPECT_TRUE(world.platform.files->FolderExists(R"(D:\Data\Study Area 2\Tables)"));
}

TEST_F(AreaRegistryTest, CreatingTheSameStudyAreaTwiceCreatesNoFurtherFolder) {
  EXPECT_TRUE(areas.CreateStudyArea("North"));
  const auto tree = world.platform.files->Tree("D:\\");
  EXPECT_FALSE(areas.CreateStudyArea("North"));
  EXPECT_EQ(world.platform.files->Tree("D:\\"), tree);
  EXPECT_THAT(Texts(areas.StudyAreaNames()), ElementsAre("North"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST_F(AreaRegistryTest, SavesAStudyAreaThatWasCreated) {
  EXPECT_TRUE(Saves(world, [&] { areas.CreateStudyArea("North"); }));
  EXPECT_FALSE(Saves(world, [&] { areas.CreateStudyArea("North"); }));
}

TEST_F(AreaRegistryTest, ListsStudyAreasInDocumentOrder) {
  Fill("STUDYAREACOLLECTION",
       R"(<STUDYAREA NAME="_B_" GUID="_2_"/><!-- --><OTHER NAME="_X_" GUID="x"/>text)"
       R"(<STUDYAREA NAME="_A_" GUID="1"/><STUDYAREA NAME="_" GUID="3"/>)");
  EXPECT_THAT(Texts(areas.StudyAreaNames()), ElementsAre("B", "A", "_"));
  EXPECT_THAT(Texts(areas.StudyAreaGUIDs()), ElementsAre("_2_", "1", "3"));
}

TEST_F(AreaRegistryTest, LeavesTheDefaultStudyAreaOutOfTheNamesOnly) {
  Fill("STUDYAREACOLLECTION",
       R"(<STUDYAREA NAME="_Default_" GUID="1"/><STUDYAREA NAME="_default_" GUID="2"/>)");
  EXPECT_THAT(Texts(areas.StudyAreaNames()), ElementsAre("default"));
  EXPECT_THAT(Texts(areas.StudyAreaGUIDs()), ElementsAre("1", "2"));
  EXPECT_TRUE(areas.StudyAreaExists("Default"));
}

TEST_F(AreaRegistryTest, FindsStudyAreasByNameAndIdentifier) {
  areas.CreateStudyArea("North");
  EXPECT_TRUE(areas.StudyAreaExists("North"));
  EXPECT_FALSE(areas.StudyAreaExists("north"));
  EXPECT_FALSE(areas.StudyAreaExists("_North_"));
  EXPECT_TRUE(areas.StudyAreaExistsByGUID(kFirstGuid));
  EXPECT_FALSE(areas.StudyAreaExistsByGUID("North"));
}

TEST_F(AreaRegistryTest, HandsOutBoundStudyAreas) {
  areas.CreateStudyArea("North");
  EXPECT_EQ(areas.GetStudyArea("North")->GUID(), kFirstGuid);
  const auto north = areas.GetStudyAreaByGUID(kFirstGuid);
  EXPECT_EQ(north->Name(), "North");
  EXPECT_TRUE(Saves(world, [&] { north->SetComments("cold"); }));
  EXPECT_THAT(world.Metadata(), HasSubstr("<COMMENTS>cold</COMMENTS></STUDYAREA>"));
}

TEST_F(AreaRegistryTest, AStudyAreaThatIsNotThereIsNothing) {
  EXPECT_EQ(areas.GetStudyArea("North"), nullptr);
  EXPECT_EQ(areas.GetStudyAreaByGUID(kFirstGuid), nullptr);
  EXPECT_FALSE(areas.DeleteStudyArea("North"));
  EXPECT_FALSE(areas.DeleteStudyAreaByGUID(kFirstGuid));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST_F(AreaRegistryTest, DeletesAStudyAreaWithItsFolder) {
  for (const bool by_guid : {false, true}) {
    Fill("STUDYAREACOLLECTION", R"(<STUDYAREA NAME="_N_" GUID="1" DIRNAME="North"/>)");
    world.platform.files->AddFile(R"(D:\Data\North\a.shp)");
    EXPECT_TRUE(Saves(world, [&] {
      EXPECT_TRUE(by_guid ? areas.DeleteStudyAreaByGUID("1") : areas.DeleteStudyArea("N"));
    }));
    EXPECT_FALSE(areas.StudyAreaExists("N"));
    EXPECT_FALSE(world.platform.files->FolderExists(R"(D:\Data\North)"));
  }
}

TEST_F(AreaRegistryTest, DeletingLeavesAFolderThatHoldsFolders) {
  areas.CreateStudyArea("North");
  world.platform.files->AddFile(R"(D:\Data\Study Area \a.shp)");
  EXPECT_TRUE(Saves(world, [&] { EXPECT_TRUE(areas.DeleteStudyArea("North")); }));
  EXPECT_FALSE(areas.StudyAreaExists("North"));
  EXPECT_THAT(world.platform.files->Tree(R"(D:\Data\Study Area )"),
              ElementsAre(R"(Analyses\)", R"(Data\)", R"(Layers\)", R"(Tables\)"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST_F(AreaRegistryTest, DeletingSavesEvenWhenTheFolderIsMissing) {
  Fill("STUDYAREACOLLECTION", R"(<STUDYAREA NAME="_N_" GUID="1" DIRNAME="Gone"/>)");
  EXPECT_TRUE(Saves(world, [&] { EXPECT_TRUE(areas.DeleteStudyArea("N")); }));
  EXPECT_THAT(Texts(areas.StudyAreaNames()), IsEmpty());
}

TEST_F(AreaRegistryTest, DeletingTouchesNothingWithoutAWorkingDirectory) {
  world.manager = std::make_shared<KVDataManager>(world.platform.Bundle());
  Fill("STUDYAREACOLLECTION", R"(<STUDYAREA NAME="_N_" GUID="1" DIRNAME="Home"/>)");
  world.platform.files->AddFile(R"(C:\Home\a.txt)");
  EXPECT_TRUE(world.manager->Areas().DeleteStudyArea("N"));
  EXPECT_THAT(world.platform.files->Tree(R"(C:\Home)"), ElementsAre("a.txt"));
}

TEST_F(AreaRegistryTest, DeletingTouchesNothingForADirNameThatNamesNoFolderOfItsOwn) {
  for (const char* dir_name : {"", " ", ".", "..", "..\\", "..\\Other", "\\", "North\\.."}) {
    SCOPED_TRACE(dir_name);
    Fill("STUDYAREACOLLECTION",
         R"(<STUDYAREA NAME="_N_" GUID="1" DIRNAME=")" + std::string(dir_name) + R"("/>)");
    world.platform.files->AddFile(R"(D:\Data\a.txt)");
    world.platform.files->AddFile(R"(D:\Other\b.txt)");
    const auto tree = world.platform.files->Tree("D:\\");
    EXPECT_TRUE(areas.DeleteStudyArea("N"));
    EXPECT_EQ(world.platform.files->Tree("D:\\"), tree);
  }
}

// Customer and store layers.

TEST_F(AreaRegistryTest, RegistersACustomerLayerWithAttributesInOrderAndALinkField) {
  EXPECT_TRUE(areas.RegisterCustLayer("Shops"));
  EXPECT_THAT(world.Metadata(),
              HasSubstr(R"(<CUSTOMERCOLLECTION><CUSTLAYER NAME="_Shops_")"
                        R"( GUID="{00000000-0000-4000-8000-000000000001}" SHAPEFILE="Cust.shp")"
                        R"( PATHTYPE="RELATIVE" ISINTERNAL="TRUE")"
                        R"( CREATIONTIME="11/15/2026 7:35:30 AM"><LINKFIELD/></CUSTLAYER>)"
                        R"(</CUSTOMERCOLLECTION>)"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST_F(AreaRegistryTest, RegistersAStoreLayerWithoutALinkField) {
  EXPECT_TRUE(areas.RegisterStoreLayer("Shops"));
  EXPECT_THAT(world.Metadata(),
              HasSubstr(R"(<STORECOLLECTION><STORELAYER NAME="_Shops_")"
                        R"( GUID="{00000000-0000-4000-8000-000000000001}" SHAPEFILE="Store.shp")"
                        R"( PATHTYPE="RELATIVE" ISINTERNAL="TRUE")"
                        R"( CREATIONTIME="11/15/2026 7:35:30 AM"/></STORECOLLECTION>)"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST_F(AreaRegistryTest, ReservesAFileNameThatNoFileHas) {
  world.platform.files->AddFile(R"(D:\Data\Customers\Cust.shp)");
  world.platform.files->AddFile(R"(D:\Data\Stores\Store.dbf)");
  world.platform.files->AddFile(R"(D:\Data\Stores\Store1.shp)");
  areas.RegisterCustLayer("A");
  areas.RegisterStoreLayer("B");
  EXPECT_THAT(world.Metadata(), HasSubstr(R"(SHAPEFILE="Cust1.shp")"));
  EXPECT_THAT(world.Metadata(), HasSubstr(R"(SHAPEFILE="Store2.shp")"));
}

TEST_F(AreaRegistryTest, TwoLayersWithoutFilesShareAFileName) {
  areas.RegisterCustLayer("A");
  areas.RegisterCustLayer("B");
  EXPECT_THAT(world.Metadata(), Not(HasSubstr("Cust1.shp")));
}

TEST_F(AreaRegistryTest, RegistersANameOnlyOnceForEachKind) {
  EXPECT_TRUE(areas.RegisterCustLayer("A"));
  EXPECT_FALSE(areas.RegisterCustLayer("A"));
  EXPECT_TRUE(areas.RegisterStoreLayer("A"));
  EXPECT_FALSE(areas.RegisterStoreLayer("A"));
  EXPECT_THAT(Texts(areas.CustLayerNames()), ElementsAre("A"));
  EXPECT_THAT(Texts(areas.StoreLayerNames()), ElementsAre("A"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST_F(AreaRegistryTest, RegisteringAndUnregisteringSave) {
  EXPECT_TRUE(Saves(world, [&] { areas.RegisterCustLayer("A"); }));
  EXPECT_TRUE(Saves(world, [&] { areas.RegisterStoreLayer("A"); }));
  EXPECT_FALSE(Saves(world, [&] { areas.RegisterCustLayer("A"); }));
  EXPECT_TRUE(Saves(world, [&] { areas.UnregisterCustLayer("A"); }));
  EXPECT_TRUE(Saves(world, [&] { areas.UnregisterStoreLayer("A"); }));
}

TEST_F(AreaRegistryTest, NoFolderIsMadeForLayers) {
  areas.RegisterCustLayer("A");
  areas.RegisterStoreLayer("A");
  EXPECT_EQ(areas.CustomersDir(), R"(D:\Data\Customers\)");
  EXPECT_EQ(areas.StoresDir(), R"(D:\Data\Stores\)");
  EXPECT_THAT(world.platform.files->Tree(R"(D:\Data)"), Not(Contains(R"(Customers\)")));
  EXPECT_THAT(world.platform.files->Tree(R"(D:\Data)"), Not(Contains(R"(Stores\)")));
}

TEST_F(AreaRegistryTest, ListsLayersInDocumentOrder) {
  Fill("CUSTOMERCOLLECTION",
       R"(<CUSTLAYER NAME="_B_" GUID="2"/><STORELAYER NAME="_X_"/>)"
       R"(<CUSTLAYER NAME="_Default_" GUID="1"/><CUSTLAYER NAME="__" GUID="_3_"/>)");
  EXPECT_THAT(Texts(areas.CustLayerNames()), ElementsAre("B", "Default", ""));
  EXPECT_THAT(Texts(areas.CustLayerGUIDs()), ElementsAre("2", "1", "_3_"));
  Fill("STORECOLLECTION", R"(<STORELAYER NAME="_B_" GUID="2"/><STORELAYER NAME="A" GUID="1"/>)");
  EXPECT_THAT(Texts(areas.StoreLayerNames()), ElementsAre("B", "A"));
  EXPECT_THAT(Texts(areas.StoreLayerGUIDs()), ElementsAre("2", "1"));
}

TEST_F(AreaRegistryTest, HandsOutBoundLayers) {
  areas.RegisterCustLayer("A");
  areas.RegisterStoreLayer("B");
  const auto customers = areas.GetCustLayerByGUID(areas.GetCustLayer("A")->GUID());
  const auto stores = areas.GetStoreLayerByGUID(areas.GetStoreLayer("B")->GUID());
  EXPECT_EQ(customers->Name(), "A");
  EXPECT_EQ(stores->Name(), "B");
  EXPECT_TRUE(Saves(world, [&] { customers->SetNameField("F"); }));
  EXPECT_TRUE(Saves(world, [&] { stores->SetNameField("F"); }));
  EXPECT_EQ(areas.GetCustLayer("B"), nullptr);
  EXPECT_EQ(areas.GetStoreLayer("A"), nullptr);
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST_F(AreaRegistryTest, FindsLayersByNameAndIdentifier) {
  areas.RegisterCustLayer("A");
  areas.RegisterStoreLayer("B");
  EXPECT_TRUE(areas.CustLayerExists("A"));
  EXPECT_FALSE(areas.CustLayerExists("B"));
  EXPECT_TRUE(areas.StoreLayerExists("B"));
  EXPECT_FALSE(areas.StoreLayerExists("A"));
  EXPECT_TRUE(areas.CustLayerExistsByGUID(kFirstGuid));
  EXPECT_FALSE(areas.StoreLayerExistsByGUID(kFirstGuid));
}

TEST_F(AreaRegistryTest, UnregistersByNameAndIdentifierAndLeavesTheFiles) {
  Fill("CUSTOMERCOLLECTION", R"(<CUSTLAYER NAME="_A_" GUID="1"/><CUSTLAYER NAME="_B_" GUID="2"/>)");
  world.platform.files->AddFile(R"(D:\Data\Customers\Cust.shp)");
  EXPECT_TRUE(areas.UnregisterCustLayer("A"));
  EXPECT_TRUE(areas.UnregisterCustLayerByGUID("2"));
  EXPECT_THAT(Texts(areas.CustLayerNames()), IsEmpty());
  Fill("STORECOLLECTION", R"(<STORELAYER NAME="_A_" GUID="1"/><STORELAYER NAME="_B_" GUID="2"/>)");
  EXPECT_TRUE(areas.UnregisterStoreLayer("A"));
  EXPECT_TRUE(areas.UnregisterStoreLayerByGUID("2"));
  EXPECT_THAT(Texts(areas.StoreLayerNames()), IsEmpty());
  EXPECT_TRUE(world.platform.files->ReadFile(R"(D:\Data\Customers\Cust.shp)"));
}

TEST_F(AreaRegistryTest, UnregisteringWhatIsNotThereIsTrue) {
  EXPECT_TRUE(areas.UnregisterCustLayer("A"));
  EXPECT_TRUE(areas.UnregisterStoreLayerByGUID("1"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST_F(AreaRegistryTest, ADocumentWithItsItemsIsReadBackByLoad) {
  areas.CreateStudyArea("North");
  areas.RegisterCustLayer("Kunden");
  areas.RegisterStoreLayer("店");
  const auto saved = world.Metadata();
  world.Restart();
  world.LoadMetadata(saved);
  auto& again = world.manager->Areas();
  EXPECT_THAT(Texts(again.StudyAreaNames()), ElementsAre("North"));
  EXPECT_THAT(Texts(again.CustLayerNames()), ElementsAre("Kunden"));
  EXPECT_THAT(Texts(again.StoreLayerNames()), ElementsAre("店"));
  EXPECT_FALSE(again.CreateStudyArea("North"));
  EXPECT_EQ(world.Metadata(), saved);
}

TEST_F(AreaRegistryTest, IsApartFromTheCollectionsOfTheAccessors) {
  areas.CreateStudyArea("North");
  areas.RegisterCustLayer("A");
  areas.RegisterStoreLayer("A");
  EXPECT_FALSE(world.manager->StudyAreaCollection()->StudyAreaExists("North"));
  EXPECT_FALSE(world.manager->CustLayerCollection()->CustLayerExists("A"));
  EXPECT_FALSE(world.manager->StoreLayerCollection()->StoreLayerExists("A"));
}

}  // namespace
}  // namespace kvdm
