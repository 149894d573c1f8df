// What only the file system of Windows does; the rest is in the contract.
#include "platform/windows/windows_file_system.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

// Needs windows.h.
#include <sddl.h>

#include <array>
#include <cstddef>
#include <string>
#include <tuple>
#include <vector>

#include "platform/windows/text.h"
#include "tests/platform/windows/scratch_drive.h"
#include "tests/throws_number.h"
#include "util/kvdm_utils.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;

class WindowsFileSystemTest : public ::testing::Test {
 protected:
  ScratchDrive drive_;
  std::shared_ptr<FileSystem> made_ = MakeWindowsFileSystem();
  FileSystem& files_ = *made_;
};

// --- Names

TEST_F(WindowsFileSystemTest, DeviceNamesAreRefused) {
  for (const std::string name : {"nul", "CON", "aux", "com1", "lpt9", "nul.txt", "Com1.shp"}) {
    EXPECT_RUNTIME_ERROR(files_.CreateFolder(R"(D:\)" + name), kBadFileName);
    EXPECT_RUNTIME_ERROR(files_.CreateFolder(R"(D:\)" + name + "\\"), kBadFileName);
    EXPECT_RUNTIME_ERROR(files_.WriteFile(R"(D:\)" + name, "x"), kBadFileName);
    EXPECT_EQ(files_.ReadFile(R"(D:\)" + name), std::nullopt);
    EXPECT_FALSE(files_.FolderExists(R"(D:\)" + name));
  }
  EXPECT_THAT(files_.FindFiles(R"(D:\nul.*)"), IsEmpty());
  EXPECT_THAT(files_.OpenFolder(R"(D:\)")->Entries(), IsEmpty());
}

TEST_F(WindowsFileSystemTest, AFileThatHasADeviceNameIsAnOrdinaryFile) {
  drive_.Put(R"(D:\nul)");
  EXPECT_THAT(files_.FindFiles(R"(D:\NUL.*)"), ElementsAre("nul"));
  EXPECT_THAT(files_.ReadFile(R"(D:\nul)"), Optional(std::string()));
  files_.WriteFile(R"(D:\nul)", "new");
  EXPECT_THAT(files_.ReadFile(R"(D:\nul)"), Optional(std::string("new")));
  files_.OpenFolder(R"(D:\)")->DeleteFiles();
  EXPECT_FALSE(drive_.Has(R"(D:\nul)"));
}

TEST_F(WindowsFileSystemTest, AShortNameMeansTheEntryThatTheSystemGaveItTo) {
  files_.CreateFolder(R"(D:\A longer name)");
  std::array<wchar_t, MAX_PATH> path{};
  ASSERT_NE(::GetShortPathNameW(LR"(D:\A longer name)", path.data(), path.size()), 0U);
  const std::string short_path = ToUtf8(path.data());
  ASSERT_NE(short_path.find('~'), std::string::npos) << short_path;
  EXPECT_EQ(files_.FullPath(short_path), R"(D:\A longer name)");
  EXPECT_FALSE(files_.FolderExists(R"(D:\ALONG~99)"));
}

TEST_F(WindowsFileSystemTest, PathsLongerThanTheClassicLimitWork) {
  std::string path = "D:";
  for (int i = 0; i < 5; ++i) {
    path += R"(\)" + std::string(100, static_cast<char>('a' + i));
    files_.CreateFolder(path);
  }
  files_.WriteFile(path + R"(\a.xml)", "x");
  EXPECT_THAT(files_.ReadFile(path + R"(\A.XML)"), Optional(std::string("x")));
  EXPECT_EQ(files_.FullPath(path + "\\"), path);
  files_.OpenFolder(path)->DeleteFiles();
  EXPECT_THAT(files_.FindFiles(path + R"(\*)"), IsEmpty());
}

TEST_F(WindowsFileSystemTest, AFolderTreeIsDeletedWhole) {
  std::string path = R"(D:\)";
  for (int i = 0; i < 12; ++i) {
    path += std::string(200, 'x') + "\\";
    files_.CreateFolder(path);
    files_.CreateFolder(path + "Empty ");
    files_.WriteFile(path + "shops.dbf", "x");
  }
  EXPECT_TRUE(DeleteFolderTree(files_, R"(D:\)" + std::string(200, 'x') + "\\"));
  EXPECT_THAT(files_.OpenFolder(R"(D:\)")->Entries(), IsEmpty());
}

TEST_F(WindowsFileSystemTest, NamesBeyondAsciiAreKept) {
  const std::string name = "\u00c4rger \u0416 \u5e02\u5834 \U0001f5fa";
  files_.CreateFolder(R"(D:\)" + name);
  files_.WriteFile(R"(D:\)" + name + R"(\)" + name, "x");
  EXPECT_EQ(files_.FullPath(R"(D:\)" + name), R"(D:\)" + name);
  const auto root = files_.OpenFolder(R"(D:\)");
  root->Enter(name);
  EXPECT_THAT(root->Files(), ElementsAre(name));
  EXPECT_THAT(files_.FindFiles(R"(D:\)" + name + R"(\?rger*)"), ElementsAre(name));
  EXPECT_TRUE(drive_.Has(R"(D:\)" + name + R"(\)" + name));
}

TEST_F(WindowsFileSystemTest, NamesMayEndInBlanksAndDots) {
  for (const std::string name : {"North ", "South.", "East . "}) {
    const std::string folder = R"(D:\)" + name;
    files_.CreateFolder(folder);
    files_.WriteFile(folder + R"(\a )", "x");
    EXPECT_TRUE(drive_.Has(folder + R"(\a )")) << name;
    const auto root = files_.OpenFolder(R"(D:\)");
    root->Enter(name);
    root->DeleteFiles();
    root->Leave();
    root->RemoveFolder(name);
    EXPECT_FALSE(drive_.Has(folder)) << name;
  }
}

TEST_F(WindowsFileSystemTest, NamesThatStartAlikeAreToldApart) {
  drive_.AddFolder(R"(D:\North)");
  drive_.AddFolder(R"(D:\North1)");
  drive_.AddFolder(R"(D:\North.x)");
  drive_.AddFolder(R"(D:\North2 )");
  EXPECT_EQ(files_.FullPath(R"(D:\NORTH)"), R"(D:\North)");
  EXPECT_EQ(files_.FullPath(R"(D:\north2)"), R"(D:\North2 )");
  EXPECT_FALSE(files_.FolderExists(R"(D:\Nort)"));
}

// --- Attributes

TEST_F(WindowsFileSystemTest, ALeadingDotHidesNothing) {
  drive_.Put(R"(D:\.tmp)");
  const std::vector<std::string> files = files_.FindFiles(R"(D:\*)");
  // Wine gives such a file the hidden attribute.
  EXPECT_EQ(files.empty(), IsWine());
}

TEST_F(WindowsFileSystemTest, HideFolderSetsTheAttribute) {
  drive_.AddFolder(R"(D:\North)");
  files_.HideFolder(R"(D:\north\)");
  EXPECT_NE(drive_.AttributesOf(R"(D:\North)") & FILE_ATTRIBUTE_HIDDEN, 0U);
}

TEST_F(WindowsFileSystemTest, WriteFileKeepsTheAttributes) {
  drive_.Put(R"(D:\a.xml)");
  const DWORD attributes = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE;
  drive_.SetAttributes(R"(D:\a.xml)", attributes);
  files_.WriteFile(R"(D:\A.XML)", "new");
  EXPECT_EQ(drive_.AttributesOf(R"(D:\a.xml)"), attributes);
  EXPECT_THAT(files_.ReadFile(R"(D:\a.xml)"), Optional(std::string("new")));
}

// The access list of a file, as the system writes it down.
std::string AccessList(const wchar_t* path) {
  std::array<std::byte, 4096> rights;
  DWORD size = 0;
  wchar_t* text = nullptr;
  ::GetFileSecurityW(path, DACL_SECURITY_INFORMATION, rights.data(), rights.size(), &size);
  ::ConvertSecurityDescriptorToStringSecurityDescriptorW(rights.data(), SDDL_REVISION_1,
                                                         DACL_SECURITY_INFORMATION, &text, nullptr);
  std::string list = text != nullptr ? ToUtf8(text) : "none";
  ::LocalFree(text);
  return list;
}

TEST_F(WindowsFileSystemTest, WriteFileKeepsTheAccessRights) {
  constexpr const wchar_t* kPath = LR"(D:\a.xml)";
  drive_.Put(R"(D:\a.xml)");
  const std::string ordinary = AccessList(kPath);
  PSECURITY_DESCRIPTOR own = nullptr;
  ASSERT_TRUE(::ConvertStringSecurityDescriptorToSecurityDescriptorW(
      L"D:P(A;;FA;;;OW)(A;;FA;;;BA)", SDDL_REVISION_1, &own, nullptr));
  EXPECT_TRUE(::SetFileSecurityW(kPath, DACL_SECURITY_INFORMATION, own));
  ::LocalFree(own);
  const std::string restricted = AccessList(kPath);
  EXPECT_NE(restricted, ordinary);
  files_.WriteFile(R"(D:\a.xml)", "new");
  EXPECT_EQ(AccessList(kPath), restricted);
}

TEST_F(WindowsFileSystemTest, TheSystemDriveIsTheOneOfTheSystemFolder) {
  EXPECT_TRUE(files_.FolderExists(files_.SystemDrive() + R"(\windows)"));
}

// --- Files that others have open

TEST_F(WindowsFileSystemTest, AnOpenFileEndsTheDeletionOfFiles) {
  drive_.Put(R"(D:\a)");
  drive_.Put(R"(D:\c)");
  const FileHandle held = drive_.Hold(R"(D:\b)");
  EXPECT_RUNTIME_ERROR(files_.OpenFolder(R"(D:\)")->DeleteFiles(), kPermissionDenied);
  EXPECT_FALSE(drive_.Has(R"(D:\a)"));
  EXPECT_TRUE(drive_.Has(R"(D:\b)"));
  EXPECT_TRUE(drive_.Has(R"(D:\c)"));
}

TEST_F(WindowsFileSystemTest, AnOpenFileIsNotReadOrReplaced) {
  drive_.AddFolder(R"(D:\Data)");
  const FileHandle held = drive_.Hold(R"(D:\Data\a.xml)");
  EXPECT_RUNTIME_ERROR(files_.ReadFile(R"(D:\Data\a.xml)"), kPermissionDenied);
  EXPECT_RUNTIME_ERROR(files_.WriteFile(R"(D:\Data\a.xml)", "new"), kPermissionDenied);
  EXPECT_THAT(files_.OpenFolder(R"(D:\Data)")->Files(), ElementsAre("a.xml"));
}

TEST_F(WindowsFileSystemTest, AFolderIsRemovedWhileItIsOpenHere) {
  drive_.AddFolder(R"(D:\North)");
  const auto root = files_.OpenFolder(R"(D:\)");
  auto north = files_.OpenFolder(R"(D:\North)");
  root->RemoveFolder("North");
  EXPECT_THAT(north->Entries(), IsEmpty());
  north.reset();
  EXPECT_THAT(root->Entries(), IsEmpty());
}

// --- Links

TEST_F(WindowsFileSystemTest, LinksInAPathAreFollowed) {
  drive_.AddFolder(R"(D:\Target)");
  drive_.AddLink(R"(D:\Link)", R"(D:\Target)");
  files_.WriteFile(R"(D:\Link\a.xml)", "x");
  EXPECT_TRUE(files_.FolderExists(R"(D:\link)"));
  EXPECT_THAT(files_.OpenFolder(R"(D:\Link)")->Files(), ElementsAre("a.xml"));
  EXPECT_TRUE(drive_.Has(R"(D:\Target\a.xml)"));
}

// Wine opens what a link leads to, so that nothing may be deleted.
class WindowsLinkTest : public WindowsFileSystemTest {
 protected:
  WindowsLinkTest() {
    drive_.AddFolder(R"(D:\Data)");
    drive_.AddFolder(R"(D:\Target)");
  }

  void DeleteFiles(Directory& folder) {
    if (IsWine()) {
      EXPECT_RUNTIME_ERROR(folder.DeleteFiles(), kPathFileAccess);
    } else {
      folder.DeleteFiles();
    }
  }
};

TEST_F(WindowsLinkTest, DeletingALinkToAFolderLeavesTheFolder) {
  drive_.AddLink(R"(D:\Data\link)", R"(D:\Target)");
  const auto data = files_.OpenFolder(R"(D:\Data)");
  EXPECT_RUNTIME_ERROR(data->RemoveFolder("link"), kPathFileAccess);
  DeleteFiles(*data);
  EXPECT_TRUE(drive_.Has(R"(D:\Target)"));
  EXPECT_EQ(drive_.Has(R"(D:\Data\link)"), IsWine());
}

TEST_F(WindowsLinkTest, DeletingALinkToAFileLeavesTheFile) {
  for (const std::string target : {R"(D:\Target\same)", R"(D:\Target\other)"}) {
    drive_.Put(target);
    drive_.AddLink(R"(D:\Data\same)", target);
    DeleteFiles(*files_.OpenFolder(R"(D:\Data)"));
    EXPECT_TRUE(drive_.Has(target));
    EXPECT_EQ(drive_.Has(R"(D:\Data\same)"), IsWine());
    files_.WriteFile(R"(D:\Data\same)", "a file now");
    files_.OpenFolder(R"(D:\Data)")->DeleteFiles();
  }
}

TEST_F(WindowsLinkTest, WritingToALinkLeavesItsTarget) {
  files_.WriteFile(R"(D:\Target\a.xml)", "old");
  drive_.AddLink(R"(D:\Data\a.xml)", R"(D:\Target\a.xml)");
  files_.WriteFile(R"(D:\Data\a.xml)", "new");
  EXPECT_THAT(files_.ReadFile(R"(D:\Target\a.xml)"), Optional(std::string("old")));
  EXPECT_THAT(files_.ReadFile(R"(D:\Data\a.xml)"), Optional(std::string("new")));
}

TEST_F(WindowsLinkTest, ALinkToAFolderIsNotReplaced) {
  drive_.AddLink(R"(D:\Data\link)", R"(D:\Target)");
  EXPECT_RUNTIME_ERROR(files_.WriteFile(R"(D:\Data\link)", "x"), kPathFileAccess);
  EXPECT_THAT(files_.OpenFolder(R"(D:\Data)")->Files(), ElementsAre("link"));
}

TEST_F(WindowsLinkTest, ALinkInThePlaceOfAnOpenFolderIsNotFollowed) {
  drive_.AddFolder(R"(D:\Data\North)");
  drive_.Put(R"(D:\Data\North\same)");
  drive_.Put(R"(D:\Target\same)");
  const auto data = files_.OpenFolder(R"(D:\Data)");
  const auto north = files_.OpenFolder(R"(D:\Data\North)");
  drive_.MoveFolder(R"(D:\Data\North)", R"(D:\Data\Moved)");
  drive_.AddLink(R"(D:\Data\North)", R"(D:\Target)");
  DeleteFiles(*north);
  EXPECT_RUNTIME_ERROR(data->Enter("North"), kPathFileAccess);
  EXPECT_RUNTIME_ERROR(data->RemoveFolder("North"), kPathFileAccess);
  EXPECT_TRUE(drive_.Has(R"(D:\Target\same)"));
  EXPECT_EQ(drive_.Has(R"(D:\Data\Moved\same)"), IsWine());
}

}  // namespace
}  // namespace kvdm
