// The file system of POSIX, by the component's paths: drives are folders.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <kvdm/platform/file_system.h>

#include "platform/file_names.h"
#include "platform/posix/files.h"
#include "platform/posix/folder_names.h"

namespace kvdm {

// The folders that stand for drives, by capital letter. Z: is always "/"; C: is "kvdm/drive_c" in
// the user's data folder unless it is given here. Other letters that are not given are missing.
struct PosixFileOptions {
  std::map<char, std::string> drives;
};

// A drive is a folder (PosixFileOptions); a POSIX path such as "/home/x" works too and has the full
// path "Z:\home\x". Links in a path are followed; as the last name, a link is what FindFiles lists
// and what WriteFile replaces. Whatever is no folder counts as a file; only regular files are read.
//
// Hidden and system attributes are those of the extended attribute "user.DOSATTRIB", and a name
// with a leading dot is hidden, but for FindFiles with a pattern that has one too. A file without
// any write permission is read-only; WriteFile refuses to replace it (70).
[[nodiscard]] std::shared_ptr<FileSystem> MakePosixFileSystem(const PosixFileOptions& options = {});

// The place for a file or folder: its parent folder, open, and a name in it.
struct PosixPlace {
  FileDescriptor folder;
  std::string name;                  // As given.
  std::optional<std::string> entry;  // The name of what is there, if anything.
};

// Finds places and folders. Links on the way are followed. Errors are std::system_error: ENOENT for
// whatever is missing or starts nowhere.
class PosixPaths {
 public:
  explicit PosixPaths(const PosixFileOptions& options);

  // The drive and the names that `path` means. "/x" and "\x" are on Z:, as the process's current
  // folder is.
  [[nodiscard]] static DrivePath Resolve(std::string_view path);

  // The folder of the system that a drive is; "" for one that this computer does not have.
  [[nodiscard]] std::string RootOf(char drive) const;

  // Opens a folder, not for listing, and puts the real names on the way, found by `find`, into
  // `path`. Throws `no_folder` (an errno value) when the path leads to a file.
  [[nodiscard]] FileDescriptor Open(DrivePath& path, int no_folder,
                                    NameFinder find = FindName) const;

  // Throws `root_error` (an errno value) for the root of a drive.
  [[nodiscard]] PosixPlace PlaceOf(std::string_view path, int root_error) const;

  // What this process makes in folders, and what is known of them.
  [[nodiscard]] FolderNames& Names() const { return names_; }

 private:
  [[nodiscard]] FileDescriptor OpenRoot(char drive) const;

  std::map<char, std::string> drives_;
  mutable FolderNames names_;
};

// $XDG_DATA_HOME when it is an absolute path, else .local/share in the home folder.
[[nodiscard]] std::string UserDataFolder();

}  // namespace kvdm
