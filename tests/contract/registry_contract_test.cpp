// What every registry does.
#include <gtest/gtest.h>

#include <functional>

#include "platform/memory/memory_registry.h"
#include "platform/memory/recording_sinks.h"
#include "platform/posix/sqlite_registry.h"
#include "tests/temp_folder.h"

namespace kvdm {
namespace {

constexpr auto kMachine = RegistryRoot::kLocalMachine;
constexpr auto kUser = RegistryRoot::kCurrentUser;
constexpr std::string_view kKey = "Software\\Velk\\Kelvaro";

struct Implementation {
  std::string name;
  std::function<std::unique_ptr<Registry>(CodePage, const TempFolder&)> make;
};

std::unique_ptr<Registry> MakeMemory(CodePage page, const TempFolder& /*folder*/) {
  return std::make_unique<MemoryRegistry>(page);
}

std::unique_ptr<Registry> MakeSqlite(CodePage page, const TempFolder& folder) {
  return std::make_unique<SqliteRegistry>(
      SqliteRegistryOptions{folder.Path("deep/registry.db"), page},
      std::make_shared<RecordingLog>());
}

class RegistryContractTest : public testing::TestWithParam<Implementation> {
 protected:
  std::unique_ptr<Registry> Make(CodePage page = CodePage::kUtf8) {
    return GetParam().make(page, folder_);
  }

  // What is read after `text` was written.
  std::string RoundTrip(CodePage page, std::string_view text) {
    const auto registry = Make(page);
    EXPECT_TRUE(registry->WriteText(kMachine, kKey, "Value", text));
    return registry->Read(kMachine, kKey, "Value").value_or(RegistryValue{}).data;
  }

 private:
  TempFolder folder_;
};

INSTANTIATE_TEST_SUITE_P(All, RegistryContractTest,
                         testing::Values(Implementation{"Memory", MakeMemory},
                                         Implementation{"Sqlite", MakeSqlite}),
                         [](const auto& tested) { return tested.param.name; });

TEST_P(RegistryContractTest, AMissingValueIsNothing) {
  const auto registry = Make();
  EXPECT_EQ(registry->Read(kMachine, kKey, "Store Alias"), std::nullopt);
  ASSERT_TRUE(registry->WriteText(kMachine, kKey, "Customer Alias", "Customers"));
  EXPECT_EQ(registry->Read(kMachine, kKey, "Store Alias"), std::nullopt);
}

TEST_P(RegistryContractTest, AWrittenTextIsRead) {
  const auto registry = Make();
  ASSERT_TRUE(registry->WriteText(kMachine, kKey, "Store Alias", "Shops"));
  EXPECT_EQ(registry->Read(kMachine, kKey, "Store Alias"),
            (RegistryValue{RegistryType::kText, "Shops"}));
}

TEST_P(RegistryContractTest, AWriteReplaces) {
  const auto registry = Make();
  ASSERT_TRUE(registry->WriteText(kMachine, kKey, "Store Alias", "Shops"));
  ASSERT_TRUE(registry->WriteText(kMachine, kKey, "Store Alias", "Outlets"));
  EXPECT_EQ(registry->Read(kMachine, kKey, "Store Alias")->data, "Outlets");
}

TEST_P(RegistryContractTest, KeysAndNamesIgnoreTheCaseOfAsciiLetters) {
  const auto registry = Make();
  ASSERT_TRUE(registry->WriteText(kMachine, "Software\\VELK", "Alias", "one"));
  ASSERT_TRUE(registry->WriteText(kMachine, "software\\velk", "ALIAS", "two"));
  EXPECT_EQ(registry->Read(kMachine, "SOFTWARE\\Velk", "alias")->data, "two");
}

TEST_P(RegistryContractTest, OtherLettersKeepTheirCase) {
  const auto registry = Make();
  ASSERT_TRUE(registry->WriteText(kMachine, kKey, "\u00C4", "upper"));
  EXPECT_EQ(registry->Read(kMachine, kKey, "\u00E4"), std::nullopt);
}

TEST_P(RegistryContractTest, RootsAreApart) {
  const auto registry = Make();
  ASSERT_TRUE(registry->WriteText(kMachine, kKey, "Alias", "machine"));
  ASSERT_TRUE(registry->WriteText(kUser, kKey, "Alias", "user"));
  EXPECT_EQ(registry->Read(kMachine, kKey, "Alias")->data, "machine");
  EXPECT_EQ(registry->Read(kUser, kKey, "Alias")->data, "user");
}

TEST_P(RegistryContractTest, AnEmptyTextIsAValue) {
  const auto registry = Make();
  ASSERT_TRUE(registry->WriteText(kMachine, kKey, "Alias", ""));
  EXPECT_EQ(registry->Read(kMachine, kKey, "Alias"), RegistryValue{});
}

TEST_P(RegistryContractTest, NulCharactersAreKept) {
  const std::string text("one\0two", 7);
  EXPECT_EQ(RoundTrip(CodePage::kUtf8, text), text);
}

TEST_P(RegistryContractTest, Utf8KeepsEveryCharacter) {
  const std::string text = "Gr\u00FC\u00DFe \u0416 \u65E5 \U0001F600\r\n\t";
  EXPECT_EQ(RoundTrip(CodePage::kUtf8, text), text);
}

TEST_P(RegistryContractTest, Windows1252ReplacesWhatItDoesNotHave) {
  EXPECT_EQ(RoundTrip(CodePage::kWindows1252, "\u00FC\u20AC \u0416\u0101 \U0001F600"),
            "\u00FC\u20AC ?? ??");
}

TEST_P(RegistryContractTest, SaysWhichCharactersTheCodePageHolds) {
  EXPECT_TRUE(Make(CodePage::kUtf8)->Holds(0x416));
  EXPECT_FALSE(Make(CodePage::kWindows1252)->Holds(0x416));
  EXPECT_TRUE(Make(CodePage::kWindows1252)->Holds(0x20AC));
}

TEST_P(RegistryContractTest, LongTextsAreKept) {
  const std::string text(3'000'000, 'x');
  EXPECT_TRUE(RoundTrip(CodePage::kUtf8, text) == text);
}

TEST_P(RegistryContractTest, PreservingLeavesTheValueAsItIs) {
  const auto registry = Make();
  ASSERT_TRUE(registry->WriteText(kMachine, kKey, "StudyAreaCollection", "<broken"));
  registry->Preserve(kMachine, kKey, "StudyAreaCollection");
  EXPECT_EQ(registry->Read(kMachine, kKey, "StudyAreaCollection")->data, "<broken");
}

TEST_P(RegistryContractTest, PreservingAMissingValueCreatesNothing) {
  const auto registry = Make();
  registry->Preserve(kMachine, kKey, "StudyAreaCollection");
  EXPECT_EQ(registry->Read(kMachine, kKey, "StudyAreaCollection"), std::nullopt);
}

}  // namespace
}  // namespace kvdm
