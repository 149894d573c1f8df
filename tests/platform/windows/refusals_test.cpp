// Files where Windows refuses, or tells, what Wine does not: long paths, shares, reparse points,
// and files that a cloud store keeps.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/windows/windows_file_system.h"
#include "tests/platform/windows/refusing_system.h"
#include "tests/platform/windows/scratch_drive.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

constexpr DWORD kCloudTag = 0x9000001A;
constexpr DWORD kCompressedTag = 0x80000017;
constexpr DWORD kMountPointTag = 0xA0000003;

class RefusalsTest : public testing::Test {
 protected:
  std::shared_ptr<FileSystem> files_ = MakeWindowsFileSystem();
  ScratchDrive drive_;
};

TEST_F(RefusalsTest, NothingMeetsTheClassicLimitOfPaths) {
  const ClassicLimit limit;
  std::string folder = "D:";
  for (int i = 0; i < 3; ++i) {
    folder += R"(\)" + std::string(100, static_cast<char>('a' + i));
    files_->CreateFolder(folder);
  }
  ASSERT_EQ(::GetFileAttributesW(std::wstring(folder.begin(), folder.end()).c_str()),
            INVALID_FILE_ATTRIBUTES)
      << "the limit is there";
  files_->HideFolder(folder);
  files_->WriteFile(folder + R"(\a.xml)", "old");
  files_->WriteFile(folder + R"(\a.xml)", "new");
  SaveFile(SystemPath(ResolveWindowsPath(folder + R"(\a.xml)")), "newest",
           SystemPath(ResolveWindowsPath(folder + R"(\a.xml.bak)")));
  EXPECT_THAT(files_->ReadFile(folder + R"(\A.XML)"), Optional(std::string("newest")));
  EXPECT_THAT(files_->ReadFile(folder + R"(\a.xml.bak)"), Optional(std::string("new")));
  EXPECT_EQ(files_->FullPath(folder), folder);
  EXPECT_TRUE(files_->FolderExists(folder));
  files_->OpenFolder(folder)->DeleteFiles();
  EXPECT_THAT(files_->FindFiles(folder + R"(\*)"), IsEmpty());
}

// Relative paths then start nowhere, and above all not on a drive.
TEST_F(RefusalsTest, WithACurrentFolderOnAShareRelativePathsLeadNowhere) {
  drive_.AddFolder(R"(D:\share)");
  for (const wchar_t* share : {LR"(\\server\share)", LR"(\\?\UNC\server\share)"}) {
    const CurrentFolder current(share);
    EXPECT_FALSE(files_->FolderExists("."));
    EXPECT_RUNTIME_ERROR(files_->CreateFolder("North"), kPathNotFound);
    EXPECT_RUNTIME_ERROR(files_->WriteFile("a.xml", "x"), kPathNotFound);
    EXPECT_RUNTIME_ERROR(static_cast<void>(files_->OpenFolder(R"(\share)")), kPathNotFound);
    EXPECT_TRUE(files_->FolderExists(R"(D:\share)"));
  }
  const CurrentFolder current(LR"(D:\share)");
  files_->CreateFolder("North");
  EXPECT_TRUE(drive_.Has(R"(D:\share\North)"));
}

TEST_F(RefusalsTest, AReparsePointThatIsNoLinkIsWhatItSeemsToBe) {
  for (const DWORD tag : {kCloudTag, kCompressedTag}) {
    drive_.AddFolder(R"(D:\North)");
    drive_.Put(R"(D:\North\a.xml)");
    const ReparsePoint point(L"North", tag);
    const auto folder = files_->OpenFolder(R"(D:\)");
    EXPECT_THAT(folder->Files(), IsEmpty());
    folder->Enter("North");
    folder->DeleteFiles();
    folder->Leave();
    folder->RemoveFolder("North");
    EXPECT_FALSE(drive_.Has(R"(D:\North)"));
  }
}

// A volume in a folder, and what a system does not tell the tag of.
TEST_F(RefusalsTest, ALinkIsNeverEntered) {
  drive_.AddFolder(R"(D:\North)");
  drive_.Put(R"(D:\North\a.xml)");
  for (const DWORD tag : {kMountPointTag, DWORD{0}}) {
    const ReparsePoint point(L"North", tag);
    const auto folder = files_->OpenFolder(R"(D:\)");
    EXPECT_THAT(folder->Files(), ElementsAre("North"));
    EXPECT_RUNTIME_ERROR(folder->Enter("North"), kPathFileAccess);
    EXPECT_TRUE(drive_.Has(R"(D:\North\a.xml)"));
  }
}

TEST_F(RefusalsTest, AFileOfACloudStoreThatIsNotRunningIsDeleted) {
  drive_.Put(R"(D:\a.xml)");
  const CloudStore store;
  files_->OpenFolder(R"(D:\)")->DeleteFiles();
  EXPECT_FALSE(drive_.Has(R"(D:\a.xml)"));
}

TEST_F(RefusalsTest, AFileOfACloudStoreThatIsNotRunningCanNotBeRead) {
  drive_.Put(R"(D:\a.xml)");
  const CloudStore store;
  const CloudStore::Unreadable unreadable;
  EXPECT_RUNTIME_ERROR(static_cast<void>(files_->ReadFile(R"(D:\a.xml)")), kDeviceUnavailable);
}

TEST_F(RefusalsTest, AFileThatReplacesOneOfACloudStoreIsAnOrdinaryOne) {
  drive_.Put(R"(D:\a.xml)");
  const CloudStore store;
  files_->WriteFile(R"(D:\a.xml)", "new");
  EXPECT_EQ(CloudStore::made_with & CloudStore::kMarks, 0U);
  EXPECT_THAT(files_->ReadFile(R"(D:\a.xml)"), Optional(std::string("new")));
}

}  // namespace
}  // namespace kvdm
