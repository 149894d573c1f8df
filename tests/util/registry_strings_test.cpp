#include "util/registry_strings.h"

#include <gtest/gtest.h>

#include "platform/memory/memory_registry.h"

namespace kvdm {
namespace {

using namespace std::string_literals;

constexpr auto kMachine = RegistryRoot::kLocalMachine;
constexpr char kName[] = "Customer Alias";

Value Read(Registry& registry) {
  return ReadRegistryString(registry, kMachine, kRegistryKey, kName);
}

void Write(Registry& registry, std::string_view text) {
  WriteRegistryString(registry, kMachine, kRegistryKey, kName, text);
}

TEST(RegistryStringsTest, TheKeyAndTheValueNamesAreFixed) {
  EXPECT_STREQ(kRegistryKey, R"(Software\Velk\Kelvaro)");
  EXPECT_STREQ(kPresetDataDirectoryValue, "Preset Data Directory");
  EXPECT_STREQ(kStudyAreaCollectionValue, "StudyAreaCollection");
  EXPECT_STREQ(kCustomerAliasValue, "Customer Alias");
  EXPECT_STREQ(kStoreAliasValue, "Store Alias");
}

TEST(RegistryStringsTest, ReadsBackWhatWasWritten) {
  MemoryRegistry registry;
  for (const std::string text : {"Customers", "", " blanks ", "Läden 北区 \U0001F600", "a\r\nb"}) {
    Write(registry, text);
    EXPECT_EQ(Read(registry), Value(text));
  }
}

TEST(RegistryStringsTest, AValueOfAnotherTypeIsEmpty) {
  MemoryRegistry registry;
  for (const auto type :
       {RegistryType::kExpandText, RegistryType::kBinary, RegistryType::kNumber}) {
    registry.Put(kMachine, kRegistryKey, kName, type, "text");
    EXPECT_TRUE(Read(registry).IsEmpty()) << static_cast<int>(type);
  }
}

TEST(RegistryStringsTest, AMissingValueIsEmptyAndReadsAsNoText) {
  MemoryRegistry registry;
  EXPECT_TRUE(Read(registry).IsEmpty());
  EXPECT_EQ(ToText(Read(registry)), "");
}

TEST(RegistryStringsTest, TheTextEndsAtItsFirstNul) {
  MemoryRegistry registry;
  registry.Put(kMachine, kRegistryKey, kName, RegistryType::kText, "Shops\0more\0"s);
  EXPECT_EQ(Read(registry), Value("Shops"));
  registry.Put(kMachine, kRegistryKey, kName, RegistryType::kText, "\0more"s);
  EXPECT_EQ(Read(registry), Value(""));
}

TEST(RegistryStringsTest, WritingReplacesAValueOfAnotherType) {
  MemoryRegistry registry;
  registry.Put(kMachine, kRegistryKey, kName, RegistryType::kNumber, "1234");
  Write(registry, "text");
  EXPECT_EQ(Read(registry), Value("text"));
}

TEST(RegistryStringsTest, RootsAreApart) {
  MemoryRegistry registry;
  Write(registry, "machine");
  EXPECT_TRUE(
      ReadRegistryString(registry, RegistryRoot::kCurrentUser, kRegistryKey, kName).IsEmpty());
}

TEST(RegistryStringsTest, ARefusedWriteIsNotDetectedAndLeavesTheOldValue) {
  MemoryRegistry registry;
  Write(registry, "old");
  registry.SetWritable(false);
  Write(registry, "new");
  EXPECT_EQ(Read(registry), Value("old"));
}

TEST(RegistryStringsTest, TextGoesThroughTheCodePageInBothDirections) {
  MemoryRegistry registry(CodePage::kWindows1252);
  Write(registry, "Läden für 5 €");
  EXPECT_EQ(Read(registry), Value("Läden für 5 €"));
  Write(registry, "Жā 北\U0001F600.");
  EXPECT_EQ(Read(registry), Value("?? ???."));
  registry.Put(kMachine, kRegistryKey, kName, RegistryType::kText,
               "L\xE4"
               "den");
  EXPECT_EQ(Read(registry), Value("Läden"));
}

}  // namespace
}  // namespace kvdm
