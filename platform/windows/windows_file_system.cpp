#include "platform/windows/windows_file_system.h"

#include <algorithm>
#include <array>
#include <map>
#include <tuple>
#include <utility>
#include <vector>

#include "platform/system_error.h"
#include "platform/windows/text.h"
#include "platform/xml/limits.h"

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

// An open folder. Works through the handles of the folders alone, which others may not keep from
// being moved or removed.
class WindowsDirectory final : public Directory {
 public:
  // `folder` is open with kListAccess; `path` is what errors name.
  WindowsDirectory(FileHandle folder, std::string path) : path_(std::move(path)) {
    levels_.push_back({std::move(folder), path_.size(), {}});
  }

  std::vector<std::string> Files() override {
    return TranslatingErrors(path_, [&] {
      return NamesOf(
          SeenEntries(Here(), [](const FolderEntry& entry) { return !entry.IsFolder(); }));
    });
  }
  std::vector<std::string> Entries() override {
    return TranslatingErrors(path_, [&] {
      const auto entries = SeenEntries(Here(), [](const FolderEntry&) { return true; });
      levels_.back().known.clear();
      for (const FolderEntry& entry : entries) levels_.back().known[entry.name] = entry.id;
      return NamesOf(entries);
    });
  }

  // Also error 75 when a link can't be told from what it leads to.
  void DeleteFiles() override {
    const std::vector<FolderEntry> files = DeletableFiles();
    if (files.empty()) throw PathError(kFileNotFound, PathOf("*"));
    for (const FolderEntry& file : files) {
      TranslatingErrors(PathOf(ToUtf8(file.name)), [&] { DeleteUnlessGone(Here(), file); });
    }
  }

  void Enter(std::string_view name) override {
    TranslatingErrors(PathOf(name), [&] {
      const FolderEntry entry = FolderNamed(name);
      FileHandle inside = OpenEntry(Here(), entry, kListAccess);
      levels_.back().known[entry.name] = entry.id;
      path_ = PathOf(ToUtf8(entry.name));
      levels_.push_back({std::move(inside), path_.size(), {}});
    });
  }

  void Leave() override {
    levels_.pop_back();
    path_.resize(levels_.back().path_length);
  }
  void RemoveFolder(std::string_view name) override {
    TranslatingErrors(PathOf(name), [&] {
      const FolderEntry entry = FolderNamed(name);
      DeleteRecoveryFile(OpenEntry(Here(), entry, kListAccess));
      DeleteEntry(Here(), entry);
      levels_.back().known.erase(entry.name);
    });
  }

 private:
  struct Level {
    FileHandle folder;
    std::size_t path_length;
    std::map<std::wstring, LONGLONG> known;  // What was listed or entered, by name.
  };

  // A folder that has nothing but what brings its item back is as good as empty.
  static void DeleteRecoveryFile(const FileHandle& folder) {
    const std::vector<FolderEntry> entries = EntriesOf(folder);
    if (entries.size() != 1 || entries.front().IsFolder()) return;
    if (ToUtf8(entries.front().name) == kRecoveryFile) DeleteUnlessGone(folder, entries.front());
  }

  [[nodiscard]] const FileHandle& Here() const { return levels_.back().folder; }
  [[nodiscard]] std::string PathOf(std::string_view name) const { return PathIn(path_, name); }
  // A folder inside. Throws std::system_error: ERROR_PATH_NOT_FOUND when it is missing,
  // ERROR_DIRECTORY when it is no folder or not the one that is known by its name.
  [[nodiscard]] FolderEntry FolderNamed(std::string_view name) const {
    std::vector<std::string> names;
    std::vector<FolderEntry> entries = EntriesOf(Here());
    for (const FolderEntry& entry : entries) names.push_back(ToUtf8(entry.name));
    const auto found = FindSameName(names, name);
    if (!found) ThrowSystemError(ERROR_PATH_NOT_FOUND);
    FolderEntry& entry = entries.at(std::ranges::find(names, *found) - names.begin());
    const auto known = levels_.back().known.find(entry.name);
    const bool replaced = known != levels_.back().known.end() && known->second != entry.id;
    if (!entry.IsFolder() || replaced) ThrowSystemError(ERROR_DIRECTORY);
    return std::move(entry);
  }

  [[nodiscard]] std::vector<FolderEntry> DeletableFiles() const {
    return TranslatingErrors(path_, [&] {
      return SeenEntries(Here(), [](const FolderEntry& entry) {
        return !entry.IsFolder() && !entry.IsReadOnly();
      });
    });
  }

  std::vector<Level> levels_;  // The last one is where it is.
  std::string path_;
};

class WindowsFileSystem final : public FileSystem {
 public:
  bool FolderExists(std::string_view path) override {
    try {
      DrivePath resolved = ResolveWindowsPath(path);
      return OpenFolderAt(resolved, ERROR_DIRECTORY, FILE_READ_ATTRIBUTES).is_open();
    } catch (const std::system_error&) {
      return false;  // What can't be reached is not there for the caller.
    }
  }

  void CreateFolder(std::string_view path) override {
    TranslatingErrors(path, [&] {
      const WindowsPlace place = PlaceOf(path, ERROR_ALREADY_EXISTS);
      if (place.attributes) throw PathError(kFileExists, path);
      if (!place.HasCreatableName()) throw PathError(kBadFileName, path);
      if (::CreateDirectoryW(SystemPath(place.path).c_str(), nullptr) == FALSE) ThrowLastError();
    });
  }

  std::string FullPath(std::string_view path) override {
    return TranslatingErrors(path, [&] {
      DrivePath resolved = ResolveWindowsPath(path);
      std::ignore = OpenFolderAt(resolved, ERROR_PATH_NOT_FOUND, FILE_READ_ATTRIBUTES);
      return resolved.Text();
    });
  }

  void HideFolder(std::string_view path) override {
    TranslatingErrors(path, [&] {
      DrivePath resolved = ResolveWindowsPath(path);
      std::ignore = OpenFolderAt(resolved, ERROR_PATH_NOT_FOUND, FILE_READ_ATTRIBUTES);
      const std::wstring folder = SystemPath(resolved);
      const DWORD attributes = ::GetFileAttributesW(folder.c_str());
      if (attributes == INVALID_FILE_ATTRIBUTES ||
          ::SetFileAttributesW(folder.c_str(), attributes | FILE_ATTRIBUTE_HIDDEN) == FALSE) {
        ThrowLastError();
      }
    });
  }

  std::string SystemDrive() override {
    return TranslatingErrors({}, [] {
      std::array<wchar_t, MAX_PATH> folder{};
      if (::GetSystemWindowsDirectoryW(folder.data(), MAX_PATH) == 0) ThrowLastError();
      return ToUtf8({folder.data(), 2});
    });
  }

  std::vector<std::string> FindFiles(std::string_view pattern) override {
    const SearchPattern search = SplitPattern(pattern);
    auto names = AnswerUnlessMissing<std::vector<std::string>>(search.folder, [&] {
      DrivePath resolved = ResolveWindowsPath(search.folder);
      FileHandle found = OpenFolderAt(resolved, ERROR_DIRECTORY, kListAccess);
      return WindowsDirectory(std::move(found), resolved.Text()).Files();
    });
    std::erase_if(names,
                  [&](const std::string& name) { return !MatchesPattern(name, search.name); });
    return names;
  }

  std::unique_ptr<Directory> OpenFolder(std::string_view path) override {
    return TranslatingErrors(path, [&] {
      DrivePath resolved = ResolveWindowsPath(path);
      FileHandle folder = OpenFolderAt(resolved, ERROR_DIRECTORY, kListAccess, FindSameName);
      return std::make_unique<WindowsDirectory>(std::move(folder), resolved.Text());
    });
  }

  std::optional<std::string> ReadFile(std::string_view path) override {
    using Bytes = std::optional<std::string>;
    return AnswerUnlessMissing<Bytes>(path, [&] {
      const WindowsPlace place = PlaceOf(path, ERROR_DIRECTORY);
      if (!place.attributes || place.IsFolder()) return Bytes();
      const FileHandle file(::CreateFileW(SystemPath(place.path).c_str(), GENERIC_READ, kShareAll,
                                          nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN,
                                          nullptr));
      if (!file.is_open()) ThrowLastError();
      return Bytes(ReadAll(file, xml::kMaxInputBytes + 1));
    });
  }

  void WriteFile(std::string_view path, std::string_view bytes) override {
    TranslatingErrors(path, [&] {
      const WindowsPlace place = PlaceOf(path, ERROR_DIRECTORY);
      if (!place.attributes && !place.HasCreatableName()) throw PathError(kBadFileName, path);
      if (place.IsFolder()) throw PathError(kPathFileAccess, path);
      const bool read_only = (place.attributes.value_or(0) & FILE_ATTRIBUTE_READONLY) != 0;
      if (read_only) throw PathError(kPermissionDenied, path);
      SaveFile(SystemPath(place.path), bytes);
    });
  }
};

}  // namespace

std::shared_ptr<FileSystem> MakeWindowsFileSystem() {
  return std::make_shared<WindowsFileSystem>();
}

}  // namespace kvdm
