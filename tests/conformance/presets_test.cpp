// The preset data catalogue.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/conformance/results.h"
#include "tests/conformance/world.h"

namespace kvdm::conformance {
namespace {

using testing::IsEmpty;

// A data manager whose preset catalogue is `text`.
struct PresetWorld : World {
  explicit PresetWorld(std::string_view text) {
    PutRegistryText("Preset Data Directory", R"(C:\Preset)");
    AddFile(R"(C:\Preset\PresetData.xml)", text);
  }
};

constexpr char kCatalogue[] =
    R"(<?xml version="1.0"?><PRESETS><!--roads--><DATAITEM NAME="Roads" GUID="{1}">roads.shp)"
    R"(</DATAITEM><OTHER NAME="Hidden"/><DATAITEM NAME="_Rivers_" GUID="{2}">w\rivers.shp)"
    R"(</DATAITEM><GROUP><DATAITEM NAME="Deep">deep.shp</DATAITEM></GROUP></PRESETS>)";

TEST(PresetsConformance, ListsTheNamesAsStoredInDocumentOrder) {
  PresetWorld world(kCatalogue);
  EXPECT_EQ(TextsOf(world.Manager()->PDataList()), (Texts{"Roads", "_Rivers_"}));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(PresetsConformance, GivesANewListEachTime) {
  PresetWorld world(kCatalogue);
  EXPECT_NE(world.Manager()->PDataList(), world.Manager()->PDataList());
}

TEST(PresetsConformance, GivesTheFullPathOfAFile) {
  PresetWorld world(kCatalogue);
  EXPECT_EQ(world.Manager()->GetPDataFile("Roads"), R"(C:\Preset\roads.shp)");
  EXPECT_EQ(world.Manager()->GetPDataFile("_Rivers_"), R"(C:\Preset\w\rivers.shp)");
}

TEST(PresetsConformance, ListsAnItemWithoutANameAsNull) {
  PresetWorld world("<P><DATAITEM GUID='{1}'/><DATAITEM NAME=''/></P>");
  EXPECT_EQ(TextsOf(world.Manager()->PDataList()), (Texts{"(null)", ""}));
}

TEST(PresetsConformance, TrimsTheFilesName) {
  PresetWorld world(
      "<P><DATAITEM NAME='a'>\n  sub\\a b.shp\t</DATAITEM><DATAITEM NAME='b'> \r\n </DATAITEM>"
      "<DATAITEM NAME='c'/></P>");
  EXPECT_EQ(world.Manager()->GetPDataFile("a"), R"(C:\Preset\sub\a b.shp)");
  EXPECT_EQ(world.Manager()->GetPDataFile("b"), R"(C:\Preset\)");
  EXPECT_EQ(world.Manager()->GetPDataFile("c"), R"(C:\Preset\)");
}

TEST(PresetsConformance, FindsANameOfAnyOtherCharacters) {
  PresetWorld world("<P><DATAITEM NAME=\"a'&lt;&amp;]&#9;\xE4\xB8\xAD\">1.shp</DATAITEM></P>");
  EXPECT_EQ(world.Manager()->GetPDataFile("a'<&]\t\xE4\xB8\xAD"), R"(C:\Preset\1.shp)");
}

TEST(PresetsConformance, HasNoFileForAnUnknownName) {
  PresetWorld world(kCatalogue);
  for (const char* name : {"Rivers", "roads", "Hidden", "Deep", "", "{1}"}) {
    EXPECT_EQ(world.Manager()->GetPDataFile(name), "") << name;
  }
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(PresetsConformance, ReportsANameWithADoubleQuote) {
  PresetWorld world(kCatalogue);
  EXPECT_EQ(world.Manager()->GetPDataFile("x\" or \"1\"=\"1"), "");
  EXPECT_THAT(world.Messages(), testing::ElementsAre(Message{
                                    "Couldn't get Preset Data shape file name", "Kelvaro", 48}));
}

TEST(PresetsConformance, TakesTheFirstOfTwoItemsOfOneName) {
  PresetWorld world(
      R"(<P><DATAITEM NAME="A">1.shp</DATAITEM><DATAITEM NAME="A">2.shp</DATAITEM></P>)");
  EXPECT_EQ(world.Manager()->GetPDataFile("A"), R"(C:\Preset\1.shp)");
}

TEST(PresetsConformance, AreEmptyWhenTheFileCannotBeLoaded) {
  for (const char* text : {"", "<P><DATAITEM NAME='A'>", "no xml", "<P/><P/>"}) {
    PresetWorld world(text);
    EXPECT_THAT(TextsOf(world.Manager()->PDataList()), IsEmpty()) << text;
    EXPECT_EQ(world.Manager()->GetPDataFile("A"), "") << text;
    EXPECT_THAT(world.Messages(), IsEmpty()) << text;
  }
}

TEST(PresetsConformance, AreEmptyWithoutAFileOrDirectory) {
  World without_directory;
  World without_file;
  without_file.PutRegistryText("Preset Data Directory", R"(C:\Nowhere)");
  for (World* world : {&without_directory, &without_file}) {
    EXPECT_THAT(TextsOf(world->Manager()->PDataList()), IsEmpty());
    EXPECT_EQ(world->Manager()->GetPDataFile("Roads"), "");
    EXPECT_THAT(world->Messages(), IsEmpty());
  }
}

TEST(PresetsConformance, AreReadOnceAtCreation) {
  PresetWorld world(kCatalogue);
  const auto manager = world.Manager();
  world.AddFile(R"(C:\Preset\PresetData.xml)", "<P/>");
  EXPECT_EQ(TextsOf(manager->PDataList()), (Texts{"Roads", "_Rivers_"}));
}

TEST(PresetsConformance, NeedADirectoryThatIsStoredAsText) {
  World world;
  world.PutRegistryNumber("Preset Data Directory", 7);
  world.AddFile(R"(C:\Preset\PresetData.xml)", kCatalogue);
  EXPECT_THAT(TextsOf(world.Manager()->PDataList()), IsEmpty());
}

}  // namespace
}  // namespace kvdm::conformance
