// The study area catalogue in the registry.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

#include "platform/memory/failing_services.h"
#include "tests/test_world.h"
#include "util/registry_strings.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kDamaged[] = "<STUDYAREACOLLECTION><STUDYAREA NAME=\"_North_\"/>";
constexpr char kEmptyCatalogue[] = "<STUDYAREACOLLECTION/>\r\n";

// What was kept of the catalogue.
std::vector<KeptValue> Kept(const MemoryPlatform& platform) {
  return platform.registry->Kept(RegistryRoot::kLocalMachine, R"(Software\Velk\Kelvaro)",
                                 "StudyAreaCollection");
}

// A registry whose writes end in an error.
class BrokenRegistry : public FailingRegistry {
 public:
  BrokenRegistry(std::shared_ptr<Registry> inner, std::function<void()> fails)
      : FailingRegistry(std::move(inner), std::make_shared<FailureCounter>()),
        fails_(std::move(fails)) {}
  bool Update(RegistryRoot, std::string_view, std::string_view, const TextUpdate&) override {
    fails_();
    return true;
  }

 private:
  std::function<void()> fails_;
};

// What Flush shows when the write ends in `fails`.
ShownMessage MessageOf(std::function<void()> fails) {
  const MemoryPlatform platform;
  auto services = platform.Bundle();
  services.registry = std::make_shared<BrokenRegistry>(platform.registry, std::move(fails));
  EXPECT_FALSE(KVDataManager(services).Flush());
  const auto& messages = platform.box->Messages();
  return messages.size() == 1 ? messages[0] : ShownMessage{};
}

TEST(FlushTest, ANegativeNumberHasNoLeadingBlank) {
  EXPECT_EQ(MessageOf([] { throw RuntimeError(kAutomationFailure); }).text,
            "error while saving XML  -2147467259Automation error");
  EXPECT_EQ(MessageOf([] { throw std::runtime_error("disk gone"); }).text,
            "error while saving XML  -2147467259disk gone");
}

TEST(FlushTest, ARefusedWriteIsFalseTooAndShowsNothing) {
  TestWorld world;
  world.LoadCatalogue("<STUDYAREACOLLECTION A=\"old\"/>");
  world.platform.registry->SetWritable(false);
  EXPECT_FALSE(world.manager->Flush());
  EXPECT_EQ(world.StoredCatalogue(), "<STUDYAREACOLLECTION A=\"old\"/>");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(FlushTest, ABrokenMessageBoxDoesNotReachTheCaller) {
  const MemoryPlatform platform;
  auto services = platform.Bundle();
  services.registry = std::make_shared<BrokenRegistry>(
      platform.registry, [] { throw RuntimeError(kPermissionDenied); });
  services.message_box = std::make_shared<FailingMessageBox>(
      platform.box, std::make_shared<FailureCounter>(FailureCounter{.fail_at = 1}));
  KVDataManager manager(services);
  EXPECT_NO_THROW(manager.Flush());
}

TEST(FlushTest, ADamagedCatalogueIsPreservedOnceBeforeItIsOverwritten) {
  TestWorld world;
  world.LoadCatalogue(kDamaged);
  EXPECT_THAT(Kept(world.platform), IsEmpty());
  world.manager->Flush();
  world.manager->Flush();
  const auto preserved = Kept(world.platform);
  ASSERT_EQ(preserved.size(), 1U);
  EXPECT_EQ(preserved[0].value, (RegistryValue{RegistryType::kText, kDamaged}));
  EXPECT_EQ(world.StoredCatalogue(), "");
}

TEST(FlushTest, AfterADamagedCatalogueTheNextStartBeginsAnew) {
  TestWorld world;
  world.LoadCatalogue(kDamaged);
  world.manager->Flush();
  world.Restart();
  EXPECT_TRUE(world.manager->StudyAreaCollection()->CreateStudyArea("South"));
  world.Restart();
  EXPECT_THAT(Texts(world.manager->StudyAreaCollection()->StudyAreasList()), ElementsAre("South"));
  EXPECT_EQ(Kept(world.platform).size(), 1U);
}

TEST(FlushTest, AValueThatIsNoStringIsPreservedToo) {
  const MemoryPlatform platform;
  platform.registry->Put(RegistryRoot::kLocalMachine, kRegistryKey, kStudyAreaCollectionValue,
                         RegistryType::kExpandText, "<STUDYAREACOLLECTION A=\"1\"/>");
  KVDataManager manager(platform.Bundle());
  manager.Flush();
  ASSERT_EQ(Kept(platform).size(), 1U);
  EXPECT_EQ(Kept(platform)[0].value.type, RegistryType::kExpandText);
  EXPECT_EQ(
      platform.registry->Read(RegistryRoot::kLocalMachine, kRegistryKey, kStudyAreaCollectionValue),
      (RegistryValue{RegistryType::kText, kEmptyCatalogue}));
}

TEST(FlushTest, ACatalogueThatWasUnderstoodIsNotPreserved) {
  for (const std::string text : {"", "<STUDYAREACOLLECTION/>", "<OTHER/>"}) {
    TestWorld world;
    world.LoadCatalogue(text);
    world.manager->Flush();
    EXPECT_THAT(Kept(world.platform), IsEmpty()) << text;
  }
  TestWorld without;
  without.manager->Flush();
  EXPECT_THAT(Kept(without.platform), IsEmpty());
}

TEST(FlushTest, KeepsWhatItDoesNotKnowByteForByte) {
  TestWorld world;
  const std::string text =
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n<!--mine--><STUDYAREACOLLECTION X=\"&#9;&#10;"
      "&#13;&quot;'\">\r\n  <STUDYAREA/>text &lt;&amp;&gt;<EXTRA A=\"北\"/>"
      "</STUDYAREACOLLECTION>";
  world.LoadCatalogue(text);
  world.manager->Flush();
  const auto once = world.StoredCatalogue();
  EXPECT_THAT(once, HasSubstr("X=\"&#9;&#10;&#13;&quot;'\">\r\n  <STUDYAREA/>text &lt;&amp;&gt;"
                              "<EXTRA A=\"北\"/></STUDYAREACOLLECTION>\r\n"));
  EXPECT_THAT(once, HasSubstr("<!--mine-->"));
  world.Restart();
  world.manager->Flush();
  EXPECT_EQ(world.StoredCatalogue(), once);
}

struct Windows1252Test : testing::Test {
  std::shared_ptr<IKVStudyAreaCollection> StudyAreas() const {
    return world.manager->StudyAreaCollection();
  }
  TestWorld world{CodePage::kWindows1252};
};

TEST_F(Windows1252Test, NamesSurviveARestart) {
  const std::vector<std::string> names = {"Läden 5 €", "Жар", "北区 \U0001F600", "ā & A"};
  for (const auto& name : names) EXPECT_TRUE(StudyAreas()->CreateStudyArea(name)) << name;
  world.Restart();
  EXPECT_EQ(Texts(StudyAreas()->StudyAreasList()), names);
  for (const auto& name : names) EXPECT_TRUE(StudyAreas()->StudyAreaExists(name)) << name;
  EXPECT_FALSE(StudyAreas()->StudyAreaExists("???"));
}

TEST_F(Windows1252Test, CharactersItLacksAreStoredAsReferences) {
  ASSERT_TRUE(StudyAreas()->CreateStudyArea("Жä"));
  EXPECT_THAT(world.StoredCatalogue(), HasSubstr("NAME=\"_&#1046;ä_\""));
}

TEST_F(Windows1252Test, CommentsAndFoldersSurviveARestart) {
  const std::string comments = "  北区: <Ж> & \"\U0001F600\"  ";
  ASSERT_TRUE(StudyAreas()->CreateStudyArea("Жар"));
  StudyAreas()->GetStudyArea("Жар")->SetComments(comments);
  world.Restart();
  EXPECT_EQ(StudyAreas()->GetStudyArea("Жар")->Comments(), comments);
  EXPECT_TRUE(
      world.platform.files->FolderExists(StudyAreas()->GetStudyArea("Жар")->StudyAreaDir()));
}

TEST_F(Windows1252Test, TheWholeCatalogueIsStoredHoweverManyBytesItTakes) {
  const std::string name(200, 'x');
  for (int i = 0; i < 20; ++i) {
    ASSERT_TRUE(StudyAreas()->CreateStudyArea(std::to_string(i) + "ж" + name));
  }
  world.Restart();
  EXPECT_EQ(StudyAreas()->StudyAreasList()->Count(), 20);
}

TEST_F(Windows1252Test, TheMetadataDocumentDoesNotPassTheCodePage) {
  ASSERT_TRUE(world.manager->CustLayerCollection()->CreateCustLayer("Жар"));
  EXPECT_THAT(world.Metadata(), HasSubstr("NAME=\"_Жар_\""));
}

// A registry that tells when it was changed, and counts who asks it for an update.
class StampedRegistry : public FailingRegistry {
 public:
  explicit StampedRegistry(std::shared_ptr<Registry> inner)
      : FailingRegistry(std::move(inner), std::make_shared<FailureCounter>()) {}
  [[nodiscard]] std::string Stamp() const override { return stamp; }
  bool Update(RegistryRoot root, std::string_view key, std::string_view name,
              const TextUpdate& update) override {
    ++updates;
    return !refuses && FailingRegistry::Update(root, key, name, update);
  }

  std::string stamp = "1";
  bool refuses = false;
  int updates = 0;
};

class UnchangedFlushTest : public testing::Test {
 protected:
  UnchangedFlushTest() {
    services_.registry = registry_;
    manager_ = std::make_shared<KVDataManager>(services_);
  }
  // How many updates a Flush asks for.
  int Updates() {
    registry_->updates = 0;
    manager_->Flush();
    return registry_->updates;
  }

  MemoryPlatform platform_;
  Platform services_ = platform_.Bundle();
  std::shared_ptr<StampedRegistry> registry_ =
      std::make_shared<StampedRegistry>(platform_.registry);
  std::shared_ptr<KVDataManager> manager_;
};

TEST_F(UnchangedFlushTest, AsksForNothingWhenNobodyChangedAnything) {
  EXPECT_EQ(Updates(), 1);
  EXPECT_EQ(Updates(), 0);
}

TEST_F(UnchangedFlushTest, SavesWhatWasChangedHere) {
  manager_->Flush();
  ASSERT_TRUE(manager_->StudyAreaCollection()->CreateStudyArea("North"));
  EXPECT_THAT(
      platform_.registry->Read(RegistryRoot::kLocalMachine, kRegistryKey, "StudyAreaCollection")
          ->data,
      HasSubstr("_North_"));
  manager_->StudyAreaCollection()->GetStudyArea("North")->SetComments("new");
  EXPECT_THAT(
      platform_.registry->Read(RegistryRoot::kLocalMachine, kRegistryKey, "StudyAreaCollection")
          ->data,
      HasSubstr(">new<"));
}

TEST_F(UnchangedFlushTest, LooksAgainWhenTheRegistryWasTouched) {
  manager_->Flush();
  registry_->stamp = "2";
  EXPECT_EQ(Updates(), 1);
  EXPECT_EQ(Updates(), 0);
}

TEST_F(UnchangedFlushTest, LooksEachTimeWhereNothingTellsOfChanges) {
  registry_->stamp = "";
  EXPECT_EQ(Updates(), 1);
  EXPECT_EQ(Updates(), 1);
}

TEST_F(UnchangedFlushTest, TriesAgainAfterARefusal) {
  registry_->refuses = true;
  EXPECT_EQ(Updates(), 1);
  EXPECT_EQ(Updates(), 1);
  registry_->refuses = false;
  EXPECT_EQ(Updates(), 1);
  EXPECT_EQ(Updates(), 0);
}

}  // namespace
}  // namespace kvdm
