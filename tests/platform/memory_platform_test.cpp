#include "platform/memory/memory_platform.h"

#include <gtest/gtest.h>

namespace kvdm {
namespace {

TEST(MemoryPlatformTest, TheBundleIsMadeOfTheSameServices) {
  const MemoryPlatform world;
  const Platform platform = world.Bundle();
  platform.message_box->Show("text", "caption", MessageStyle::kPlain);
  platform.log->Note("line");
  EXPECT_EQ(world.box->Messages().size(), 1U);
  EXPECT_EQ(world.log->Lines().size(), 1U);
}

TEST(MemoryPlatformTest, IdentifiersCountUp) {
  const MemoryPlatform world;
  const auto identifier = world.gis_core->CreateIdentifier();
  identifier->Generate();
  EXPECT_EQ(identifier->GetValue(), "{00000000-0000-4000-8000-000000000001}");
  const auto next = world.gis_core->CreateIdentifier();
  for (int i = 2; i <= 258; ++i) next->Generate();
  EXPECT_EQ(next->GetValue(), "{00000000-0000-4000-8000-000000000102}");
}

TEST(MemoryPlatformTest, TheClockStandsWhereItWasSet) {
  const MemoryPlatform world;
  world.clock->Set({2027, 1, 2, 3, 4, 5});
  EXPECT_EQ(world.clock->Now(), (DateTime{2027, 1, 2, 3, 4, 5}));
}

TEST(MemoryPlatformTest, TheRegistryTakesTheCodePage) {
  EXPECT_TRUE(MemoryPlatform().registry->Holds(0x416));
  EXPECT_FALSE(MemoryPlatform(CodePage::kWindows1252).registry->Holds(0x416));
}

}  // namespace
}  // namespace kvdm
