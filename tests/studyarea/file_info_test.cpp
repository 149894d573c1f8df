#include <gtest/gtest.h>

#include "studyarea/kv_file_info.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

TEST(FileInfoTest, SplitsPaths) {
  const struct {
    const char* path;
    const char* parent;
    const char* name;
    const char* extension;
  } rows[] = {
      {R"(C:\data\roads.shp)", R"(C:\data\)", "roads", "shp"},
      {R"(C:\data\archive.tar.gz)", R"(C:\data\)", "archive.tar", "gz"},
      {R"(C:\data\README)", R"(C:\data\)", "README", ""},
      {R"(C:\data\.profile)", R"(C:\data\)", "", "profile"},
      {R"(C:\data\)", R"(C:\data\)", "", ""},
      {"roads.shp", "", "roads", "shp"},
      {R"(C:\data\file.)", R"(C:\data\)", "file.", ""},
      {"C:/data/roads.shp", "", "C:/data/roads", "shp"},
      // A dot in a folder's name is none of the file's.
      {R"(C:\data.old\README)", R"(C:\data.old\)", "README", ""},
      {R"(C:\data.old\)", R"(C:\data.old\)", "", ""},
      {"a..b", "", "a.", "b"},
      {"a.b.", "", "a.", "b"},
      {"a..", "", "a..", ""},
      {".a.", "", ".", "a"},
      {"..", "", "..", ""},
      {".", "", ".", ""},
      {R"(\)", R"(\)", "", ""},
      {R"(\\)", R"(\\)", "", ""},
      {R"(\\server\share\a.b)", R"(\\server\share\)", "a", "b"},
      {R"(C:\\a\\b.c)", R"(C:\\a\\)", "b", "c"},
      {R"(C:\Ärger\店舗.データ)", R"(C:\Ärger\)", "店舗", "データ"},
      {" ", "", " ", ""},
      {R"(a\ . )", R"(a\)", " ", " "},
      {"a\"b\n.c", "", "a\"b\n", "c"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.path);
    KVFileInfo info;
    info.SetFullPath(row.path);
    EXPECT_EQ(info.ParentDirPath(), row.parent);
    EXPECT_EQ(info.FileName(), row.name);
    EXPECT_EQ(info.FileNameExtension(), row.extension);
    EXPECT_EQ(info.FullPath(), row.path);
  }
}

TEST(FileInfoTest, SplitsAVeryLongPath) {
  const std::string folder = "C:\\" + std::string(40000, 'd') + "\\";
  KVFileInfo info;
  info.SetFullPath(folder + std::string(40000, 'n') + ".x");
  EXPECT_EQ(info.ParentDirPath(), folder);
  EXPECT_EQ(info.FileName(), std::string(40000, 'n'));
  EXPECT_EQ(info.FileNameExtension(), "x");
}

TEST(FileInfoTest, StartsWithAnEmptyPath) { EXPECT_EQ(KVFileInfo().FullPath(), ""); }

TEST(FileInfoTest, AnEmptyPathCannotBeSplit) {
  KVFileInfo info;
  EXPECT_RUNTIME_ERROR(info.ParentDirPath(), kInvalidCall);
  EXPECT_RUNTIME_ERROR(info.FileName(), kInvalidCall);
  EXPECT_RUNTIME_ERROR(info.FileNameExtension(), kInvalidCall);
}

TEST(FileInfoTest, TheLastPathSetCounts) {
  KVFileInfo info;
  info.SetFullPath(R"(C:\a.b)");
  info.SetFullPath(R"(D:\c.d)");
  EXPECT_EQ(info.FileName(), "c");
  info.SetFullPath("");
  EXPECT_RUNTIME_ERROR(info.FileName(), kInvalidCall);
}

}  // namespace
}  // namespace kvdm
