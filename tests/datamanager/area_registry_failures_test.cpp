// The registry of study areas and layers while each platform call in turn fails.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "datamanager/area_registry.h"
#include "platform/memory/failing_services.h"
#include "tests/test_world.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char kItems[] =
    R"(<R><STUDYAREACOLLECTION><STUDYAREA NAME="_A_" GUID="1" DIRNAME="A"/></STUDYAREACOLLECTION>)"
    R"(<CUSTOMERCOLLECTION><CUSTLAYER NAME="_A_" GUID="1"/></CUSTOMERCOLLECTION>)"
    R"(<STORECOLLECTION><STORELAYER NAME="_A_" GUID="1"/></STORECOLLECTION></R>)";

struct Operation {
  const char* name;
  const char* message;
  std::function<bool(AreaRegistry&)> run;
};

// A world of which every platform call but the message box can be made to fail.
struct FailingWorld : TestWorld {
  FailingWorld() {
    auto services = Failing(platform.Bundle(), counter);
    services.message_box = platform.box;
    manager = std::make_shared<KVDataManager>(services);
    manager->DMInitialize(host);
    LoadMetadata(kItems);
    platform.files->AddFile(R"(D:\Data\A\file)");
    counter->calls = 0;
  }

  std::shared_ptr<FailureCounter> counter = std::make_shared<FailureCounter>();
};

class AreaRegistryFailuresTest : public ::testing::TestWithParam<Operation> {};

// Nothing escapes: either the operation is done, or its message is shown.
TEST_P(AreaRegistryFailuresTest, EachFailureIsShownOrOvercome) {
  constexpr int kMostCalls = 100;
  bool failed = true;
  for (int call = 1; failed; ++call) {
    SCOPED_TRACE(call);
    ASSERT_LT(call, kMostCalls);
    FailingWorld world;
    world.counter->fail_at = call;
    const bool done = GetParam().run(world.manager->Areas());
    failed = world.counter->calls >= call;
    world.counter->fail_at = 0;
    EXPECT_TRUE(done || failed);
    if (done) {
      EXPECT_THAT(world.Messages(), IsEmpty());
    } else {
      EXPECT_THAT(world.Messages(), ElementsAre(GetParam().message));
    }
    const auto saved = world.Metadata();
    world.LoadMetadata(saved);
    EXPECT_EQ(world.Metadata(), saved);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Operations, AreaRegistryFailuresTest,
    ::testing::Values(Operation{"CreateStudyArea", "Couldn't create study area",
                                [](AreaRegistry& areas) { return areas.CreateStudyArea("B"); }},
                      Operation{"DeleteStudyArea", "Couldn't delete study area",
                                [](AreaRegistry& areas) { return areas.DeleteStudyArea("A"); }},
                      Operation{"RegisterCustLayer", "Couldn't register Customer layer",
                                [](AreaRegistry& areas) { return areas.RegisterCustLayer("B"); }},
                      Operation{"RegisterStoreLayer", "Couldn't register Store layer",
                                [](AreaRegistry& areas) { return areas.RegisterStoreLayer("B"); }},
                      Operation{"UnregisterCustLayer", "Couldn't unregister Customer layer",
                                [](AreaRegistry& areas) { return areas.UnregisterCustLayer("A"); }},
                      Operation{"UnregisterStoreLayerByGUID", "Couldn't unregister Store layer",
                                [](AreaRegistry& areas) {
                                  return areas.UnregisterStoreLayerByGUID("1");
                                }}));

}  // namespace
}  // namespace kvdm
