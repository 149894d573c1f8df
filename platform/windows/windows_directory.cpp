#include "platform/windows/windows_directory.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "platform/file_names.h"
#include "platform/system_error.h"
#include "platform/windows/utf16.h"

namespace kvdm {
namespace {

// The entries that are seen and that `chosen` wants.
template <class Chosen>
std::vector<FolderEntry> SeenEntries(const FileHandle& folder, Chosen chosen) {
  std::vector<FolderEntry> entries = EntriesOf(folder);
  std::erase_if(entries,
                [&](const FolderEntry& entry) { return !entry.IsSeen() || !chosen(entry); });
  return entries;
}

std::vector<std::string> NamesOf(const std::vector<FolderEntry>& entries) {
  std::vector<std::string> names;
  for (const FolderEntry& entry : entries) names.push_back(ToUtf8(entry.name));
  SortNames(names);
  return names;
}

void DeleteUnlessGone(const FileHandle& folder, const FolderEntry& entry) {
  try {
    DeleteEntry(folder, entry);
  } catch (const std::system_error& error) {
    if (error.code().value() != ERROR_FILE_NOT_FOUND) throw;
  }
}

}  // namespace

WindowsDirectory::WindowsDirectory(FileHandle folder, std::string path) : path_(std::move(path)) {
  way_.push_back({std::move(folder), path_.size(), {}});
}

std::vector<std::string> WindowsDirectory::Files() {
  return TranslatingErrors(path_, [&] {
    return NamesOf(SeenEntries(Here(), [](const FolderEntry& entry) { return !entry.IsFolder(); }));
  });
}

std::vector<std::string> WindowsDirectory::Entries() {
  return TranslatingErrors(path_, [&] {
    const auto entries = SeenEntries(Here(), [](const FolderEntry&) { return true; });
    way_.back().known.clear();
    for (const FolderEntry& entry : entries) way_.back().known[entry.name] = entry.id;
    return NamesOf(entries);
  });
}

void WindowsDirectory::DeleteFiles() {
  const std::vector<FolderEntry> files = DeletableFiles();
  if (files.empty()) throw PathError(kFileNotFound, PathOf("*"));
  for (const FolderEntry& file : files) {
    TranslatingErrors(PathOf(ToUtf8(file.name)), [&] { DeleteUnlessGone(Here(), file); });
  }
}

void WindowsDirectory::Enter(std::string_view name) {
  TranslatingErrors(PathOf(name), [&] {
    const FolderEntry entry = FolderNamed(name);
    FileHandle inside = OpenEntry(Here(), entry, kListAccess);
    way_.back().known[entry.name] = entry.id;
    path_ = PathOf(ToUtf8(entry.name));
    way_.push_back({std::move(inside), path_.size(), {}});
  });
}

void WindowsDirectory::Leave() {
  way_.pop_back();
  path_.resize(way_.back().path_length);
}

void WindowsDirectory::RemoveFolder(std::string_view name) {
  TranslatingErrors(PathOf(name), [&] {
    const FolderEntry entry = FolderNamed(name);
    DeleteEntry(Here(), entry);
    way_.back().known.erase(entry.name);
  });
}

std::string WindowsDirectory::PathOf(std::string_view name) const {
  return path_ + (path_.ends_with('\\') ? "" : "\\") + std::string(name);
}

FolderEntry WindowsDirectory::FolderNamed(std::string_view name) const {
  std::vector<std::string> names;
  std::vector<FolderEntry> entries = EntriesOf(Here());
  for (const FolderEntry& entry : entries) names.push_back(ToUtf8(entry.name));
  const auto found = FindSameName(names, name);
  if (!found) ThrowSystemError(ERROR_PATH_NOT_FOUND);
  FolderEntry& entry = entries.at(std::ranges::find(names, *found) - names.begin());
  const auto known = way_.back().known.find(entry.name);
  const bool replaced = known != way_.back().known.end() && known->second != entry.id;
  if (!entry.IsFolder() || replaced) ThrowSystemError(ERROR_DIRECTORY);
  return std::move(entry);
}

std::vector<FolderEntry> WindowsDirectory::DeletableFiles() const {
  return TranslatingErrors(path_, [&] {
    return SeenEntries(
        Here(), [](const FolderEntry& entry) { return !entry.IsFolder() && !entry.IsReadOnly(); });
  });
}

}  // namespace kvdm
