// What only the file system of a POSIX system does; the rest is in the contract.
#include "platform/posix/posix_file_system.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "tests/platform/temporary_drive.h"
#include "tests/throws_number.h"
#include "util/kvdm_utils.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;

class PosixFileSystemTest : public ::testing::Test {
 protected:
  TemporaryDrive drive_;
  std::shared_ptr<FileSystem> made_ = MakePosixFileSystem(drive_.Options());
  FileSystem& files_ = *made_;
};

// --- Drives

TEST_F(PosixFileSystemTest, PathsOfTheSystemAreOnDriveZ) {
  fs::create_directory(drive_.At("Data"));
  std::string shown = "Z:" + (drive_.root() / "Data").string();
  std::ranges::replace(shown, '/', '\\');
  const std::string path = drive_.root().string() + "/data";
  for (const std::string& spelling : {path, path + "/", "/" + path, shown, shown.substr(2)}) {
    EXPECT_EQ(files_.FullPath(spelling), shown) << spelling;
  }
}

TEST_F(PosixFileSystemTest, DriveZIsAlwaysTheRoot) {
  const auto files = MakePosixFileSystem({{{'Z', drive_.root().string()}}});
  EXPECT_TRUE(files->FolderExists(R"(Z:\proc)"));
}

TEST_F(PosixFileSystemTest, ADriveWhoseFolderIsMissingIsMissing) {
  const auto files = MakePosixFileSystem({{{'E', drive_.At("missing").string()}}});
  EXPECT_FALSE(files->FolderExists(R"(E:\)"));
  EXPECT_EQ(ErrorOf([&] { files->CreateFolder(R"(E:\North)"); }), kPathNotFound);
  EXPECT_FALSE(drive_.Has("missing"));
}

TEST_F(PosixFileSystemTest, TheSystemDriveIsCreatedOnFirstUse) {
  EXPECT_FALSE(drive_.Has("drive_c"));
  files_.CreateFolder(R"(C:\North)");
  EXPECT_TRUE(drive_.Has("drive_c/North"));
}

TEST_F(PosixFileSystemTest, TheSystemDriveIsInTheDataFolder) {
  const char* old = std::getenv("XDG_DATA_HOME");
  const std::optional<std::string> saved = old == nullptr ? std::nullopt : std::optional(old);
  ::setenv("XDG_DATA_HOME", drive_.root().c_str(), 1);
  const auto files = MakePosixFileSystem();
  saved ? ::setenv("XDG_DATA_HOME", saved->c_str(), 1) : ::unsetenv("XDG_DATA_HOME");
  files->WriteFile(R"(C:\a.xml)", "x");
  EXPECT_EQ(drive_.Get("kvdm/drive_c/a.xml"), "x");
}

// --- Links

TEST_F(PosixFileSystemTest, LinksInAPathAreFollowed) {
  fs::create_directory(drive_.At("Target"));
  drive_.Put("Target/a.xml", "x");
  fs::create_directory_symlink(drive_.At("Target"), drive_.At("Link"));
  EXPECT_TRUE(files_.FolderExists(R"(D:\Link)"));
  EXPECT_THAT(files_.ReadFile(R"(D:\link\a.xml)"), Optional(std::string("x")));
  EXPECT_THAT(files_.OpenFolder(R"(D:\Link)")->Files(), ElementsAre("a.xml"));
}

TEST_F(PosixFileSystemTest, DeletingALinkLeavesItsTarget) {
  fs::create_directories(drive_.At("Data"));
  fs::create_directories(drive_.At("Target/Inner"));
  drive_.Put("Target/a.xml");
  fs::create_directory_symlink(drive_.At("Target"), drive_.At("Data/folder"));
  fs::create_symlink(drive_.At("Target/a.xml"), drive_.At("Data/file"));
  files_.OpenFolder(R"(D:\Data)")->DeleteFiles();
  EXPECT_FALSE(drive_.Has("Data/folder"));
  EXPECT_FALSE(drive_.Has("Data/file"));
  EXPECT_TRUE(drive_.Has("Target/a.xml"));
  EXPECT_TRUE(drive_.Has("Target/Inner"));
}

TEST_F(PosixFileSystemTest, ALinkInThePlaceOfAnOpenFolderIsNotFollowed) {
  fs::create_directories(drive_.At("Data/North"));
  fs::create_directories(drive_.At("Target"));
  drive_.Put("Target/keep");
  drive_.Put("Data/North/go");
  const auto data = files_.OpenFolder(R"(D:\Data)");
  const auto north = files_.OpenFolder(R"(D:\Data\North)");
  fs::rename(drive_.At("Data/North"), drive_.At("Data/Moved"));
  fs::create_directory_symlink(drive_.At("Target"), drive_.At("Data/North"));
  north->DeleteFiles();
  EXPECT_EQ(ErrorOf([&] { data->Enter("North"); }), kPathFileAccess);
  EXPECT_EQ(ErrorOf([&] { data->RemoveFolder("North"); }), kPathFileAccess);
  EXPECT_TRUE(drive_.Has("Target/keep"));
  EXPECT_FALSE(drive_.Has("Data/Moved/go"));
}

TEST_F(PosixFileSystemTest, WritingToALinkLeavesItsTarget) {
  drive_.Put("target", "old");
  fs::create_symlink(drive_.At("target"), drive_.At("a.xml"));
  files_.WriteFile(R"(D:\a.xml)", "new");
  EXPECT_EQ(drive_.Get("target"), "old");
  EXPECT_EQ(drive_.Get("a.xml"), "new");
}

// --- Special files

TEST_F(PosixFileSystemTest, APipeIsAFileThatIsNeitherReadNorReplaced) {
  ASSERT_EQ(::mkfifo(drive_.At("pipe").c_str(), 0666), 0);
  EXPECT_THAT(files_.FindFiles(R"(D:\*)"), ElementsAre("pipe"));
  EXPECT_EQ(files_.ReadFile(R"(D:\pipe)"), std::nullopt);
  EXPECT_EQ(ErrorOf([&] { files_.WriteFile(R"(D:\pipe)", "x"); }), kPathFileAccess);
  files_.OpenFolder(R"(D:\)")->DeleteFiles();
  EXPECT_FALSE(drive_.Has("pipe"));
}

TEST_F(PosixFileSystemTest, FilesWithoutASizeAreRead) {
  EXPECT_THAT(files_.ReadFile("/proc/self/comm"), Optional(::testing::EndsWith("\n")));
}

// --- Names

TEST_F(PosixFileSystemTest, NamesThatAreNotUtf8AreListedAndDeleted) {
  const std::string folder = "f\xe4";
  const std::string file = "\xff.dbf";
  fs::create_directory(drive_.root() / folder);
  drive_.Put(file);
  const auto root = files_.OpenFolder(R"(D:\)");
  EXPECT_THAT(root->Entries(), ElementsAre(folder, file));
  EXPECT_THAT(files_.FindFiles(R"(D:\*.DBF)"), ElementsAre(file));
  root->Enter(folder);
  EXPECT_THAT(root->Entries(), IsEmpty());
  root->Leave();
  EXPECT_FALSE(files_.FolderExists("D:\\f\xc4"));
  root->DeleteFiles();
  root->RemoveFolder(folder);
  EXPECT_THAT(root->Entries(), IsEmpty());
}

TEST_F(PosixFileSystemTest, NamesThatCouldNotBeCreatedAreJustNames) {
  fs::create_directory(drive_.root() / R"(a\b)");
  fs::create_directory(drive_.root() / "a*");
  fs::create_directory(drive_.root() / "axx");
  const auto root = files_.OpenFolder(R"(D:\)");
  root->RemoveFolder(R"(a\b)");
  root->RemoveFolder("a*");
  EXPECT_THAT(root->Entries(), ElementsAre("axx"));
}

TEST_F(PosixFileSystemTest, TheVeryNameComesBeforeAnotherLetterCase) {
  fs::create_directories(drive_.At("NORTH"));
  fs::create_directories(drive_.At("north"));
  EXPECT_EQ(files_.FullPath(R"(D:\north)"), R"(D:\north)");
  EXPECT_EQ(files_.FullPath(R"(D:\North)"), R"(D:\NORTH)");
}

TEST_F(PosixFileSystemTest, AFolderDeeperThanAnyPathCanBeEmptied) {
  const std::string name(200, 'x');
  std::string path = R"(D:\)";
  for (int i = 0; i < 30; ++i) {
    path += name + "\\";
    files_.CreateFolder(path);
  }
  EXPECT_TRUE(files_.FolderExists(path));
  EXPECT_TRUE(DeleteFolderTree(files_, R"(D:\)" + name + "\\"));
  EXPECT_THAT(files_.OpenFolder(R"(D:\)")->Entries(), IsEmpty());
}

// --- Attributes

TEST_F(PosixFileSystemTest, NamesWithALeadingDotAreHidden) {
  drive_.Put(".hidden");
  fs::create_directory(drive_.At(".folder"));
  drive_.Put("seen");
  EXPECT_THAT(files_.OpenFolder(R"(D:\)")->Entries(), ElementsAre("seen"));
  EXPECT_THAT(files_.FindFiles(R"(D:\*)"), ElementsAre("seen"));
  EXPECT_TRUE(files_.FolderExists(R"(D:\.folder)"));
}

TEST_F(PosixFileSystemTest, AttributesOfOtherProgramsAreSeen) {
  for (const char* name : {"garbage", "hidden", "system", "archive"}) drive_.Put(name);
  drive_.SetDosAttribute("garbage", "\x02");
  drive_.SetDosAttribute("hidden", "0x22");
  drive_.SetDosAttribute("system", "0x4");
  drive_.SetDosAttribute("archive", "0x20");
  EXPECT_THAT(files_.OpenFolder(R"(D:\)")->Files(), ElementsAre("archive", "garbage"));
}

TEST_F(PosixFileSystemTest, FoldersOfASystemWithoutExtendedAttributesStayVisible) {
  const std::string folder = "/proc/self/task";
  const int expected = ::access(folder.c_str(), W_OK) == 0 ? 0 : kPermissionDenied;
  EXPECT_EQ(ErrorOf([&] { files_.HideFolder(folder); }), expected);
}

// --- Writing

TEST_F(PosixFileSystemTest, WriteFileKeepsThePermissions) {
  drive_.Put("a.xml", "old");
  ASSERT_EQ(::chmod(drive_.At("a.xml").c_str(), 0626), 0);
  files_.WriteFile(R"(D:\a.xml)", "new");
  EXPECT_EQ(fs::status(drive_.At("a.xml")).permissions(), fs::perms(0626));
}

TEST_F(PosixFileSystemTest, NewFilesHaveOrdinaryPermissions) {
  const mode_t old = ::umask(027);
  files_.WriteFile(R"(D:\a.xml)", "new");
  ::umask(old);
  EXPECT_EQ(fs::status(drive_.At("a.xml")).permissions(), fs::perms(0640));
}

// Writes more than the process may while `limit` bytes a file are allowed.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t limit) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &old_);
    const rlimit lower{limit, old_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &lower);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &old_);
    std::signal(SIGXFSZ, handler_);
  }

 private:
  rlimit old_{};
  void (*handler_)(int);
};

TEST_F(PosixFileSystemTest, AFailedWriteLeavesTheOldContentAndNothingElse) {
  drive_.Put("a.xml", "old");
  int error = 0;
  {
    const FileSizeLimit limit(1000);
    error = ErrorOf([&] { files_.WriteFile(R"(D:\a.xml)", std::string(5000, 'x')); });
  }
  EXPECT_EQ(error, kPathFileAccess);
  EXPECT_EQ(drive_.Get("a.xml"), "old");
  EXPECT_EQ(std::distance(fs::directory_iterator(drive_.root()), {}), 1);
}

TEST_F(PosixFileSystemTest, AFolderThatRefusesNewFilesIsAnError) {
  EXPECT_THAT(ErrorOf([&] { files_.WriteFile("/proc/self/a.xml", "x"); }),
              ::testing::AnyOf(kPathNotFound, kPermissionDenied, kPathFileAccess));
  EXPECT_THAT(ErrorOf([&] { files_.CreateFolder("/proc/self/North"); }),
              ::testing::AnyOf(kPathNotFound, kPermissionDenied, kPathFileAccess));
}

TEST_F(PosixFileSystemTest, RunningOutOfDescriptorsIsAnErrorAndDeletesNothing) {
  drive_.Put("hidden");
  drive_.SetDosAttribute("hidden", "0x2");
  const auto root = files_.OpenFolder(R"(D:\)");
  rlimit old{};
  ::getrlimit(RLIMIT_NOFILE, &old);
  const rlimit none{0, old.rlim_max};
  ::setrlimit(RLIMIT_NOFILE, &none);
  const int error = ErrorOf([&] { root->DeleteFiles(); });
  const bool exists = files_.FolderExists(R"(D:\)");
  const int unread = ErrorOf([&] { std::ignore = files_.ReadFile(R"(D:\hidden)"); });
  const int unlisted = ErrorOf([&] { std::ignore = files_.FindFiles(R"(D:\*)"); });
  ::setrlimit(RLIMIT_NOFILE, &old);
  // Where the system reads attributes without a descriptor, nothing is found that may be deleted.
  EXPECT_THAT(error, ::testing::AnyOf(kPathFileAccess, kFileNotFound));
  EXPECT_EQ(unread, kPathFileAccess);
  EXPECT_EQ(unlisted, kPathFileAccess);
  EXPECT_FALSE(exists);
  EXPECT_TRUE(drive_.Has("hidden"));
}

TEST_F(PosixFileSystemTest, OpenFoldersDoNotKeepDescriptorsAfterwards) {
  const auto count = [] { return std::distance(fs::directory_iterator("/proc/self/fd"), {}); };
  fs::create_directory(drive_.At("North"));
  const auto before = count();
  {
    const auto root = files_.OpenFolder(R"(D:\)");
    root->Enter("North");
    std::ignore = root->Entries();
  }
  files_.WriteFile(R"(D:\North\a)", "x");
  std::ignore = files_.ReadFile(R"(D:\North\a)");
  std::ignore = files_.FindFiles(R"(D:\North\*)");
  EXPECT_EQ(count(), before);
}

}  // namespace
}  // namespace kvdm
