#include "platform/memory/memory_directory.h"

#include <utility>

#include "platform/file_names.h"

namespace kvdm {

MemoryDirectory::MemoryDirectory(std::shared_ptr<MemoryNode> folder, std::string path) {
  way_.push_back({std::move(folder), {}, std::move(path)});
}

std::vector<std::string> MemoryDirectory::Files() {
  std::vector<std::string> names = Here().SeenNames();
  std::erase_if(names,
                [&](const std::string& name) { return Here().children.at(name)->IsFolder(); });
  return names;
}

std::vector<std::string> MemoryDirectory::Entries() {
  std::vector<std::string> names = Here().SeenNames();
  way_.back().known.clear();
  for (const std::string& name : names) way_.back().known[name] = Here().children.at(name);
  return names;
}

void MemoryDirectory::DeleteFiles() {
  std::vector<std::string> names = Files();
  std::erase_if(names, [&](const std::string& name) {
    return (Here().children.at(name)->attributes & kReadOnlyAttribute) != 0;
  });
  if (names.empty()) throw PathError(kFileNotFound, PathOf("*"));
  if (Here().refuses_writes) throw PathError(kPermissionDenied, PathOf(names.front()));
  for (const std::string& name : names) Here().children.erase(name);
}

void MemoryDirectory::Enter(std::string_view name) {
  const auto [real_name, folder] = *FolderNamed(name);
  way_.back().known[real_name] = folder;
  way_.push_back({folder, {}, PathOf(real_name)});
}

void MemoryDirectory::Leave() { way_.pop_back(); }

void MemoryDirectory::RemoveFolder(std::string_view name) {
  const auto found = FolderNamed(name);
  if (Here().refuses_writes) throw PathError(kPermissionDenied, PathOf(name));
  if (!found->second->children.empty()) throw PathError(kPathFileAccess, PathOf(name));
  way_.back().known.erase(found->first);
  Here().children.erase(found);
}

std::string MemoryDirectory::PathOf(std::string_view name) const {
  const std::string& path = way_.back().path;
  return path + (path.ends_with('\\') ? "" : "\\") + std::string(name);
}

MemoryDirectory::Nodes::const_iterator MemoryDirectory::FolderNamed(std::string_view name) const {
  const auto real_name = Here().Find(name, FindSameName);
  if (!real_name) throw PathError(kPathNotFound, PathOf(name));
  const auto found = Here().children.find(*real_name);
  const auto known = way_.back().known.find(*real_name);
  const bool replaced = known != way_.back().known.end() && known->second != found->second;
  if (!found->second->IsFolder() || replaced) throw PathError(kPathFileAccess, PathOf(name));
  return found;
}

}  // namespace kvdm
