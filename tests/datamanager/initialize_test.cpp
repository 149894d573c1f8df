// DMInitialize: how the host's settings choose the working directory.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/failing_services.h"
#include "tests/test_world.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kNoSettings[] = "Cannot read working directory settings";
constexpr char kSetting[] = "VELKKVDirectory";

// A data manager that was not initialised yet.
struct InitializeTest : testing::Test {
  void Initialize(const Value& directory) {
    host->Settings()->SetProperty(kSetting, directory);
    manager->DMInitialize(host);
  }
  std::vector<std::string> Messages() const {
    std::vector<std::string> texts;
    for (const auto& message : platform.box->Messages()) texts.push_back(message.text);
    return texts;
  }

  MemoryPlatform platform;
  std::shared_ptr<PropertiesHost> host = std::make_shared<PropertiesHost>();
  std::shared_ptr<KVDataManager> manager = std::make_shared<KVDataManager>(platform.Bundle());
};

TEST_F(InitializeTest, TakesTheHostsSetting) {
  Initialize(R"(D:\Data)");
  EXPECT_EQ(manager->WorkingDirectory(), R"(D:\Data\)");
  EXPECT_EQ(manager->HostObject(), host);
  EXPECT_TRUE(manager->Resources());
  EXPECT_TRUE(platform.files->FolderExists(R"(D:\Data\CustLayers)"));
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(InitializeTest, ATrailingBackslashAndAnotherLetterCaseAreTheSameFolder) {
  platform.files->AddFolder(R"(D:\Data)");
  for (const auto* path : {R"(D:\Data\)", R"(d:\DATA)", "D:/Data", R"(D:\x\..\Data)"}) {
    Initialize(path);
    EXPECT_THAT(Messages(), IsEmpty()) << path;
    EXPECT_NE(manager->WorkingDirectory(), "") << path;
  }
}

TEST_F(InitializeTest, ADrivesRootIsAWorkingDirectory) {
  Initialize("D:\\");
  EXPECT_EQ(manager->WorkingDirectory(), "D:\\");
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(InitializeTest, WithoutAHostNothingChangesAndNothingIsShown) {
  Initialize(R"(D:\Data)");
  platform.files->AddFile(R"(D:\Data\KelvaroTemp\kept.shp)");
  manager->DMInitialize(nullptr);
  EXPECT_EQ(manager->WorkingDirectory(), R"(D:\Data\)");
  EXPECT_EQ(manager->HostObject(), nullptr);
  EXPECT_EQ(platform.files->FindFiles(R"(D:\Data\KelvaroTemp\*)").size(), 1U);
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(InitializeTest, WithoutAHostTheTextsAreThereAllTheSame) {
  manager->DMInitialize(nullptr);
  EXPECT_TRUE(manager->Resources());
  EXPECT_EQ(manager->WorkingDirectory(), "");
}

TEST_F(InitializeTest, AMissingLibraryOfTextsIsReportedEvenWithoutAHost) {
  auto services = platform.Bundle();
  const auto counter = std::make_shared<FailureCounter>();
  services.siblings = std::make_shared<FailingSiblings>(platform.siblings, counter);
  KVDataManager without_texts(services);
  counter->fail_at = counter->calls + 1;
  without_texts.DMInitialize(nullptr);
  counter->fail_at = counter->calls + 1;
  without_texts.DMInitialize(host);
  EXPECT_THAT(Messages(), ElementsAre(kNoSettings, kNoSettings));
  EXPECT_EQ(without_texts.HostObject(), host);
  EXPECT_EQ(without_texts.WorkingDirectory(), "");
}

TEST_F(InitializeTest, AHostWithoutSettingsIsReported) {
  manager->DMInitialize(std::make_shared<PropertiesHost>(host->CurrentState(), nullptr));
  EXPECT_THAT(platform.box->Messages(),
              ElementsAre(ShownMessage{kNoSettings, "Kelvaro", MessageStyle::kExclamation}));
  EXPECT_EQ(manager->WorkingDirectory(), "");
}

TEST_F(InitializeTest, AShareLosesALeadingBackslashAndIsReported) {
  platform.files->AddFolder(R"(C:\server)");
  Initialize(R"(\\server\share)");
  EXPECT_THAT(Messages(), ElementsAre(kNoSettings));
  EXPECT_EQ(manager->WorkingDirectory(), R"(\server\share\)");
  EXPECT_TRUE(platform.files->FolderExists(R"(C:\server\share\CustLayers)"));
}

// A file system that takes the folder as held for another one.
class OtherFolder : public FailingFileSystem {
 public:
  explicit OtherFolder(std::shared_ptr<FileSystem> files)
      : FailingFileSystem(std::move(files), std::make_shared<FailureCounter>()) {}
  std::string FullPath(std::string_view path) override {
    return path.ends_with('\\') ? R"(D:\Elsewhere)" : FailingFileSystem::FullPath(path);
  }
};

struct OtherFolderTest : InitializeTest {
  OtherFolderTest() {
    auto services = platform.Bundle();
    services.files = std::make_shared<OtherFolder>(platform.files);
    manager = std::make_shared<KVDataManager>(services);
  }
};

TEST_F(OtherFolderTest, ForgetsTheWorkingDirectoryButKeepsTheMetadataValid) {
  Initialize(R"(D:\Data)");
  EXPECT_EQ(manager->WorkingDirectory(), "");
  platform.files->AddFolder(R"(C:\a)");
  EXPECT_EQ(manager->GenerateFolderName("", "a"), "a1");
}

TEST_F(InitializeTest, WhicheverCallFailsNoErrorReachesTheHost) {
  const auto counter = std::make_shared<FailureCounter>();
  const auto failing = Failing(platform.Bundle(), counter);
  const auto failing_host = std::make_shared<FailingHost>(host, counter);
  host->Settings()->SetProperty(kSetting, R"(D:\Data)");
  int call = 0;
  do {
    platform.files->AddFile(R"(D:\Data\KelvaroTemp\sub\tmp.shp)");
    KVDataManager swept(failing);
    *counter = {0, ++call};
    EXPECT_NO_THROW(swept.DMInitialize(failing_host)) << "call " << call;
  } while (counter->calls >= call);
  EXPECT_GT(call, 12);
}

}  // namespace
}  // namespace kvdm
