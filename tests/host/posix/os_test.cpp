#include "host/os.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <system_error>

#include "host/project_file.h"
#include "tests/temp_folder.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

TEST(PosixOsTest, PutsAFileInPlaceWithThePermissionsOfTheOther) {
  const TempFolder folder;
  const fs::path file = folder.Path("file");
  os::Replace(file, "old");
  fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);

  os::Replace(file, "new", folder.Path("second"));

  EXPECT_EQ(os::ReadBytes(file), "new");
  EXPECT_EQ(os::ReadBytes(folder.Path("second")), "old");
  EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(os::FilesIn(folder.Path()).size(), 2U);
}

TEST(PosixOsTest, WritesThroughNoLink) {
  const TempFolder folder;
  os::Replace(folder.Path("other"), "other");
  fs::create_symlink("other", folder.Path("link"));
  fs::create_symlink("nowhere", folder.Path("dangling"));

  EXPECT_THROW(os::Replace(folder.Path("link"), "new"), std::system_error);
  EXPECT_THROW(os::Replace(folder.Path("dangling"), "new"), std::system_error);
  EXPECT_THROW(static_cast<void>(os::TryLock(folder.Path("dangling"))), std::system_error);

  EXPECT_EQ(os::ReadBytes(folder.Path("other")), "other");
  EXPECT_FALSE(os::Exists(folder.Path("nowhere")));
}

TEST(PosixOsTest, WaitsForNobodyAtAPipe) {
  const TempFolder folder;
  const std::string pipe = folder.Path("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);

  EXPECT_THROW(os::Replace(pipe, "new"), std::system_error);
  EXPECT_THROW(static_cast<void>(os::TryLock(pipe)), std::system_error);
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
