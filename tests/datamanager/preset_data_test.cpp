// The preset data catalogue.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/failing_services.h"
#include "tests/test_world.h"
#include "util/registry_strings.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kNoFile[] = "Couldn't get Preset Data shape file name";

// A world that starts with the preset catalogue `xml` in `folder`.
struct PresetWorld : TestWorld {
  explicit PresetWorld(std::string_view xml, std::string_view folder = R"(D:\Presets)") {
    platform.registry->Put(RegistryRoot::kLocalMachine, kRegistryKey, kPresetDataDirectoryValue,
                           RegistryType::kText, folder);
    platform.files->AddFile(std::string(folder) + R"(\PresetData.xml)", xml);
    Restart();
  }
};

constexpr char kPresets[] =
    "<?xml version='1.0'?><!--c--><PRESETS>text\n"
    "  <DATAITEM NAME='Shops' GUID='{1}'>shops.shp</DATAITEM><!--c-->\n"
    "  <OTHER NAME='x' GUID='{x}'>x.shp</OTHER><dataitem NAME='y'/>\n"
    "  <DATAITEM NAME='_Roads_' GUID='{2}'>\n    sub\\roads.shp\t</DATAITEM>\n"
    "  <GROUP><DATAITEM NAME='inner' GUID='{3}'>inner.shp</DATAITEM></GROUP>\n"
    "  <DATAITEM NAME='Shops' GUID='{1}'>second.shp</DATAITEM>\n"
    "</PRESETS>";

TEST(PresetDataTest, ListsTheItemsOfTheRootInOrderAsStored) {
  PresetWorld world(kPresets);
  EXPECT_THAT(Texts(world.manager->PDataList()), ElementsAre("Shops", "_Roads_", "Shops"));
  EXPECT_THAT(Texts(world.manager->PDataGUIDList()), ElementsAre("{1}", "{2}", "{1}"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(PresetDataTest, AnItemWithoutNameOrIdentifierIsListedAsNull) {
  PresetWorld world("<P><DATAITEM GUID='{1}'/><DATAITEM NAME=''/></P>");
  EXPECT_THAT(Texts(world.manager->PDataList()), ElementsAre("(null)", ""));
  EXPECT_THAT(Texts(world.manager->PDataGUIDList()), ElementsAre("{1}", "(null)"));
}

TEST(PresetDataTest, TheFileIsInThePresetFolder) {
  PresetWorld world(kPresets);
  EXPECT_EQ(world.manager->GetPDataFileByGUID("{1}"), R"(D:\Presets\shops.shp)");
  EXPECT_EQ(world.manager->GetPDataFile("Shops"), R"(D:\Presets\shops.shp)");
}

TEST(PresetDataTest, AnUnknownItemHasNoFileAndNoMessage) {
  PresetWorld world(kPresets);
  for (const auto* name : {"", "Nothing", "Roads", "shops", "inner", "x", "{1}", "'", "北区"}) {
    EXPECT_EQ(world.manager->GetPDataFile(name), "") << name;
  }
  EXPECT_EQ(world.manager->GetPDataFileByGUID("Shops"), "");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(PresetDataTest, AKeyWithADoubleQuoteIsReported) {
  PresetWorld world(kPresets);
  EXPECT_EQ(world.manager->GetPDataFile("x\" or \"1\"=\"1"), "");
  EXPECT_EQ(world.manager->GetPDataFileByGUID("\""), "");
  EXPECT_THAT(world.Messages(), ElementsAre(kNoFile, kNoFile));
}

TEST(PresetDataTest, AFolderWithATrailingBackslashIsTakenAsItStands) {
  PresetWorld world(kPresets, R"(D:\Presets\)");
  EXPECT_EQ(world.manager->GetPDataFile("Shops"), R"(D:\Presets\\shops.shp)");
}

TEST(PresetDataTest, WithoutAFolderTheCatalogueIsAtTheRootOfTheCurrentDrive) {
  PresetWorld world(kPresets, "");
  EXPECT_EQ(world.manager->GetPDataFile("Shops"), R"(\shops.shp)");
}

TEST(PresetDataTest, ADirectoryThatIsNoStringCountsAsNone) {
  TestWorld world;
  world.platform.registry->Put(RegistryRoot::kLocalMachine, kRegistryKey, kPresetDataDirectoryValue,
                               RegistryType::kExpandText, R"(D:\Presets)");
  world.platform.files->AddFile(R"(D:\Presets\PresetData.xml)", kPresets);
  world.Restart();
  EXPECT_THAT(Texts(world.manager->PDataList()), IsEmpty());
}

}  // namespace
}  // namespace kvdm
