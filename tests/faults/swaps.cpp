// Deletions while another thread moves folders and puts links in their places, and where the system
// lets us, with another place mounted inside. The links lead to folders with the same names;
// nothing may change there. A link in the place of the working directory is followed, as one on the
// way to any folder, and leads to where none of the folders is.
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <thread>

#include "datamanager/kv_data_manager.h"
#include "platform/memory/memory_platform.h"
#include "platform/posix/posix_file_system.h"
#include "tests/faults/loop.h"
#include "tests/temp_folder.h"
#include "util/kvdm_utils.h"

namespace kvdm::faults {
namespace {

namespace fs = std::filesystem;

constexpr std::array kFolders = {"North",           "North/a",      "North/a/b",
                                 "North/c",         "KelvaroTemp",  "KelvaroTemp/a",
                                 "KelvaroTemp/a/b", "KelvaroTemp/c"};
constexpr std::array kFiles = {"1", "2", "keep"};

void MakeTree(const fs::path& root) {
  for (const char* folder : kFolders) {
    fs::create_directories(root / folder);
    for (const char* file : kFiles) std::ofstream(root / folder / file) << "x";
  }
}

int MissingFrom(const fs::path& root) {
  int missing = 0;
  for (const char* folder : kFolders) {
    for (const char* file : kFiles) missing += fs::exists(root / folder / file) ? 0 : 1;
  }
  return missing;
}

// The work that is deleted, and outside it what must stay: a tree of the same names, and a folder
// without them, for the working directory itself.
struct Area {
  TempFolder folder;
  fs::path root = folder.Path();
  fs::path work = root / "drive/Work";
  fs::path outside = root / "outside";
  fs::path bare = root / "bare";

  Area() {
    MakeTree(outside);
    fs::create_directories(bare);
    std::ofstream(bare / "keep") << "x";
  }
  void MakeWork() const {
    fs::remove_all(root / "drive");
    fs::remove_all(root / "aside");
    fs::create_directories(root / "aside");
    MakeTree(work);
  }
};

// Puts a link in the place of a folder and the folder back, again and again, until it ends.
class Swapper {
 public:
  Swapper(const Area& area, unsigned seed) : thread_([this, &area, seed] { Swap(area, seed); }) {}
  Swapper(const Swapper&) = delete;
  Swapper& operator=(const Swapper&) = delete;
  ~Swapper() {
    ends_ = true;
    thread_.join();
  }
  void WaitForFirst() const { swaps_.wait(0); }

 private:
  void Swap(const Area& area, unsigned seed) {
    std::mt19937 chance(seed);
    const std::string aside = (area.root / "aside/folder").string();
    do {
      const bool top = chance() % 2 == 0;  // One of the two that are deleted.
      const std::size_t at =
          top ? chance() % 2 * kFolders.size() / 2 : chance() % (kFolders.size() + 1);
      const bool all = at == kFolders.size();
      const std::string place = (all ? area.work : area.work / kFolders.at(at)).string();
      const std::string link = (all ? area.bare : area.outside / kFolders.at(at)).string();
      if (std::rename(place.c_str(), aside.c_str()) == 0) {
        const bool linked = ::symlink(link.c_str(), place.c_str()) == 0;
        for (unsigned i = chance() % 4; i > 0; --i) std::this_thread::yield();
        if (linked) ::unlink(place.c_str());
        std::rename(aside.c_str(), place.c_str());
        std::error_code ignored;
        fs::remove_all(aside, ignored);  // When the folder around is gone.
      }
      ++swaps_;
      swaps_.notify_all();
    } while (!ends_);
  }

  std::atomic<bool> ends_ = false;
  std::atomic<int> swaps_ = 0;
  std::thread thread_;
};

bool WriteTo(const char* file, const std::string& text) {
  std::ofstream out(file);
  return static_cast<bool>(out << text << std::flush);
}

// Whether this process has mounts of its own now.
bool HasOwnMounts() {
  const std::string user = std::to_string(::geteuid());
  const std::string group = std::to_string(::getegid());
  if (::unshare(CLONE_NEWNS) != 0) {
    if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
    if (!WriteTo("/proc/self/setgroups", "deny") ||
        !WriteTo("/proc/self/uid_map", "0 " + user + " 1") ||
        !WriteTo("/proc/self/gid_map", "0 " + group + " 1")) {
      return false;
    }
  }
  return ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

// The tree outside, mounted in a folder inside.
class MountInside {
 public:
  MountInside(const Area& area, const fs::path& place) : place_(place.string()) {
    done_ = ::mount(area.outside.c_str(), place_.c_str(), nullptr, MS_BIND, nullptr) == 0;
  }
  MountInside(const MountInside&) = delete;
  MountInside& operator=(const MountInside&) = delete;
  ~MountInside() {
    if (done_) ::umount2(place_.c_str(), MNT_DETACH);
  }
  [[nodiscard]] bool done() const { return done_; }

 private:
  std::string place_;
  bool done_;
};

class Swaps {
 public:
  explicit Swaps(const Options& options) : options_(options), has_mounts_(HasOwnMounts()) {
    Platform bundle = memory_.Bundle();
    bundle.files = files_;
    manager_ = std::make_unique<KVDataManager>(bundle);
    area_.MakeWork();
    manager_->SetWorkingDirectory(R"(D:\Work)");
  }

  int Run() {
    std::printf("seed %u, mounts %s\n", options_.Seed(), has_mounts_ ? "tried" : "not permitted");
    for (int number = 0; number < options_.CasesOf(300, 50'000); ++number, ++counts_.tried) {
      area_.MakeWork();
      if (has_mounts_ && number % 4 == 0) {
        DeleteWithMount(number);
      } else {
        DeleteWithSwaps(number);
      }
      LookOutside(number);
    }
    return Report("swaps", counts_);
  }

 private:
  bool Delete(int number) {
    switch (number % 3) {
      case 0:
        return DeleteFolderTree(*files_, R"(D:\Work\North\)");
      case 1:
        return DeleteFolderTree(*files_, R"(D:\Work\KelvaroTemp\)");
      default:
        manager_->CleanTemp();
        return false;
    }
  }

  void DeleteWithSwaps(int number) {
    const Swapper swapper(area_, options_.Seed() * 100'000U + static_cast<unsigned>(number));
    swapper.WaitForFirst();
    for (int i = 0; i < 3; ++i) Delete(number);
  }

  void DeleteWithMount(int number) {
    const char* base = number % 3 == 0 ? "North" : "KelvaroTemp";
    const fs::path place = area_.work / base / (number % 8 == 0 ? "a/b" : "a");
    const MountInside mount(area_, place);
    const bool deleted = Delete(number);
    if (mount.done() && !deleted && fs::exists(place / "North/keep")) return;
    std::printf("wrong: case %d, the mount at %s\n", number, place.c_str());
    ++counts_.wrong;
  }

  void LookOutside(int number) {
    const int missing = MissingFrom(area_.outside) + (fs::exists(area_.bare / "keep") ? 0 : 1);
    if (missing == 0) return;
    std::printf("outside: seed %u, case %d, %d files\n", options_.Seed(), number, missing);
    counts_.outside += missing;
    MakeTree(area_.outside);
    std::ofstream(area_.bare / "keep") << "x";
  }

  Options options_;
  bool has_mounts_;
  Counts counts_;
  Area area_;
  MemoryPlatform memory_;
  std::shared_ptr<FileSystem> files_ =
      MakePosixFileSystem({{{'D', (area_.root / "drive").string()}}});
  std::unique_ptr<KVDataManager> manager_;
};

}  // namespace
}  // namespace kvdm::faults

int main(int count, char** arguments) {
  return kvdm::faults::Swaps(kvdm::faults::ReadOptions(count, arguments)).Run();
}
