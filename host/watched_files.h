// The file system that the component is given: it passes everything on, and tells which folders
// were made.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kvdm/platform/file_system.h>

namespace kvdm {

class WatchedFiles : public FileSystem {
 public:
  using Note = std::function<void(std::string_view path)>;

  explicit WatchedFiles(std::shared_ptr<FileSystem> files) : files_(std::move(files)) {}

  void SetNote(Note note) { note_ = std::move(note); }

  void CreateFolder(std::string_view path) override {
    files_->CreateFolder(path);
    if (note_) note_(path);
  }

  bool FolderExists(std::string_view path) override { return files_->FolderExists(path); }
  std::string FullPath(std::string_view path) override { return files_->FullPath(path); }
  void HideFolder(std::string_view path) override { files_->HideFolder(path); }
  std::string FreeFolderName(std::string_view parent, std::string_view name) override {
    return files_->FreeFolderName(parent, name);
  }
  std::string FreeFileName(std::string_view folder, std::string_view name) override {
    return files_->FreeFileName(folder, name);
  }
  std::string SystemDrive() override { return files_->SystemDrive(); }
  std::vector<std::string> FindFiles(std::string_view pattern) override {
    return files_->FindFiles(pattern);
  }
  std::unique_ptr<Directory> OpenFolder(std::string_view path) override {
    return files_->OpenFolder(path);
  }
  std::optional<std::string> ReadFile(std::string_view path) override {
    return files_->ReadFile(path);
  }
  void WriteFile(std::string_view path, std::string_view bytes) override {
    files_->WriteFile(path, bytes);
  }

 private:
  std::shared_ptr<FileSystem> files_;
  Note note_;
};

}  // namespace kvdm
