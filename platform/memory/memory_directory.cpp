#include "platform/memory/memory_directory.h"

#include <utility>

#include "platform/file_attributes.h"
#include "platform/file_names.h"

namespace kvdm {

MemoryDirectory::MemoryDirectory(std::shared_ptr<MemoryNode> folder, std::string path)
    : folder_(std::move(folder)), path_(std::move(path)) {}

std::vector<std::string> MemoryDirectory::Files() {
  std::vector<std::string> names = Entries();
  std::erase_if(names,
                [&](const std::string& name) { return folder_->children.at(name)->IsFolder(); });
  return names;
}

std::vector<std::string> MemoryDirectory::Entries() {
  std::vector<std::string> names = folder_->Names();
  std::erase_if(names,
                [&](const std::string& name) { return !folder_->children.at(name)->IsSeen(); });
  return names;
}

void MemoryDirectory::DeleteFiles() {
  std::vector<std::string> names = Files();
  std::erase_if(names, [&](const std::string& name) {
    return (folder_->children.at(name)->attributes & kReadOnlyAttribute) != 0;
  });
  if (names.empty()) throw PathError(kFileNotFound, PathOf("*"));
  if (folder_->refuses_writes) throw PathError(kPermissionDenied, PathOf(names.front()));
  for (const std::string& name : names) folder_->children.erase(name);
}

std::unique_ptr<Directory> MemoryDirectory::Open(std::string_view name) {
  const std::string real_name = FolderName(name);
  return std::make_unique<MemoryDirectory>(folder_->children.at(real_name), PathOf(real_name));
}

void MemoryDirectory::RemoveFolder(std::string_view name) {
  const std::string real_name = FolderName(name);
  if (folder_->refuses_writes) throw PathError(kPermissionDenied, PathOf(name));
  if (!folder_->children.at(real_name)->children.empty()) {
    throw PathError(kPathFileAccess, PathOf(name));
  }
  folder_->children.erase(real_name);
}

std::string MemoryDirectory::PathOf(std::string_view name) const {
  return path_ + (path_.ends_with('\\') ? "" : "\\") + std::string(name);
}

std::string MemoryDirectory::FolderName(std::string_view name) const {
  const auto real_name = folder_->Find(name);
  if (!real_name) throw PathError(kPathNotFound, PathOf(name));
  if (!folder_->children.at(*real_name)->IsFolder()) throw PathError(kPathFileAccess, PathOf(name));
  return *real_name;
}

}  // namespace kvdm
