#include "platform/posix/posix_file_system.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <utility>

#include "platform/file_names.h"
#include "platform/posix/dos_attributes.h"
#include "platform/posix/folder_entries.h"
#include "platform/posix/posix_directory.h"
#include "platform/posix/replace_file.h"
#include "platform/system_error.h"
#include "platform/xml/limits.h"

namespace kvdm {
namespace {

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

void RequireReplaceable(const EntryFacts& old, std::string_view path) {
  if (!old.is_regular_file && !old.is_link) throw PathError(kPathFileAccess, path);
  if (old.is_read_only) throw PathError(kPermissionDenied, path);
}

}  // namespace

PosixFileSystem::PosixFileSystem(const PosixFileOptions& options) : paths_(options) {}

bool PosixFileSystem::FolderExists(std::string_view path) {
  try {
    DrivePath resolved = PosixPaths::Resolve(path);
    return paths_.Open(resolved, ENOTDIR).get() >= 0;
  } catch (const std::system_error&) {
    return false;  // What can't be reached is not there for the caller.
  }
}

void PosixFileSystem::CreateFolder(std::string_view path) {
  TranslatingErrors(path, [&] {
    const PosixPlace place = paths_.PlaceOf(path, EEXIST);
    if (place.entry) throw PathError(kFileExists, path);
    if (!IsCreatableName(place.name)) throw PathError(kBadFileName, path);
    if (::mkdirat(place.folder.get(), place.name.c_str(), 0777) != 0) ThrowLastError();
  });
}

std::string PosixFileSystem::FullPath(std::string_view path) {
  return TranslatingErrors(path, [&] {
    DrivePath resolved = PosixPaths::Resolve(path);
    [[maybe_unused]] const FileDescriptor folder = paths_.Open(resolved, ENOENT);
    return resolved.Text();
  });
}

void PosixFileSystem::HideFolder(std::string_view path) {
  TranslatingErrors(path, [&] {
    DrivePath resolved = PosixPaths::Resolve(path);
    const FileDescriptor folder = Readable(paths_.Open(resolved, ENOENT));
    const unsigned attributes = ReadDosAttributes(folder.get());
    WriteDosAttributes(folder.get(), attributes | kHiddenAttribute | kFolderAttribute);
  });
}

std::string PosixFileSystem::SystemDrive() { return "C:"; }

std::vector<std::string> PosixFileSystem::FindFiles(std::string_view pattern) {
  const SearchPattern search = SplitPattern(pattern);
  const std::string_view path = search.folder.empty() ? "." : search.folder;
  const bool wants_dots = search.name.starts_with('.');
  return AnswerUnlessMissing<std::vector<std::string>>(path, [&] {
    DrivePath resolved = PosixPaths::Resolve(path);
    const FileDescriptor folder = paths_.Open(resolved, ENOENT);
    std::vector<std::string> names = EntryNames(folder.get());
    std::erase_if(names, [&](const std::string& name) {
      if (!MatchesPattern(name, search.name)) return true;
      const auto facts = ExamineEntry(folder.get(), name);
      return !facts || facts->is_folder || !(facts->is_seen || (wants_dots && facts->has_dot));
    });
    return names;
  });
}

std::unique_ptr<Directory> PosixFileSystem::OpenFolder(std::string_view path) {
  return TranslatingErrors(path, [&] {
    DrivePath resolved = PosixPaths::Resolve(path);
    const FileDescriptor folder = paths_.Open(resolved, ENOTDIR, FindSameName);
    return std::make_unique<PosixDirectory>(Readable(folder), resolved.Text());
  });
}

std::optional<std::string> PosixFileSystem::ReadFile(std::string_view path) {
  return AnswerUnlessMissing<std::optional<std::string>>(path, [&] {
    const PosixPlace place = paths_.PlaceOf(path, ENOENT);
    if (!place.entry) return std::optional<std::string>();
    return ReadRegularFile(place.folder.get(), *place.entry);
  });
}

void PosixFileSystem::WriteFile(std::string_view path, std::string_view bytes) {
  TranslatingErrors(path, [&] {
    const PosixPlace place = paths_.PlaceOf(path, EISDIR);
    if (!place.entry && !IsCreatableName(place.name)) throw PathError(kBadFileName, path);
    const std::string name = place.entry.value_or(place.name);
    const auto old = ExamineEntry(place.folder.get(), name);
    if (old) RequireReplaceable(*old, path);
    ReplaceFile(place.folder.get(), name, bytes, old);
  });
}

}  // namespace kvdm
