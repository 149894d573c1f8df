#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include <kvdm/platform/posix/posix_platform.h>

#include "tests/temp_folder.h"

namespace kvdm {
namespace {

using testing::HasSubstr;

TEST(PosixPlatformTest, DrivesAreTheFoldersGiven) {
  const TempFolder folder;
  const Platform platform = MakePosixPlatform({.drives = {{'D', folder.Path()}}});
  platform.files->CreateFolder("D:\\Work");
  EXPECT_TRUE(std::filesystem::is_directory(folder.Path("Work")));
}

TEST(PosixPlatformTest, TheRegistryIsInTheFileGiven) {
  const TempFolder folder;
  const Platform platform = MakePosixPlatform({.registry_path = folder.Path("r.db")});
  EXPECT_TRUE(platform.registry->WriteText(RegistryRoot::kLocalMachine, "Key", "Name", "text"));
  EXPECT_TRUE(std::filesystem::exists(folder.Path("r.db")));
}

TEST(PosixPlatformTest, RegistryAndMessageBoxShareTheCodePage) {
  const TempFolder folder;
  std::string shown;
  const Platform platform = MakePosixPlatform(
      {.code_page = CodePage::kWindows1252,
       .registry_path = folder.Path("r.db"),
       .message_box = [&](auto text, auto /*caption*/, auto /*style*/) { shown = text; }});
  platform.message_box->Show("\u0416", "", MessageStyle::kPlain);
  EXPECT_EQ(shown, "?");
  EXPECT_FALSE(platform.registry->Holds(0x416));
}

TEST(PosixPlatformTest, TheRegistryNotesItsFailuresInTheLog) {
  const TempFolder folder;
  std::string noted;
  const Platform platform =
      MakePosixPlatform({.registry_path = folder.Path(), .log = [&](auto line) { noted = line; }});
  EXPECT_FALSE(platform.registry->WriteText(RegistryRoot::kLocalMachine, "Key", "Name", "text"));
  EXPECT_THAT(noted, HasSubstr(folder.Path()));
}

TEST(PosixPlatformTest, EveryServiceIsThere) {
  const Platform platform = MakePosixPlatform({});
  EXPECT_TRUE(platform.files && platform.registry && platform.message_box && platform.xml_parser &&
              platform.clock && platform.gis_core && platform.siblings && platform.log);
}

}  // namespace
}  // namespace kvdm
