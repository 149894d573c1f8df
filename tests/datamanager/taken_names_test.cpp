// Operations for which every file name is taken.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/failing_services.h"
#include "tests/late_report.h"
#include "tests/test_world.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Finds a file for every pattern.
class CrowdedFileSystem : public FailingFileSystem {
 public:
  explicit CrowdedFileSystem(std::shared_ptr<FileSystem> files)
      : FailingFileSystem(std::move(files), std::make_shared<FailureCounter>()) {}
  std::vector<std::string> FindFiles(std::string_view) override { return {"taken"}; }
};

struct TakenNamesTest : testing::Test {
  TakenNamesTest() {
    auto services = world.platform.Bundle();
    services.files = std::make_shared<CrowdedFileSystem>(world.platform.files);
    world.manager = std::make_shared<KVDataManager>(services);
    world.manager->DMInitialize(world.host);
  }

  TestWorld world;
};

TEST_F(TakenNamesTest, NoLayerIsCreated) {
  const auto stores = world.manager->StoreLayerCollection();
  EXPECT_EQ(UnsentMessage([&] { return stores->CreateStoreLayer("A"); }),
            "Kelvaro Data Manager: Couldn't create StoreLayer");
  EXPECT_THAT(Texts(stores->StoreLayersList()), IsEmpty());
  const auto customers = world.manager->CustLayerCollection();
  EXPECT_EQ(UnsentMessage([&] { return customers->CreateCustLayer("A"); }),
            "Kelvaro Data Manager: Couldn't create CustLayer");
  EXPECT_THAT(Texts(customers->CustLayersList()), IsEmpty());
}

TEST_F(TakenNamesTest, NoTablePathIsFree) {
  EXPECT_EQ(UnsentMessage([&] { return world.manager->TablesManager()->FreeTablePath(); }),
            "Failed to get free table path for the Study Area");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST_F(TakenNamesTest, NoTemporaryPathIsFree) {
  EXPECT_EQ(world.manager->TmpFilePath(), "");
  EXPECT_THAT(world.Messages(), ElementsAre("Couldn't generate new Temp file name"));
}

}  // namespace
}  // namespace kvdm
