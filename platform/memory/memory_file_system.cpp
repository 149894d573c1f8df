#include "platform/memory/memory_file_system.h"

#include <algorithm>
#include <utility>

namespace kvdm {

// A folder, a file or a link. Open folders share their node, so they outlive renaming and removal.
struct MemoryNode {
  enum class Kind { kFolder, kFile, kLink };

  Kind kind = Kind::kFolder;
  unsigned attributes = 0;
  bool refuses_writes = false;
  std::string content;
  std::map<std::string, std::shared_ptr<MemoryNode>, std::less<>> children;

  [[nodiscard]] bool IsFolder() const { return kind == Kind::kFolder; }

  // The names inside, in the order of a listing.
  [[nodiscard]] std::vector<std::string> Names() const {
    std::vector<std::string> names;
    names.reserve(children.size());
    for (const auto& [name, node] : children) names.push_back(name);
    SortNames(names);
    return names;
  }

  // Those that are seen: neither hidden nor system, and without a leading dot unless `with_dots`.
  [[nodiscard]] std::vector<std::string> SeenNames(bool with_dots = false) const {
    std::vector<std::string> names = Names();
    std::erase_if(names, [&](const std::string& name) {
      const bool has_attribute =
          (children.at(name)->attributes & (kHiddenAttribute | kSystemAttribute)) != 0;
      return has_attribute || (name.starts_with('.') && !with_dots);
    });
    return names;
  }

  // The name of the entry that `name` means, by `find`; nothing when there is none.
  [[nodiscard]] std::optional<std::string> Find(std::string_view name, NameFinder find) const {
    if (children.contains(name)) return std::string(name);
    return find(Names(), name);
  }
};

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

// An open folder.
class MemoryDirectory final : public Directory {
 public:
  // `path` is what errors name.
  MemoryDirectory(std::shared_ptr<MemoryNode> folder, std::string path) {
    levels_.push_back({std::move(folder), {}, std::move(path)});
  }

  std::vector<std::string> Files() override {
    std::vector<std::string> names = Here().SeenNames();
    std::erase_if(names,
                  [&](const std::string& name) { return Here().children.at(name)->IsFolder(); });
    return names;
  }
  std::vector<std::string> Entries() override {
    std::vector<std::string> names = Here().SeenNames();
    levels_.back().known.clear();
    for (const std::string& name : names) levels_.back().known[name] = Here().children.at(name);
    return names;
  }
  void DeleteFiles() override {
    std::vector<std::string> names = Files();
    std::erase_if(names, [&](const std::string& name) {
      return (Here().children.at(name)->attributes & kReadOnlyAttribute) != 0;
    });
    if (names.empty()) throw PathError(kFileNotFound, PathOf("*"));
    if (Here().refuses_writes) throw PathError(kPermissionDenied, PathOf(names.front()));
    for (const std::string& name : names) Here().children.erase(name);
  }

  void Enter(std::string_view name) override {
    const auto [real_name, folder] = *FolderNamed(name);
    levels_.back().known[real_name] = folder;
    levels_.push_back({folder, {}, PathOf(real_name)});
  }
  void Leave() override { levels_.pop_back(); }

  void RemoveFolder(std::string_view name) override {
    const auto found = FolderNamed(name);
    if (Here().refuses_writes) throw PathError(kPermissionDenied, PathOf(name));
    auto& children = found->second->children;
    if (children.size() == 1) children.erase(kRecoveryFile);
    if (!children.empty()) throw PathError(kPathFileAccess, PathOf(name));
    levels_.back().known.erase(found->first);
    Here().children.erase(found);
  }

 private:
  using Nodes = std::map<std::string, std::shared_ptr<MemoryNode>, std::less<>>;
  struct Level {
    std::shared_ptr<MemoryNode> folder;
    Nodes known;  // What was listed or entered, by name.
    std::string path;
  };

  [[nodiscard]] MemoryNode& Here() const { return *levels_.back().folder; }
  [[nodiscard]] std::string PathOf(std::string_view name) const {
    return PathIn(levels_.back().path, name);
  }
  // A folder inside, by its real name; run-time error 76 or 75.
  [[nodiscard]] Nodes::const_iterator FolderNamed(std::string_view name) const {
    const auto real_name = Here().Find(name, FindSameName);
    if (!real_name) throw PathError(kPathNotFound, PathOf(name));
    const auto found = Here().children.find(*real_name);
    const auto known = levels_.back().known.find(*real_name);
    const bool replaced = known != levels_.back().known.end() && known->second != found->second;
    if (!found->second->IsFolder() || replaced) throw PathError(kPathFileAccess, PathOf(name));
    return found;
  }

  std::vector<Level> levels_;  // The last one is where it is.
};

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
  const auto node = Find(search.folder);
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
    if (!FolderExists(folder.Text())) AddEntry(folder.Text(), NewNode(MemoryNode::Kind::kFolder));
  }
}

void MemoryFileSystem::AddFile(std::string_view path, std::string_view content) {
  AddFolder(std::string(path) + R"(\..)");
  AddEntry(path, NewNode(MemoryNode::Kind::kFile, content));
}

void MemoryFileSystem::AddLink(std::string_view path) {
  AddEntry(path, NewNode(MemoryNode::Kind::kLink));
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

void MemoryFileSystem::AddEntry(std::string_view path, const std::shared_ptr<MemoryNode>& node) {
  const Place place = PlaceOf(path, kPathFileAccess);
  place.parent->children[place.entry.value_or(place.name)] = node;
}

}  // namespace kvdm
