// The file system of Windows, by the component's paths.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <kvdm/platform/file_system.h>

#include "platform/file_names.h"
#include "platform/windows/files.h"

namespace kvdm {

// Links in a path are followed. As the last name, a link to a file is what WriteFile replaces; a
// link to a folder is neither read nor replaced (75). Device names such as "nul" or "com1.txt" are
// refused for new entries (52).
[[nodiscard]] std::shared_ptr<FileSystem> MakeWindowsFileSystem();

// From paths to folders and files of the system. Links on the way are followed. Errors are
// std::system_error: ERROR_PATH_NOT_FOUND for whatever is missing or starts nowhere.

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

// Whether programs take `name` for a device: "nul", "AUX.txt", "com1 .log". A file that had such a
// name could hardly be opened or deleted again.
[[nodiscard]] bool IsDeviceName(std::string_view name);

}  // namespace kvdm
