#include "platform/memory/failing_file_system.h"

#include <utility>

namespace kvdm {
namespace {

class FailingDirectory : public Directory {
 public:
  FailingDirectory(std::unique_ptr<Directory> folder, std::shared_ptr<FailureCounter> counter)
      : folder_(std::move(folder)), counter_(std::move(counter)) {}

  std::vector<std::string> Files() override { return Counted("folder.Files").Files(); }
  std::vector<std::string> Entries() override { return Counted("folder.Entries").Entries(); }
  void DeleteFiles() override { Counted("folder.DeleteFiles").DeleteFiles(); }
  void Enter(std::string_view name) override { Counted("folder.Enter", name).Enter(name); }
  void Leave() override { Counted("folder.Leave").Leave(); }
  void RemoveFolder(std::string_view name) override {
    Counted("folder.RemoveFolder", name).RemoveFolder(name);
  }

 private:
  Directory& Counted(std::string_view call, std::string_view about = {}) {
    counter_->Count(call, about);
    return *folder_;
  }

  std::unique_ptr<Directory> folder_;
  std::shared_ptr<FailureCounter> counter_;
};

}  // namespace

FailingFileSystem::FailingFileSystem(std::shared_ptr<FileSystem> files,
                                     std::shared_ptr<FailureCounter> counter)
    : files_(std::move(files)), counter_(std::move(counter)) {}

bool FailingFileSystem::FolderExists(std::string_view path) {
  return !counter_->Fails("files.FolderExists", path) && files_->FolderExists(path);
}

void FailingFileSystem::CreateFolder(std::string_view path) {
  counter_->Count("files.CreateFolder", path);
  files_->CreateFolder(path);
}

std::string FailingFileSystem::FullPath(std::string_view path) {
  counter_->Count("files.FullPath", path);
  return files_->FullPath(path);
}

void FailingFileSystem::HideFolder(std::string_view path) {
  counter_->Count("files.HideFolder", path);
  files_->HideFolder(path);
}

std::string FailingFileSystem::SystemDrive() {
  counter_->Count("files.SystemDrive");
  return files_->SystemDrive();
}

std::vector<std::string> FailingFileSystem::FindFiles(std::string_view pattern) {
  counter_->Count("files.FindFiles", pattern);
  return files_->FindFiles(pattern);
}

std::unique_ptr<Directory> FailingFileSystem::OpenFolder(std::string_view path) {
  counter_->Count("files.OpenFolder", path);
  auto folder = files_->OpenFolder(path);
  if (counter_->GivesNothing()) return nullptr;
  return std::make_unique<FailingDirectory>(std::move(folder), counter_);
}

std::optional<std::string> FailingFileSystem::ReadFile(std::string_view path) {
  counter_->Count("files.ReadFile", path);
  if (counter_->GivesNothing()) return std::nullopt;
  return files_->ReadFile(path);
}

void FailingFileSystem::WriteFile(std::string_view path, std::string_view bytes) {
  counter_->Count("files.WriteFile", path);
  files_->WriteFile(path, bytes);
}

}  // namespace kvdm
