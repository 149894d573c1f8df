#include "platform/windows/windows_directory.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "platform/file_names.h"
#include "platform/windows/utf16.h"
#include "platform/windows/win32_error.h"

namespace kvdm {
namespace {

// The names of the entries that are seen and that `chosen` wants.
template <class Chosen>
std::vector<std::string> NamesOf(const FileHandle& folder, Chosen chosen) {
  std::vector<std::string> names;
  for (const FolderEntry& entry : EntriesOf(folder)) {
    if (entry.IsSeen() && chosen(entry)) names.push_back(ToUtf8(entry.name));
  }
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

WindowsDirectory::WindowsDirectory(FileHandle folder, std::string path)
    : folder_(std::move(folder)), path_(std::move(path)) {}

std::vector<std::string> WindowsDirectory::Files() {
  return TranslatingErrors(path_, [&] {
    return NamesOf(folder_, [](const FolderEntry& entry) { return !entry.IsFolder(); });
  });
}

std::vector<std::string> WindowsDirectory::Entries() {
  return TranslatingErrors(
      path_, [&] { return NamesOf(folder_, [](const FolderEntry&) { return true; }); });
}

void WindowsDirectory::DeleteFiles() {
  const std::vector<FolderEntry> files = DeletableFiles();
  if (files.empty()) throw PathError(kFileNotFound, PathOf("*"));
  for (const FolderEntry& file : files) {
    TranslatingErrors(PathOf(ToUtf8(file.name)), [&] { DeleteUnlessGone(folder_, file); });
  }
}

std::unique_ptr<Directory> WindowsDirectory::Open(std::string_view name) {
  return TranslatingErrors(PathOf(name), [&] {
    const FolderEntry entry = FolderNamed(name);
    return std::make_unique<WindowsDirectory>(OpenEntry(folder_, entry, kListAccess),
                                              PathOf(ToUtf8(entry.name)));
  });
}

void WindowsDirectory::RemoveFolder(std::string_view name) {
  TranslatingErrors(PathOf(name), [&] { DeleteEntry(folder_, FolderNamed(name)); });
}

std::string WindowsDirectory::PathOf(std::string_view name) const {
  return path_ + (path_.ends_with('\\') ? "" : "\\") + std::string(name);
}

FolderEntry WindowsDirectory::FolderNamed(std::string_view name) const {
  std::vector<std::string> names;
  std::vector<FolderEntry> entries = EntriesOf(folder_);
  for (const FolderEntry& entry : entries) names.push_back(ToUtf8(entry.name));
  const auto found = FindName(names, name);
  if (!found) ThrowSystemError(ERROR_PATH_NOT_FOUND);
  FolderEntry& entry = entries.at(std::ranges::find(names, *found) - names.begin());
  if (!entry.IsFolder()) ThrowSystemError(ERROR_DIRECTORY);
  return std::move(entry);
}

std::vector<FolderEntry> WindowsDirectory::DeletableFiles() const {
  return TranslatingErrors(path_, [&] {
    std::vector<FolderEntry> entries = EntriesOf(folder_);
    std::erase_if(entries, [](const FolderEntry& entry) {
      return entry.IsFolder() || !entry.IsSeen() || entry.IsReadOnly();
    });
    return entries;
  });
}

}  // namespace kvdm
