#include "host/os.h"

#include <gtest/gtest.h>

#include "host/project_file.h"
#include "tests/temp_folder.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

TEST(PosixOsTest, PutsAFileInPlaceWithThePermissionsOfTheOther) {
  const TempFolder folder;
  const fs::path file = folder.Path("file");
  os::WriteBytes(file, "old");
  os::WriteBytes(folder.Path("new"), "new");
  fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);

  os::PutInPlace(folder.Path("new"), file);

  EXPECT_EQ(os::ReadBytes(file), "new");
  EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(PosixOsTest, FindsAProjectThroughALink) {
  const TempFolder folder;
  const fs::path file = folder.Path("North.kvdm");
  WriteProjectFile(file, Project());
  fs::create_symlink(file, folder.Path("link"));

  EXPECT_EQ(FindProjectFile(folder.Path("link")), fs::canonical(file));
}

TEST(PosixOsTest, GivesPathsTheFormOfTheComponent) {
  EXPECT_EQ(os::ComponentPath("/home/ann/./North"), R"(Z:\home\ann\North)");
}

}  // namespace
}  // namespace kvdm
