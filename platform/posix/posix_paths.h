// From paths with drives to folders of the system.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/file_names.h"
#include "platform/posix/file_descriptor.h"

namespace kvdm {

// The folders that stand for drives, by capital letter. Z: is always "/"; C: is "kvdm/drive_c" in
// the user's data folder unless it is given here. Other letters that are not given are missing.
struct PosixFileOptions {
  std::map<char, std::string> drives;
};

// A place for a file or folder: an open folder and a name in it.
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

  // Opens a folder, not for listing, and puts the real names on the way, found by `find`, into
  // `path`. Throws `no_folder` (an errno value) when the path leads to a file.
  [[nodiscard]] FileDescriptor Open(DrivePath& path, int no_folder,
                                    NameFinder find = FindName) const;

  // Throws `root_error` (an errno value) for the root of a drive.
  [[nodiscard]] PosixPlace PlaceOf(std::string_view path, int root_error) const;

 private:
  [[nodiscard]] FileDescriptor OpenRoot(char drive) const;

  std::map<char, std::string> drives_;
};

}  // namespace kvdm
