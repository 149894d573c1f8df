#include "host/os.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <system_error>

#include "platform/utf8.h"
#include "tests/temp_folder.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;

namespace fs = std::filesystem;

class WindowsOsTest : public ::testing::Test {
 protected:
  // The error that `body` ends in.
  template <class Body>
  static std::error_condition ErrorOf(Body body) {
    try {
      body();
    } catch (const std::system_error& error) {
      return error.code().default_error_condition();
    }
    return {};
  }

  TempFolder temp_;
  fs::path folder_ = temp_.Path();
};

TEST_F(WindowsOsTest, TakesPathsInAnyLanguage) {
  for (const char* name : {"Nörd 北", "😀", "Ünï 𠀀"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(os::ToText(os::ToPath(name)), name);
  }
}

TEST_F(WindowsOsTest, GivesAPathThatIsNoTextATextThatIsNoUtf8) {
  EXPECT_FALSE(IsValidUtf8(os::ToText(L"a\xD83D")));
  EXPECT_FALSE(IsValidUtf8(os::ToText(L"\xDE00\xD83D")));
}

TEST_F(WindowsOsTest, GivesPathsTheFormOfTheComponent) {
  EXPECT_EQ(os::ComponentPath("C:/Users/Ann/./North"), R"(C:\Users\Ann\North)");
}

TEST_F(WindowsOsTest, WorksOnPathsOfAnyLength) {
  fs::path deep = folder_;
  for (int i = 0; i < 8; ++i) deep /= std::wstring(60, L'北');
  const fs::path file = deep / "file";

  os::CreateFolders(deep);
  os::Replace(file, "text");
  os::Replace(file, "new text", deep / "second");

  EXPECT_TRUE(os::TryLock(deep / "lock"));
  EXPECT_EQ(os::ReadBytes(deep / "second"), "text");
  EXPECT_TRUE(os::Exists(file));
  EXPECT_EQ(os::Canonical(file), os::Canonical(folder_) / fs::relative(file, folder_));
  EXPECT_EQ(os::FilesIn(deep).size(), 3U);
  // What removes the folder in the end can't go so deep.
  for (const fs::path& found : os::FilesIn(deep)) {
    EXPECT_TRUE(DeleteFileW((LR"(\\?\)" + found.wstring()).c_str()));
  }
}

TEST_F(WindowsOsTest, ListsTheFilesOfAFolderButNoFolders) {
  os::CreateFolders(folder_ / "folder");
  os::Replace(folder_ / "file", "");

  EXPECT_THAT(os::FilesIn(folder_), ElementsAre(folder_ / "file"));
}

TEST_F(WindowsOsTest, KeepsTheAttributesOfWhatItReplaces) {
  os::Replace(folder_ / "file", "old");
  SetFileAttributesW((folder_ / "file").c_str(), FILE_ATTRIBUTE_HIDDEN);

  os::Replace(folder_ / "file", "new");

  EXPECT_EQ(os::ReadBytes(folder_ / "file"), "new");
  const DWORD attributes = GetFileAttributesW((folder_ / "file").c_str());
  EXPECT_NE(attributes & FILE_ATTRIBUTE_HIDDEN, 0U);
}

TEST_F(WindowsOsTest, KeepsWhatAFileWasUnderItsSecondName) {
  os::Replace(folder_ / "file", "old");
  os::Replace(folder_ / "second", "older");

  os::Replace(folder_ / "file", "new", folder_ / "second");

  EXPECT_EQ(os::ReadBytes(folder_ / "second"), "old");
  EXPECT_EQ(os::ReadBytes(folder_ / "file"), "new");
  EXPECT_EQ(os::FilesIn(folder_).size(), 2U);
}

TEST_F(WindowsOsTest, ReplacesNoFileThatNobodyMayWrite) {
  os::Replace(folder_ / "file", "old");
  SetFileAttributesW((folder_ / "file").c_str(), FILE_ATTRIBUTE_READONLY);

  EXPECT_EQ(ErrorOf([&] { os::Replace(folder_ / "file", "new"); }), std::errc::permission_denied);

  SetFileAttributesW((folder_ / "file").c_str(), FILE_ATTRIBUTE_NORMAL);
  EXPECT_EQ(os::ReadBytes(folder_ / "file"), "old");
}

TEST_F(WindowsOsTest, SaysInTermsOfAllSystemsWhatFails) {
  const fs::path missing = folder_ / "missing";
  EXPECT_EQ(ErrorOf([&] { static_cast<void>(os::ReadBytes(missing)); }),
            std::errc::no_such_file_or_directory);
  EXPECT_EQ(ErrorOf([&] { static_cast<void>(os::Canonical(missing)); }),
            std::errc::no_such_file_or_directory);
  EXPECT_EQ(ErrorOf([&] { static_cast<void>(os::ReadBytes(folder_)); }), std::errc::is_a_directory);
  EXPECT_EQ(ErrorOf([&] { os::Replace(folder_, ""); }), std::errc::is_a_directory);
  EXPECT_EQ(ErrorOf([&] { static_cast<void>(os::ReadBytes("NUL")); }), std::errc::invalid_argument);
  os::Replace(folder_ / "file", "");
  EXPECT_EQ(ErrorOf([&] { os::CreateFolders(folder_ / "file" / "in"); }), std::errc::file_exists);
}

TEST_F(WindowsOsTest, ReadsTheEnvironment) {
  SetEnvironmentVariableW(L"KVDM_TEST", L"Nörd 北");

  EXPECT_EQ(os::Environment("KVDM_TEST"), "Nörd 北");
  EXPECT_EQ(os::Environment("KVDM_TEST_NOT_SET"), "");
}

}  // namespace
}  // namespace kvdm
