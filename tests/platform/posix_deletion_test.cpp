// Deleting on a POSIX system: what only its links, mounts and deep trees ask for. The rest is in
// the contract.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>

#include "platform/posix/posix_file_system.h"
#include "tests/platform/temporary_drive.h"
#include "tests/throws_number.h"
#include "util/kvdm_utils.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;
using ::testing::IsEmpty;

// A folder "D:\North" to be deleted, and one beside it that must stay.
class PosixDeletionTest : public ::testing::Test {
 protected:
  PosixDeletionTest() {
    fs::create_directories(drive_.At("North"));
    fs::create_directories(drive_.At("Target/Inner"));
    drive_.Put("Target/keep");
    drive_.Put("Target/Inner/keep");
  }

  bool Delete() { return DeleteFolderTree(files_, R"(D:\North\)"); }
  bool TargetIsWhole() const {
    return drive_.Has("Target/keep") && drive_.Has("Target/Inner/keep");
  }

  TemporaryDrive drive_;
  std::shared_ptr<FileSystem> made_ = MakePosixFileSystem(drive_.Options());
  FileSystem& files_ = *made_;
};

// --- Links

TEST_F(PosixDeletionTest, LinksBelowTheFolderGoAndAreNotEntered) {
  fs::create_directories(drive_.At("North/a/b"));
  fs::create_directory_symlink(drive_.At("Target"), drive_.At("North/a/b/link"));
  fs::create_symlink(drive_.At("Target/keep"), drive_.At("North/a/file"));
  fs::create_symlink("..", drive_.At("North/around"));
  EXPECT_TRUE(Delete());
  EXPECT_FALSE(drive_.Has("North"));
  EXPECT_TRUE(TargetIsWhole());
}

TEST_F(PosixDeletionTest, AFolderThatIsALinkStaysWithItsTarget) {
  fs::create_directory_symlink(drive_.At("Target"), drive_.At("Link"));
  EXPECT_FALSE(DeleteFolderTree(files_, R"(D:\Link\)"));
  EXPECT_TRUE(drive_.Has("Link"));
  EXPECT_TRUE(TargetIsWhole());
}

TEST_F(PosixDeletionTest, ALinkOnTheWayToTheFolderIsFollowed) {
  fs::create_directory_symlink(drive_.At("Target"), drive_.At("Link"));
  EXPECT_TRUE(DeleteFolderTree(files_, R"(D:\Link\Inner\)"));
  EXPECT_FALSE(drive_.Has("Target/Inner"));
  EXPECT_TRUE(drive_.Has("Target/keep"));
}

TEST_F(PosixDeletionTest, AnotherFolderInThePlaceOfAListedOneIsNotEntered) {
  fs::create_directories(drive_.At("North/sub"));
  const auto north = files_.OpenFolder(R"(D:\North)");
  std::ignore = north->Entries();
  fs::rename(drive_.At("North/sub"), drive_.At("moved"));
  fs::rename(drive_.At("Target"), drive_.At("North/sub"));
  EXPECT_EQ(ErrorOf([&] { north->Enter("sub"); }), kPathFileAccess);
  EXPECT_TRUE(drive_.Has("North/sub/keep"));
}

// --- Other file systems

// The system keeps its own file system there, and nothing is deleted before the check.
TEST_F(PosixDeletionTest, WhatBeginsAnotherFileSystemIsNotEntered) {
  const auto root = files_.OpenFolder("/");
  EXPECT_EQ(ErrorOf([&] { root->Enter("proc"); }), kPathFileAccess);
}

// --- Deep trees

// Makes `count` folders, each in the one before, from the inside out so that no path gets long.
void MakeNested(const fs::path& folder, const fs::path& spare, int count) {
  fs::create_directory(folder);
  for (int i = 1; i < count; ++i) {
    fs::create_directory(spare);
    fs::rename(folder, spare / "a");
    fs::rename(spare, folder);
  }
}

int OpenDescriptors() {
  return static_cast<int>(std::distance(fs::directory_iterator("/proc/self/fd"), {}));
}

TEST_F(PosixDeletionTest, DeletesFoldersThatAreNestedDeeperThanDescriptorsAreMany) {
  MakeNested(drive_.At("North/a"), drive_.At("spare"), 500);
  const int before = OpenDescriptors();
  rlimit old{};
  ::getrlimit(RLIMIT_NOFILE, &old);
  const rlimit few{static_cast<rlim_t>(before) + 80, old.rlim_max};
  ::setrlimit(RLIMIT_NOFILE, &few);
  const bool deleted = Delete();
  ::setrlimit(RLIMIT_NOFILE, &old);
  EXPECT_TRUE(deleted);
  EXPECT_FALSE(drive_.Has("North"));
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(PosixDeletionTest, AFolderThatWasMovedOutOfADeepOneIsNotTheWayBack) {
  constexpr int kDepth = 100;
  MakeNested(drive_.At("North/a"), drive_.At("spare"), kDepth);
  const auto folder = files_.OpenFolder(R"(D:\North)");
  std::string path = "North";
  for (int i = 0; i < kDepth; ++i) {
    folder->Enter("a");
    path += "/a";
  }
  fs::rename(drive_.At(path), drive_.At("Target/Inner/a"));
  EXPECT_EQ(ErrorOf([&] { folder->Leave(); }), kPathNotFound);
}

// --- Leftovers

TEST_F(PosixDeletionTest, LeftoversOfOursDoNotKeepAFolder) {
  fs::create_directory(drive_.At("North/sub"));
  drive_.Put("North/.kvdm-4194305-1.tmp", "x");  // No process has so high a number.
  drive_.Put("North/.kvdm-99999999999999999999-7.tmp", "x");
  drive_.Put("North/sub/.kvdm-0123456789abcdef.tmp", "x");
  EXPECT_TRUE(Delete());
  EXPECT_FALSE(drive_.Has("North"));
}

TEST_F(PosixDeletionTest, WhatIsInUseOrNotOursKeepsItsFolder) {
  const auto own = ".kvdm-" + std::to_string(::getpid()) + "-1.tmp";
  for (const std::string name :
       {own.c_str(), ".kvdm-1.tmp", ".kvdm-4194305-.tmp", ".kvdm-4194305-1.tmp2",
        ".kvdm-4194305-1a.tmp", ".kvdm--1-1.tmp", ".kvdm-.tmp", ".kvdm.tmp", ".git",
        ".kvdm-0123456789abcdeF.tmp", "..kvdm-4194305-1.tmp", ".kvdm-0123456789abcdef0.tmp"}) {
    drive_.Put("North/" + name, "x");
    EXPECT_FALSE(Delete()) << name;
    EXPECT_TRUE(drive_.Has("North/" + name)) << name;
    fs::remove(drive_.At("North/" + name));
  }
  fs::create_directory(drive_.At("North/.kvdm-4194305-1.tmp"));
  EXPECT_FALSE(Delete());
}

TEST_F(PosixDeletionTest, ALeftoverThatIsLockedIsInUse) {
  const std::string name = "North/.kvdm-0123456789abcdef.tmp";
  drive_.Put(name, "x");
  const FileDescriptor writer(::open(drive_.At(name).c_str(), O_WRONLY));
  ASSERT_EQ(::flock(writer.get(), LOCK_EX), 0);
  EXPECT_FALSE(Delete());
  EXPECT_TRUE(drive_.Has(name));
}

}  // namespace
}  // namespace kvdm
