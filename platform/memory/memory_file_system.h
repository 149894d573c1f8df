// A file system in memory, for tests.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/file_system.h>

#include "platform/file_names.h"

namespace kvdm {

struct MemoryNode;

// Has the empty drives C:, D: and Z:. The current folder is "C:\" at first. A leading dot hides an
// entry, but from FindFiles with a pattern that has one too.
//
//   MemoryFileSystem files;
//   files.AddFile(R"(D:\Work\North\shops.dbf)", "...");
//   files.Tree(R"(D:\Work)")   // {R"(North\)", R"(North\shops.dbf)"}
class MemoryFileSystem : public FileSystem {
 public:
  MemoryFileSystem();

  bool FolderExists(std::string_view path) override;
  void CreateFolder(std::string_view path) override;
  std::string FullPath(std::string_view path) override;
  void HideFolder(std::string_view path) override;
  std::string SystemDrive() override;
  std::vector<std::string> FindFiles(std::string_view pattern) override;
  std::unique_ptr<Directory> OpenFolder(std::string_view path) override;
  std::optional<std::string> ReadFile(std::string_view path) override;
  void WriteFile(std::string_view path, std::string_view bytes) override;

  // Building and changing the world of a test. Run-time error 76 when something is missing.

  // Creates a folder and those above it, as far as they are missing.
  void AddFolder(std::string_view path);
  // Creates or replaces a file, and the folders above it.
  void AddFile(std::string_view path, std::string_view content = {});
  // Creates a link that leads nowhere.
  void AddLink(std::string_view path);
  // Sets the FileAttribute bits that an entry has from now on.
  void SetAttributes(std::string_view path, unsigned attributes);
  // From now on creating, replacing and removing something directly inside the folder is refused.
  void RefuseWrites(std::string_view path);
  // Gives a folder another place, whose parent exists.
  void MoveFolder(std::string_view from, std::string_view to);
  // Removes an entry with all that is in it, whatever its attributes.
  void RemoveTree(std::string_view path);
  void SetCurrentFolder(std::string_view path);

  // Everything inside a folder, hidden entries too, as sorted paths from there; folders end in "\".
  [[nodiscard]] std::vector<std::string> Tree(std::string_view path) const;

 private:
  // A place whose parent exists. `entry` is the real name of what is there, if anything.
  struct Place {
    std::shared_ptr<MemoryNode> parent;
    std::string name;
    std::optional<std::string> entry;
  };

  [[nodiscard]] std::optional<DrivePath> Resolve(std::string_view path) const;
  // Replaces the names of `path` by the real ones on the way; empty when something is missing.
  [[nodiscard]] std::shared_ptr<MemoryNode> Walk(DrivePath& path, NameFinder find) const;
  [[nodiscard]] std::shared_ptr<MemoryNode> Find(std::string_view path) const;
  [[nodiscard]] std::shared_ptr<MemoryNode> Existing(std::string_view path) const;
  [[nodiscard]] std::shared_ptr<MemoryNode> ExistingFolder(std::string_view path) const;
  // Run-time error 76 when the parent is missing, `root_error` for a root.
  [[nodiscard]] Place PlaceOf(std::string_view path, std::int32_t root_error) const;
  // Creates or replaces an entry in a folder that is there.
  void AddEntry(std::string_view path, const std::shared_ptr<MemoryNode>& node);

  std::map<char, std::shared_ptr<MemoryNode>> drives_;
  DrivePath current_{'C', {}};
};

}  // namespace kvdm
