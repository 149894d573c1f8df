/// @file
/// File system service: folders and files, by paths in the component's own form.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/export.h>

namespace kvdm {

/// The name of the file in which hosts keep, in a study area's or an analysis's folder, what brings
/// that item back when it is lost. Whoever deletes the files of a folder and removes it removes
/// this one too, hidden or not.
inline constexpr char kRecoveryFile[] = ".kvdm-item.json";

/// An open folder, from which one can go into the folders inside and back. What it does, it does in
/// the very folder where it is, wherever that folder's path leads by then, and it never follows a
/// link: a link inside counts as an ordinary file.
///
/// Hidden and system entries are not seen, nor are "." and "..". Folders inside are found by their
/// names, also in another letter case.
class KVDM_EXPORT Directory {
 public:
  virtual ~Directory() = default;

  /// The names of the files; read-only ones included.
  virtual std::vector<std::string> Files() = 0;

  /// The names of everything that is seen: folders, and files that are still there.
  virtual std::vector<std::string> Entries() = 0;

  /// Deletes the files that are not read-only. Run-time error 53 when there are none, 70 or 75 when
  /// one can't be deleted; those before it are then gone.
  virtual void DeleteFiles() = 0;

  /// Goes into a folder inside. Run-time error 76 when it is missing, 75 when it is no folder,
  /// begins another file system, or has taken the place of what was listed under this name.
  virtual void Enter(std::string_view name) = 0;

  /// Goes back to the folder from which it went into this one. Run-time error 76 when this one has
  /// been moved out of it meanwhile and the way back is lost.
  virtual void Leave() = 0;

  /// Removes an empty folder inside. Run-time error 76 when it is missing, 75 when it is not empty,
  /// no folder, or has taken the place of what was listed or entered under this name.
  virtual void RemoveFolder(std::string_view name) = 0;

  /// Deletes the files, if Files finds any, as DeleteFiles does, and returns what Entries finds
  /// then. An implementation that can do that in one go overrides it.
  virtual std::vector<std::string> ClearFiles();
};

/// Paths are UTF-8. `\` and `/` both separate; doubled separators count once; "." and ".." are
/// resolved by text and never lead above the root. A path starts with a drive ("D:\Data"), with one
/// separator (the root of the current drive) or, as a relative path, in the process's current
/// folder.
///
/// An entry is found by its exact name, else without regard to letter case, else with trailing
/// blanks and dots cut off. It is created with the name as given; names with < > : " | ? * or a
/// control character are refused (52).
class KVDM_EXPORT FileSystem {
 public:
  virtual ~FileSystem() = default;

  /// Whether `path` names a folder. Never fails: False for "", a blank, a file, a missing drive.
  virtual bool FolderExists(std::string_view path) = 0;

  /// Creates one folder. Run-time error 58 when a folder or file has the name, 76 when the parent
  /// is missing, 70 when the system refuses.
  virtual void CreateFolder(std::string_view path) = 0;

  /// The full path of an existing folder, without a trailing separator unless it is a root.
  /// Run-time error 76 when it is missing.
  virtual std::string FullPath(std::string_view path) = 0;

  /// Sets the hidden attribute of a folder. Run-time error 76 when it is missing.
  virtual void HideFolder(std::string_view path) = 0;

  /// The drive of the system folder, such as "C:".
  virtual std::string SystemDrive() = 0;

  /// The names of the files that match `pattern`, a folder path followed by a name in which `*` and
  /// `?` are wildcards; "name.*" matches "name" too. Read-only files count, hidden and system ones
  /// don't; where a leading dot hides a file, a pattern with a leading dot finds it all the same.
  /// Empty when the folder is missing; run-time error 70 or 75 when that can't be told, or the
  /// folder can't be listed.
  virtual std::vector<std::string> FindFiles(std::string_view pattern) = 0;

  /// Opens a folder, in which things can be deleted: each name on the way counts as it is, or in
  /// another letter case, but with nothing cut off. Run-time error 76 when it is missing, 75 when
  /// it is no folder.
  virtual std::unique_ptr<Directory> OpenFolder(std::string_view path) = 0;

  /// The bytes of a file; nothing when it is missing or no file. Of a file that is longer than
  /// a text to load may be, 256 MiB, that many bytes and one more. Run-time
  /// error 70 or 75 when it can't be read, or found out whether it is there.
  virtual std::optional<std::string> ReadFile(std::string_view path) = 0;

  /// Replaces the file as a whole: after a failure the old content stands. Run-time error 76 when
  /// the folder is missing, 70 or 75 when the system refuses.
  virtual void WriteFile(std::string_view path, std::string_view bytes) = 0;

  /// The first of `name`, then `name` followed by 1, 2, 3 ... for which FolderExists denies the
  /// path that begins with `parent`, which ends in a separator. Creates nothing. Run-time error 6
  /// once 32767 is taken. An implementation that can try the names on one listing overrides it,
  /// with the same answer.
  virtual std::string FreeFolderName(std::string_view parent, std::string_view name);

  /// The same for a file in `folder`, whatever its extension: FindFiles finds no "name.*".
  virtual std::string FreeFileName(std::string_view folder, std::string_view name);
};

}  // namespace kvdm
