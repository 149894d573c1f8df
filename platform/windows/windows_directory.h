// An open folder of the system.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/file_system.h>

#include "platform/windows/file_handle.h"
#include "platform/windows/folder_entries.h"

namespace kvdm {

// Works through the handles of the folders alone, which others may not keep from being moved or
// removed.
class WindowsDirectory : public Directory {
 public:
  // `folder` is open with kListAccess; `path` is what errors name.
  WindowsDirectory(FileHandle folder, std::string path);

  std::vector<std::string> Files() override;
  std::vector<std::string> Entries() override;
  // Also error 75 when a link can't be told from what it leads to.
  void DeleteFiles() override;
  void Enter(std::string_view name) override;
  void Leave() override;
  void RemoveFolder(std::string_view name) override;

 private:
  struct Level {
    FileHandle folder;
    std::size_t path_length;
    std::map<std::wstring, LONGLONG> known;  // What was listed or entered, by name.
  };

  [[nodiscard]] const FileHandle& Here() const { return way_.back().folder; }
  [[nodiscard]] std::string PathOf(std::string_view name) const;
  // A folder inside. Throws std::system_error: ERROR_PATH_NOT_FOUND when it is missing,
  // ERROR_DIRECTORY when it is no folder or not the one that is known by its name.
  [[nodiscard]] FolderEntry FolderNamed(std::string_view name) const;
  [[nodiscard]] std::vector<FolderEntry> DeletableFiles() const;

  std::vector<Level> way_;  // The last one is where it is.
  std::string path_;
};

}  // namespace kvdm
