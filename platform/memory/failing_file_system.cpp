#include "platform/memory/failing_file_system.h"

#include <utility>

namespace kvdm {
namespace {

class FailingDirectory : public Directory {
 public:
  FailingDirectory(std::unique_ptr<Directory> folder, std::shared_ptr<FailureCounter> counter)
      : folder_(std::move(folder)), counter_(std::move(counter)) {}

  std::vector<std::string> Files() override { return Counted().Files(); }
  std::vector<std::string> Entries() override { return Counted().Entries(); }
  void DeleteFiles() override { Counted().DeleteFiles(); }
  std::unique_ptr<Directory> Open(std::string_view name) override {
    return std::make_unique<FailingDirectory>(Counted().Open(name), counter_);
  }
  void RemoveFolder(std::string_view name) override { Counted().RemoveFolder(name); }

 private:
  Directory& Counted() {
    counter_->Count();
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
  return !counter_->Fails() && files_->FolderExists(path);
}

void FailingFileSystem::CreateFolder(std::string_view path) {
  counter_->Count();
  files_->CreateFolder(path);
}

std::string FailingFileSystem::FullPath(std::string_view path) {
  counter_->Count();
  return files_->FullPath(path);
}

void FailingFileSystem::HideFolder(std::string_view path) {
  counter_->Count();
  files_->HideFolder(path);
}

std::string FailingFileSystem::SystemDrive() {
  counter_->Count();
  return files_->SystemDrive();
}

std::vector<std::string> FailingFileSystem::FindFiles(std::string_view pattern) {
  counter_->Count();
  return files_->FindFiles(pattern);
}

std::unique_ptr<Directory> FailingFileSystem::OpenFolder(std::string_view path) {
  counter_->Count();
  return std::make_unique<FailingDirectory>(files_->OpenFolder(path), counter_);
}

std::optional<std::string> FailingFileSystem::ReadFile(std::string_view path) {
  if (counter_->Fails()) return std::nullopt;
  return files_->ReadFile(path);
}

void FailingFileSystem::WriteFile(std::string_view path, std::string_view bytes) {
  counter_->Count();
  files_->WriteFile(path, bytes);
}

}  // namespace kvdm
