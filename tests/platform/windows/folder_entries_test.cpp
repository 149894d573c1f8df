#include <gtest/gtest.h>

#include <string>
#include <system_error>
#include <vector>

#include "platform/windows/files.h"
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

}  // namespace
}  // namespace kvdm
