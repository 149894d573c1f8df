// What every set of named values does.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kvdm/platform/portable/sidecar_metadata.h>

#include "platform/memory/memory_platform.h"
#include "tests/contract/implementations.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::shared_ptr<NamedValueSet> MakeIn(const Platform& platform) {
  return platform.gis_core->CreateNamedValueSet();
}

// The set that a layer's side-car hands out.
std::shared_ptr<NamedValueSet> MakeFromSidecar() {
  const MemoryPlatform world;
  world.files->AddFile("D:\\stores.shp");
  const auto metadata = MakeSidecarMetadata(world.Bundle(), "D:\\stores.shp");
  metadata->WriteDocument(std::make_shared<ValueSet>());
  return metadata->ReadDocument();
}

class ValueSetContractTest : public testing::TestWithParam<Implementation<NamedValueSet>> {
 protected:
  std::shared_ptr<NamedValueSet> set_ = GetParam().make();
};

INSTANTIATE_TEST_SUITE_P(
    All, ValueSetContractTest,
    testing::Values(
        Implementation<NamedValueSet>{"Memory", [] { return MakeIn(MemoryPlatform().Bundle()); }},
        Implementation<NamedValueSet>{SystemName(), [] { return MakeIn(SystemPlatform()); }},
        Implementation<NamedValueSet>{"Sidecar", MakeFromSidecar}),
    kByName);

TEST_P(ValueSetContractTest, IsEmptyAtFirst) {
  EXPECT_THAT(set_->GetValues("Velk/Kelvaro8/GUID"), IsEmpty());
  EXPECT_THAT(set_->ListAll().names, IsEmpty());
  EXPECT_THAT(set_->ListAll().values, IsEmpty());
  EXPECT_EQ(set_->EntryCount(), 0);
}

TEST_P(ValueSetContractTest, HoldsWhatWasPut) {
  set_->PrepareForUpdate();
  set_->PutValue("Velk/Kelvaro8/IsInternalData", true);
  EXPECT_THAT(set_->GetValues("Velk/Kelvaro8/IsInternalData"), ElementsAre(Value(true)));
  EXPECT_EQ(set_->EntryCount(), 1);
}

TEST_P(ValueSetContractTest, PathsAreMatchedExactly) {
  set_->PutValue("Velk/Name", "North");
  EXPECT_THAT(set_->GetValues("velk/Name"), IsEmpty());
  EXPECT_THAT(set_->GetValues("Velk"), IsEmpty());
  EXPECT_THAT(set_->GetValues("Velk/Name/"), IsEmpty());
}

TEST_P(ValueSetContractTest, PuttingAgainReplacesAndKeepsThePlace) {
  set_->PutValue("b", 1);
  set_->PutValue("a", 2);
  set_->PutValue("b", "three");
  EXPECT_THAT(set_->ListAll().names, ElementsAre("b", "a"));
  EXPECT_THAT(set_->ListAll().values, ElementsAre(Value("three"), Value(2)));
  EXPECT_EQ(set_->EntryCount(), 2);
}

TEST_P(ValueSetContractTest, TheEmptyPathIsAPath) {
  set_->PutValue("", "nothing");
  EXPECT_THAT(set_->GetValues(""), ElementsAre(Value("nothing")));
}

}  // namespace
}  // namespace kvdm
