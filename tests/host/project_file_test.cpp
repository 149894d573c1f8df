#include "host/project_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "host/os.h"
#include "tests/temp_folder.h"

namespace kvdm {
namespace {

using ::testing::HasSubstr;

namespace fs = std::filesystem;

// Makes a folder the current one.
class CurrentFolder {
 public:
  explicit CurrentFolder(const fs::path& folder) : before_(fs::current_path()) {
    fs::current_path(folder);
  }
  ~CurrentFolder() { fs::current_path(before_); }
  CurrentFolder(const CurrentFolder&) = delete;
  CurrentFolder& operator=(const CurrentFolder&) = delete;

 private:
  fs::path before_;
};

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
  EXPECT_EQ(ReadProjectFile(WithSuffix(file_, ".bak")).values, ProjectWith("one").values);
  EXPECT_EQ(ReadProjectFile(WithSuffix(file_, ".~1~")).values, ProjectWith("one").values);
  EXPECT_EQ(os::FilesIn(folder_.Path()).size(), 3U);
}

TEST_F(ProjectFileTest, IsNotRewrittenWithoutAChange) {
  EXPECT_TRUE(WriteProjectFile(file_, ProjectWith("one")));
  EXPECT_FALSE(WriteProjectFile(file_, ProjectWith("one")));
  EXPECT_FALSE(fs::exists(WithSuffix(file_, ".bak")));
}

TEST_F(ProjectFileTest, StaysAsItIsWhenItCantBeWritten) {
  WriteProjectFile(file_, ProjectWith("one"));
  fs::create_directory(WithSuffix(file_, ".bak"));

  const Failure failure = FailureOf([&] { WriteProjectFile(file_, ProjectWith("two")); });

  EXPECT_EQ(failure.code(), ExitCode::kRefused);
  EXPECT_EQ(ReadProjectFile(file_).values, ProjectWith("one").values);
}

TEST_F(ProjectFileTest, NamesThePreviousFileWhenItIsDamaged) {
  WriteProjectFile(file_, ProjectWith("one"));
  WriteProjectFile(file_, ProjectWith("two"));
  os::Replace(file_, "damaged");

  const Failure failure = FailureOf([&] { static_cast<void>(ReadProjectFile(file_)); });

  EXPECT_EQ(failure.code(), ExitCode::kUnreadable);
  EXPECT_THAT(failure.what(), HasSubstr("North.kvdm.bak"));
}

TEST_F(ProjectFileTest, IsNotAFolder) {
  fs::create_directory(file_);

  const Failure failure = FailureOf([&] { static_cast<void>(ReadProjectFile(file_)); });

  EXPECT_EQ(failure.code(), ExitCode::kUnreadable);
}

// A project that stands in a folder is found there at every moment, and so is one that is named.
TEST_F(ProjectFileTest, IsThereAllTheTimeWhileItIsReplaced) {
  constexpr int kTimes = 400;
  const CurrentFolder inside(folder_.Path());
  WriteProjectFile(file_, ProjectWith("first"));
  std::atomic<bool> done = false;
  std::jthread replacing([&] {
    for (int i = 0; i < kTimes; ++i)
      WriteProjectFile(file_, ProjectWith(std::to_string(i).c_str()));
    done = true;
  });

  int missed = 0;
  int looks = 0;
  while (!done) {
    for (const char* given : {"", "North.kvdm"}) {
      const Failure failure = FailureOf([&] { static_cast<void>(FindProjectFile(given)); });
      if (failure.code() != ExitCode::kDone) ++missed;
      ++looks;
    }
  }

  EXPECT_EQ(missed, 0) << "of " << looks;
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
