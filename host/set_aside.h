// Deferred deletion: the folder of an item that is deleted goes only once the change is saved.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/file_system.h"

namespace kvdm {

// Renames a folder, by paths of the component; both places are in one folder or in folders inside
// it. Errors are exceptions.
using FolderMove = std::function<void(std::string_view from, std::string_view to)>;

// The file system that the component is given. It passes everything on, but the folder that is
// expected to be deleted is not: at that moment, when the component has found nothing against it,
// it is set aside by one rename, to
//
//   .kvdm-deleted-0123456789abcdef\NAME     in the folder that it was in
//
// where it is left when the process ends before it is emptied or put back.
class SettingAsideFiles : public FileSystem {
 public:
  SettingAsideFiles(std::shared_ptr<FileSystem> files, FolderMove move)
      : files_(std::move(files)), move_(std::move(move)) {}

  // Tells that the component is about to delete `folder`, a path as it has it. That is set aside
  // then; nothing else is deleted. What can't be moved stays where it is, and so does what the path
  // means only without its trailing dots and blanks.
  void Expect(std::string_view folder);

  // Deletes of what was set aside what the component would have deleted; the rest returns to its
  // place.
  void Empty();

  // Returns what was set aside to its place, if that can be done.
  void PutBack();

  // Where the folder that was set aside is; "" when there is none.
  [[nodiscard]] const std::string& Place() const { return aside_; }

  bool FolderExists(std::string_view path) override { return files_->FolderExists(path); }
  void CreateFolder(std::string_view path) override { files_->CreateFolder(path); }
  std::string FullPath(std::string_view path) override { return files_->FullPath(path); }
  void HideFolder(std::string_view path) override { files_->HideFolder(path); }
  std::string SystemDrive() override { return files_->SystemDrive(); }
  std::vector<std::string> FindFiles(std::string_view pattern) override {
    return files_->FindFiles(pattern);
  }
  std::unique_ptr<Directory> OpenFolder(std::string_view path) override;
  std::optional<std::string> ReadFile(std::string_view path) override {
    return files_->ReadFile(path);
  }
  void WriteFile(std::string_view path, std::string_view bytes) override {
    files_->WriteFile(path, bytes);
  }

 private:
  void SetAside();
  void RemovePlace();

  std::shared_ptr<FileSystem> files_;
  FolderMove move_;
  bool armed_ = false;    // until the component deletes
  std::string expected_;  // the folder's path as the component has it
  std::string original_;  // and its full path
  std::string aside_;
};

}  // namespace kvdm
