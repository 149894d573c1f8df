#include "platform/memory/memory_file_system.h"

#include <algorithm>
#include <utility>

#include "platform/memory/memory_directory.h"

namespace kvdm {
namespace {

std::shared_ptr<MemoryNode> NewNode(MemoryNode::Kind kind, std::string_view content = {}) {
  auto node = std::make_shared<MemoryNode>();
  node->kind = kind;
  node->content = content;
  return node;
}

void AppendTree(const MemoryNode& folder, const std::string& prefix,
                std::vector<std::string>& tree) {
  for (const auto& [name, node] : folder.children) {
    tree.push_back(prefix + name + (node->IsFolder() ? "\\" : ""));
    AppendTree(*node, prefix + name + "\\", tree);
  }
}

}  // namespace

MemoryFileSystem::MemoryFileSystem() {
  for (const char drive : {'C', 'D', 'Z'}) drives_[drive] = NewNode(MemoryNode::Kind::kFolder);
}

bool MemoryFileSystem::FolderExists(std::string_view path) {
  const auto node = Find(path);
  return node != nullptr && node->IsFolder();
}

void MemoryFileSystem::CreateFolder(std::string_view path) {
  const Place place = PlaceOf(path, kFileExists);
  if (place.entry) throw PathError(kFileExists, path);
  if (!IsCreatableName(place.name)) throw PathError(kBadFileName, path);
  if (place.parent->refuses_writes) throw PathError(kPermissionDenied, path);
  place.parent->children[place.name] = NewNode(MemoryNode::Kind::kFolder);
}

std::string MemoryFileSystem::FullPath(std::string_view path) {
  auto resolved = Resolve(path);
  const auto node = resolved ? Walk(*resolved, FindName) : nullptr;
  if (node == nullptr || !node->IsFolder()) throw PathError(kPathNotFound, path);
  return resolved->Text();
}

void MemoryFileSystem::HideFolder(std::string_view path) {
  ExistingFolder(path)->attributes |= kHiddenAttribute;
}

std::string MemoryFileSystem::SystemDrive() { return "C:"; }

std::vector<std::string> MemoryFileSystem::FindFiles(std::string_view pattern) {
  const SearchPattern search = SplitPattern(pattern);
  const std::string_view folder = search.folder.empty() ? "." : search.folder;
  const auto node = Find(folder);
  if (node == nullptr || !node->IsFolder()) return {};
  std::vector<std::string> names = node->SeenNames(search.name.starts_with('.'));
  std::erase_if(names, [&](const auto& name) {
    return node->children.at(name)->IsFolder() || !MatchesPattern(name, search.name);
  });
  return names;
}

std::unique_ptr<Directory> MemoryFileSystem::OpenFolder(std::string_view path) {
  auto resolved = Resolve(path);
  auto node = resolved ? Walk(*resolved, FindSameName) : nullptr;
  if (node == nullptr) throw PathError(kPathNotFound, path);
  if (!node->IsFolder()) throw PathError(kPathFileAccess, path);
  return std::make_unique<MemoryDirectory>(std::move(node), resolved->Text());
}

std::optional<std::string> MemoryFileSystem::ReadFile(std::string_view path) {
  const auto node = Find(path);
  if (node == nullptr || node->kind != MemoryNode::Kind::kFile) return std::nullopt;
  return node->content;
}

void MemoryFileSystem::WriteFile(std::string_view path, std::string_view bytes) {
  const Place place = PlaceOf(path, kPathFileAccess);
  if (!place.entry && !IsCreatableName(place.name)) throw PathError(kBadFileName, path);
  auto& node = place.parent->children;
  const auto old = place.entry ? node.at(*place.entry) : NewNode(MemoryNode::Kind::kFile);
  if (old->IsFolder()) throw PathError(kPathFileAccess, path);
  if (place.parent->refuses_writes || (old->attributes & kReadOnlyAttribute) != 0) {
    throw PathError(kPermissionDenied, path);
  }
  old->kind = MemoryNode::Kind::kFile;
  old->content = bytes;
  node[place.entry.value_or(place.name)] = old;
}

void MemoryFileSystem::AddFolder(std::string_view path) {
  const auto resolved = Resolve(path);
  if (!resolved) throw PathError(kPathNotFound, path);
  DrivePath folder{resolved->drive, {}};
  for (const std::string& name : resolved->names) {
    folder.names.push_back(name);
    if (!FolderExists(folder.Text())) AddEntry(folder.Text(), MemoryNode::Kind::kFolder, {});
  }
}

void MemoryFileSystem::AddFile(std::string_view path, std::string_view content) {
  AddFolder(std::string(path) + R"(\..)");
  AddEntry(path, MemoryNode::Kind::kFile, content);
}

void MemoryFileSystem::AddLink(std::string_view path) {
  AddEntry(path, MemoryNode::Kind::kLink, {});
}

void MemoryFileSystem::SetAttributes(std::string_view path, unsigned attributes) {
  Existing(path)->attributes = attributes;
}

void MemoryFileSystem::RefuseWrites(std::string_view path) {
  ExistingFolder(path)->refuses_writes = true;
}

void MemoryFileSystem::MoveFolder(std::string_view from, std::string_view to) {
  const auto folder = ExistingFolder(from);
  const Place target = PlaceOf(to, kFileExists);
  RemoveTree(from);
  target.parent->children[target.name] = folder;
}

void MemoryFileSystem::RemoveTree(std::string_view path) {
  const Place place = PlaceOf(path, kPathFileAccess);
  if (!place.entry) throw PathError(kPathNotFound, path);
  place.parent->children.erase(*place.entry);
}

void MemoryFileSystem::SetCurrentFolder(std::string_view path) {
  current_ = *ResolvePath(SplitPath(FullPath(path)), current_);
}

std::vector<std::string> MemoryFileSystem::Tree(std::string_view path) const {
  std::vector<std::string> tree;
  AppendTree(*ExistingFolder(path), "", tree);
  std::ranges::sort(tree);
  return tree;
}

std::optional<DrivePath> MemoryFileSystem::Resolve(std::string_view path) const {
  return ResolvePath(SplitPath(path), current_);
}

std::shared_ptr<MemoryNode> MemoryFileSystem::Walk(DrivePath& path, NameFinder find) const {
  const auto drive = drives_.find(path.drive);
  auto node = drive == drives_.end() ? nullptr : drive->second;
  for (std::string& name : path.names) {
    const auto real_name = node != nullptr ? node->Find(name, find) : std::nullopt;
    if (!real_name) return nullptr;
    name = *real_name;
    node = node->children.at(name);
  }
  return node;
}

std::shared_ptr<MemoryNode> MemoryFileSystem::Find(std::string_view path) const {
  auto resolved = Resolve(path);
  return resolved ? Walk(*resolved, FindName) : nullptr;
}

std::shared_ptr<MemoryNode> MemoryFileSystem::Existing(std::string_view path) const {
  auto node = Find(path);
  if (node == nullptr) throw PathError(kPathNotFound, path);
  return node;
}

std::shared_ptr<MemoryNode> MemoryFileSystem::ExistingFolder(std::string_view path) const {
  auto node = Existing(path);
  if (!node->IsFolder()) throw PathError(kPathNotFound, path);
  return node;
}

MemoryFileSystem::Place MemoryFileSystem::PlaceOf(std::string_view path,
                                                  std::int32_t root_error) const {
  auto resolved = Resolve(path);
  if (!resolved || !drives_.contains(resolved->drive)) throw PathError(kPathNotFound, path);
  if (resolved->names.empty()) throw PathError(root_error, path);
  const std::string name = std::move(resolved->names.back());
  resolved->names.pop_back();
  const auto parent = Walk(*resolved, FindName);
  if (parent == nullptr || !parent->IsFolder()) throw PathError(kPathNotFound, path);
  return {parent, name, parent->Find(name, FindName)};
}

void MemoryFileSystem::AddEntry(std::string_view path, MemoryNode::Kind kind,
                                std::string_view content) {
  const Place place = PlaceOf(path, kPathFileAccess);
  place.parent->children[place.entry.value_or(place.name)] = NewNode(kind, content);
}

}  // namespace kvdm
