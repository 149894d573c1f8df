#include "platform/posix/posix_file_system.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <utility>
#include <vector>

#include "platform/system_error.h"
#include "platform/xml/limits.h"

namespace kvdm {
namespace {

// So many folders of a path are kept open.
constexpr std::size_t kMostOpen = 64;

// The entries of a folder that are seen and `chosen`, in the order of a listing.
template <class Chosen>
std::vector<std::pair<std::string, FileIdentity>> SeenEntries(int folder, Chosen chosen) {
  std::vector<std::pair<std::string, FileIdentity>> entries;
  for (std::string& name : EntryNames(folder)) {
    const auto status = StatusOf(folder, name);
    if (status && status->is_seen && chosen(*status)) {
      entries.emplace_back(std::move(name), status->identity);
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

// An open folder. Of a long path it keeps only the first folders and the last one open; the others
// are opened again on the way back, from the one inside.
class PosixDirectory final : public Directory {
 public:
  // `path` is what errors name.
  PosixDirectory(FileDescriptor folder, std::string path) : path_(std::move(path)) {
    const FileIdentity identity = IdentityOf(folder.get());
    levels_.push_back({std::move(folder), identity, path_.size(), {}});
  }

  std::vector<std::string> Files() override {
    return TranslatingErrors(path_, [&] {
      return NamesOf(Here(), [](const FileStatus& status) { return !status.is_folder; });
    });
  }
  std::vector<std::string> Entries() override {
    return TranslatingErrors(path_, [&] {
      std::vector<std::string> names;
      auto& known = levels_.back().known;
      known.clear();
      for (auto& [name, identity] : SeenEntries(Here(), [](const FileStatus&) { return true; })) {
        known[name] = identity;
        names.push_back(std::move(name));
      }
      return names;
    });
  }

  void DeleteFiles() override {
    const std::vector<std::string> names = DeletableFiles();
    if (names.empty()) throw PathError(kFileNotFound, PathOf("*"));
    for (const std::string& name : names) {
      const bool gone = ::unlinkat(Here(), name.c_str(), 0) == 0 || errno == ENOENT;
      if (!gone) throw SystemErrorAt(PathOf(name), errno);
    }
  }

  void Enter(std::string_view name) override {
    TranslatingErrors(PathOf(name), [&] {
      const std::string real_name = RealName(name);
      FileDescriptor inside = OpenFolderIn(Here(), real_name);
      const FileIdentity identity = IdentityOf(inside.get());
      RequireKnown(real_name, identity);
      levels_.back().known[real_name] = identity;
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
      if (IdentityOf(around.get()) != levels_.back().identity) ThrowSystemError(ENOENT);
      levels_.back().folder = std::move(around);
    });
  }

  // Temporary files that killed replacements left in the folder do not keep it.
  void RemoveFolder(std::string_view name) override {
    TranslatingErrors(PathOf(name), [&] {
      const std::string real_name = RealName(name);
      const auto status = StatusOf(Here(), real_name);
      if (!status) ThrowSystemError(ENOENT);
      RequireKnown(real_name, status->identity);
      if (!WasEmpty(Here(), real_name)) {
        DeleteStaleTemporaryFiles(OpenFolderIn(Here(), real_name).get());
        if (!WasEmpty(Here(), real_name)) ThrowSystemError(ENOTEMPTY);
      }
      levels_.back().known.erase(real_name);
    });
  }

 private:
  struct Level {
    FileDescriptor folder;
    FileIdentity identity;
    std::size_t path_length;
    std::map<std::string, FileIdentity> known;  // What was listed or entered, by name.
  };

  [[nodiscard]] int Here() const { return levels_.back().folder.get(); }
  [[nodiscard]] std::string PathOf(std::string_view name) const { return PathIn(path_, name); }
  // The real name of an entry. Throws std::system_error ENOENT when it is missing.
  [[nodiscard]] std::string RealName(std::string_view name) const {
    auto entry = FindEntry(Here(), name, FindSameName);
    if (!entry) ThrowSystemError(ENOENT);
    return *std::move(entry);
  }
  // Throws std::system_error ENOTDIR unless `found` is what is known by this name, if anything.
  void RequireKnown(const std::string& name, const FileIdentity& found) const {
    const auto& known = levels_.back().known;
    const auto entry = known.find(name);
    if (entry != known.end() && entry->second != found) ThrowSystemError(ENOTDIR);
  }
  [[nodiscard]] std::vector<std::string> DeletableFiles() const {
    return TranslatingErrors(path_, [&] {
      return NamesOf(Here(), [](const FileStatus& status) {
        return !status.is_folder && !status.is_read_only;
      });
    });
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
      std::vector<std::string> names = EntryNames(folder.get());
      std::erase_if(names, [&](const std::string& name) {
        if (!MatchesPattern(name, search.name)) return true;
        const auto status = StatusOf(folder.get(), name);
        return !status || status->is_folder ||
               !(status->is_seen || (wants_dots && status->has_dot));
      });
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
    });
  }

 private:
  PosixPaths paths_;
};

}  // namespace

std::shared_ptr<FileSystem> MakePosixFileSystem(const PosixFileOptions& options) {
  return std::make_shared<PosixFileSystem>(options);
}

}  // namespace kvdm
