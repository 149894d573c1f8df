// Decorator of a file system for those who only read: what would change something is answered as
// done, and is not done.
#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/file_system.h>

namespace kvdm {

// A folder that would have been made is there for whoever asks, and what would have been deleted is
// gone from the folder that it was deleted in. Written files stay as they are.
class ReadOnlyFiles : public FileSystem {
 public:
  explicit ReadOnlyFiles(std::shared_ptr<FileSystem> files) : files_(std::move(files)) {}

  // Passes everything on from now on; what was answered until then is forgotten.
  void AllowChanges();

  bool FolderExists(std::string_view path) override;
  void CreateFolder(std::string_view path) override;
  std::string FullPath(std::string_view path) override;
  void HideFolder(std::string_view path) override;
  std::string SystemDrive() override { return files_->SystemDrive(); }
  std::vector<std::string> FindFiles(std::string_view pattern) override {
    return files_->FindFiles(pattern);
  }
  std::unique_ptr<Directory> OpenFolder(std::string_view path) override;
  std::optional<std::string> ReadFile(std::string_view path) override {
    return files_->ReadFile(path);
  }
  void WriteFile(std::string_view path, std::string_view bytes) override;
  std::string FreeFolderName(std::string_view parent, std::string_view name) override {
    return files_->FreeFolderName(parent, name);
  }
  std::string FreeFileName(std::string_view folder, std::string_view name) override {
    return files_->FreeFileName(folder, name);
  }

 private:
  std::shared_ptr<FileSystem> files_;
  bool changes_ = false;
  std::set<std::string> made_;  // folders, with one separator between names and none at the end
};

}  // namespace kvdm
