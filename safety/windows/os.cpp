#include "safety/os.h"

#include <system_error>
#include <tuple>

#include "platform/system_error.h"
#include "platform/utf8.h"
#include "platform/windows/files.h"
#include "platform/windows/text.h"
#include "platform/windows/windows_file_system.h"

namespace kvdm::os {
namespace {

namespace fs = std::filesystem;

// The last error in the terms that all systems share, where they have one for it.
std::error_condition LastError() {
  return std::system_category().default_error_condition(static_cast<int>(GetLastError()));
}

[[noreturn]] void Fail(const fs::path& path, const std::error_condition& why = LastError()) {
  throw std::system_error(why.value(), why.category(), ToText(path));
}

// The name of a path under which the system takes more than 259 characters.
std::wstring LongName(const fs::path& path) {
  const std::wstring name = Absolute(path);
  if (name.starts_with(LR"(\\?\)") || name.starts_with(LR"(\\.\)")) return name;
  return name.starts_with(LR"(\\)") ? LR"(\\?\UNC)" + name.substr(1) : LR"(\\?\)" + name;
}

// `name` as people write it.
fs::path WithoutLongPrefix(const std::wstring& name) {
  if (name.starts_with(LR"(\\?\UNC\)")) return LR"(\\)" + name.substr(8);
  return name.starts_with(LR"(\\?\)") ? name.substr(4) : name;
}

bool IsFolder(const fs::path& path) {
  const DWORD attributes = GetFileAttributesW(LongName(path).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// Calls `body`; a system error in it becomes one that names `path`.
template <class Body>
auto Naming(const fs::path& path, Body body) {
  try {
    return body();
  } catch (const std::system_error& error) {
    Fail(path, error.code().default_error_condition());
  }
}

FileHandle Open(const fs::path& path, DWORD access, DWORD disposition,
                DWORD flags = FILE_ATTRIBUTE_NORMAL) {
  FileHandle file(
      CreateFileW(LongName(path).c_str(), access, kShareAll, nullptr, disposition, flags, nullptr));
  if (file.is_open()) return file;
  const auto why = LastError();
  Fail(path, IsFolder(path) ? make_error_condition(std::errc::is_a_directory) : why);
}

// Opens what is a file on a disk.
FileHandle OpenRegular(const fs::path& path, DWORD access, DWORD disposition, DWORD flags) {
  FileHandle file = Open(path, access, disposition, flags);
  if (GetFileType(file.get()) != FILE_TYPE_DISK) {
    Fail(path, make_error_condition(std::errc::invalid_argument));
  }
  return file;
}

// Fails for what is there and no file itself.
void RequireFile(const fs::path& path) {
  const DWORD attributes = GetFileAttributesW(LongName(path).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return;
  if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
    Fail(path, make_error_condition(std::errc::too_many_symbolic_link_levels));
  }
  if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    Fail(path, make_error_condition(std::errc::is_a_directory));
  }
}

// Hands `visit` each entry that a pattern finds. A listing that breaks off fails, naming `folder`.
template <class Visit>
void ForEachFound(const fs::path& pattern, const fs::path& folder, const Visit& visit) {
  WIN32_FIND_DATAW found{};
  const HANDLE search = FindFirstFileW(pattern.c_str(), &found);
  // The root of an empty drive has no entries at all.
  if (search == INVALID_HANDLE_VALUE && GetLastError() == ERROR_FILE_NOT_FOUND) return;
  if (search == INVALID_HANDLE_VALUE) Fail(folder);
  do {
    visit(found);
  } while (FindNextFileW(search, &found) != FALSE);
  const bool at_end = GetLastError() == ERROR_NO_MORE_FILES;
  const auto why = LastError();
  FindClose(search);
  if (!at_end) Fail(folder, why);
}

// Adds what is in a folder, given by a name of any length.
void AddSize(const fs::path& folder, TreeSize& size) {
  try {
    ForEachFound(folder / L"*", folder, [&](const WIN32_FIND_DATAW& found) {
      const std::wstring_view name = found.cFileName;
      constexpr DWORD kKind = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
      if (name == L"." || name == L".." || ToUtf8(name) == kRecoveryFile) return;
      if ((found.dwFileAttributes & kKind) == FILE_ATTRIBUTE_DIRECTORY) {
        return AddSize(folder / name, size);
      }
      ++size.files;
      size.bytes += (std::int64_t{found.nFileSizeHigh} << 32U) + found.nFileSizeLow;
    });
  } catch (const std::system_error&) {
    size.is_whole = false;
  }
}

std::string Variable(const wchar_t* name) {
  std::wstring value(GetEnvironmentVariableW(name, nullptr, 0), L'\0');
  value.resize(GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size())));
  return ToUtf8(value);
}

std::optional<std::string> Found(std::string_view path, NameFinder find) {
  try {
    DrivePath resolved = ResolveWindowsPath(path);
    std::ignore = OpenFolderAt(resolved, ERROR_DIRECTORY, FILE_READ_ATTRIBUTES, find);
    return resolved.Text();
  } catch (const std::system_error& error) {
    if (MeansMissing(error.code().value())) return std::nullopt;
    Fail(ToPath(path), error.code().default_error_condition());
  }
}

void MakeWritable(const FileHandle& file) {
  FILE_BASIC_INFO info{};
  info.FileAttributes = FILE_ATTRIBUTE_NORMAL;
  if (SetFileInformationByHandle(file.get(), FileBasicInfo, &info, sizeof info) == FALSE) {
    ThrowLastError();
  }
}

void EmptyTree(const FileHandle& folder) {
  for (const FolderEntry& entry : EntriesOf(folder)) {
    if (entry.IsReadOnly()) MakeWritable(OpenEntry(folder, entry, FILE_WRITE_ATTRIBUTES));
    if (entry.IsFolder()) EmptyTree(OpenEntry(folder, entry, kListAccess));
    DeleteEntry(folder, entry);
  }
}

}  // namespace

bool Exists(const fs::path& path) {
  if (GetFileAttributesW(LongName(path).c_str()) != INVALID_FILE_ATTRIBUTES) return true;
  const DWORD error = GetLastError();
  if (!MeansMissing(error)) Fail(path);
  return false;
}

fs::path Absolute(const fs::path& path) {
  std::wstring name(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
  name.resize(
      GetFullPathNameW(path.c_str(), static_cast<DWORD>(name.size()), name.data(), nullptr));
  return name;
}

fs::path Canonical(const fs::path& path) {
  const FileHandle file = Open(path, 0, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
  std::wstring name(GetFinalPathNameByHandleW(file.get(), nullptr, 0, 0), L'\0');
  name.resize(
      GetFinalPathNameByHandleW(file.get(), name.data(), static_cast<DWORD>(name.size()), 0));
  // Some drives have no such name for their files.
  return name.empty() ? Absolute(path) : WithoutLongPrefix(name);
}

std::vector<fs::path> FilesIn(const fs::path& folder) {
  std::vector<fs::path> files;
  ForEachFound(fs::path(LongName(folder)) / L"*", folder, [&](const WIN32_FIND_DATAW& found) {
    const bool is_folder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (!is_folder) files.push_back(folder / found.cFileName);
  });
  return files;
}

void CreateFolders(const fs::path& folder) {
  if (IsFolder(folder)) return;
  const fs::path parent = folder.parent_path();
  if (!parent.empty() && parent != folder) CreateFolders(parent);
  if (CreateDirectoryW(LongName(folder).c_str(), nullptr) != FALSE) return;
  const auto why = LastError();
  if (!IsFolder(folder)) Fail(folder, why);
}

void SyncFolder(const fs::path&) {}  // The system does that with each change.

std::string ReadBytes(const fs::path& file, std::size_t most) {
  const FileHandle source = OpenRegular(file, GENERIC_READ, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL);
  std::string bytes = Naming(file, [&] { return ReadAll(source, most + 1); });
  if (bytes.size() > most) Fail(file, make_error_condition(std::errc::file_too_large));
  return bytes;
}

bool Replace(const fs::path& file, std::string_view bytes, const fs::path& previous) {
  RequireFile(file);
  if (IsReadOnly(file)) Fail(file, make_error_condition(std::errc::permission_denied));
  if (!previous.empty()) RequireFile(previous);
  Naming(file, [&] {
    SaveFile(LongName(file), bytes, previous.empty() ? std::wstring() : LongName(previous));
  });
  return true;  // The move is on the disk when it is done.
}

void Rename(const fs::path& from, const fs::path& to) {
  constexpr DWORD kFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  if (MoveFileExW(LongName(from).c_str(), LongName(to).c_str(), kFlags) == FALSE) Fail(from);
}

void RemoveFile(const fs::path& file) {
  if (DeleteFileW(LongName(file).c_str()) == FALSE && !MeansMissing(GetLastError())) Fail(file);
}

void RemoveFolder(const fs::path& folder) {
  if (RemoveDirectoryW(LongName(folder).c_str()) != FALSE) return;
  const DWORD error = GetLastError();
  if (error != ERROR_DIR_NOT_EMPTY && !MeansMissing(error)) Fail(folder);
}

void DeleteTree(const fs::path& folder) {
  if (!Exists(folder)) return;
  constexpr DWORD kFlags = FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT;
  if (!IsLink(folder)) {
    const FileHandle opened = Open(folder, kListAccess, OPEN_EXISTING, kFlags);
    Naming(folder, [&] { EmptyTree(opened); });
  }
  if (RemoveDirectoryW(LongName(folder).c_str()) == FALSE) Fail(folder);
}

bool IsReadOnly(const fs::path& file) {
  const DWORD attributes = GetFileAttributesW(LongName(file).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

std::optional<std::string> FindFolder(const Drives&, std::string_view path) {
  return Found(path, FindName);
}

std::optional<std::string> FindSameFolder(const Drives&, std::string_view path) {
  return Found(path, FindSameName);
}

std::vector<std::string> FoldersIn(const Drives& drives, std::string_view path,
                                   std::string_view prefix) {
  std::vector<std::string> names;
  const auto folder = FindFolder(drives, path);
  if (!folder) return names;
  const fs::path pattern = ToPath(*folder) / ToPath(std::string(prefix) + "*");
  ForEachFound(LongName(pattern), ToPath(path), [&](const WIN32_FIND_DATAW& found) {
    constexpr DWORD kKind = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    const std::string name = ToText(found.cFileName);
    const bool is_folder = (found.dwFileAttributes & kKind) == FILE_ATTRIBUTE_DIRECTORY;
    const bool is_own_or_parent = name == "." || name == "..";
    if (is_folder && !is_own_or_parent && name.starts_with(prefix)) names.push_back(name);
  });
  return names;
}

void MoveFolder(const Drives&, std::string_view from, std::string_view to) {
  const WindowsPlace source = PlaceOf(from, ERROR_ACCESS_DENIED);
  const WindowsPlace target = PlaceOf(to, ERROR_ACCESS_DENIED);
  const bool is_link = (source.attributes.value_or(0) & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
  if (!source.IsFolder() || is_link) ThrowSystemError(ERROR_DIRECTORY);
  if (MoveFileExW(SystemPath(source.path).c_str(), SystemPath(target.path).c_str(), 0) == FALSE) {
    ThrowLastError();
  }
}

std::shared_ptr<void> TryLock(const fs::path& file) {
  RequireFile(file);
  // A file that this user may only read can be locked all the same.
  const bool changes = !IsReadOnly(file);
  auto lock = std::make_shared<FileHandle>(
      OpenRegular(file, changes ? GENERIC_READ | GENERIC_WRITE : GENERIC_READ,
                  changes ? OPEN_ALWAYS : OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT));
  OVERLAPPED start{};
  const DWORD flags = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
  if (LockFileEx(lock->get(), flags, 0, 1, 0, &start) != FALSE) return lock;
  if (GetLastError() != ERROR_LOCK_VIOLATION && GetLastError() != ERROR_IO_PENDING) Fail(file);
  return nullptr;
}

std::optional<fs::path> NativePlace(const Drives&, std::string_view path) {
  const PathStart start = SplitPath(path).start;
  if (start != PathStart::kDrive && start != PathStart::kCurrentDrive) return std::nullopt;
  return ToPath(ResolveWindowsPath(path).Text());
}

bool AreSame(const fs::path& a, const fs::path& b) { return SameName(ToText(a), ToText(b)); }

bool IsLink(const fs::path& path) {
  const DWORD attributes = GetFileAttributesW(LongName(path).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

TreeSize SizeOfTree(const fs::path& folder) {
  TreeSize size;
  AddSize(LongName(folder), size);
  return size;
}

void Hide(const fs::path& folder) {
  if (SetFileAttributesW(LongName(folder).c_str(), FILE_ATTRIBUTE_HIDDEN) == FALSE) Fail(folder);
}

std::string Person() { return Variable(L"USERNAME"); }
std::string Machine() { return Variable(L"COMPUTERNAME"); }
fs::path HomeFolder() { return ToPath(Variable(L"USERPROFILE")); }

std::string ToText(const std::filesystem::path& path) {
  std::string text;
  const std::wstring& units = path.native();
  for (std::size_t i = 0; i < units.size(); ++i) {
    const bool is_pair = i + 1 < units.size() && IS_SURROGATE_PAIR(units[i], units[i + 1]);
    if (is_pair) {
      text += ToUtf8(std::wstring_view(units).substr(i++, 2));
    } else {
      AppendUtf8(units[i], text);  // of a surrogate alone, bytes that are no UTF-8
    }
  }
  return text;
}

std::filesystem::path ToPath(std::string_view text) { return ToUtf16(text); }

std::string ComponentPath(const std::filesystem::path& absolute) {
  return ToText(Absolute(absolute));
}

std::string NativePath(std::string_view path) { return std::string(path); }

}  // namespace kvdm::os
