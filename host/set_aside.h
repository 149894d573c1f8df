// Deferred deletion of a folder: it goes only once the change is saved.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kvdm/platform/file_system.h>

#include "host/os.h"

namespace kvdm {

// The file system that the component is given. It passes everything on, but the folder that is
// expected to be deleted is not: at that moment, when the component has found nothing against it,
// it is set aside by one rename, to
//
//   PLACE\NAME     in the folder that it was in
//
// where it is left when the process ends before it is emptied or put back.
class SettingAsideFiles : public FileSystem {
 public:
  SettingAsideFiles(std::shared_ptr<FileSystem> files, os::Drives drives)
      : files_(std::move(files)), drives_(std::move(drives)) {}

  // Tells that the component is about to delete `folder`, a path as it has it. That is set aside
  // then, in a new hidden folder `place` beside it; nothing else is deleted. What can't be moved
  // stays where it is, and so does what the path means only without its trailing dots and blanks.
  // std::system_error when it can't be told whether the folder is there.
  void Expect(std::string_view folder, std::string_view place);

  // Whether the expected folder was there.
  [[nodiscard]] bool WasThere() const { return found_.has_value(); }

  // Deletes of what was set aside what the component would have deleted; the rest returns to its
  // place. True when there was something, and all of it is gone.
  bool Empty();

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
  std::string FreeFolderName(std::string_view parent, std::string_view name) override {
    return files_->FreeFolderName(parent, name);
  }
  std::string FreeFileName(std::string_view folder, std::string_view name) override {
    return files_->FreeFileName(folder, name);
  }

 private:
  void SetAside();
  void RemovePlace();

  std::shared_ptr<FileSystem> files_;
  os::Drives drives_;
  bool armed_ = false;                // until the component deletes
  std::string place_;                 // the name of the folder to set it aside in
  std::string expected_;              // the folder's path as the component has it
  std::optional<std::string> found_;  // and its full path
  std::string aside_;
};

}  // namespace kvdm
