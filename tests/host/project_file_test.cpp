#include "host/project_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/os.h"
#include "tests/temp_folder.h"

namespace kvdm {
namespace {

using ::testing::HasSubstr;

namespace fs = std::filesystem;

class ProjectFileTest : public ::testing::Test {
 protected:
  static Project ProjectWith(const char* value) {
    Project project;
    project.values = {value};
    return project;
  }

  // The failure of reading or writing.
  template <class Body>
  static Failure FailureOf(Body body) {
    try {
      body();
    } catch (const Failure& failure) {
      return failure;
    }
    return {ExitCode::kDone, "none"};
  }

  TempFolder folder_;
  fs::path file_ = folder_.Path("North.kvdm");
};

TEST_F(ProjectFileTest, KeepsThePreviousFile) {
  WriteProjectFile(file_, ProjectWith("one"));
  WriteProjectFile(file_, ProjectWith("two"));

  EXPECT_EQ(ReadProjectFile(file_).values, ProjectWith("two").values);
  EXPECT_EQ(ReadProjectFile(Beside(file_, ".bak")).values, ProjectWith("one").values);
  EXPECT_FALSE(fs::exists(Beside(file_, ".tmp")));
}

TEST_F(ProjectFileTest, IsNotRewrittenWithoutAChange) {
  EXPECT_TRUE(WriteProjectFile(file_, ProjectWith("one")));
  EXPECT_FALSE(WriteProjectFile(file_, ProjectWith("one")));
  EXPECT_FALSE(fs::exists(Beside(file_, ".bak")));
}

TEST_F(ProjectFileTest, StaysAsItIsWhenItCantBeWritten) {
  WriteProjectFile(file_, ProjectWith("one"));
  fs::create_directory(Beside(file_, ".tmp"));

  const Failure failure = FailureOf([&] { WriteProjectFile(file_, ProjectWith("two")); });

  EXPECT_EQ(failure.code(), ExitCode::kRefused);
  EXPECT_EQ(ReadProjectFile(file_).values, ProjectWith("one").values);
}

TEST_F(ProjectFileTest, NamesThePreviousFileWhenItIsDamaged) {
  WriteProjectFile(file_, ProjectWith("one"));
  WriteProjectFile(file_, ProjectWith("two"));
  os::WriteBytes(file_, "damaged");

  const Failure failure = FailureOf([&] { static_cast<void>(ReadProjectFile(file_)); });

  EXPECT_EQ(failure.code(), ExitCode::kUnreadable);
  EXPECT_THAT(failure.what(), HasSubstr("North.kvdm.bak"));
}

TEST_F(ProjectFileTest, IsNotAFolder) {
  fs::create_directory(file_);

  const Failure failure = FailureOf([&] { static_cast<void>(ReadProjectFile(file_)); });

  EXPECT_EQ(failure.code(), ExitCode::kUnreadable);
}

TEST_F(ProjectFileTest, LocksOutOthersUntilTheLockIsGone) {
  const fs::path lock_file = folder_.Path("lock");
  auto lock = os::TryLock(lock_file);
  ASSERT_TRUE(lock);
  EXPECT_FALSE(os::TryLock(lock_file));

  lock.reset();

  EXPECT_TRUE(os::TryLock(lock_file));
}

}  // namespace
}  // namespace kvdm
