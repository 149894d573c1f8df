// Messages of the data manager, and its operations while each call of its services in turn fails.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/failing_services.h"
#include "tests/test_world.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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
  services.message_box = std::make_shared<FailingMessageBox>(
      platform.box, std::make_shared<FailureCounter>(FailureCounter{.fail_at = 1}));
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
  static_cast<void>(manager.AnalysisCollection());
  static_cast<void>(manager.StoreLayerCollection());
  static_cast<void>(manager.CustLayerCollection());
  static_cast<void>(manager.DataCollection());
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

TEST(DataManagerErrorsTest, AnIdentifierThatCanNotBeMadeIsNothing) {
  const MemoryPlatform platform;
  const auto counter = std::make_shared<FailureCounter>();
  KVDataManager manager(Failing(platform.Bundle(), counter));
  for (int call = 1; call <= 2; ++call) {  // create, put the value
    *counter = {0, call};
    EXPECT_EQ(manager.ID(), nullptr);
  }
  EXPECT_THAT(platform.box->Messages(), IsEmpty());
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
