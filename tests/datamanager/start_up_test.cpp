// What the data manager does when it is created, and what is left of it when that fails.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>

#include <kvdm/platform/portable/portable_services.h>

#include "platform/memory/failing_services.h"
#include "tests/test_world.h"
#include "util/registry_strings.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kStartFailed[] = "Couldn't read the preset data directory";
constexpr char kOnePreset[] = R"(<P><DATAITEM NAME="Shops" GUID="{1}">shops.shp</DATAITEM></P>)";

// A platform with a preset catalogue and a study area catalogue.
struct StartUpTest : testing::Test {
  StartUpTest() {
    Put(kPresetDataDirectoryValue, R"(D:\Presets)");
    Put(kStudyAreaCollectionValue, R"(<STUDYAREACOLLECTION A="1"/>)");
    platform.files->AddFile(R"(D:\Presets\PresetData.xml)", kOnePreset);
  }

  void Put(const char* name, std::string_view text) const {
    platform.registry->Put(RegistryRoot::kLocalMachine, kRegistryKey, name, RegistryType::kText,
                           text);
  }
  std::string Stored() const {
    return ToText(ReadRegistryString(*platform.registry, RegistryRoot::kLocalMachine, kRegistryKey,
                                     kStudyAreaCollectionValue));
  }
  std::shared_ptr<KVDataManager> Start() const { return Start(platform.Bundle()); }
  static std::shared_ptr<KVDataManager> Start(const Platform& services) {
    return std::make_shared<KVDataManager>(services);
  }

  MemoryPlatform platform;
};

class CountingDatasetManager : public DatasetManager {
 public:
  Value Initialize() override {
    ++initialized;
    if (fails) throw RuntimeError(kPermissionDenied);
    return 5;
  }
  int initialized = 0;
  bool fails = false;
};

class OneDatasetManager : public Siblings {
 public:
  std::shared_ptr<DatasetManager> CreateDatasetManager() override {
    if (!created) throw RuntimeError(kCannotCreateObject);
    return created;
  }
  std::shared_ptr<ResourceFinder> CreateResourceFinder() override {
    return MakePortableSiblings()->CreateResourceFinder();
  }
  std::shared_ptr<CountingDatasetManager> created = std::make_shared<CountingDatasetManager>();
};

// A parser that runs out of memory at its nth call.
class ExhaustedParser : public XmlParser {
 public:
  ExhaustedParser(std::shared_ptr<XmlParser> parser, int calls_left)
      : parser_(std::move(parser)), calls_left_(calls_left) {}
  bool Parse(std::string_view text, XmlEncoding encoding, XmlHandler& handler) override {
    if (--calls_left_ == 0) throw std::bad_alloc();
    return parser_->Parse(text, encoding, handler);
  }

 private:
  std::shared_ptr<XmlParser> parser_;
  int calls_left_;
};

TEST_F(StartUpTest, StartsWithoutWorkingDirectoryAndHostAndShowsNothing) {
  const auto manager = Start();
  EXPECT_EQ(manager->WorkingDirectory(), "");
  EXPECT_EQ(manager->HostObject(), nullptr);
  EXPECT_EQ(manager->Resources(), nullptr);
  EXPECT_THAT(platform.box->Messages(), IsEmpty());
}

TEST_F(StartUpTest, AParserThatFailsOnTheCatalogueIsNotReported) {
  auto services = platform.Bundle();
  services.xml_parser = std::make_shared<ExhaustedParser>(platform.xml_parser, 1);
  const auto manager = Start(services);
  EXPECT_THAT(platform.box->Messages(), IsEmpty());
  EXPECT_THAT(Texts(manager->PDataList()), ElementsAre("Shops"));
  EXPECT_EQ(manager->StudyAreaCollection()->StudyAreasList(), nullptr);
}

TEST_F(StartUpTest, AParserThatFailsOnThePresetsEndsTheStart) {
  auto services = platform.Bundle();
  services.xml_parser = std::make_shared<ExhaustedParser>(platform.xml_parser, 2);
  const auto manager = Start(services);
  EXPECT_THAT(platform.box->Messages(),
              ElementsAre(ShownMessage{kStartFailed, "Kelvaro", MessageStyle::kExclamation}));
  EXPECT_EQ(manager->GetDatasetManager(), nullptr);
}

TEST_F(StartUpTest, WithoutTheDatasetManagersLibraryThereAreNoPresets) {
  auto services = platform.Bundle();
  const auto siblings = std::make_shared<OneDatasetManager>();
  siblings->created = nullptr;
  services.siblings = siblings;
  const auto manager = Start(services);
  EXPECT_THAT(platform.box->Messages(),
              ElementsAre(ShownMessage{kStartFailed, "Kelvaro", MessageStyle::kExclamation}));
  EXPECT_EQ(manager->GetDatasetManager(), nullptr);
  EXPECT_EQ(manager->PDataList(), nullptr);
  EXPECT_EQ(manager->PDataGUIDList(), nullptr);
  EXPECT_EQ(manager->GetPDataFile("Shops"), "");
  EXPECT_EQ(manager->GetPDataFileByGUID("{1}"), "");
  EXPECT_EQ(platform.box->Messages().size(), 1U);
}

TEST_F(StartUpTest, ADatasetManagerThatCanNotBeInitialisedIsKept) {
  auto services = platform.Bundle();
  const auto siblings = std::make_shared<OneDatasetManager>();
  siblings->created->fails = true;
  services.siblings = siblings;
  const auto manager = Start(services);
  EXPECT_EQ(manager->GetDatasetManager(), siblings->created);
  EXPECT_EQ(manager->PDataList(), nullptr);
  EXPECT_EQ(platform.box->Messages().size(), 1U);
}

TEST_F(StartUpTest, AFailedStartLeavesTheDocumentsUsable) {
  auto services = platform.Bundle();
  const auto siblings = std::make_shared<OneDatasetManager>();
  siblings->created = nullptr;
  services.siblings = siblings;
  const auto manager = Start(services);
  EXPECT_TRUE(manager->AnalysisCollection());
  manager->Flush();
  EXPECT_EQ(Stored(), "<STUDYAREACOLLECTION A=\"1\"/>\r\n");
}

TEST_F(StartUpTest, WhicheverCallFailsTheObjectIsCreatedAndAtMostOneMessageShown) {
  const auto counter = std::make_shared<FailureCounter>();
  int call = 0;
  do {
    platform.box->Clear();
    *counter = {0, ++call};
    const auto manager = Start(Failing(platform.Bundle(), counter));
    const bool failed = !platform.box->Messages().empty();
    EXPECT_EQ(manager->PDataList() == nullptr, failed) << "call " << call;
    EXPECT_LE(platform.box->Messages().size(), 1U) << "call " << call;
    EXPECT_TRUE(manager->AnalysisCollection()) << "call " << call;
  } while (counter->calls >= call);
  EXPECT_GT(call, 5);
}

}  // namespace
}  // namespace kvdm
