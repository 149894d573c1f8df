// What the store and the customer layer collection have in common, and where they differ.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "collections/kv_layer_collections.h"
#include "platform/memory/failing_services.h"
#include "tests/saves.h"
#include "tests/test_world.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// The two collections under one set of operation names.
struct StoreLayers {
  using Collection = KVStoreLayerCollection;
  static constexpr char kCollectionTag[] = "STORELAYERCOLLECTION";
  static constexpr char kTag[] = "STORELAYER";
  static constexpr char kFolder[] = R"(D:\Data\StoreLayers)";
  static constexpr char kListFailed[] = "Couldn't get StoreLayers list for the study area";
  static constexpr char kCreateFailed[] = "Kelvaro Data Manager: Couldn't create StoreLayer";
  static constexpr char kDeleteFailed[] = "Couldn't delete StoreLayer";
  static constexpr char kGetFailed[] = "Kelvaro Data Manager: Couldn't get StoreLayer Object";

  static auto Of(TestWorld& world) { return world.manager->StoreLayerCollection(); }
  static auto Names(IKVStoreLayerCollection& c) { return c.StoreLayersList(); }
  static auto GUIDs(IKVStoreLayerCollection& c) { return c.StoreLayersGUIDsList(); }
  static bool Create(IKVStoreLayerCollection& c, const char* n) { return c.CreateStoreLayer(n); }
  static bool Delete(IKVStoreLayerCollection& c, const char* n) { return c.DeleteStoreLayer(n); }
  static bool DeleteByGUID(IKVStoreLayerCollection& c, const char* g) {
    return c.DeleteStoreLayerByGUID(g);
  }
  static auto Get(IKVStoreLayerCollection& c, const char* n) { return c.GetStoreLayer(n); }
  static auto GetByGUID(IKVStoreLayerCollection& c, const char* g) {
    return c.GetStoreLayerByGUID(g);
  }
  static bool Exists(IKVStoreLayerCollection& c, const char* n) { return c.StoreLayerExists(n); }
  static bool ExistsByGUID(IKVStoreLayerCollection& c, const char* g) {
    return c.StoreLayerExistsByGUID(g);
  }
  static std::string Dir(IKVStoreLayerCollection& c) { return c.StoreLayersDir(); }
};

struct CustLayers {
  using Collection = KVCustLayerCollection;
  static constexpr char kCollectionTag[] = "CUSTLAYERCOLLECTION";
  static constexpr char kTag[] = "CUSTLAYER";
  static constexpr char kFolder[] = R"(D:\Data\CustLayers)";
  static constexpr char kListFailed[] = "Couldn't get CustLayers list for the study area";
  static constexpr char kCreateFailed[] = "Kelvaro Data Manager: Couldn't create CustLayer";
  static constexpr char kDeleteFailed[] = "Couldn't delete CustLayer";
  static constexpr char kGetFailed[] = "Kelvaro Data Manager: Couldn't get CustLayer Object";

  static auto Of(TestWorld& world) { return world.manager->CustLayerCollection(); }
  static auto Names(IKVCustLayerCollection& c) { return c.CustLayersList(); }
  static auto GUIDs(IKVCustLayerCollection& c) { return c.CustLayersGUIDsList(); }
  static bool Create(IKVCustLayerCollection& c, const char* n) { return c.CreateCustLayer(n); }
  static bool Delete(IKVCustLayerCollection& c, const char* n) { return c.DeleteCustLayer(n); }
  static bool DeleteByGUID(IKVCustLayerCollection& c, const char* g) {
    return c.DeleteCustLayerByGUID(g);
  }
  static auto Get(IKVCustLayerCollection& c, const char* n) { return c.GetCustLayer(n); }
  static auto GetByGUID(IKVCustLayerCollection& c, const char* g) {
    return c.GetCustLayerByGUID(g);
  }
  static bool Exists(IKVCustLayerCollection& c, const char* n) { return c.CustLayerExists(n); }
  static bool ExistsByGUID(IKVCustLayerCollection& c, const char* g) {
    return c.CustLayerExistsByGUID(g);
  }
  static std::string Dir(IKVCustLayerCollection& c) { return c.CustLayersDir(); }
};

template <class Kind>
class LayerCollectionTest : public ::testing::Test {
 protected:
  auto& Layers() {
    collection = Kind::Of(world);
    return *collection;
  }

  // Replaces the metadata; `items` is the content of the collection.
  void Load(const std::string& items) {
    const std::string tag = Kind::kCollectionTag;
    world.LoadMetadata("<R><" + tag + ">" + items + "</" + tag + "></R>");
  }

  // A layer element as text.
  static std::string Layer(const std::string& attributes) {
    return "<" + std::string(Kind::kTag) + " " + attributes + "/>";
  }

  // Starts another data manager on bent files.
  void StartWith(std::shared_ptr<FileSystem> files) {
    auto services = world.platform.Bundle();
    services.files = std::move(files);
    world.manager = std::make_shared<KVDataManager>(services);
    world.manager->DMInitialize(world.host);
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
  decltype(Kind::Of(world)) collection;
};

using Kinds = ::testing::Types<StoreLayers, CustLayers>;
TYPED_TEST_SUITE(LayerCollectionTest, Kinds);

TYPED_TEST(LayerCollectionTest, CreatesALayerWithItsAttributesInOrder) {
  EXPECT_TRUE(TypeParam::Create(this->Layers(), "Shops"));
  EXPECT_THAT(
      this->world.Metadata(),
      HasSubstr(std::string("<") + TypeParam::kTag +
                R"( NAME="_Shops_" GUID="{00000000-0000-4000-8000-000000000001}")"
                R"( LAYERFILE=")" +
                TypeParam::kFolder + R"(\Shops.lyr" CREATIONTIME="11/15/2026 7:35:30 AM"/></)" +
                TypeParam::kCollectionTag));
  EXPECT_THAT(this->world.Messages(), IsEmpty());
}

TYPED_TEST(LayerCollectionTest, WritesNoFileForALayer) {
  TypeParam::Create(this->Layers(), "Shops");
  EXPECT_THAT(this->world.platform.files->Tree(TypeParam::kFolder), IsEmpty());
}

TYPED_TEST(LayerCollectionTest, ReservesAFileNameThatNoFileHas) {
  for (const char* taken : {R"(\Stores.lyr)", R"(\Stores1.dbf)"}) {
    this->world.platform.files->AddFile(std::string(TypeParam::kFolder) + taken);
  }
  auto& layers = this->Layers();
  EXPECT_TRUE(TypeParam::Create(layers, "Stores"));
  EXPECT_EQ(TypeParam::Get(layers, "Stores")->LayerFile(),
            std::string(TypeParam::kFolder) + R"(\Stores2.lyr)");
  EXPECT_EQ(TypeParam::Get(layers, "Stores")->Name(), "Stores");
}

TYPED_TEST(LayerCollectionTest, AFolderBlocksNoFileName) {
  this->world.platform.files->AddFolder(std::string(TypeParam::kFolder) + R"(\Stores.lyr)");
  TypeParam::Create(this->Layers(), "Stores");
  EXPECT_EQ(TypeParam::Get(this->Layers(), "Stores")->LayerFile(),
            std::string(TypeParam::kFolder) + R"(\Stores.lyr)");
}

TYPED_TEST(LayerCollectionTest, CreatesANameOnlyOnce) {
  EXPECT_TRUE(TypeParam::Create(this->Layers(), "A"));
  EXPECT_FALSE(TypeParam::Create(this->Layers(), "A"));
  EXPECT_TRUE(TypeParam::Create(this->Layers(), "a"));
  EXPECT_THAT(Texts(TypeParam::Names(this->Layers())), ElementsAre("A", "a"));
  EXPECT_THAT(this->world.Messages(), IsEmpty());
}

TYPED_TEST(LayerCollectionTest, SavesNothing) {
  auto& layers = this->Layers();
  EXPECT_FALSE(Saves(this->world, [&] { TypeParam::Create(layers, "A"); }));
  EXPECT_FALSE(Saves(this->world, [&] { TypeParam::Delete(layers, "A"); }));
}

TYPED_TEST(LayerCollectionTest, KeepsOddNames) {
  auto& layers = this->Layers();
  for (const char* name : {"", "_", "_a_", "店舗", "a'b", "a&b<c>", " "}) {
    SCOPED_TRACE(name);
    EXPECT_FALSE(TypeParam::Exists(layers, name));
    ASSERT_TRUE(TypeParam::Create(layers, name));
    EXPECT_TRUE(TypeParam::Exists(layers, name));
    EXPECT_EQ(TypeParam::Get(layers, name)->Name(), name);
    EXPECT_TRUE(TypeParam::Delete(layers, name));
    EXPECT_FALSE(TypeParam::Exists(layers, name));
  }
}

TYPED_TEST(LayerCollectionTest, TheFolderIsMadeOnceAndHasNoTrailingBackslash) {
  this->world.platform.files->RemoveTree(TypeParam::kFolder);
  EXPECT_EQ(TypeParam::Dir(this->Layers()), TypeParam::kFolder);
  EXPECT_TRUE(this->world.platform.files->FolderExists(TypeParam::kFolder));
  const auto tree = this->world.platform.files->Tree("D:\\");
  EXPECT_EQ(TypeParam::Dir(this->Layers()), TypeParam::kFolder);
  EXPECT_EQ(this->world.platform.files->Tree("D:\\"), tree);
}

TYPED_TEST(LayerCollectionTest, TheFolderIsMadeOneLevelOnly) {
  auto& layers = this->Layers();
  this->world.platform.files->RemoveTree(R"(D:\Data)");
  EXPECT_RUNTIME_ERROR(static_cast<void>(TypeParam::Dir(layers)), kPathNotFound);
  this->ExpectUnsent(TypeParam::kCreateFailed, [&] { TypeParam::Create(layers, "A"); });
  EXPECT_THAT(Texts(TypeParam::Names(layers)), IsEmpty());
}

TYPED_TEST(LayerCollectionTest, ListsLayersInDocumentOrder) {
  this->Load(this->Layer(R"(NAME="_B_" GUID="_2_")") + R"(<!-- --><OTHER NAME="x"/>text)" +
             this->Layer(R"(NAME="_" GUID="1")") + this->Layer(R"(NAME="_Default_" GUID="3")"));
  EXPECT_THAT(Texts(TypeParam::Names(this->Layers())), ElementsAre("B", "_", "Default"));
  // Identifiers lose their underscores as well.
  EXPECT_THAT(Texts(TypeParam::GUIDs(this->Layers())), ElementsAre("2", "1", "3"));
}

TYPED_TEST(LayerCollectionTest, AnEmptyCollectionHasEmptyLists) {
  EXPECT_THAT(Texts(TypeParam::Names(this->Layers())), IsEmpty());
  EXPECT_THAT(Texts(TypeParam::GUIDs(this->Layers())), IsEmpty());
}

TYPED_TEST(LayerCollectionTest, FindsLayersByNameAndIdentifier) {
  this->Load(this->Layer(R"(NAME="_A_" GUID="1")") + this->Layer(R"(NAME="_A_" GUID="2")"));
  auto& layers = this->Layers();
  EXPECT_EQ(TypeParam::Get(layers, "A")->GUID(), "1");
  EXPECT_EQ(TypeParam::GetByGUID(layers, "2")->Name(), "A");
  EXPECT_EQ(TypeParam::Get(layers, "_A_"), nullptr);
  EXPECT_EQ(TypeParam::GetByGUID(layers, "3"), nullptr);
  EXPECT_TRUE(TypeParam::Exists(layers, "A"));
  EXPECT_FALSE(TypeParam::Exists(layers, "B"));
  EXPECT_TRUE(TypeParam::ExistsByGUID(layers, "2"));
  EXPECT_FALSE(TypeParam::ExistsByGUID(layers, "3"));
}

TYPED_TEST(LayerCollectionTest, LayersAreBoundToTheDataManager) {
  TypeParam::Create(this->Layers(), "A");
  const auto layer = TypeParam::Get(this->Layers(), "A");
  EXPECT_TRUE(Saves(this->world, [&] { layer->SetNameField("F"); }));
  EXPECT_EQ(TypeParam::Get(this->Layers(), "A")->NameField(), "F");
}

TYPED_TEST(LayerCollectionTest, DeletingByNameLeavesTheFile) {
  TypeParam::Create(this->Layers(), "A");
  const auto file = std::string(TypeParam::kFolder) + R"(\A.lyr)";
  this->world.platform.files->AddFile(file);
  EXPECT_TRUE(TypeParam::Delete(this->Layers(), "A"));
  EXPECT_FALSE(TypeParam::Exists(this->Layers(), "A"));
  EXPECT_TRUE(this->world.platform.files->ReadFile(file));
}

TYPED_TEST(LayerCollectionTest, DeletingWhatIsNotThereChangesNothing) {
  TypeParam::Create(this->Layers(), "A");
  const auto tree = this->world.platform.files->Tree("D:\\");
  EXPECT_FALSE(TypeParam::Delete(this->Layers(), "B"));
  EXPECT_FALSE(TypeParam::DeleteByGUID(this->Layers(), "B"));
  EXPECT_EQ(this->world.platform.files->Tree("D:\\"), tree);
  EXPECT_THAT(Texts(TypeParam::Names(this->Layers())), ElementsAre("A"));
}

TYPED_TEST(LayerCollectionTest, AKeyWithADoubleQuoteFailsInTheQuery) {
  auto& layers = this->Layers();
  const char* key = R"(x" or "1"="1)";
  EXPECT_RUNTIME_ERROR(TypeParam::Exists(layers, key), kAutomationFailure);
  EXPECT_RUNTIME_ERROR(TypeParam::ExistsByGUID(layers, key), kAutomationFailure);
  this->ExpectUnsent(TypeParam::kCreateFailed, [&] { TypeParam::Create(layers, key); });
  this->ExpectUnsent(TypeParam::kDeleteFailed, [&] { TypeParam::Delete(layers, key); });
  this->ExpectUnsent(TypeParam::kDeleteFailed, [&] { TypeParam::DeleteByGUID(layers, key); });
  this->ExpectUnsent(TypeParam::kGetFailed, [&] { TypeParam::Get(layers, key); });
  this->ExpectUnsent(TypeParam::kGetFailed, [&] { TypeParam::GetByGUID(layers, key); });
}

TYPED_TEST(LayerCollectionTest, ALayerWithoutTheAttributeFailsTheList) {
  this->Load(this->Layer("X='1'"));
  this->ExpectUnsent(TypeParam::kListFailed, [&] { TypeParam::Names(this->Layers()); });
  this->ExpectUnsent(TypeParam::kListFailed, [&] { TypeParam::GUIDs(this->Layers()); });
}

// Finds every file name taken.
class CrowdedFileSystem : public FailingFileSystem {
 public:
  explicit CrowdedFileSystem(std::shared_ptr<FileSystem> files)
      : FailingFileSystem(std::move(files), std::make_shared<FailureCounter>()) {}
  std::vector<std::string> FindFiles(std::string_view) override { return {"taken"}; }
};

TYPED_TEST(LayerCollectionTest, RunsOutOfFileNamesWithoutChangingTheDocument) {
  this->StartWith(std::make_shared<CrowdedFileSystem>(this->world.platform.files));
  this->ExpectUnsent(TypeParam::kCreateFailed, [&] { TypeParam::Create(this->Layers(), "A"); });
  EXPECT_THAT(Texts(TypeParam::Names(this->Layers())), IsEmpty());
}

TYPED_TEST(LayerCollectionTest, UnboundItAnswersWithNeutralResults) {
  typename TypeParam::Collection layers(this->world.platform.gis_core);
  EXPECT_EQ(TypeParam::Names(layers), nullptr);
  EXPECT_EQ(TypeParam::GUIDs(layers), nullptr);
  EXPECT_FALSE(TypeParam::Create(layers, "A"));
  EXPECT_FALSE(TypeParam::Delete(layers, "A"));
  EXPECT_FALSE(TypeParam::DeleteByGUID(layers, "A"));
  EXPECT_EQ(TypeParam::Get(layers, "A"), nullptr);
  EXPECT_EQ(TypeParam::GetByGUID(layers, "A"), nullptr);
  EXPECT_FALSE(TypeParam::Exists(layers, "A"));
  EXPECT_FALSE(TypeParam::ExistsByGUID(layers, "A"));
  EXPECT_EQ(TypeParam::Dir(layers), "");
}

TYPED_TEST(LayerCollectionTest, WithoutADataManagerTheFolderFailsAndNobodyHearsOfIt) {
  typename TypeParam::Collection layers(this->world.platform.gis_core);
  layers.SetNode(xml::Element::Create(TypeParam::kCollectionTag));
  EXPECT_RUNTIME_ERROR(static_cast<void>(TypeParam::Dir(layers)), kObjectNotSet);
  EXPECT_RUNTIME_ERROR(TypeParam::Create(layers, "A"), kObjectNotSet);
}

// Where the two differ.

TEST(StoreLayerCollectionTest, DeletingByGuidTakesTheWholeFolder) {
  TestWorld world;
  const auto layers = world.manager->StoreLayerCollection();
  layers->CreateStoreLayer("A");
  layers->CreateStoreLayer("B");
  world.platform.files->AddFile(R"(D:\Data\StoreLayers\B.lyr)");
  world.platform.files->AddFile(R"(D:\Data\StoreLayers\Sub\x)");
  EXPECT_FALSE(Saves(world, [&] {
    EXPECT_TRUE(layers->DeleteStoreLayerByGUID(layers->GetStoreLayer("A")->GUID()));
  }));
  EXPECT_FALSE(world.platform.files->FolderExists(R"(D:\Data\StoreLayers)"));
  EXPECT_THAT(Texts(layers->StoreLayersList()), ElementsAre("B"));
}

TEST(StoreLayerCollectionTest, DeletingByGuidTakesTheSubfolderThatDirNameNames) {
  TestWorld world;
  world.LoadMetadata(
      R"(<R><STORELAYERCOLLECTION><STORELAYER GUID="1" DIRNAME="Sub\"/></STORELAYERCOLLECTION></R>)");
  world.platform.files->AddFile(R"(D:\Data\StoreLayers\Sub\x)");
  world.platform.files->AddFile(R"(D:\Data\StoreLayers\B.lyr)");
  EXPECT_TRUE(world.manager->StoreLayerCollection()->DeleteStoreLayerByGUID("1"));
  EXPECT_THAT(world.platform.files->Tree(R"(D:\Data\StoreLayers)"), ElementsAre("B.lyr"));
}

TEST(StoreLayerCollectionTest, DeletingByGuidNeverLeavesTheLayersFolder) {
  for (const char* dir_name : {"..\\", "..\\..\\", "Sub\\..\\..\\", "..", "\\"}) {
    SCOPED_TRACE(dir_name);
    TestWorld world;
    world.LoadMetadata(R"(<R><STORELAYERCOLLECTION><STORELAYER GUID="1" DIRNAME=")" +
                       std::string(dir_name) + R"("/></STORELAYERCOLLECTION></R>)");
    world.platform.files->AddFile(R"(D:\Data\keep)");
    const auto tree = world.platform.files->Tree("D:\\");
    EXPECT_TRUE(world.manager->StoreLayerCollection()->DeleteStoreLayerByGUID("1"));
    EXPECT_EQ(world.platform.files->Tree("D:\\"), tree);
  }
}

TEST(StoreLayerCollectionTest, DeletingByGuidIgnoresThatTheFolderIsGone) {
  TestWorld world;
  const auto layers = world.manager->StoreLayerCollection();
  layers->CreateStoreLayer("A");
  world.platform.files->RemoveTree(R"(D:\Data\StoreLayers)");
  EXPECT_TRUE(layers->DeleteStoreLayerByGUID(layers->GetStoreLayer("A")->GUID()));
  EXPECT_FALSE(layers->StoreLayerExists("A"));
}

TEST(CustLayerCollectionTest, DeletingByGuidNeverTouchesTheDisk) {
  TestWorld world;
  world.LoadMetadata(
      R"(<R><CUSTLAYERCOLLECTION><CUSTLAYER GUID="1" DIRNAME="Sub\"/></CUSTLAYERCOLLECTION></R>)");
  world.platform.files->AddFile(R"(D:\Data\CustLayers\Sub\x)");
  const auto tree = world.platform.files->Tree("D:\\");
  EXPECT_TRUE(world.manager->CustLayerCollection()->DeleteCustLayerByGUID("1"));
  EXPECT_FALSE(world.manager->CustLayerCollection()->CustLayerExistsByGUID("1"));
  EXPECT_EQ(world.platform.files->Tree("D:\\"), tree);
}

}  // namespace
}  // namespace kvdm
