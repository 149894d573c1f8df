// Paths of the component, and the folders of the system that they lead to.
#include <windows.h>

#include <algorithm>
#include <array>
#include <memory>
#include <tuple>
#include <utility>
#include <vector>

#include "platform/system_error.h"
#include "platform/windows/text.h"
#include "platform/windows/windows_file_system.h"

namespace kvdm {
namespace {

struct SearchCloser {
  using pointer = HANDLE;
  void operator()(HANDLE search) const { ::FindClose(search); }
};
using Search = std::unique_ptr<HANDLE, SearchCloser>;

DrivePath CurrentFolder() {
  std::wstring path(::GetCurrentDirectoryW(0, nullptr), L'\0');
  path.resize(::GetCurrentDirectoryW(static_cast<DWORD>(path.size()), path.data()));
  auto folder = ResolvePath(SplitPath(ToUtf8(path)), {});
  if (!folder) ThrowSystemError(ERROR_PATH_NOT_FOUND);  // A share.
  return *std::move(folder);
}

std::optional<DWORD> AttributesOf(const std::wstring& path) {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  return attributes == INVALID_FILE_ATTRIBUTES ? std::nullopt : std::optional(attributes);
}

std::wstring Joined(const DrivePath& folder, std::string_view name) {
  std::wstring path = SystemPath(folder);
  if (!path.ends_with(L'\\')) path += L'\\';
  return path + ToUtf16(name);
}

// The names in `folder` among which FindName finds what `name` means. In a folder that may not be
// listed that is the very name.
std::vector<std::string> NamesLike(const DrivePath& folder, const std::string& name) {
  const std::wstring pattern = Joined(folder, std::string(TrimmedName(name)) + "*");
  WIN32_FIND_DATAW found;
  const Search search(::FindFirstFileExW(pattern.c_str(), FindExInfoBasic, &found,
                                         FindExSearchNameMatch, nullptr, 0));
  if (search.get() == INVALID_HANDLE_VALUE) {
    const DWORD error = ::GetLastError();
    if (error == ERROR_ACCESS_DENIED && AttributesOf(Joined(folder, name))) return {name};
    if (error == ERROR_ACCESS_DENIED || MeansMissing(error)) return {};
    ThrowSystemError(error);
  }
  std::vector<std::string> names;
  do {
    names.push_back(ToUtf8(found.cFileName));
  } while (::FindNextFileW(search.get(), &found) != FALSE);
  if (::GetLastError() != ERROR_NO_MORE_FILES) ThrowLastError();
  return names;
}

// The name of the entry that has `name` as the short one which the system gave it, such as
// "PROGRA~1".
std::optional<std::string> FindByShortName(const DrivePath& folder, const std::string& name) {
  if (name.find('~') == std::string::npos) return std::nullopt;
  WIN32_FIND_DATAW found;
  const Search search(::FindFirstFileW(Joined(folder, name).c_str(), &found));
  if (search.get() == INVALID_HANDLE_VALUE) return std::nullopt;
  if (!SameName(ToUtf8(found.cAlternateFileName), name)) return std::nullopt;
  return ToUtf8(found.cFileName);
}

// The name of the entry that `name` means; nothing when there is none.
std::optional<std::string> FindEntry(const DrivePath& folder, const std::string& name,
                                     NameFinder find) {
  if (!IsCreatableName(name)) return std::nullopt;  // No entry has such a name.
  auto found = find(NamesLike(folder, name), name);
  return found ? found : FindByShortName(folder, name);
}

// Replaces the names of a path by the real ones.
void FindNames(DrivePath& path, NameFinder find) {
  DrivePath found{path.drive, {}};
  for (const std::string& name : path.names) {
    auto entry = FindEntry(found, name, find);
    if (!entry) ThrowSystemError(ERROR_PATH_NOT_FOUND);
    found.names.push_back(*std::move(entry));
  }
  path = std::move(found);
}

constexpr std::array<std::string_view, 6> kDevices = {"CON", "PRN",    "AUX",
                                                      "NUL", "CONIN$", "CONOUT$"};
constexpr std::array<std::string_view, 2> kPorts = {"COM", "LPT"};
// The raised digits count as digits here.
constexpr std::array<std::string_view, 12> kPortNumbers = {
    "1", "2", "3", "4", "5", "6", "7", "8", "9", "\u00b9", "\u00b2", "\u00b3"};

bool IsPort(std::string_view name) {
  constexpr std::size_t kLetters = 3;
  return name.size() > kLetters &&
         std::ranges::find(kPortNumbers, name.substr(kLetters)) != kPortNumbers.end() &&
         std::ranges::any_of(kPorts, [&](std::string_view port) {
           return SameName(port, name.substr(0, kLetters));
         });
}

}  // namespace

DrivePath ResolveWindowsPath(std::string_view path) {
  const PathParts parts = SplitPath(path);
  if (parts.start == PathStart::kNowhere) ThrowSystemError(ERROR_PATH_NOT_FOUND);
  const bool from_root = parts.start == PathStart::kDrive;
  return *ResolvePath(parts, from_root ? DrivePath{} : CurrentFolder());
}

std::wstring SystemPath(const DrivePath& path) { return LR"(\\?\)" + ToUtf16(path.Text()); }

FileHandle OpenFolderAt(DrivePath& path, DWORD no_folder, DWORD access, NameFinder find) {
  FindNames(path, find);
  const std::wstring system_path = SystemPath(path);
  const auto attributes = AttributesOf(system_path);
  if (!attributes) ThrowLastError();
  if ((*attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) ThrowSystemError(no_folder);
  FileHandle folder(::CreateFileW(system_path.c_str(), access, kShareAll, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (!folder.is_open()) ThrowLastError();
  return folder;
}

bool WindowsPlace::HasCreatableName() const {
  return IsCreatableName(path.names.back()) && !IsDeviceName(path.names.back());
}

WindowsPlace PlaceOf(std::string_view path, DWORD root_error) {
  DrivePath resolved = ResolveWindowsPath(path);
  const bool is_root = resolved.names.empty();
  const std::string name = is_root ? std::string() : std::move(resolved.names.back());
  if (!is_root) resolved.names.pop_back();
  std::ignore = OpenFolderAt(resolved, ERROR_PATH_NOT_FOUND, FILE_READ_ATTRIBUTES);
  if (is_root) ThrowSystemError(root_error);
  const auto entry = FindEntry(resolved, name, FindName);
  resolved.names.push_back(entry.value_or(name));
  return {resolved, entry ? AttributesOf(SystemPath(resolved)) : std::nullopt};
}

bool IsDeviceName(std::string_view name) {
  const std::string_view base = TrimmedName(name.substr(0, name.find('.')));
  return IsPort(base) || std::ranges::any_of(kDevices, [&](std::string_view device) {
           return SameName(device, base);
         });
}

}  // namespace kvdm
