// Which classes there are, which interfaces each of them answers, and how views are bound.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kvdm/datamanager/component.h>
#include <kvdm/kvdm.h>

#include "tests/test_world.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using testing::ElementsAre;

template <class Interface>
bool Answers(const std::shared_ptr<Unknown>& object) {
  return Query<Interface>(object) != nullptr;
}

struct InterfaceName {
  std::string name;
  bool (*answered)(const std::shared_ptr<Unknown>&);
};

const InterfaceName kInterfaces[] = {
    {"IKVDataManager", &Answers<IKVDataManager>},
    {"IKVDMInitialize", &Answers<IKVDMInitialize>},
    {"IPersistVariant", &Answers<IPersistVariant>},
    {"IKVCatalogue", &Answers<IKVCatalogue>},
    {"IKVStudyAreaCollection", &Answers<IKVStudyAreaCollection>},
    {"IKVStudyArea", &Answers<IKVStudyArea>},
    {"IKVStudyArea2", &Answers<IKVStudyArea2>},
    {"IKVPropertySet", &Answers<IKVPropertySet>},
    {"IKVTablesManager", &Answers<IKVTablesManager>},
    {"IKVFileInfo", &Answers<IKVFileInfo>},
    {"IKVAnalysisCollection", &Answers<IKVAnalysisCollection>},
    {"IKVStoreLayerCollection", &Answers<IKVStoreLayerCollection>},
    {"IKVCustLayerCollection", &Answers<IKVCustLayerCollection>},
    {"IKVDataCollection", &Answers<IKVDataCollection>},
    {"IKVAnalysis", &Answers<IKVAnalysis>},
    {"IKVCustLayer", &Answers<IKVCustLayer>},
    {"IKVStoreLayer", &Answers<IKVStoreLayer>},
    {"IKVDataItem", &Answers<IKVDataItem>},
    {"IKVLayerEdit", &Answers<IKVLayerEdit>},
    {"IKVMetadata", &Answers<IKVMetadata>},
};

std::vector<std::string> InterfacesOf(const std::shared_ptr<Unknown>& object) {
  std::vector<std::string> names;
  for (const auto& [name, answered] : kInterfaces) {
    if (answered(object)) names.push_back(name);
  }
  return names;
}

struct ClassRow {
  std::string identity;
  std::vector<std::string> interfaces;
};

const ClassRow kClasses[] = {
    {"KVDM.KVDataManager",
     {"IKVDataManager", "IKVDMInitialize", "IPersistVariant", "IKVCatalogue"}},
    {"KVDM.KVStudyAreaCollection", {"IKVStudyAreaCollection"}},
    {"KVDM.KVStudyArea",
     {"IKVStudyArea", "IKVStudyArea2", "IKVPropertySet", "IKVLayerEdit", "IKVMetadata"}},
    {"KVDM.KVTablesManager", {"IKVTablesManager"}},
    {"KVDM.KVFileInfo", {"IKVFileInfo"}},
    {"KVDM.KVAnalysisCollection", {"IKVAnalysisCollection"}},
    {"KVDM.KVStoreLayerCollection", {"IKVStoreLayerCollection"}},
    {"KVDM.KVCustLayerCollection", {"IKVCustLayerCollection"}},
    {"KVDM.KVDataCollection", {"IKVDataCollection"}},
    {"KVDM.KVAnalysis", {"IKVAnalysis", "IKVLayerEdit", "IKVMetadata"}},
    {"KVDM.KVCustLayer", {"IKVCustLayer", "IKVLayerEdit", "IKVMetadata"}},
    {"KVDM.KVStoreLayer", {"IKVStoreLayer", "IKVLayerEdit", "IKVMetadata"}},
    {"KVDM.KVDataItem", {"IKVDataItem"}},
};

TEST(ComponentTest, CreatesEachOfItsThirteenClassesWithItsInterfaces) {
  const MemoryPlatform platform;
  for (const auto& [identity, interfaces] : kClasses) {
    const auto object = CreateObject(identity, platform.Bundle());
    EXPECT_EQ(InterfacesOf(object), interfaces) << identity;
  }
}

TEST(ComponentTest, HasNoOtherClasses) {
  const MemoryPlatform platform;
  for (const std::string identity :
       {"", "KVDM", "KVDM.", "KVDataManager", "KVDM.KVNothing", "KVDM.KVDataManager.1"}) {
    EXPECT_RUNTIME_ERROR(static_cast<void>(CreateObject(identity, platform.Bundle())),
                         kCannotCreateObject);
  }
}

TEST(ComponentTest, AnUnknownClassIsNamedInTheError) {
  const MemoryPlatform platform;
  try {
    static_cast<void>(CreateObject("KVDM.KVNothing", platform.Bundle()));
    FAIL();
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.source(), "KVDM");
    EXPECT_THAT(error.what(), testing::HasSubstr("KVDM.KVNothing"));
  }
}

TEST(QueryTest, NothingHasNoInterfaces) { EXPECT_EQ(Query<IKVDataManager>(nullptr), nullptr); }

TEST(QueryTest, LeadsBackFromAFacetToEveryInterfaceOfTheObject) {
  const MemoryPlatform platform;
  for (const auto& [identity, interfaces] : kClasses) {
    const auto edit = Query<IKVLayerEdit>(CreateObject(identity, platform.Bundle()));
    if (!edit) continue;
    EXPECT_EQ(InterfacesOf(edit), interfaces) << identity;
  }
}

TEST(QueryTest, AnswersTheSameFacetAgain) {
  const MemoryPlatform platform;
  const auto analysis = CreateObject("KVDM.KVAnalysis", platform.Bundle());
  EXPECT_EQ(Query<IKVLayerEdit>(analysis), Query<IKVLayerEdit>(Query<IKVMetadata>(analysis)));
}

TEST(ViewsTest, KeepTheDataManagerAlive) {
  TestWorld world;
  auto analyses = world.manager->AnalysisCollection();
  const std::weak_ptr<KVDataManager> manager = world.manager;
  world.manager.reset();
  EXPECT_FALSE(manager.expired());
  EXPECT_TRUE(analyses->CreateAnalysis("Sales"));
  EXPECT_THAT(Texts(analyses->AnalysesList()), ElementsAre("Sales"));
  analyses.reset();
  EXPECT_TRUE(manager.expired());
}

}  // namespace
}  // namespace kvdm
