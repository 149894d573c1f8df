// Folders and files of Windows, by the component's paths.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/file_system.h>

namespace kvdm {

// Links in a path are followed. As the last name, a link to a file is what WriteFile replaces; a
// link to a folder is neither read nor replaced (75). Device names such as "nul" or "com1.txt" are
// refused for new entries (52).
class WindowsFileSystem : public FileSystem {
 public:
  bool FolderExists(std::string_view path) override;
  void CreateFolder(std::string_view path) override;
  std::string FullPath(std::string_view path) override;
  void HideFolder(std::string_view path) override;
  std::string SystemDrive() override;
  std::vector<std::string> FindFiles(std::string_view pattern) override;
  std::unique_ptr<Directory> OpenFolder(std::string_view path) override;
  std::optional<std::string> ReadFile(std::string_view path) override;
  void WriteFile(std::string_view path, std::string_view bytes) override;
};

}  // namespace kvdm
