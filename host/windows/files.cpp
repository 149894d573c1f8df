// What the host asks of the system about files.
#include <windows.h>

#include <algorithm>
#include <array>
#include <system_error>

#include "host/os.h"

namespace kvdm::os {
namespace {

namespace fs = std::filesystem;

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

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
fs::path WithoutLongPrefix(std::wstring name) {
  if (name.starts_with(LR"(\\?\UNC\)")) return LR"(\\)" + name.substr(8);
  return name.starts_with(LR"(\\?\)") ? name.substr(4) : name;
}

bool IsFolder(const fs::path& path) {
  const DWORD attributes = GetFileAttributesW(LongName(path).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

class File {
 public:
  File(const fs::path& path, DWORD access, DWORD disposition, DWORD flags = FILE_ATTRIBUTE_NORMAL)
      : path_(path),
        handle_(CreateFileW(LongName(path).c_str(), access, kShareAll, nullptr, disposition, flags,
                            nullptr)) {
    if (handle_ != INVALID_HANDLE_VALUE) return;
    const auto why = LastError();
    Fail(path, IsFolder(path) ? make_error_condition(std::errc::is_a_directory) : why);
  }
  ~File() { CloseHandle(handle_); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  [[nodiscard]] HANDLE Get() const { return handle_; }

  void Require(BOOL done) const {
    if (done == FALSE) Fail(path_);
  }

 private:
  fs::path path_;
  HANDLE handle_;
};

}  // namespace

bool Exists(const fs::path& path) {
  return GetFileAttributesW(LongName(path).c_str()) != INVALID_FILE_ATTRIBUTES ||
         LastError() != std::errc::no_such_file_or_directory;
}

fs::path Absolute(const fs::path& path) {
  std::wstring name(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
  name.resize(
      GetFullPathNameW(path.c_str(), static_cast<DWORD>(name.size()), name.data(), nullptr));
  return name;
}

fs::path Canonical(const fs::path& path) {
  const File file(path, 0, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
  std::wstring name(GetFinalPathNameByHandleW(file.Get(), nullptr, 0, 0), L'\0');
  name.resize(
      GetFinalPathNameByHandleW(file.Get(), name.data(), static_cast<DWORD>(name.size()), 0));
  // Some drives have no such name for their files.
  return name.empty() ? Absolute(path) : WithoutLongPrefix(std::move(name));
}

std::vector<fs::path> FilesIn(const fs::path& folder) {
  std::vector<fs::path> files;
  WIN32_FIND_DATAW found{};
  const fs::path pattern = fs::path(LongName(folder)) / L"*";
  const HANDLE search = FindFirstFileW(pattern.c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return files;
  do {
    const bool is_folder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (!is_folder) files.push_back(folder / found.cFileName);
  } while (FindNextFileW(search, &found) != FALSE);
  FindClose(search);
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

std::string ReadBytes(const fs::path& file) {
  const File source(file, GENERIC_READ, OPEN_EXISTING);
  if (GetFileType(source.Get()) != FILE_TYPE_DISK) {
    Fail(file, make_error_condition(std::errc::invalid_argument));
  }
  std::string bytes;
  std::array<char, 65536> block{};
  for (;;) {
    DWORD count = 0;
    source.Require(ReadFile(source.Get(), block.data(), block.size(), &count, nullptr));
    if (count == 0) return bytes;
    bytes.append(block.data(), count);
  }
}

void WriteBytes(const fs::path& file, std::string_view bytes) {
  constexpr std::size_t kLargestWrite = 1U << 30U;
  const File target(file, GENERIC_WRITE, CREATE_ALWAYS);
  while (!bytes.empty()) {
    DWORD count = 0;
    const auto wanted = static_cast<DWORD>(std::min(bytes.size(), kLargestWrite));
    target.Require(WriteFile(target.Get(), bytes.data(), wanted, &count, nullptr));
    bytes.remove_prefix(count);
  }
  target.Require(FlushFileBuffers(target.Get()));
}

void KeepAs(const fs::path& file, const fs::path& second) {
  const std::wstring from = LongName(file);
  const std::wstring to = LongName(second);
  if (DeleteFileW(to.c_str()) == FALSE && LastError() != std::errc::no_such_file_or_directory) {
    Fail(second);
  }
  // Not every drive gives files second names.
  if (CreateHardLinkW(to.c_str(), from.c_str(), nullptr) == FALSE &&
      CopyFileW(from.c_str(), to.c_str(), TRUE) == FALSE) {
    Fail(second);
  }
}

void PutInPlace(const fs::path& from, const fs::path& to) {
  const std::wstring source = LongName(from);
  const std::wstring target = LongName(to);
  const BOOL done = Exists(to)
                        ? ReplaceFileW(target.c_str(), source.c_str(), nullptr,
                                       REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr)
                        : MoveFileExW(source.c_str(), target.c_str(), MOVEFILE_WRITE_THROUGH);
  if (done == FALSE) Fail(to);
}

std::shared_ptr<void> TryLock(const fs::path& file) {
  auto lock = std::make_shared<File>(file, GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS);
  OVERLAPPED start{};
  const DWORD flags = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
  if (LockFileEx(lock->Get(), flags, 0, 1, 0, &start) != FALSE) return lock;
  if (GetLastError() != ERROR_LOCK_VIOLATION && GetLastError() != ERROR_IO_PENDING) Fail(file);
  return nullptr;
}

}  // namespace kvdm::os
