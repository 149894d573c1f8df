// Folders and files of a POSIX system, by the component's paths.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/file_system.h>

#include "platform/posix/posix_paths.h"

namespace kvdm {

// A drive is a folder (PosixFileOptions); a POSIX path such as "/home/x" works too and has the full
// path "Z:\home\x". Links in a path are followed; as the last name, a link is what FindFiles lists
// and what WriteFile replaces. Whatever is no folder counts as a file; only regular files are read.
//
// Hidden and system attributes are those of the extended attribute "user.DOSATTRIB", and a name
// with a leading dot is hidden, but for FindFiles with a pattern that has one too. A file without
// any write permission is read-only; WriteFile refuses to replace it (70).
class PosixFileSystem : public FileSystem {
 public:
  explicit PosixFileSystem(const PosixFileOptions& options = {});

  bool FolderExists(std::string_view path) override;
  void CreateFolder(std::string_view path) override;
  std::string FullPath(std::string_view path) override;
  void HideFolder(std::string_view path) override;
  std::string SystemDrive() override;
  std::vector<std::string> FindFiles(std::string_view pattern) override;
  std::unique_ptr<Directory> OpenFolder(std::string_view path) override;
  std::optional<std::string> ReadFile(std::string_view path) override;
  void WriteFile(std::string_view path, std::string_view bytes) override;

 private:
  PosixPaths paths_;
};

}  // namespace kvdm
