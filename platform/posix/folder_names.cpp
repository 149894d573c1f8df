#include "platform/posix/folder_names.h"

#include <linux/magic.h>
#include <sys/inotify.h>
#include <sys/vfs.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>

#include "platform/system_error.h"

namespace kvdm {
namespace {

constexpr std::size_t kMostFolders = 8;
constexpr std::size_t kMostNames = std::size_t{1} << 18U;
constexpr std::time_t kSettledSeconds = 2;

FileIdentity IdentityFrom(const struct stat& status) { return {status.st_dev, status.st_ino}; }

struct stat StatusOfOpen(int folder) {
  struct stat status {};
  if (::fstat(folder, &status) != 0) ThrowLastError();
  return status;
}

bool IsSame(const timespec& a, const timespec& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

// Whether the last change is so long ago that a later one has another time.
bool IsSettled(const timespec& changed) {
  timespec now{};
  return ::clock_gettime(CLOCK_REALTIME, &now) == 0 &&
         changed.tv_sec + kSettledSeconds < now.tv_sec;
}

bool IsLocal(int folder) {
  constexpr auto kXfs = 0x58465342;
  constexpr std::array kLocal = {static_cast<std::uint32_t>(EXT4_SUPER_MAGIC),
                                 static_cast<std::uint32_t>(TMPFS_MAGIC),
                                 static_cast<std::uint32_t>(BTRFS_SUPER_MAGIC),
                                 static_cast<std::uint32_t>(F2FS_SUPER_MAGIC),
                                 static_cast<std::uint32_t>(kXfs),
                                 static_cast<std::uint32_t>(OVERLAYFS_SUPER_MAGIC)};
  struct statfs system {};
  return ::fstatfs(folder, &system) == 0 &&
         std::ranges::find(kLocal, static_cast<std::uint32_t>(system.f_type)) != kLocal.end();
}

}  // namespace

std::optional<std::string> FolderNames::Find(int folder, std::string_view name, NameFinder find) {
  if (!IsEntryName(name)) return std::nullopt;
  if (HasEntry(folder, std::string(name))) return std::string(name);
  {
    const std::lock_guard lock(mutex_);
    const Known* known = Current(StatusOfOpen(folder));
    if (known != nullptr && !known->names.contains(NameHash(name))) return std::nullopt;
  }
  return FindListed(name, find, [&](const EntryVisitor& visit) { List(folder, visit); });
}

void FolderNames::List(int folder, const EntryVisitor& visit) {
  const std::lock_guard lock(mutex_);
  const struct stat status = StatusOfOpen(folder);
  if (Current(status) != nullptr) return ListEntries(folder, visit);
  Learn(folder, status, visit);
}

void FolderNames::Made(int folder) {
  const std::lock_guard lock(mutex_);
  struct stat status {};
  if (::fstat(folder, &status) == 0) PlaceFor(status).grows = true;
}

FolderNames::Known* FolderNames::Current(const struct stat& status) {
  if (events_.get() >= 0 && process_ != ::getpid()) StopWatching();
  TakeEvents();
  const auto found = std::ranges::find(known_, IdentityFrom(status), &Known::folder);
  if (found == known_.end() || !found->is_valid) return nullptr;
  const bool holds = found->watch != kNoWatch || IsSame(found->changed, status.st_ctim);
  return holds ? &*found : nullptr;
}

FolderNames::Known& FolderNames::PlaceFor(const struct stat& status) {
  const auto found = std::ranges::find(known_, IdentityFrom(status), &Known::folder);
  if (found != known_.end()) return *found;
  if (known_.size() >= kMostFolders) {
    if (known_.front().watch != kNoWatch) {
      ::inotify_rm_watch(events_.get(), known_.front().watch);
    }
    known_.erase(known_.begin());
  }
  known_.push_back({.folder = IdentityFrom(status)});
  return known_.back();
}

void FolderNames::Learn(int folder, const struct stat& status, const EntryVisitor& visit) {
  Known& known = PlaceFor(status);
  known.is_valid = false;
  known.names.clear();
  known.changed = status.st_ctim;
  const bool is_local = IsLocal(folder);
  if (is_local && known.grows && known.watch == kNoWatch) Watch(folder, known);
  const bool may_keep = is_local && (known.watch != kNoWatch || IsSettled(known.changed));
  ListEntries(folder, [&](const char* name, unsigned char type) {
    if (may_keep && known.names.size() <= kMostNames) known.names.insert(NameHash(name));
    visit(name, type);
  });
  const bool is_whole = TakeEvents(known.watch) && known.names.size() <= kMostNames;
  known.is_valid = may_keep && is_whole;
}

void FolderNames::Watch(int folder, Known& known) {
  if (events_.get() < 0) {
    events_ = FileDescriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    process_ = ::getpid();
  }
  const std::string path = "/proc/self/fd/" + std::to_string(folder);
  constexpr std::uint32_t kWanted = IN_CREATE | IN_DELETE | IN_MOVE | IN_ONLYDIR;
  if (events_.get() >= 0) {
    known.watch = ::inotify_add_watch(events_.get(), path.c_str(), kWanted);
  }
}

bool FolderNames::TakeEvents(int watch) {
  if (events_.get() < 0) return true;
  bool is_quiet = true;
  alignas(inotify_event) std::array<char, 16384> buffer;
  while (true) {
    const ssize_t size = ::read(events_.get(), buffer.data(), buffer.size());
    if (size <= 0) {
      if (size < 0 && errno == EAGAIN) return is_quiet;
      StopWatching();
      return false;
    }
    for (ssize_t at = 0; at < size;) {
      const auto* event = reinterpret_cast<const inotify_event*>(buffer.data() + at);
      if (event->wd == watch || (event->mask & IN_Q_OVERFLOW) != 0) is_quiet = false;
      TakeEvent(event->wd, event->mask, event->len == 0 ? "" : event->name);
      at += static_cast<ssize_t>(sizeof *event + event->len);
    }
  }
}

void FolderNames::TakeEvent(int watch, std::uint32_t what, std::string_view name) {
  if ((what & IN_Q_OVERFLOW) != 0) {
    for (Known& known : known_) known.is_valid = false;
    return;
  }
  const auto known = std::ranges::find(known_, watch, &Known::watch);
  if (known == known_.end()) return;
  if ((what & (IN_CREATE | IN_MOVED_TO)) != 0) {
    known->names.insert(NameHash(name));
  } else if ((what & (IN_DELETE | IN_MOVED_FROM)) != 0) {
    const auto gone = known->names.find(NameHash(name));
    if (gone != known->names.end()) known->names.erase(gone);
  } else {
    known->is_valid = false;
    known->watch = kNoWatch;
  }
}

void FolderNames::StopWatching() {
  for (Known& known : known_) {
    known.is_valid = known.is_valid && known.watch == kNoWatch;
    known.watch = kNoWatch;
  }
  events_ = FileDescriptor(-1);
}

}  // namespace kvdm
