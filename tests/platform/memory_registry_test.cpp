#include "platform/memory/memory_registry.h"

#include <gtest/gtest.h>

namespace kvdm {
namespace {

constexpr auto kMachine = RegistryRoot::kLocalMachine;

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

TEST(MemoryRegistryTest, PreservesEachContentOnce) {
  MemoryRegistry registry;
  for (const auto* text : {"one", "one", "two", "one"}) {
    registry.WriteText(kMachine, "Software", "Alias", text);
    registry.Preserve(kMachine, "software", "ALIAS");
  }
  ASSERT_EQ(registry.Preserved().size(), 2U);
  EXPECT_EQ(registry.Preserved()[0].value.data, "one");
  EXPECT_EQ(registry.Preserved()[1].value.data, "two");
}

}  // namespace
}  // namespace kvdm
