#include "host/windows/com_server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/os.h"
#include "safety/result.h"
#include "tests/temp_folder.h"

namespace kvdm {
namespace {

using ::testing::HasSubstr;

namespace fs = std::filesystem;

const fs::path kSystemLibrary = R"(C:\windows\system32\version.dll)";

// A DLL beside this program that refuses everything, as one does that lacks the rights.
fs::path RefusingServer() { return OwnComServer().parent_path() / "refusing_server.dll"; }

Failure FailureOfRegistering(const fs::path& file, ComScope scope) {
  try {
    RegisterComServer(file, scope);
  } catch (const Failure& failure) {
    return failure;
  }
  return {ExitCode::kDone, "none"};
}

TEST(ComServerTest, KnowsTheWordSizeOfLibrariesOnly) {
  const TempFolder folder;
  os::Replace(folder.Path("text"), "MZ, but that is all of it");

  EXPECT_EQ(WordSize(kSystemLibrary), 64);
  EXPECT_EQ(WordSize(OwnComServer().parent_path() / "host_test.exe"), std::nullopt);
  EXPECT_EQ(WordSize(folder.Path("text")), std::nullopt);
}

TEST(ComServerTest, KnowsTheVersionThatAFileSays) {
  EXPECT_THAT(FileVersion(kSystemLibrary).value_or(""),
              ::testing::MatchesRegex(R"(\d+\.\d+\.\d+\.\d+)"));
  EXPECT_EQ(FileVersion(RefusingServer()), std::nullopt);
}

TEST(ComServerTest, SaysWhoMayRegisterWhenThatIsRefused) {
  const Failure failure = FailureOfRegistering(RefusingServer(), ComScope::kMachine);

  EXPECT_EQ(failure.code(), ExitCode::kRefused);
  EXPECT_THAT(failure.what(), HasSubstr("--user"));
}

TEST(ComServerTest, SaysTheResultOfAnyOtherFailure) {
  const Failure failure = FailureOfRegistering(RefusingServer(), ComScope::kUser);

  EXPECT_EQ(failure.code(), ExitCode::kRefused);
  EXPECT_THAT(failure.what(), HasSubstr("0x80004005"));
}

TEST(ComServerTest, NamesTheEntryPointThatALibraryLacks) {
  const Failure failure = FailureOfRegistering(kSystemLibrary, ComScope::kMachine);

  EXPECT_EQ(failure.code(), ExitCode::kUnreadable);
  EXPECT_THAT(failure.what(), HasSubstr("DllRegisterServer"));
}

}  // namespace
}  // namespace kvdm
