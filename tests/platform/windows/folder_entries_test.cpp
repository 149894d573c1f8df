#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "platform/windows/files.h"
#include "tests/platform/windows/refusing_volume.h"
#include "tests/platform/windows/scratch_drive.h"

namespace kvdm {
namespace {

// An open drive D:.
class FolderEntriesTest : public ::testing::Test {
 protected:
  [[nodiscard]] FileHandle OpenRoot() const {
    return FileHandle(::CreateFileW(LR"(\\?\D:\)", kListAccess, kShareAll, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  }

  // The system's error code that deleting `entry` ends in; 0 for none.
  [[nodiscard]] int DeletionError(const FolderEntry& entry) const {
    try {
      DeleteEntry(root_, entry);
      return 0;
    } catch (const std::system_error& error) {
      return error.code().value();
    }
  }

  ScratchDrive drive_;
  FileHandle root_ = OpenRoot();
};

TEST_F(FolderEntriesTest, AFileThatBecameAFolderIsNotDeleted) {
  drive_.Put(R"(D:\North)");
  const FolderEntry entry = EntriesOf(root_).at(0);
  drive_.RemoveFile(R"(D:\North)");
  drive_.AddFolder(R"(D:\North)");
  EXPECT_EQ(DeletionError(entry), ERROR_REPARSE_TAG_MISMATCH);
  EXPECT_TRUE(drive_.Has(R"(D:\North)"));
}

TEST_F(FolderEntriesTest, AFolderThatBecameAFileIsNotDeleted) {
  drive_.AddFolder(R"(D:\North)");
  const FolderEntry entry = EntriesOf(root_).at(0);
  drive_.RemoveTree(R"(D:\North)");
  drive_.Put(R"(D:\North)");
  EXPECT_EQ(DeletionError(entry), ERROR_REPARSE_TAG_MISMATCH);
  EXPECT_TRUE(drive_.Has(R"(D:\North)"));
}

TEST_F(FolderEntriesTest, AnEntryThatIsGoneIsMissing) {
  drive_.Put(R"(D:\North)");
  const FolderEntry entry = EntriesOf(root_).at(0);
  drive_.RemoveFile(R"(D:\North)");
  EXPECT_EQ(DeletionError(entry), ERROR_FILE_NOT_FOUND);
}

TEST_F(FolderEntriesTest, LongListingsAreComplete) {
  constexpr int kCount = 600;
  for (int i = 0; i < kCount; ++i) drive_.Put(R"(D:\)" + std::string(100, 'x') + std::to_string(i));
  EXPECT_EQ(EntriesOf(root_).size(), static_cast<std::size_t>(kCount));
}

// --- Volumes that do not answer everything

// The codes with which shares of several makers refuse.
constexpr DWORD kRefusals[] = {ERROR_INVALID_FUNCTION, ERROR_GEN_FAILURE,
                               ERROR_NOT_SUPPORTED,    ERROR_INVALID_LEVEL,
                               ERROR_INTERNAL_ERROR,   ERROR_INVALID_PARAMETER};

TEST_F(FolderEntriesTest, AFolderIsListedWithoutIdentifiers) {
  constexpr int kCount = 600;
  for (int i = 0; i < kCount; ++i) drive_.Put(R"(D:\)" + std::string(100, 'x') + std::to_string(i));
  drive_.AddFolder(R"(D:\North)");
  for (const DWORD error : kRefusals) {
    const RefusingVolume volume(RefusingVolume::Identifiers(), error);
    const std::vector<FolderEntry> entries = EntriesOf(root_);
    EXPECT_EQ(entries.size(), static_cast<std::size_t>(kCount) + 1) << error;
    EXPECT_EQ(std::ranges::count_if(entries, &FolderEntry::IsFolder), 1);
  }
}

TEST_F(FolderEntriesTest, EntriesAreDeletedWithoutTags) {
  for (const DWORD error : kRefusals) {
    drive_.Put(R"(D:\North)");
    drive_.AddFolder(R"(D:\South)");
    const RefusingVolume volume(RefusingVolume::Tags(), error);
    for (const FolderEntry& entry : EntriesOf(root_)) EXPECT_EQ(DeletionError(entry), 0) << error;
    EXPECT_TRUE(EntriesOf(root_).empty());
  }
}

TEST_F(FolderEntriesTest, OtherErrorsAreNoRefusals) {
  drive_.Put(R"(D:\North)");
  const FolderEntry entry = EntriesOf(root_).at(0);
  const RefusingVolume volume(RefusingVolume::Tags(), ERROR_CRC);
  EXPECT_EQ(DeletionError(entry), ERROR_CRC);
}

TEST_F(FolderEntriesTest, AFolderOnAnOldShareIsDeleted) {
  drive_.AddFolder(R"(D:\North)");
  const OldShare share;
  EXPECT_EQ(DeletionError(EntriesOf(root_).at(0)), 0);
}

// --- What other programs hold

// Lets go of a file after a while.
std::jthread ReleaseAfter(std::chrono::milliseconds time, FileHandle file) {
  return std::jthread([time, held = std::move(file)]() mutable {
    std::this_thread::sleep_for(time);
    held = FileHandle(INVALID_HANDLE_VALUE);
  });
}

constexpr std::chrono::milliseconds kMoment(100);
constexpr std::chrono::milliseconds kLong(2000);

TEST_F(FolderEntriesTest, WhatIsHeldForAMomentIsDeletedAndReplaced) {
  const std::jthread first = ReleaseAfter(kMoment, drive_.Hold(R"(D:\North)"));
  EXPECT_EQ(DeletionError(EntriesOf(root_).at(0)), 0);
  const std::jthread second = ReleaseAfter(kMoment, drive_.Hold(R"(D:\South)"));
  EXPECT_NO_THROW(SaveFile(LR"(\\?\D:\South)", "new"));
}

TEST_F(FolderEntriesTest, WhatIsHeldForLongIsNot) {
  const std::jthread held = ReleaseAfter(kLong, drive_.Hold(R"(D:\North)"));
  EXPECT_EQ(DeletionError(EntriesOf(root_).at(0)), ERROR_SHARING_VIOLATION);
  EXPECT_THROW(SaveFile(LR"(\\?\D:\North)", "new"), std::system_error);
  EXPECT_EQ(EntriesOf(root_).size(), 1U) << "nothing is left beside it";
}

}  // namespace
}  // namespace kvdm
