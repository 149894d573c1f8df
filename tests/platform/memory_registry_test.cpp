#include "platform/memory/memory_registry.h"

#include <gtest/gtest.h>

#include "tests/replacing_update.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

TEST(MemoryRegistryTest, HoldsWhatWasPut) {
  MemoryRegistry registry;
  registry.Put(kMachine, "Software", "Count", RegistryType::kNumber, "\x05");
  EXPECT_EQ(registry.Read(kMachine, "Software", "Count"),
            (RegistryValue{RegistryType::kNumber, "\x05"}));
}

TEST(MemoryRegistryTest, OnlyTextGoesThroughTheCodePage) {
  MemoryRegistry registry(CodePage::kWindows1252);
  registry.Put(kMachine, "Software", "Text", RegistryType::kText, "\x80");
  registry.Put(kMachine, "Software", "Bytes", RegistryType::kBinary, "\x80");
  EXPECT_EQ(registry.Read(kMachine, "Software", "Text")->data, "\u20AC");
  EXPECT_EQ(registry.Read(kMachine, "Software", "Bytes")->data, "\x80");
}

TEST(MemoryRegistryTest, ARefusedWriteLeavesTheOldValue) {
  MemoryRegistry registry;
  ASSERT_TRUE(registry.WriteText(kMachine, "Software", "Alias", "old"));
  registry.SetWritable(false);
  EXPECT_FALSE(registry.WriteText(kMachine, "Software", "Alias", "new"));
  EXPECT_EQ(registry.Read(kMachine, "Software", "Alias")->data, "old");
}

TEST(MemoryRegistryTest, WhatCantBeReadIsNotUpdated) {
  MemoryRegistry registry;
  ASSERT_TRUE(registry.WriteText(kMachine, "Software", "Alias", "old"));
  registry.SetReadable(false);
  EXPECT_RUNTIME_ERROR(static_cast<void>(registry.Read(kMachine, "Software", "Alias")),
                       kDeviceUnavailable);
  EXPECT_FALSE(registry.Update(kMachine, "Software", "Alias", Replacing("new")));
  registry.SetReadable(true);
  EXPECT_EQ(registry.Read(kMachine, "Software", "Alias")->data, "old");
}

}  // namespace
}  // namespace kvdm
