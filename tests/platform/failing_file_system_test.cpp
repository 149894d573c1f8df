#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "platform/memory/failing_services.h"
#include "platform/memory/memory_file_system.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::Optional;

class FailingFileSystemTest : public ::testing::Test {
 protected:
  FailingFileSystemTest() { memory_->AddFile(R"(D:\Data\North\a.xml)", "x"); }

  std::shared_ptr<MemoryFileSystem> memory_ = std::make_shared<MemoryFileSystem>();
  std::shared_ptr<FailureCounter> counter_ = std::make_shared<FailureCounter>();
  FailingFileSystem files_{memory_, counter_};
};

TEST_F(FailingFileSystemTest, ForwardsAndCountsEveryCall) {
  EXPECT_TRUE(files_.FolderExists(R"(D:\Data)"));
  EXPECT_THAT(files_.ReadFile(R"(D:\Data\North\a.xml)"), Optional(std::string("x")));
  files_.WriteFile(R"(D:\Data\b.xml)", "y");
  const auto folder = files_.OpenFolder(R"(D:\Data)");
  folder->Enter("North");
  EXPECT_THAT(folder->Files(), ElementsAre("a.xml"));
  folder->Leave();
  EXPECT_EQ(counter_->calls, 7);
}

TEST_F(FailingFileSystemTest, TheChosenCallFailsAndChangesNothing) {
  counter_->fail_at = 2;
  files_.CreateFolder(R"(D:\Data\A)");
  EXPECT_THROW(files_.CreateFolder(R"(D:\Data\B)"), RuntimeError);
  files_.CreateFolder(R"(D:\Data\C)");
  EXPECT_THAT(memory_->OpenFolder(R"(D:\Data)")->Entries(), ElementsAre("A", "C", "North"));
}

TEST_F(FailingFileSystemTest, CallsOfOpenedFoldersFailToo) {
  counter_->fail_at = 3;
  const auto north = files_.OpenFolder(R"(D:\Data)");
  north->Enter("North");
  EXPECT_THROW(north->DeleteFiles(), RuntimeError);
  EXPECT_THAT(north->Files(), ElementsAre("a.xml"));
}

TEST_F(FailingFileSystemTest, TheCallThatNeverFailsAnswersFalse) {
  counter_->fail_at = 1;
  EXPECT_FALSE(files_.FolderExists(R"(D:\Data)"));
}

}  // namespace
}  // namespace kvdm
