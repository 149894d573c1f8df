// What the registry of study areas and layers shows and returns when something is missing or fails,
// and the aliases.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "datamanager/area_registry.h"
#include "platform/memory/failing_services.h"
#include "tests/saves.h"
#include "tests/test_world.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr char kCollections[] =
    "<KVDATACOLLECTION><STUDYAREACOLLECTION/><CUSTOMERCOLLECTION/><STORECOLLECTION/>"
    "</KVDATACOLLECTION>";

constexpr char kNoDocumentElement[] = "Couldn't find document Element in the XML";
constexpr char kNoStudyAreas[] = "Couldn't find STUDYAREACOLLECTION Tag in XML";
constexpr char kNoStudyAreasToList[] = "Tag STUDYAREACOLLECTION  was not found in Data.xml";

bool IsEmptyList(const NameListRef& list) { return list && list->Count() == 0; }

using Shown = std::vector<std::string>;

// One operation with its argument, whether its result is the neutral one, and what it shows when
// the collection is missing, when there is no document, and for a key with a double quote.
struct Row {
  const char* name;
  std::function<bool(AreaRegistry&, const char*)> is_neutral;
  Shown without_collection;
  Shown without_document;
  // Nothing for an operation without a key, and for those that go on after their existence test.
  Shown with_quote = {};
};

const std::vector<Row>& Rows() {
  using A = AreaRegistry&;
  using K = const char*;
  static const std::vector<Row> rows = {
      {"StudyAreaNames",
       [](A a, K) { return IsEmptyList(a.StudyAreaNames()); },
       {kNoStudyAreasToList},
       {"Couldn't get Study Areas list"}},
      {"StudyAreaGUIDs",
       [](A a, K) { return IsEmptyList(a.StudyAreaGUIDs()); },
       {kNoStudyAreasToList},
       {"Couldn't get Study Areas list"}},
      {"CreateStudyArea",
       [](A a, K key) { return !a.CreateStudyArea(key); },
       {kNoStudyAreas},
       {kNoDocumentElement, "Couldn't create study area"}},
      {"DeleteStudyArea",
       [](A a, K key) { return !a.DeleteStudyArea(key); },
       {kNoStudyAreas},
       {"Couldn't delete study area"},
       {"Couldn't delete study area"}},
      {"DeleteStudyAreaByGUID",
       [](A a, K key) { return !a.DeleteStudyAreaByGUID(key); },
       {kNoStudyAreas},
       {"Couldn't delete study area"},
       {"Couldn't delete study area"}},
      {"GetStudyArea",
       [](A a, K key) { return !a.GetStudyArea(key); },
       {"Couldn't get Study Area object"},
       {"Couldn't get Study Area object"},
       {"Couldn't get Study Area object"}},
      {"GetStudyAreaByGUID",
       [](A a, K key) { return !a.GetStudyAreaByGUID(key); },
       {"Couldn't get Study Area object"},
       {"Couldn't get Study Area object"},
       {"Couldn't get Study Area object"}},
      {"StudyAreaExists",
       [](A a, K key) { return !a.StudyAreaExists(key); },
       {},
       {kNoDocumentElement},
       {kNoDocumentElement}},
      {"StudyAreaExistsByGUID",
       [](A a, K key) { return !a.StudyAreaExistsByGUID(key); },
       {},
       {kNoDocumentElement},
       {kNoDocumentElement}},
      {"CustLayerNames",
       [](A a, K) { return IsEmptyList(a.CustLayerNames()); },
       {"Couldn't get Customer layers list"},
       {"Couldn't get Customer layers list"}},
      {"CustLayerGUIDs",
       [](A a, K) { return IsEmptyList(a.CustLayerGUIDs()); },
       {"Couldn't get Customer layers list"},
       {"Couldn't get Customer layers list"}},
      {"StoreLayerNames",
       [](A a, K) { return IsEmptyList(a.StoreLayerNames()); },
       {"Couldn't get Store layers list"},
       {"Couldn't get Store layers list"}},
      {"StoreLayerGUIDs",
       [](A a, K) { return IsEmptyList(a.StoreLayerGUIDs()); },
       {"Couldn't get Store layers list"},
       {"Couldn't get Store layers list"}},
      {"RegisterCustLayer",
       [](A a, K key) { return !a.RegisterCustLayer(key); },
       {"Couldn't register Customer layer"},
       {kNoDocumentElement, "Couldn't register Customer layer"}},
      {"RegisterStoreLayer",
       [](A a, K key) { return !a.RegisterStoreLayer(key); },
       {"Couldn't register Store layer"},
       {kNoDocumentElement, "Couldn't register Store layer"}},
      {"UnregisterCustLayer",
       [](A a, K key) { return !a.UnregisterCustLayer(key); },
       {"Couldn't unregister Customer layer"},
       {"Couldn't unregister Customer layer"},
       {"Couldn't unregister Customer layer"}},
      {"UnregisterCustLayerByGUID",
       [](A a, K key) { return !a.UnregisterCustLayerByGUID(key); },
       {"Couldn't unregister Customer layer"},
       {"Couldn't unregister Customer layer"},
       {"Couldn't unregister Customer layer"}},
      {"UnregisterStoreLayer",
       [](A a, K key) { return !a.UnregisterStoreLayer(key); },
       {"Couldn't unregister Store layer"},
       {"Couldn't unregister Store layer"},
       {"Couldn't unregister Store layer"}},
      {"UnregisterStoreLayerByGUID",
       [](A a, K key) { return !a.UnregisterStoreLayerByGUID(key); },
       {"Couldn't unregister Store layer"},
       {"Couldn't unregister Store layer"},
       {"Couldn't unregister Store layer"}},
      {"GetCustLayer",
       [](A a, K key) { return !a.GetCustLayer(key); },
       {"Couldn't get customer layers list"},
       {"Couldn't get customer layers list"},
       {"Couldn't get customer layers list"}},
      {"GetCustLayerByGUID",
       [](A a, K key) { return !a.GetCustLayerByGUID(key); },
       {"Couldn't get customer layers list"},
       {"Couldn't get customer layers list"},
       {"Couldn't get customer layers list"}},
      {"GetStoreLayer",
       [](A a, K key) { return !a.GetStoreLayer(key); },
       {"Couldn't get Store Layer object"},
       {"Couldn't get Store Layer object"},
       {"Couldn't get Store Layer object"}},
      {"GetStoreLayerByGUID",
       [](A a, K key) { return !a.GetStoreLayerByGUID(key); },
       {"Couldn't get Store Layer object"},
       {"Couldn't get Store Layer object"},
       {"Couldn't get Store Layer object"}},
      {"CustLayerExists",
       [](A a, K key) { return !a.CustLayerExists(key); },
       {},
       {kNoDocumentElement},
       {"Error in CustLayerExists"}},
      {"CustLayerExistsByGUID",
       [](A a, K key) { return !a.CustLayerExistsByGUID(key); },
       {},
       {kNoDocumentElement},
       {"Error in CustLayerExistsByGUID"}},
      {"StoreLayerExists",
       [](A a, K key) { return !a.StoreLayerExists(key); },
       {},
       {kNoDocumentElement},
       {"Error in StoreLayerExists"}},
      {"StoreLayerExistsByGUID",
       [](A a, K key) { return !a.StoreLayerExistsByGUID(key); },
       {},
       {kNoDocumentElement},
       {"Error in StoreLayerExistsByGUID"}},
  };
  return rows;
}

TEST(AreaRegistryErrorsTest, AFreshDocumentLacksTheCollections) {
  for (const auto& row : Rows()) {
    SCOPED_TRACE(row.name);
    TestWorld world;
    EXPECT_FALSE(
        Saves(world, [&] { EXPECT_TRUE(row.is_neutral(world.manager->Areas(), "North")); }));
    EXPECT_THAT(world.Messages(), ElementsAreArray(row.without_collection));
    EXPECT_EQ(world.manager->Areas().CustomersDir(), R"(D:\Data\Customers\)");
  }
}

TEST(AreaRegistryErrorsTest, NothingWorksWithoutADocument) {
  for (const auto& row : Rows()) {
    SCOPED_TRACE(row.name);
    TestWorld world;
    world.LoadMetadata("<broken");
    EXPECT_FALSE(
        Saves(world, [&] { EXPECT_TRUE(row.is_neutral(world.manager->Areas(), "North")); }));
    EXPECT_THAT(world.Messages(), ElementsAreArray(row.without_document));
  }
}

TEST(AreaRegistryErrorsTest, OnlyAMissingRootFoundByAnExistenceTestInvalidatesTheMetadata) {
  for (const auto& row : Rows()) {
    SCOPED_TRACE(row.name);
    TestWorld world;
    world.LoadMetadata("<broken");
    EXPECT_TRUE(row.is_neutral(world.manager->Areas(), "North"));
    const bool tested =
        !row.without_document.empty() && row.without_document[0] == kNoDocumentElement;
    EXPECT_EQ(world.manager->Areas().CustomersDir().empty(), tested);
    EXPECT_EQ(world.manager->Areas().StoresDir().empty(), tested);
  }
}

TEST(AreaRegistryErrorsTest, AKeyWithADoubleQuoteFailsInTheQuery) {
  for (const auto& row : Rows()) {
    if (row.with_quote.empty()) continue;
    SCOPED_TRACE(row.name);
    TestWorld world;
    world.LoadMetadata(kCollections);
    EXPECT_TRUE(row.is_neutral(world.manager->Areas(), R"(x" or "1"="1)"));
    EXPECT_THAT(world.Messages(), ElementsAreArray(row.with_quote));
    EXPECT_EQ(world.manager->Areas().CustomersDir(), R"(D:\Data\Customers\)");
  }
}

TEST(AreaRegistryErrorsTest, CreationGoesOnAfterAnExistenceTestThatFailed) {
  TestWorld world;
  world.LoadMetadata(kCollections);
  auto& areas = world.manager->Areas();
  EXPECT_TRUE(areas.CreateStudyArea("a\"b"));
  EXPECT_TRUE(areas.RegisterCustLayer("a\"b"));
  EXPECT_THAT(world.Messages(), ElementsAre(kNoDocumentElement, "Error in CustLayerExists"));
  EXPECT_THAT(Texts(areas.StudyAreaNames()), ElementsAre("a\"b"));
}

TEST(AreaRegistryErrorsTest, TheFoldersStayWhenTheCollectionIsMissing) {
  TestWorld world;
  EXPECT_FALSE(world.manager->Areas().CreateStudyArea("North"));
  EXPECT_TRUE(world.platform.files->FolderExists(R"(D:\Data\Study Area \Layers)"));
  EXPECT_FALSE(world.manager->Areas().CreateStudyArea("North"));
  EXPECT_TRUE(world.platform.files->FolderExists(R"(D:\Data\Study Area 1\Layers)"));
}

TEST(AreaRegistryErrorsTest, AnItemWithoutTheAttributeEmptiesTheList) {
  TestWorld world;
  world.LoadMetadata(R"(<D><STUDYAREACOLLECTION><STUDYAREA NAME="_A_" GUID="1"/><STUDYAREA/>)"
                     R"(</STUDYAREACOLLECTION></D>)");
  EXPECT_THAT(Texts(world.manager->Areas().StudyAreaNames()), IsEmpty());
  EXPECT_THAT(Texts(world.manager->Areas().StudyAreaGUIDs()), IsEmpty());
  EXPECT_THAT(world.Messages(),
              ElementsAre("Couldn't get Study Areas list", "Couldn't get Study Areas list"));
}

TEST(AreaRegistryErrorsTest, DeletingAStudyAreaWithoutDirNameFailsAfterItsRemoval) {
  TestWorld world;
  world.LoadMetadata(
      R"(<D><STUDYAREACOLLECTION><STUDYAREA NAME="_N_"/></STUDYAREACOLLECTION></D>)");
  EXPECT_FALSE(Saves(world, [&] { EXPECT_FALSE(world.manager->Areas().DeleteStudyArea("N")); }));
  EXPECT_FALSE(world.manager->Areas().StudyAreaExists("N"));
  EXPECT_THAT(world.Messages(), ElementsAre("Couldn't delete study area"));
}

TEST(AreaRegistryErrorsTest, RegistersNothingBeforeAWorkingDirectoryWasSet) {
  TestWorld world;
  world.manager = std::make_shared<KVDataManager>(world.platform.Bundle());
  world.LoadMetadata(kCollections);
  auto& areas = world.manager->Areas();
  EXPECT_EQ(areas.CustomersDir(), "");
  EXPECT_EQ(areas.StoresDir(), "");
  EXPECT_FALSE(areas.RegisterCustLayer("A"));
  EXPECT_FALSE(areas.RegisterStoreLayer("A"));
  EXPECT_THAT(Texts(areas.CustLayerNames()), IsEmpty());
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(AreaRegistryErrorsTest, AFolderThatCannotBeMadeLeavesNoStudyArea) {
  TestWorld world;
  world.LoadMetadata(kCollections);
  world.platform.files->RefuseWrites(R"(D:\Data)");
  EXPECT_FALSE(world.manager->Areas().CreateStudyArea("North"));
  EXPECT_THAT(world.Messages(), ElementsAre("Couldn't create study area"));
  EXPECT_FALSE(world.manager->Areas().StudyAreaExists("North"));
}

// Finds every name taken.
class CrowdedFileSystem : public FailingFileSystem {
 public:
  explicit CrowdedFileSystem(std::shared_ptr<FileSystem> files)
      : FailingFileSystem(std::move(files), std::make_shared<FailureCounter>()) {}
  bool FolderExists(std::string_view) override { return true; }
  std::vector<std::string> FindFiles(std::string_view) override { return {"taken"}; }
};

TEST(AreaRegistryErrorsTest, ReportsThatNoNameIsFree) {
  TestWorld world;
  auto services = world.platform.Bundle();
  services.files = std::make_shared<CrowdedFileSystem>(services.files);
  world.manager = std::make_shared<KVDataManager>(services);
  world.manager->DMInitialize(world.host);
  world.LoadMetadata(kCollections);
  auto& areas = world.manager->Areas();
  EXPECT_FALSE(areas.CreateStudyArea("North"));
  EXPECT_FALSE(areas.RegisterCustLayer("A"));
  EXPECT_FALSE(areas.RegisterStoreLayer("A"));
  EXPECT_THAT(world.Messages(),
              ElementsAre("Couldn't generate new Dir NAme", "Couldn't create study area",
                          "Couldn't register Customer layer", "Couldn't register Store layer"));
  EXPECT_THAT(world.Metadata(), Not(HasSubstr("LAYER ")));
}

// Aliases.

void PutAlias(TestWorld& world, const char* name, RegistryType type, std::string_view bytes) {
  world.platform.registry->Put(RegistryRoot::kLocalMachine, "Software\\Velk\\Kelvaro", name, type,
                               bytes);
}

TEST(AreaRegistryAliasTest, ReadsTheAliasesFromTheRegistry) {
  TestWorld world;
  PutAlias(world, "Customer Alias", RegistryType::kText, "Client");
  PutAlias(world, "Store Alias", RegistryType::kText, "Outlet");
  EXPECT_EQ(world.manager->Areas().CustomerAlias(), "Client");
  EXPECT_EQ(world.manager->Areas().StoreAlias(), "Outlet");
}

TEST(AreaRegistryAliasTest, HasDefaultsForMissingEmptyAndOtherValues) {
  TestWorld world;
  auto& areas = world.manager->Areas();
  EXPECT_EQ(areas.CustomerAlias(), "Customer");
  EXPECT_EQ(areas.StoreAlias(), "Store");
  PutAlias(world, "Customer Alias", RegistryType::kText, "");
  PutAlias(world, "Store Alias", RegistryType::kNumber, "1234");
  EXPECT_EQ(areas.CustomerAlias(), "Customer");
  EXPECT_EQ(areas.StoreAlias(), "Store");
}

TEST(AreaRegistryAliasTest, WritesTheAliases) {
  TestWorld world;
  auto& areas = world.manager->Areas();
  areas.SetCustomerAlias("Client");
  areas.SetStoreAlias("Outlet");
  EXPECT_EQ(areas.CustomerAlias(), "Client");
  EXPECT_EQ(areas.StoreAlias(), "Outlet");
  areas.SetCustomerAlias("");
  EXPECT_EQ(areas.CustomerAlias(), "Customer");
}

TEST(AreaRegistryAliasTest, ARefusedWriteIsNotDetected) {
  TestWorld world;
  world.platform.registry->SetWritable(false);
  world.manager->Areas().SetStoreAlias("Outlet");
  EXPECT_EQ(world.manager->Areas().StoreAlias(), "Store");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

// Fails in every call.
class BrokenRegistry : public MemoryRegistry {
 public:
  std::optional<RegistryValue> Read(RegistryRoot, std::string_view, std::string_view) override {
    throw RuntimeError(kPermissionDenied);
  }
  bool WriteText(RegistryRoot, std::string_view, std::string_view, std::string_view) override {
    throw RuntimeError(kPermissionDenied);
  }
};

TEST(AreaRegistryAliasTest, ABrokenRegistryYieldsDefaultsAndAMessageOnWriting) {
  TestWorld world;
  auto services = world.platform.Bundle();
  services.registry = std::make_shared<BrokenRegistry>();
  world.manager = std::make_shared<KVDataManager>(services);
  world.platform.box->Clear();
  auto& areas = world.manager->Areas();
  EXPECT_EQ(areas.CustomerAlias(), "Customer");
  EXPECT_EQ(areas.StoreAlias(), "Store");
  EXPECT_THAT(world.Messages(), IsEmpty());
  areas.SetCustomerAlias("Client");
  areas.SetStoreAlias("Outlet");
  EXPECT_THAT(world.Messages(),
              ElementsAre("Failed to write registry key", "Failed to write registry key"));
}

}  // namespace
}  // namespace kvdm
