#include "host/os.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <system_error>
#include <tuple>

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

// No file can be opened while it lives.
class NoDescriptors {
 public:
  NoDescriptors() {
    ::getrlimit(RLIMIT_NOFILE, &old_);
    const rlimit none{0, old_.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &none);
  }
  ~NoDescriptors() { ::setrlimit(RLIMIT_NOFILE, &old_); }
  NoDescriptors(const NoDescriptors&) = delete;
  NoDescriptors& operator=(const NoDescriptors&) = delete;

 private:
  rlimit old_{};
};

TEST(PosixOsTest, WhatCantBeLookedAtIsNotMissing) {
  const TempFolder folder;
  const std::string path = os::ComponentPath(folder.Path());
  EXPECT_EQ(os::FindFolder({}, path + "\\"), path);
  EXPECT_EQ(os::FindFolder({}, path + "\\nowhere"), std::nullopt);
  EXPECT_TRUE(os::FoldersIn({}, path + "\\nowhere", "").empty());

  const NoDescriptors none;

  EXPECT_THROW(std::ignore = os::FilesIn(folder.Path()), std::system_error);
  EXPECT_THROW(std::ignore = os::FindFolder({}, path), std::system_error);
  EXPECT_THROW(std::ignore = os::FoldersIn({}, path, ""), std::system_error);
}

TEST(PosixOsTest, ListsHiddenFoldersAndNoLinks) {
  const TempFolder folder;
  fs::create_directory(folder.Path(".a1"));
  fs::create_directory(folder.Path("a2"));
  os::Replace(folder.Path(".a3"), "a file");
  fs::create_symlink("a2", folder.Path(".a4"));

  EXPECT_EQ(os::FoldersIn({}, os::ComponentPath(folder.Path()), ".a"),
            std::vector<std::string>{".a1"});
}

TEST(PosixOsTest, NoProjectOfAFolderAboveIsTakenForOneThatCantBeLookedFor) {
  const TempFolder folder;
  WriteProjectFile(folder.Path("North.kvdm"), Project());
  const fs::path before = fs::current_path();
  fs::current_path(folder.Path());
  ExitCode code = ExitCode::kDone;
  std::string sentence;
  try {
    const NoDescriptors none;
    std::ignore = FindProjectFile("");
  } catch (const Failure& failure) {
    code = failure.code();
    sentence = failure.what();
  }
  fs::current_path(before);

  EXPECT_EQ(code, ExitCode::kUnreadable);
  EXPECT_NE(sentence.find(fs::canonical(folder.Path()).string()), sentence.npos) << sentence;
}

TEST(PosixOsTest, GivesPathsTheFormOfTheComponent) {
  EXPECT_EQ(os::ComponentPath("/home/ann/./North"), R"(Z:\home\ann\North)");
}

}  // namespace
}  // namespace kvdm
