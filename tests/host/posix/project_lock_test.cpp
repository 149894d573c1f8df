#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <thread>

#include "host/os.h"
#include "host/project_file.h"
#include "platform/posix/files.h"
#include "tests/temp_folder.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

// Waits until somebody opens a file.
class Opening {
 public:
  explicit Opening(const fs::path& file) : events_(::inotify_init1(IN_CLOEXEC)) {
    ::inotify_add_watch(events_.get(), file.c_str(), IN_OPEN);
  }
  void Wait() const {
    std::array<char, 4096> event{};
    EXPECT_GT(::read(events_.get(), event.data(), event.size()), 0);
  }

 private:
  FileDescriptor events_;
};

fs::path Found(const fs::path& folder, const char* given) {
  const fs::path before = fs::current_path();
  fs::current_path(folder);
  fs::path found;
  try {
    found = FindProjectFile(given);
  } catch (const Failure& failure) {
    found = failure.what();
  }
  fs::current_path(before);
  return found;
}

// As at a moment when the file is not there, while another kvdm puts it in place.
TEST(ProjectLockTest, AProjectIsWaitedForWhileItsLockIsHeld) {
  const TempFolder folder;
  const fs::path inner = folder.Path("inner");
  const fs::path project = inner / "Inner.kvdm";
  const fs::path outer = folder.Path("Outer.kvdm");
  const fs::path lock_file = WithSuffix(project, ".lock");
  fs::create_directory(inner);
  WriteProjectFile(outer, Project());
  for (const char* given : {"", "Inner.kvdm"}) {
    SCOPED_TRACE(given);
    auto lock = os::TryLock(lock_file);
    const Opening asked(lock_file);
    std::jthread other([&] {
      asked.Wait();
      WriteProjectFile(project, Project());
      lock.reset();
    });

    EXPECT_EQ(Found(inner, given), os::Canonical(inner) / "Inner.kvdm");
    // Who does not look at the lock leaves the other one waiting.
    static_cast<void>(os::TryLock(lock_file));
    other.join();
    fs::remove(project);
  }
  // The lock file of a project that was removed keeps nobody from the one above.
  EXPECT_EQ(Found(inner, ""), os::Canonical(outer));
}

}  // namespace
}  // namespace kvdm
