// The model's disk: the names of folders and files on the drives C: and D:.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kvdm::model {

// Two names mean the same entry when they are equal without regard to the case of ASCII letters and
// to trailing blanks and dots; for a deletion those count. Relative paths, and those that start
// with a separator, are on C:.
class Folders {
 public:
  [[nodiscard]] bool FolderExists(std::string_view path) const;
  // Faults 58, 76 and 52 as a file system has them.
  void CreateFolder(std::string_view path);
  // Creates each folder that is missing after the first backslash.
  void CreateFolderPath(const std::string& path);
  // False when its folder is missing or a folder has the name. A leading dot hides it.
  bool WriteFile(std::string_view path);
  // Removes a folder; on its way it may stop at what it can't remove. A path that does not end in a
  // backslash removes only a folder without folders.
  bool DeleteTree(const std::string& path);
  // Empties a folder as far as DeleteTree can.
  void Clean(const std::string& path);

  // The first of `name`, `name`1, `name`2 ... that no folder, or no file in front of its extension,
  // has.
  [[nodiscard]] std::string FreeFolderName(const std::string& parent,
                                           const std::string& name) const;
  [[nodiscard]] std::string FreeFileName(const std::string& folder, const std::string& name) const;

  // All entries of the drives as sorted paths; folders end in a backslash.
  [[nodiscard]] std::vector<std::string> Tree() const;

 private:
  // The comparable names that lead to an entry, the drive first.
  using Key = std::vector<std::string>;
  struct Entry {
    std::string path;
    bool is_folder = true;
    bool is_hidden = false;
  };
  struct Place {
    Key key;
    std::string name;
    std::string spelled;  // The path as given, with single separators.
  };

  [[nodiscard]] static std::optional<Place> PlaceOf(std::string_view path);
  [[nodiscard]] bool HasFolder(const Key& key) const;
  [[nodiscard]] std::string PathIn(const Key& folder, const std::string& name) const;
  [[nodiscard]] std::vector<Key> Inside(const Key& folder) const;
  [[nodiscard]] bool HasFileNamed(std::string_view path) const;
  void DeleteFiles(const Key& folder);
  [[nodiscard]] std::optional<Key> FirstSeen(const Key& folder) const;
  bool DeleteFolder(const Key& folder, bool with_folders);
  // False when something that is seen stays.
  bool Empty(const Key& folder, bool with_folders);

  std::map<Key, Entry> entries_;
};

}  // namespace kvdm::model
