#include "platform/posix/posix_file_system.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

#include "platform/posix/numbered_entries.h"
#include "platform/system_error.h"
#include "platform/xml/limits.h"

namespace kvdm {
namespace {

// So many folders of a path are kept open.
constexpr std::size_t kMostOpen = 64;

// An entry that is seen.
struct SeenEntry {
  std::string name;
  FileStatus status;

  [[nodiscard]] bool IsDeletable() const { return !status.is_folder && !status.is_read_only; }
};

// The entries that are seen of a folder that is open for listing, in the order of a listing.
std::vector<SeenEntry> SeenEntries(int folder) {
  if (::lseek(folder, 0, SEEK_SET) != 0) ThrowLastError();
  std::vector<std::string> names;
  ListOpenFolder(folder, [&](const char* name, unsigned char) { names.emplace_back(name); });
  SortNames(names);
  std::vector<SeenEntry> entries;
  for (std::string& name : names) {
    const auto status = StatusOf(folder, name);
    if (status && status->is_seen) entries.push_back({std::move(name), *status});
  }
  return entries;
}

// Removes a folder, unless there is something in it.
bool WasEmpty(int folder, const std::string& name) {
  if (::unlinkat(folder, name.c_str(), AT_REMOVEDIR) == 0) return true;
  if (errno != ENOTEMPTY && errno != EEXIST) ThrowLastError();
  return false;
}

// An open folder. Of a long path it keeps only the first folders and the last one open; the others
// are opened again on the way back, from the one inside.
class PosixDirectory final : public Directory {
 public:
  // `path` is what errors name.
  PosixDirectory(FileDescriptor folder, std::string path) : path_(std::move(path)) {
    const FolderIdentity identity = FolderIdentityOf(folder.get());
    levels_.push_back({std::move(folder), identity, path_.size(), {}});
  }

  std::vector<std::string> Files() override {
    std::vector<std::string> names;
    for (SeenEntry& entry : SeenHere()) {
      if (!entry.status.is_folder) names.push_back(std::move(entry.name));
    }
    return names;
  }

  std::vector<std::string> Entries() override { return Noted(SeenHere()); }
  void DeleteFiles() override { Delete(SeenHere()); }

  std::vector<std::string> ClearFiles() override {
    std::vector<SeenEntry> entries = SeenHere();
    const auto folders = std::ranges::count_if(
        entries, [](const SeenEntry& entry) { return entry.status.is_folder; });
    const bool has_files = folders < std::ssize(entries);
    if (has_files) Delete(entries);
    // Whoever goes into the folders lists this one again afterwards.
    if (has_files && folders == 0) return Entries();
    std::erase_if(entries, [](const SeenEntry& entry) { return entry.IsDeletable(); });
    return Noted(std::move(entries));
  }

  void Enter(std::string_view name) override {
    TranslatingErrors(PathOf(name), [&] {
      const std::string real_name = Identified(name).first;
      FileDescriptor inside = OpenFolderIn(Here(), real_name);
      const FolderIdentity identity = FolderIdentityOf(inside.get());
      if (!identity.IsOnOneFileSystemWith(levels_.back().identity)) ThrowSystemError(EBUSY);
      RequireKnown(real_name, identity.folder);
      levels_.back().known[real_name] = identity.folder;
      if (levels_.size() >= kMostOpen) levels_.back().folder = FileDescriptor(-1);
      path_ = PathOf(real_name);
      levels_.push_back({std::move(inside), identity, path_.size(), {}});
    });
  }

  void Leave() override {
    TranslatingErrors(path_, [&] {
      const Level inside = std::move(levels_.back());
      levels_.pop_back();
      path_.resize(levels_.back().path_length);
      if (Here() >= 0) return;
      FileDescriptor around = OpenAt(inside.folder.get(), "..", O_RDONLY | O_DIRECTORY);
      if (IdentityOf(around.get()) != levels_.back().identity.folder) ThrowSystemError(ENOENT);
      levels_.back().folder = std::move(around);
    });
  }

  // Recovery files, and temporary files that killed replacements left, do not keep the folder.
  void RemoveFolder(std::string_view name) override {
    TranslatingErrors(PathOf(name), [&] {
      const auto [real_name, identity] = Identified(name);
      RequireKnown(real_name, identity);
      if (!WasEmpty(Here(), real_name)) {
        const FileDescriptor inside = OpenFolderIn(Here(), real_name);
        const FolderIdentity found = FolderIdentityOf(inside.get());
        if (!found.IsOnOneFileSystemWith(levels_.back().identity)) ThrowSystemError(EBUSY);
        DeleteOwnFiles(inside.get());
        if (!WasEmpty(Here(), real_name)) ThrowSystemError(ENOTEMPTY);
      }
      levels_.back().known.erase(real_name);
    });
  }

 private:
  struct Level {
    FileDescriptor folder;
    FolderIdentity identity;
    std::size_t path_length;
    std::map<std::string, FileIdentity> known;  // What was listed or entered, by name.
  };

  [[nodiscard]] int Here() const { return levels_.back().folder.get(); }
  [[nodiscard]] std::string PathOf(std::string_view name) const { return PathIn(path_, name); }
  // The real name of an entry, and which one it is. Throws std::system_error ENOENT when it is
  // missing.
  [[nodiscard]] std::pair<std::string, FileIdentity> Identified(std::string_view name) const {
    std::string entry(name);
    auto identity = IsEntryName(name) ? IdentityIn(Here(), entry) : std::nullopt;
    if (!identity) {
      entry = FindEntry(Here(), name, FindSameName).value_or("");
      identity = entry.empty() ? std::nullopt : IdentityIn(Here(), entry);
    }
    if (!identity) ThrowSystemError(ENOENT);
    return {std::move(entry), *identity};
  }
  [[nodiscard]] std::vector<SeenEntry> SeenHere() const {
    return TranslatingErrors(path_, [&] { return SeenEntries(Here()); });
  }
  // The names of `entries`, which are known from now on.
  std::vector<std::string> Noted(std::vector<SeenEntry> entries) {
    std::vector<std::string> names;
    auto& known = levels_.back().known;
    known.clear();
    for (SeenEntry& entry : entries) {
      known[entry.name] = entry.status.identity;
      names.push_back(std::move(entry.name));
    }
    return names;
  }
  void Delete(const std::vector<SeenEntry>& entries) const {
    bool is_any = false;
    for (const SeenEntry& entry : entries) {
      if (!entry.IsDeletable()) continue;
      is_any = true;
      const bool gone = ::unlinkat(Here(), entry.name.c_str(), 0) == 0 || errno == ENOENT;
      if (!gone) throw SystemErrorAt(PathOf(entry.name), errno);
    }
    if (!is_any) throw PathError(kFileNotFound, PathOf("*"));
  }
  // Throws std::system_error ENOTDIR unless `found` is what is known by this name, if anything.
  void RequireKnown(const std::string& name, const FileIdentity& found) const {
    const auto& known = levels_.back().known;
    const auto entry = known.find(name);
    if (entry != known.end() && entry->second != found) ThrowSystemError(ENOTDIR);
  }

  std::vector<Level> levels_;  // The last one is where it is.
  std::string path_;
};

FileDescriptor Readable(const FileDescriptor& folder) {
  return OpenAt(folder.get(), ".", O_RDONLY | O_DIRECTORY);
}

// A pipe without a writer must not block, hence O_NONBLOCK. Of a file that is longer than documents
// may be enough is read for whoever parses it to see that.
std::optional<std::string> ReadRegularFile(int folder, const std::string& name) {
  struct stat status {};
  if (::fstatat(folder, name.c_str(), &status, 0) != 0) ThrowLastError();
  if (!S_ISREG(status.st_mode)) return std::nullopt;
  const FileDescriptor file = OpenAt(folder, name, O_RDONLY | O_NONBLOCK | O_NOCTTY);
  if (::fstat(file.get(), &status) != 0) ThrowLastError();
  if (!S_ISREG(status.st_mode)) return std::nullopt;
  return ReadAll(file.get(), xml::kMaxInputBytes + 1);
}

void RequireReplaceable(const FileStatus& old, std::string_view path) {
  if (!old.is_regular_file && !old.is_link) throw PathError(kPathFileAccess, path);
  if (old.is_read_only) throw PathError(kPermissionDenied, path);
}

constexpr std::string_view kWildcards = "*?";

// Whether a search shows an entry as a file.
bool IsFoundFile(int folder, const std::string& name, bool wants_dots) {
  const auto status = StatusOf(folder, name);
  return status && !status->is_folder && (status->is_seen || (wants_dots && status->has_dot));
}

class PosixFileSystem final : public FileSystem {
 public:
  explicit PosixFileSystem(const PosixFileOptions& options) : paths_(options) {}

  bool FolderExists(std::string_view path) override {
    try {
      DrivePath resolved = PosixPaths::Resolve(path);
      return paths_.Open(resolved, ENOTDIR).get() >= 0;
    } catch (const std::system_error&) {
      return false;  // What can't be reached is not there for the caller.
    }
  }

  void CreateFolder(std::string_view path) override {
    TranslatingErrors(path, [&] {
      const PosixPlace place = paths_.PlaceOf(path, EEXIST);
      if (place.entry) throw PathError(kFileExists, path);
      if (!IsCreatableName(place.name)) throw PathError(kBadFileName, path);
      if (::mkdirat(place.folder.get(), place.name.c_str(), 0777) != 0) ThrowLastError();
      paths_.Names().Made(place.folder.get());
    });
  }

  std::string FullPath(std::string_view path) override {
    return TranslatingErrors(path, [&] {
      DrivePath resolved = PosixPaths::Resolve(path);
      [[maybe_unused]] const FileDescriptor folder = paths_.Open(resolved, ENOENT);
      return resolved.Text();
    });
  }

  void HideFolder(std::string_view path) override {
    TranslatingErrors(path, [&] {
      DrivePath resolved = PosixPaths::Resolve(path);
      const FileDescriptor folder = Readable(paths_.Open(resolved, ENOENT));
      const unsigned attributes = ReadDosAttributes(folder.get());
      WriteDosAttributes(folder.get(), attributes | kHiddenAttribute | kFolderAttribute);
    });
  }

  std::string SystemDrive() override { return "C:"; }

  std::vector<std::string> FindFiles(std::string_view pattern) override {
    const SearchPattern search = SplitPattern(pattern);
    const bool wants_dots = search.name.starts_with('.');
    return AnswerUnlessMissing<std::vector<std::string>>(search.folder, [&] {
      DrivePath resolved = PosixPaths::Resolve(search.folder);
      const FileDescriptor folder = paths_.Open(resolved, ENOENT);
      std::vector<std::string> names;
      const bool is_one_name = search.name.find_first_of(kWildcards) == std::string_view::npos;
      if (is_one_name && !paths_.Names().Find(folder.get(), search.name, FindSameName))
        return names;
      ListEntries(folder.get(), [&](const char* name, unsigned char) {
        if (MatchesPattern(name, search.name)) names.emplace_back(name);
      });
      std::erase_if(names, [&](const std::string& name) {
        return !IsFoundFile(folder.get(), name, wants_dots);
      });
      SortNames(names);
      return names;
    });
  }

  std::unique_ptr<Directory> OpenFolder(std::string_view path) override {
    return TranslatingErrors(path, [&] {
      DrivePath resolved = PosixPaths::Resolve(path);
      const FileDescriptor folder = paths_.Open(resolved, ENOTDIR, FindSameName);
      return std::make_unique<PosixDirectory>(Readable(folder), resolved.Text());
    });
  }

  std::optional<std::string> ReadFile(std::string_view path) override {
    return AnswerUnlessMissing<std::optional<std::string>>(path, [&] {
      const PosixPlace place = paths_.PlaceOf(path, ENOENT);
      if (!place.entry) return std::optional<std::string>();
      return ReadRegularFile(place.folder.get(), *place.entry);
    });
  }

  void WriteFile(std::string_view path, std::string_view bytes) override {
    TranslatingErrors(path, [&] {
      const PosixPlace place = paths_.PlaceOf(path, EISDIR);
      if (!place.entry && !IsCreatableName(place.name)) throw PathError(kBadFileName, path);
      const std::string name = place.entry.value_or(place.name);
      const auto old = StatusOf(place.folder.get(), name);
      if (old) RequireReplaceable(*old, path);
      ReplaceFile(place.folder.get(), name, bytes, old);
      if (!old) paths_.Names().Made(place.folder.get());
    });
  }

  std::string FreeFolderName(std::string_view parent, std::string_view name) override {
    const std::string path = std::string(parent).append(name);
    if (!FolderExists(path)) return std::string(name);
    try {
      DrivePath first = PosixPaths::Resolve(Numbered(path, 1));
      std::string start = std::move(first.names.back());
      start.pop_back();
      first.names.pop_back();
      const FileDescriptor place = paths_.Open(first, ENOENT);
      NumberedEntries entries(start, NumberedEntries::kFolders);
      paths_.Names().List(place.get(), entries.Visitor());
      const int number = FirstFreeNumber([&](int tried) {
        const auto answer = tried == 0 ? std::optional(true) : entries.HasOnlyFolder(tried);
        return answer ? *answer : FolderExists(Numbered(path, tried));
      });
      return Numbered(name, number);
    } catch (const std::system_error&) {
      return FileSystem::FreeFolderName(parent, name);  // Its names can be tried all the same.
    }
  }

  std::string FreeFileName(std::string_view folder, std::string_view name) override {
    const std::string path = std::string(folder).append("\\").append(name);
    const SearchPattern search = SplitPattern(path);
    const bool is_one_name = search.name.find_first_of(kWildcards) == std::string_view::npos;
    if (!is_one_name) return FileSystem::FreeFileName(folder, name);
    const int number = AnswerUnlessMissing<int>(search.folder, [&] {
      DrivePath resolved = PosixPaths::Resolve(search.folder);
      const FileDescriptor place = paths_.Open(resolved, ENOENT);
      NumberedEntries entries(search.name, NumberedEntries::kFiles);
      paths_.Names().List(place.get(), entries.Visitor());
      return FirstFreeNumber([&](int tried) {
        return entries.AnyOf(tried, [&](const std::string& entry) {
          return IsFoundFile(place.get(), entry, search.name.starts_with('.'));
        });
      });
    });
    return Numbered(name, number);
  }

 private:
  PosixPaths paths_;
};

}  // namespace

std::shared_ptr<FileSystem> MakePosixFileSystem(const PosixFileOptions& options) {
  return std::make_shared<PosixFileSystem>(options);
}

}  // namespace kvdm
