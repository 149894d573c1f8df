// KVFileInfo: a path in parts.
#include <gtest/gtest.h>

#include "tests/conformance/results.h"
#include "tests/conformance/world.h"

namespace kvdm::conformance {
namespace {

TEST(FileInfoConformance, SplitsPaths) {
  struct Row {
    const char* path;
    const char* parent;
    const char* name;
    const char* extension;
  };
  World world;
  const auto info = world.New<IKVFileInfo>("KVFileInfo");
  for (const Row& row : {Row{R"(C:\data\roads.shp)", R"(C:\data\)", "roads", "shp"},
                         Row{R"(C:\data\archive.tar.gz)", R"(C:\data\)", "archive.tar", "gz"},
                         Row{R"(C:\data\README)", R"(C:\data\)", "README", ""},
                         Row{R"(C:\data\.profile)", R"(C:\data\)", "", "profile"},
                         Row{R"(C:\data\)", R"(C:\data\)", "", ""},
                         Row{"roads.shp", "", "roads", "shp"},
                         Row{R"(C:\data\file.)", R"(C:\data\)", "file.", ""},
                         Row{"C:/data/roads.shp", "", "C:/data/roads", "shp"},
                         Row{R"(C:\da.ta\roads)", R"(C:\da.ta\)", "roads", ""},
                         Row{R"(\\server\share\a.b)", R"(\\server\share\)", "a", "b"},
                         Row{R"(C:\a..b)", R"(C:\)", "a.", "b"},
                         Row{R"(C:\..)", R"(C:\)", "..", ""},
                         Row{"..", "", "..", ""},
                         Row{".", "", ".", ""},
                         Row{R"(\)", R"(\)", "", ""},
                         Row{" ", "", " ", ""},
                         Row{R"(C:\da.ta\)", R"(C:\da.ta\)", "", ""},
                         Row{"a.b.", "", "a.", "b"},
                         Row{"a..", "", "a..", ""},
                         Row{".a.", "", ".", "a"},
                         Row{R"(\\)", R"(\\)", "", ""},
                         Row{R"(C:\\a\\b.c)", R"(C:\\a\\)", "b", "c"},
                         Row{R"(a\ . )", R"(a\)", " ", " "},
                         Row{"a\"b\n.c", "", "a\"b\n", "c"},
                         Row{"C:\\\xE4\xB8\xAD\xC3\xA9.\xE6\x96\x87", "C:\\",
                             "\xE4\xB8\xAD\xC3\xA9", "\xE6\x96\x87"}}) {
    info->SetFullPath(row.path);
    EXPECT_EQ(info->FullPath(), row.path);
    EXPECT_EQ(info->ParentDirPath(), row.parent) << row.path;
    EXPECT_EQ(info->FileName(), row.name) << row.path;
    EXPECT_EQ(info->FileNameExtension(), row.extension) << row.path;
  }
}

TEST(FileInfoConformance, SplitsAVeryLongPath) {
  const std::string folder = "C:\\" + std::string(40000, 'd') + "\\";
  const std::string name(40000, 'n');
  World world;
  const auto info = world.New<IKVFileInfo>("KVFileInfo");
  info->SetFullPath(folder + name + ".x");
  EXPECT_EQ(info->ParentDirPath(), folder);
  EXPECT_EQ(info->FileName(), name);
  EXPECT_EQ(info->FileNameExtension(), "x");
}

TEST(FileInfoConformance, HasAnEmptyPathAtFirst) {
  World world;
  EXPECT_EQ(world.New<IKVFileInfo>("KVFileInfo")->FullPath(), "");
}

TEST(FileInfoConformance, FailsOnAnEmptyPath) {
  World world;
  const auto info = world.New<IKVFileInfo>("KVFileInfo");
  EXPECT_EQ(OutcomeOf([&] { info->ParentDirPath(); }), Fails(5));
  EXPECT_EQ(OutcomeOf([&] { info->FileName(); }), Fails(5));
  EXPECT_EQ(OutcomeOf([&] { info->FileNameExtension(); }), Fails(5));
}

}  // namespace
}  // namespace kvdm::conformance
