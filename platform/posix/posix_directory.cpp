#include "platform/posix/posix_directory.h"

#include <fcntl.h>

#include <cerrno>
#include <utility>

#include "platform/file_names.h"
#include "platform/posix/folder_entries.h"
#include "platform/posix/posix_error.h"

namespace kvdm {
namespace {

// The names of the entries that are still there and that `chosen` wants.
template <class Chosen>
std::vector<std::string> NamesOf(int folder, Chosen chosen) {
  std::vector<std::string> names = EntryNames(folder);
  std::erase_if(names, [&](const std::string& name) {
    const auto facts = ExamineEntry(folder, name);
    return !facts || !facts->is_seen || !chosen(*facts);
  });
  return names;
}

}  // namespace

PosixDirectory::PosixDirectory(FileDescriptor folder, std::string path)
    : folder_(std::move(folder)), path_(std::move(path)) {}

std::vector<std::string> PosixDirectory::Files() {
  return TranslatingErrors(path_, [&] {
    return NamesOf(folder_.get(), [](const EntryFacts& facts) { return !facts.is_folder; });
  });
}

std::vector<std::string> PosixDirectory::Entries() {
  return TranslatingErrors(
      path_, [&] { return NamesOf(folder_.get(), [](const EntryFacts&) { return true; }); });
}

void PosixDirectory::DeleteFiles() {
  const std::vector<std::string> names = DeletableFiles();
  if (names.empty()) throw PathError(kFileNotFound, PathOf("*"));
  for (const std::string& name : names) {
    const bool gone = ::unlinkat(folder_.get(), name.c_str(), 0) == 0 || errno == ENOENT;
    if (!gone) throw PosixError(errno, PathOf(name));
  }
}

std::unique_ptr<Directory> PosixDirectory::Open(std::string_view name) {
  return TranslatingErrors(PathOf(name), [&] {
    const std::string real_name = RealName(name);
    constexpr int kFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW;
    return std::make_unique<PosixDirectory>(OpenAt(folder_.get(), real_name, kFlags),
                                            PathOf(real_name));
  });
}

void PosixDirectory::RemoveFolder(std::string_view name) {
  TranslatingErrors(PathOf(name), [&] {
    const std::string real_name = RealName(name);
    if (::unlinkat(folder_.get(), real_name.c_str(), AT_REMOVEDIR) != 0) ThrowSystemError(errno);
  });
}

std::string PosixDirectory::PathOf(std::string_view name) const {
  return path_ + (path_.ends_with('\\') ? "" : "\\") + std::string(name);
}

std::string PosixDirectory::RealName(std::string_view name) const {
  auto entry = FindEntry(folder_.get(), name);
  if (!entry) ThrowSystemError(ENOENT);
  return *std::move(entry);
}

std::vector<std::string> PosixDirectory::DeletableFiles() const {
  return TranslatingErrors(path_, [&] {
    return NamesOf(folder_.get(),
                   [](const EntryFacts& facts) { return !facts.is_folder && !facts.is_read_only; });
  });
}

}  // namespace kvdm
