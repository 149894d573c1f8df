// An open folder of the system.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/windows/file_handle.h"
#include "platform/windows/folder_entries.h"

namespace kvdm {

// Works through the folder's handle alone, which others may not keep from being moved or removed.
class WindowsDirectory : public Directory {
 public:
  // `folder` is open with kListAccess; `path` is what errors name.
  WindowsDirectory(FileHandle folder, std::string path);

  std::vector<std::string> Files() override;
  std::vector<std::string> Entries() override;
  // Also error 75 when a link can't be told from what it leads to.
  void DeleteFiles() override;
  std::unique_ptr<Directory> Open(std::string_view name) override;
  void RemoveFolder(std::string_view name) override;

 private:
  [[nodiscard]] std::string PathOf(std::string_view name) const;
  // The entry that `name` means. Throws std::system_error: ERROR_PATH_NOT_FOUND when it is missing,
  // ERROR_DIRECTORY when it is no folder.
  [[nodiscard]] FolderEntry FolderNamed(std::string_view name) const;
  [[nodiscard]] std::vector<FolderEntry> DeletableFiles() const;

  FileHandle folder_;
  std::string path_;
};

}  // namespace kvdm
