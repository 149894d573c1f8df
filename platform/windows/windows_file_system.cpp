#include "platform/windows/windows_file_system.h"

#include <windows.h>

#include <array>
#include <system_error>
#include <tuple>
#include <utility>

#include "platform/file_names.h"
#include "platform/system_error.h"
#include "platform/windows/file_handle.h"
#include "platform/windows/folder_entries.h"
#include "platform/windows/save_file.h"
#include "platform/windows/utf16.h"
#include "platform/windows/windows_directory.h"
#include "platform/windows/windows_paths.h"
#include "platform/xml/limits.h"

namespace kvdm {

bool WindowsFileSystem::FolderExists(std::string_view path) {
  try {
    DrivePath resolved = ResolveWindowsPath(path);
    return OpenFolderAt(resolved, ERROR_DIRECTORY, FILE_READ_ATTRIBUTES).is_open();
  } catch (const std::system_error&) {
    return false;  // What can't be reached is not there for the caller.
  }
}

void WindowsFileSystem::CreateFolder(std::string_view path) {
  TranslatingErrors(path, [&] {
    const WindowsPlace place = PlaceOf(path, ERROR_ALREADY_EXISTS);
    if (place.attributes) throw PathError(kFileExists, path);
    if (!place.HasCreatableName()) throw PathError(kBadFileName, path);
    if (::CreateDirectoryW(SystemPath(place.path).c_str(), nullptr) == FALSE) ThrowLastError();
  });
}

std::string WindowsFileSystem::FullPath(std::string_view path) {
  return TranslatingErrors(path, [&] {
    DrivePath resolved = ResolveWindowsPath(path);
    std::ignore = OpenFolderAt(resolved, ERROR_PATH_NOT_FOUND, FILE_READ_ATTRIBUTES);
    return resolved.Text();
  });
}

void WindowsFileSystem::HideFolder(std::string_view path) {
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

std::string WindowsFileSystem::SystemDrive() {
  return TranslatingErrors({}, [] {
    std::array<wchar_t, MAX_PATH> folder{};
    if (::GetSystemWindowsDirectoryW(folder.data(), MAX_PATH) == 0) ThrowLastError();
    return ToUtf8({folder.data(), 2});
  });
}

std::vector<std::string> WindowsFileSystem::FindFiles(std::string_view pattern) {
  const SearchPattern search = SplitPattern(pattern);
  const std::string_view folder = search.folder.empty() ? "." : search.folder;
  auto names = AnswerUnlessMissing<std::vector<std::string>>(folder, [&] {
    DrivePath resolved = ResolveWindowsPath(folder);
    FileHandle found = OpenFolderAt(resolved, ERROR_DIRECTORY, kListAccess);
    return WindowsDirectory(std::move(found), resolved.Text()).Files();
  });
  std::erase_if(names, [&](const std::string& name) { return !MatchesPattern(name, search.name); });
  return names;
}

std::unique_ptr<Directory> WindowsFileSystem::OpenFolder(std::string_view path) {
  return TranslatingErrors(path, [&] {
    DrivePath resolved = ResolveWindowsPath(path);
    FileHandle folder = OpenFolderAt(resolved, ERROR_DIRECTORY, kListAccess, FindSameName);
    return std::make_unique<WindowsDirectory>(std::move(folder), resolved.Text());
  });
}

std::optional<std::string> WindowsFileSystem::ReadFile(std::string_view path) {
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

void WindowsFileSystem::WriteFile(std::string_view path, std::string_view bytes) {
  TranslatingErrors(path, [&] {
    const WindowsPlace place = PlaceOf(path, ERROR_DIRECTORY);
    if (!place.attributes && !place.HasCreatableName()) throw PathError(kBadFileName, path);
    if (place.IsFolder()) throw PathError(kPathFileAccess, path);
    const bool read_only = (place.attributes.value_or(0) & FILE_ATTRIBUTE_READONLY) != 0;
    if (read_only) throw PathError(kPermissionDenied, path);
    SaveFile(SystemPath(place.path), bytes);
  });
}

}  // namespace kvdm
