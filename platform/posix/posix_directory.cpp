#include "platform/posix/posix_directory.h"

#include <fcntl.h>

#include <cerrno>
#include <utility>

#include "platform/file_names.h"
#include "platform/posix/leftovers.h"
#include "platform/system_error.h"

namespace kvdm {
namespace {

constexpr std::size_t kMostOpen = 64;

// What is in a folder and is seen and `chosen`, by name in the order of a listing.
template <class Chosen>
std::vector<std::pair<std::string, FileIdentity>> SeenEntries(int folder, Chosen chosen) {
  std::vector<std::pair<std::string, FileIdentity>> entries;
  for (std::string& name : EntryNames(folder)) {
    const auto facts = ExamineEntry(folder, name);
    if (facts && facts->is_seen && chosen(*facts)) {
      entries.emplace_back(std::move(name), facts->identity);
    }
  }
  return entries;
}

template <class Chosen>
std::vector<std::string> NamesOf(int folder, Chosen chosen) {
  std::vector<std::string> names;
  for (auto& [name, identity] : SeenEntries(folder, chosen)) names.push_back(std::move(name));
  return names;
}

// Removes a folder, unless there is something in it.
bool WasEmpty(int folder, const std::string& name) {
  if (::unlinkat(folder, name.c_str(), AT_REMOVEDIR) == 0) return true;
  if (errno != ENOTEMPTY && errno != EEXIST) ThrowLastError();
  return false;
}

}  // namespace

PosixDirectory::PosixDirectory(FileDescriptor folder, std::string path) : path_(std::move(path)) {
  const FileIdentity identity = IdentityOf(folder.get());
  way_.push_back({std::move(folder), identity, path_.size(), {}});
}

std::vector<std::string> PosixDirectory::Files() {
  return TranslatingErrors(path_, [&] {
    return NamesOf(Here(), [](const EntryFacts& facts) { return !facts.is_folder; });
  });
}

std::vector<std::string> PosixDirectory::Entries() {
  return TranslatingErrors(path_, [&] {
    std::vector<std::string> names;
    auto& known = way_.back().known;
    known.clear();
    for (auto& [name, identity] : SeenEntries(Here(), [](const EntryFacts&) { return true; })) {
      known[name] = identity;
      names.push_back(std::move(name));
    }
    return names;
  });
}

void PosixDirectory::DeleteFiles() {
  const std::vector<std::string> names = DeletableFiles();
  if (names.empty()) throw PathError(kFileNotFound, PathOf("*"));
  for (const std::string& name : names) {
    const bool gone = ::unlinkat(Here(), name.c_str(), 0) == 0 || errno == ENOENT;
    if (!gone) throw SystemErrorAt(PathOf(name), errno);
  }
}

void PosixDirectory::Enter(std::string_view name) {
  TranslatingErrors(PathOf(name), [&] {
    const std::string real_name = RealName(name);
    FileDescriptor inside = OpenFolderIn(Here(), real_name);
    const FileIdentity identity = IdentityOf(inside.get());
    RequireKnown(real_name, identity);
    way_.back().known[real_name] = identity;
    if (way_.size() >= kMostOpen) way_.back().folder = FileDescriptor(-1);
    path_.append(path_.ends_with('\\') ? "" : "\\").append(real_name);
    way_.push_back({std::move(inside), identity, path_.size(), {}});
  });
}

void PosixDirectory::Leave() {
  TranslatingErrors(path_, [&] {
    const Level inside = std::move(way_.back());
    way_.pop_back();
    path_.resize(way_.back().path_length);
    if (Here() >= 0) return;
    FileDescriptor around = OpenAt(inside.folder.get(), "..", O_RDONLY | O_DIRECTORY);
    if (IdentityOf(around.get()) != way_.back().identity) ThrowSystemError(ENOENT);
    way_.back().folder = std::move(around);
  });
}

void PosixDirectory::RemoveFolder(std::string_view name) {
  TranslatingErrors(PathOf(name), [&] {
    const std::string real_name = RealName(name);
    const auto facts = ExamineEntry(Here(), real_name);
    if (!facts) ThrowSystemError(ENOENT);
    RequireKnown(real_name, facts->identity);
    if (!WasEmpty(Here(), real_name)) {
      ClearLeftovers(OpenFolderIn(Here(), real_name).get());
      if (!WasEmpty(Here(), real_name)) ThrowSystemError(ENOTEMPTY);
    }
    way_.back().known.erase(real_name);
  });
}

std::string PosixDirectory::PathOf(std::string_view name) const {
  return path_ + (path_.ends_with('\\') ? "" : "\\") + std::string(name);
}

std::string PosixDirectory::RealName(std::string_view name) const {
  auto entry = FindEntry(Here(), name, FindSameName);
  if (!entry) ThrowSystemError(ENOENT);
  return *std::move(entry);
}

void PosixDirectory::RequireKnown(const std::string& name, const FileIdentity& found) const {
  const auto& known = way_.back().known;
  const auto entry = known.find(name);
  if (entry != known.end() && entry->second != found) ThrowSystemError(ENOTDIR);
}

std::vector<std::string> PosixDirectory::DeletableFiles() const {
  return TranslatingErrors(path_, [&] {
    return NamesOf(Here(),
                   [](const EntryFacts& facts) { return !facts.is_folder && !facts.is_read_only; });
  });
}

}  // namespace kvdm
