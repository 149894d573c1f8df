#include "safety/folders.h"

#include <gtest/gtest.h>

#include <fstream>
#include <system_error>

#include "safety/os.h"
#include "tests/temp_folder.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

class FoldersTest : public testing::Test {
 protected:
  FoldersTest() {
    fs::create_directories(From() / "deep/er");
    std::ofstream(From() / "a.txt") << "one";
    std::ofstream(From() / "deep/er/b.bin", std::ios::binary) << std::string(200'000, 'x');
  }

  [[nodiscard]] fs::path From() const { return folder_.Path("from"); }
  [[nodiscard]] fs::path To() const { return folder_.Path("to"); }

  TempFolder folder_;
};

TEST_F(FoldersTest, ACopyHasWhatTheFolderHas) {
  CopyFolder(From(), To());
  EXPECT_EQ(os::SizeOfTree(To()).files, 2);
  EXPECT_EQ(os::SizeOfTree(To()).bytes, 200'003);
  EXPECT_EQ(fs::last_write_time(To() / "a.txt"), fs::last_write_time(From() / "a.txt"));
}

TEST_F(FoldersTest, AMoveOnOneDiskIsARename) {
  EXPECT_EQ(MoveOrCopyFolder(From(), To()), MoveKind::kRenamed);
  EXPECT_FALSE(fs::exists(From()));
  EXPECT_EQ(os::SizeOfTree(To()).files, 2);
}

TEST_F(FoldersTest, WhatIsThereStays) {
  fs::create_directory(To());
  EXPECT_THROW(MoveOrCopyFolder(From(), To()), std::system_error);
  EXPECT_THROW(CopyFolder(From(), To()), std::system_error);
  EXPECT_TRUE(fs::is_empty(To()));
  EXPECT_EQ(os::SizeOfTree(From()).files, 2);
}

}  // namespace
}  // namespace kvdm
