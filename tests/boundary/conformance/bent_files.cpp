#include "tests/boundary/conformance/bent_files.h"

#include <algorithm>

#include "platform/file_names.h"
#include "platform/windows/windows_file_system.h"
#include "tests/boundary/client/dll.h"

namespace kvdm::conformance {
namespace {

constexpr char kLibrary[] = "kernel32.dll";

BentSearch::Answer g_answer;
// Folders, ending in "\".
std::wstring g_full;
std::wstring g_locked;

// What stands for a search that was answered here.
const HANDLE kSearch = &g_answer;

std::wstring PathOf(std::string_view path) { return SystemPath(*ResolvePath(SplitPath(path), {})); }

bool IsDirectlyIn(const std::wstring& folder, std::wstring_view path) {
  return path.starts_with(folder) && path.size() > folder.size() &&
         path.find(L'\\', folder.size()) == std::wstring_view::npos;
}

HANDLE WINAPI FindFirst(LPCWSTR pattern, FINDEX_INFO_LEVELS level, LPVOID found,
                        FINDEX_SEARCH_OPS kind, LPVOID filter, DWORD flags) {
  const auto name = g_answer(pattern);
  if (!name) return ::FindFirstFileExW(pattern, level, found, kind, filter, flags);
  auto& entry = *static_cast<WIN32_FIND_DATAW*>(found);
  entry = {};
  entry.dwFileAttributes = FILE_ATTRIBUTE_DIRECTORY;
  std::ranges::copy(*name, entry.cFileName);
  return kSearch;
}

BOOL WINAPI FindNext(HANDLE search, LPWIN32_FIND_DATAW found) {
  if (search != kSearch) return ::FindNextFileW(search, found);
  ::SetLastError(ERROR_NO_MORE_FILES);
  return FALSE;
}

BOOL WINAPI CloseSearch(HANDLE search) { return search == kSearch ? TRUE : ::FindClose(search); }

// The folders on the way are there; they too are found without asking the system, which would take
// long for all names.
std::optional<std::wstring> NameInFullFolder(std::wstring_view pattern) {
  if (pattern.ends_with(L'*')) pattern.remove_suffix(1);
  const std::wstring path(pattern);
  if (!IsDirectlyIn(g_full, path) && !g_full.starts_with(path + L"\\")) return std::nullopt;
  return path.substr(path.rfind(L'\\') + 1);
}

DWORD WINAPI GetAttributes(LPCWSTR path) {
  return IsDirectlyIn(g_full, path) ? FILE_ATTRIBUTE_DIRECTORY : ::GetFileAttributesW(path);
}

// Instead of a folder that is not there, the full folder itself is opened.
HANDLE WINAPI Create(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                     DWORD disposition, DWORD flags, HANDLE model) {
  return ::CreateFileW(IsDirectlyIn(g_full, path) ? g_full.c_str() : path, access, share, security,
                       disposition, flags, model);
}

// Answers the name with a dot at every second search for `path`.
BentSearch::Answer InTurn(const std::wstring& path) {
  return [path, dot = false](std::wstring_view pattern) mutable -> std::optional<std::wstring> {
    if (pattern != path + L"*") return std::nullopt;
    dot = !dot;
    const std::wstring name = path.substr(path.rfind(L'\\') + 1);
    return dot ? name + L"." : name;
  };
}

BOOL WINAPI CreateFolder(LPCWSTR path, LPSECURITY_ATTRIBUTES security) {
  if (!IsDirectlyIn(g_locked, path)) return ::CreateDirectoryW(path, security);
  ::SetLastError(ERROR_ACCESS_DENIED);
  return FALSE;
}

}  // namespace

BentSearch::BentSearch(const Answer& answer)
    : first_(client::Dll(), kLibrary, "FindFirstFileExW", &FindFirst),
      next_(client::Dll(), kLibrary, "FindNextFileW", &FindNext),
      close_(client::Dll(), kLibrary, "FindClose", &CloseSearch) {
  g_answer = answer;
}

FullFolder::FullFolder(std::string_view path)
    : search_(&NameInFullFolder),
      attributes_(client::Dll(), kLibrary, "GetFileAttributesW", &GetAttributes),
      create_(client::Dll(), kLibrary, "CreateFileW", &Create) {
  g_full = PathOf(path) + L"\\";
}

UnsteadyFolder::UnsteadyFolder(std::string_view path) : search_(InTurn(PathOf(path))) {}

LockedFolder::LockedFolder(std::string_view path)
    : create_(client::Dll(), kLibrary, "CreateDirectoryW", &CreateFolder) {
  g_locked = PathOf(path) + L"\\";
}

}  // namespace kvdm::conformance
