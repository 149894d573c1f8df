// Cache of folders' names: tells at once that a name is free in a folder that was listed before.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/posix/files.h"

namespace kvdm {

// Keeps, for the folders that were searched last, a number for each name. A name whose number is
// not there is free; any other answer comes from the folder itself. What is kept is used
//
// - while the folder's time of change is the one before its listing, and was some seconds old then:
//   times are too coarse to tell changes apart that follow each other;
// - or while the system tells what comes and goes (inotify). That is asked for once this process
// has
//   made something in the folder: giving it up takes the system a while.
//
// Only on file systems that no other machine writes to.
class FolderNames {
 public:
  // As FindEntry.
  [[nodiscard]] std::optional<std::string> Find(int folder, std::string_view name, NameFinder find);

  // As ListEntries.
  void List(int folder, const EntryVisitor& visit);

  // Tells that this process has made an entry in `folder` and may make more.
  void Made(int folder);

 private:
  struct Known {
    FileIdentity folder;
    struct timespec changed {};  // the time of change before it was listed
    bool is_valid = false;       // whether `names` are those of `changed`, or watched
    bool grows = false;          // whether this process makes entries there
    int watch = kNoWatch;
    std::unordered_multiset<std::size_t> names = {};
  };
  static constexpr int kNoWatch = -1;

  // What is known of the folder with this status and still holds; Nothing otherwise.
  Known* Current(const struct stat& status);
  // A place for what becomes known of the folder.
  Known& PlaceFor(const struct stat& status);
  // Lists the folder, and keeps the names if that may be.
  void Learn(int folder, const struct stat& status, const EntryVisitor& visit);
  void Watch(int folder, Known& known);
  // Takes over what the system has told. False when something happened in the folder of `watch`.
  bool TakeEvents(int watch = kNoWatch);
  void TakeEvent(int watch, std::uint32_t what, std::string_view name);
  void StopWatching();

  std::mutex mutex_;
  std::vector<Known> known_;  // the oldest first
  FileDescriptor events_{-1};
  pid_t process_ = 0;  // that watches; a forked one shares the events, and would take them away
};

}  // namespace kvdm
