// From the component's paths to folders and files of the system. Links on the way are followed.
// Errors are std::system_error: ERROR_PATH_NOT_FOUND for whatever is missing or starts nowhere.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>

#include "platform/file_names.h"
#include "platform/windows/file_handle.h"

namespace kvdm {

// The drive and the names that `path` means.
[[nodiscard]] DrivePath ResolveWindowsPath(std::string_view path);

// The path as the system takes it: of any length, and with each name as it is.
[[nodiscard]] std::wstring SystemPath(const DrivePath& path);

// Opens a folder and puts the real names on the way, found by `find` or by the short names that the
// system gave them, into `path`. Throws `no_folder` (an error code) when the path leads to a file.
[[nodiscard]] FileHandle OpenFolderAt(DrivePath& path, DWORD no_folder, DWORD access,
                                      NameFinder find = FindName);

// A place for a file or folder in a folder that is there.
struct WindowsPlace {
  DrivePath path;                   // Ends in the real name of what is there, else as given.
  std::optional<DWORD> attributes;  // Of what is there, if anything; a link's own ones.

  [[nodiscard]] bool IsFolder() const {
    return attributes && (*attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  }
  // Whether something may be created here.
  [[nodiscard]] bool HasCreatableName() const;
};

// Throws `root_error` (an error code) for the root of a drive.
[[nodiscard]] WindowsPlace PlaceOf(std::string_view path, DWORD root_error);

}  // namespace kvdm
