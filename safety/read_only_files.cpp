#include "safety/read_only_files.h"

#include <kvdm/platform/error.h>

#include "safety/paths.h"

namespace kvdm {
namespace {

// Remembers for each folder on the way what would have been deleted in it.
class ReadOnlyDirectory : public Directory {
 public:
  explicit ReadOnlyDirectory(std::unique_ptr<Directory> folder) : folder_(std::move(folder)) {}

  std::vector<std::string> Files() override { return Left(folder_->Files()); }
  std::vector<std::string> Entries() override { return Left(folder_->Entries()); }
  void DeleteFiles() override {
    const auto files = Files();
    if (files.empty()) throw RuntimeError(kFileNotFound);
    deleted_.back().insert(files.begin(), files.end());
  }
  void Enter(std::string_view name) override {
    folder_->Enter(name);
    deleted_.emplace_back();
  }
  void Leave() override {
    folder_->Leave();
    deleted_.pop_back();
  }
  void RemoveFolder(std::string_view name) override { deleted_.back().emplace(name); }

 private:
  [[nodiscard]] std::vector<std::string> Left(std::vector<std::string> names) const {
    std::erase_if(names, [&](const std::string& name) { return deleted_.back().contains(name); });
    return names;
  }

  std::unique_ptr<Directory> folder_;
  std::vector<std::set<std::string>> deleted_ = {{}};
};

}  // namespace

void ReadOnlyFiles::AllowChanges() {
  changes_ = true;
  made_.clear();
}

bool ReadOnlyFiles::FolderExists(std::string_view path) {
  return made_.contains(paths::Plain(path)) || files_->FolderExists(path);
}

void ReadOnlyFiles::CreateFolder(std::string_view path) {
  if (changes_) return files_->CreateFolder(path);
  if (FolderExists(path)) throw RuntimeError(kFileExists);
  made_.insert(paths::Plain(path));
}

std::string ReadOnlyFiles::FullPath(std::string_view path) {
  std::string plain = paths::Plain(path);
  return made_.contains(plain) ? plain : files_->FullPath(path);
}

void ReadOnlyFiles::HideFolder(std::string_view path) {
  if (changes_) files_->HideFolder(path);
}

std::unique_ptr<Directory> ReadOnlyFiles::OpenFolder(std::string_view path) {
  auto folder = files_->OpenFolder(path);
  return changes_ ? std::move(folder) : std::make_unique<ReadOnlyDirectory>(std::move(folder));
}

void ReadOnlyFiles::WriteFile(std::string_view path, std::string_view bytes) {
  if (changes_) files_->WriteFile(path, bytes);
}

}  // namespace kvdm
