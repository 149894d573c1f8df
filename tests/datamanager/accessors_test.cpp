// The collections and managers that the data manager hands out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/failing_services.h"
#include "tests/test_world.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Accessor {
  std::string tag;
  std::string failure;
  std::shared_ptr<Unknown> (*call)(KVDataManager&);
};

const Accessor kAccessors[] = {
    {"ANALYSISCOLLECTION", "Cannot get analysis collection from metadata",
     [](KVDataManager& manager) -> std::shared_ptr<Unknown> {
       return manager.AnalysisCollection();
     }},
    {"STORELAYERCOLLECTION", "Cannot get Store Layer Collection from metadata",
     [](KVDataManager& manager) -> std::shared_ptr<Unknown> {
       return manager.StoreLayerCollection();
     }},
    {"CUSTLAYERCOLLECTION", "Cannot get Cust Layer Collection from metadata",
     [](KVDataManager& manager) -> std::shared_ptr<Unknown> {
       return manager.CustLayerCollection();
     }},
    {"DATACOLLECTION", "Cannot get Data Collection from metadata",
     [](KVDataManager& manager) -> std::shared_ptr<Unknown> { return manager.DataCollection(); }},
};

constexpr char kNoCollections[] = "<KVDATACOLLECTION><OTHER/></KVDATACOLLECTION>";

TEST(AccessorsTest, AMissingCollectionElementIsAppendedToTheRoot) {
  TestWorld world;
  for (const auto& accessor : kAccessors) {
    world.LoadMetadata(kNoCollections);
    EXPECT_TRUE(accessor.call(*world.manager));
    EXPECT_EQ(world.Metadata(),
              "<KVDATACOLLECTION><OTHER/><" + accessor.tag + "/></KVDATACOLLECTION>\r\n");
  }
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(AccessorsTest, AnExistingCollectionElementIsNotDoubled) {
  TestWorld world;
  const auto before = world.Metadata();
  for (const auto& accessor : kAccessors) EXPECT_TRUE(accessor.call(*world.manager));
  EXPECT_EQ(world.Metadata(), before);
}

TEST(AccessorsTest, EveryCallMakesANewObject) {
  TestWorld world;
  for (const auto& accessor : kAccessors) {
    EXPECT_NE(accessor.call(*world.manager), accessor.call(*world.manager)) << accessor.tag;
  }
  EXPECT_NE(world.manager->StudyAreaCollection(), world.manager->StudyAreaCollection());
  EXPECT_NE(world.manager->TablesManager(), world.manager->TablesManager());
}

TEST(AccessorsTest, TwoCollectionsShareOneElement) {
  TestWorld world;
  const auto one = world.manager->CustLayerCollection();
  const auto other = world.manager->CustLayerCollection();
  ASSERT_TRUE(one->CreateCustLayer("Shops"));
  EXPECT_TRUE(other->CustLayerExists("Shops"));
}

TEST(AccessorsTest, TheFirstOfTwoCollectionElementsIsBound) {
  TestWorld world;
  world.LoadMetadata(
      R"(<KVDATACOLLECTION><CUSTLAYERCOLLECTION/><CUSTLAYERCOLLECTION><CUSTLAYER NAME="_b_"/>)"
      R"(</CUSTLAYERCOLLECTION></KVDATACOLLECTION>)");
  EXPECT_THAT(Texts(world.manager->CustLayerCollection()->CustLayersList()), IsEmpty());
}

TEST(AccessorsTest, OnlyAChildOfTheRootCounts) {
  TestWorld world;
  world.LoadMetadata("<KVDATACOLLECTION><OTHER><DATACOLLECTION/></OTHER></KVDATACOLLECTION>");
  EXPECT_TRUE(world.manager->DataCollection());
  EXPECT_EQ(world.Metadata(),
            "<KVDATACOLLECTION><OTHER><DATACOLLECTION/></OTHER><DATACOLLECTION/>"
            "</KVDATACOLLECTION>\r\n");
}

TEST(AccessorsTest, WithoutMetadataEachShowsItsMessageAndIsNothing) {
  TestWorld world;
  world.LoadMetadata("not well-formed");
  for (const auto& accessor : kAccessors) {
    world.platform.box->Clear();
    EXPECT_EQ(accessor.call(*world.manager), nullptr);
    EXPECT_THAT(world.platform.box->Messages(),
                ElementsAre(ShownMessage{accessor.failure, "Kelvaro", MessageStyle::kExclamation}));
  }
}

TEST(AccessorsTest, WithoutMetadataStudyAreasAndTablesAreThere) {
  TestWorld world;
  world.LoadMetadata("not well-formed");
  EXPECT_TRUE(world.manager->StudyAreaCollection()->CreateStudyArea("North"));
  EXPECT_EQ(world.manager->TablesManager()->TablesDir(), R"(D:\Data\Tables)");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(AccessorsTest, StudyAreasComeFromTheCatalogueNotFromTheMetadata) {
  TestWorld world;
  world.LoadCatalogue(R"(<STUDYAREACOLLECTION><STUDYAREA NAME="_North_"/></STUDYAREACOLLECTION>)");
  world.LoadMetadata(R"(<KVDATACOLLECTION><STUDYAREACOLLECTION><STUDYAREA NAME="_South_"/>)"
                     R"(</STUDYAREACOLLECTION></KVDATACOLLECTION>)");
  EXPECT_THAT(Texts(world.manager->StudyAreaCollection()->StudyAreasList()), ElementsAre("North"));
}

TEST(AccessorsTest, TheRootOfTheCatalogueIsNotChecked) {
  TestWorld world;
  world.LoadCatalogue(R"(<ANYTHING><STUDYAREA NAME="_North_"/></ANYTHING>)");
  EXPECT_THAT(Texts(world.manager->StudyAreaCollection()->StudyAreasList()), ElementsAre("North"));
}

TEST(AccessorsTest, TheDatasetManagerIsAlwaysTheSame) {
  TestWorld world;
  EXPECT_TRUE(world.manager->GetDatasetManager());
  EXPECT_EQ(world.manager->GetDatasetManager(), world.manager->GetDatasetManager());
}

TEST(AccessorsTest, SaveNothing) {
  TestWorld world;
  world.LoadMetadata(kNoCollections);
  for (const auto& accessor : kAccessors) EXPECT_TRUE(accessor.call(*world.manager));
  EXPECT_TRUE(world.manager->StudyAreaCollection());
  EXPECT_TRUE(world.manager->TablesManager());
  EXPECT_EQ(world.StoredCatalogue(), "");
}

TEST(DataManagerErrorsTest, AMessageIsShownUnchangedAsAnExclamation) {
  TestWorld world;
  for (const std::string text : {"", "Жар & \"北\"\r\n", "x"}) {
    world.platform.box->Clear();
    world.manager->KVDMHandleError(text);
    EXPECT_THAT(world.platform.box->Messages(),
                ElementsAre(ShownMessage{text, "Kelvaro", MessageStyle::kExclamation}));
  }
}

TEST(DataManagerErrorsTest, ABoxThatCanNotBeShownIsNobodysError) {
  const MemoryPlatform platform;
  auto services = platform.Bundle();
  services.message_box =
      std::make_shared<FailingMessageBox>(platform.box, std::make_shared<FailureCounter>(0, 1));
  KVDataManager manager(services);
  EXPECT_NO_THROW(manager.KVDMHandleError("x"));
  EXPECT_THAT(platform.box->Messages(), IsEmpty());
}

// Calls every operation of the data manager once.
void UseAll(KVDataManager& manager) {
  manager.SetWorkingDirectory(R"(D:\New)");
  static_cast<void>(manager.WorkingDirectory());
  static_cast<void>(manager.TmpFilePath());
  manager.CleanTemp();
  for (const auto& accessor : kAccessors) static_cast<void>(accessor.call(manager));
  static_cast<void>(manager.StudyAreaCollection());
  static_cast<void>(manager.TablesManager());
  static_cast<void>(manager.PDataList());
  static_cast<void>(manager.GetPDataFile("\""));
  static_cast<void>(manager.GenerateFolderName("", "CustLayers"));
  static_cast<void>(manager.ID());
  const auto stream = std::make_shared<VariantList>();
  manager.Save(stream);
  manager.Load(stream);
  manager.Flush();
}

TEST(DataManagerErrorsTest, WhicheverCallFailsNoErrorReachesTheCaller) {
  const auto counter = std::make_shared<FailureCounter>();
  int call = 0;
  do {
    const MemoryPlatform platform;
    platform.files->AddFile(R"(D:\New\KelvaroTemp\sub\tmp.shp)");
    const auto manager = std::make_shared<KVDataManager>(Failing(platform.Bundle(), counter));
    *counter = {0, ++call};
    EXPECT_NO_THROW(UseAll(*manager)) << "call " << call;
  } while (counter->calls >= call);
  EXPECT_GT(call, 20);
}

}  // namespace
}  // namespace kvdm
