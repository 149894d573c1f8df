// What every registry does.
#include <gtest/gtest.h>

#include <kvdm/platform/error.h>

#include "platform/memory/memory_registry.h"
#include "tests/contract/implementations.h"
#include "tests/replacing_update.h"

namespace kvdm {
namespace {

constexpr auto kMachine = RegistryRoot::kLocalMachine;
constexpr auto kUser = RegistryRoot::kCurrentUser;
constexpr std::string_view kKey = "Software\\Velk\\Kelvaro";

class MemoryWorld final : public RegistryWorld {
 public:
  std::unique_ptr<Registry> Open(CodePage page) override {
    return std::make_unique<MemoryRegistry>(page);
  }
};

RegistryMaker MemoryMaker() {
  return {.name = "Memory", .pages = {CodePage::kUtf8, CodePage::kWindows1252}, .make = [] {
            return std::make_unique<MemoryWorld>();
          }};
}

class RegistryContractTest : public testing::TestWithParam<RegistryMaker> {
 protected:
  std::unique_ptr<Registry> Make() { return world_->Open(GetParam().pages.front()); }
  std::unique_ptr<Registry> Make(CodePage page) { return world_->Open(page); }

  // What is read after `text` was written.
  static std::string RoundTrip(Registry& registry, std::string_view text) {
    EXPECT_TRUE(registry.WriteText(kMachine, kKey, "Value", text));
    return registry.Read(kMachine, kKey, "Value").value_or(RegistryValue{}).data;
  }

  static std::vector<std::string> KeptTexts(Registry& registry) {
    std::vector<std::string> texts;
    for (const auto& kept : registry.Kept(kMachine, kKey, "StudyAreaCollection")) {
      texts.push_back(kept.value.data);
    }
    return texts;
  }

 private:
  std::unique_ptr<RegistryWorld> world_ = GetParam().make();
};

INSTANTIATE_TEST_SUITE_P(All, RegistryContractTest,
                         testing::Values(MemoryMaker(), SystemRegistry()), kByName);

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

TEST_P(RegistryContractTest, OtherLettersKeepTheirCaseExceptInTheSystemsOwn) {
  const auto registry = Make();
  ASSERT_TRUE(registry->WriteText(kMachine, kKey, "\u00C4", "upper"));
  EXPECT_EQ(registry->Read(kMachine, kKey, "\u00E4").has_value(), GetParam().folds_every_letter);
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
  EXPECT_EQ(RoundTrip(*Make(), text), text);
}

TEST_P(RegistryContractTest, ReplacesWhatTheCodePageDoesNotHave) {
  for (const CodePage page : GetParam().pages) {
    const bool has_all = page == CodePage::kUtf8;
    const auto registry = Make(page);
    EXPECT_EQ(RoundTrip(*registry, "\u00FC\u20AC\r\n\t"), "\u00FC\u20AC\r\n\t");
    EXPECT_EQ(RoundTrip(*registry, "\u0416\u0101"), has_all ? "\u0416\u0101" : "??");
    EXPECT_EQ(RoundTrip(*registry, "\u65E5 \U0001F600"), has_all ? "\u65E5 \U0001F600" : "? ??");
  }
}

TEST_P(RegistryContractTest, SaysWhichCharactersTheCodePageHolds) {
  for (const CodePage page : GetParam().pages) {
    const auto registry = Make(page);
    EXPECT_TRUE(registry->Holds(0x20AC));
    EXPECT_EQ(registry->Holds(0x416), page == CodePage::kUtf8);
    EXPECT_EQ(registry->Holds(0x1F600), page == CodePage::kUtf8);
    EXPECT_FALSE(registry->Holds(0xD800));
  }
}

TEST_P(RegistryContractTest, LongTextsAreKept) {
  const std::string text(3'000'000, 'x');
  EXPECT_TRUE(RoundTrip(*Make(), text) == text);
}

TEST_P(RegistryContractTest, AnUpdateSeesAndKeepsWhatIsStored) {
  const auto registry = Make();
  ASSERT_TRUE(registry->WriteText(kMachine, kKey, "StudyAreaCollection", "<broken"));
  Replacing update("<A/>");
  update.kept = {"<B/>"};
  EXPECT_TRUE(registry->Update(kMachine, kKey, "StudyAreaCollection", update));
  EXPECT_EQ(registry->Read(kMachine, kKey, "StudyAreaCollection")->data, "<A/>");
  EXPECT_EQ(KeptTexts(*registry), (std::vector<std::string>{"<broken", "<B/>"}));
}

TEST_P(RegistryContractTest, AnUpdateOfAMissingValueCreatesIt) {
  const auto registry = Make();
  EXPECT_TRUE(registry->Update(kMachine, kKey, "StudyAreaCollection", Replacing("<A/>")));
  EXPECT_EQ(registry->Read(kMachine, kKey, "StudyAreaCollection")->data, "<A/>");
  EXPECT_EQ(KeptTexts(*registry), std::vector<std::string>());
}

TEST_P(RegistryContractTest, TheSameContentIsKeptOnce) {
  const auto registry = Make();
  for (const auto* text : {"one", "two", "one", "two"}) {
    ASSERT_TRUE(registry->Update(kMachine, kKey, "StudyAreaCollection", Replacing(text)));
  }
  EXPECT_EQ(KeptTexts(*registry), (std::vector<std::string>{"two", "one"}));
}

// An update that finds the stored value not to its liking.
class Refusing final : public TextUpdate {
 public:
  [[nodiscard]] std::vector<Piece> Base() const override { return {}; }
  [[nodiscard]] std::vector<Piece> Wanted() const override { return {}; }
  [[nodiscard]] Outcome On(const std::optional<RegistryValue>&) const override {
    throw RuntimeError(kOutOfMemory);
  }
};

TEST_P(RegistryContractTest, AnUpdateThatRefusesLeavesTheValue) {
  const auto registry = Make();
  ASSERT_TRUE(registry->WriteText(kMachine, kKey, "StudyAreaCollection", "<A/>"));
  EXPECT_FALSE(registry->Update(kMachine, kKey, "StudyAreaCollection", Refusing()));
  EXPECT_NE(registry->Condition().state, RegistryState::kReady);
  EXPECT_EQ(registry->Read(kMachine, kKey, "StudyAreaCollection")->data, "<A/>");
  EXPECT_EQ(registry->Condition().state, RegistryState::kReady);
}

}  // namespace
}  // namespace kvdm
