#include "tests/model/folders.h"

#include <algorithm>

#include "tests/model/tree.h"

namespace kvdm::model {
namespace {

constexpr int kBadName = 52;
constexpr int kExists = 58;
constexpr int kMissing = 76;

std::string Upper(std::string name) {
  for (char& c : name) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  return name;
}

std::string Comparable(std::string name) {
  while (!name.empty() && (name.back() == ' ' || name.back() == '.')) name.pop_back();
  return Upper(name);
}

bool IsCreatable(const std::string& name) {
  return std::ranges::none_of(name, [](char c) {
    return static_cast<unsigned char>(c) < ' ' ||
           std::string_view("<>:\"|?*").find(c) != std::string_view::npos;
  });
}

bool HasDrive(std::string_view path) { return path.size() > 1 && path[1] == ':'; }

bool MayBeDeleted(std::string_view path) {
  const bool is_rooted = HasDrive(path) || path.starts_with("\\");
  const auto names = HasDrive(path) ? path.substr(2) : path;
  return is_rooted && names.find_first_not_of('\\') != std::string_view::npos &&
         path.find("\\..") == std::string_view::npos && !path.ends_with("\\\\");
}

}  // namespace

std::optional<Folders::Place> Folders::PlaceOf(std::string_view path) {
  if (path.find_first_not_of(' ') == std::string_view::npos || path.starts_with("\\\\")) {
    return std::nullopt;
  }
  Place place{{"C:"}, "", "C:"};
  if (HasDrive(path)) {
    place.spelled = path.substr(0, 2);
    place.key = {Comparable(place.spelled)};
    path.remove_prefix(2);
  }
  while (!path.empty()) {
    const std::string name(path.substr(0, path.find('\\')));
    path.remove_prefix(std::min(path.size(), name.size() + 1));
    if (name.empty()) continue;
    place.key.push_back(Comparable(name));
    place.name = name;
    place.spelled += "\\" + name;
  }
  return place;
}

bool Folders::HasFolder(const Key& key) const {
  if (key.size() == 1) return key.front() == "C:" || key.front() == "D:";
  const auto found = entries_.find(key);
  return found != entries_.end() && found->second.is_folder;
}

std::string Folders::PathIn(const Key& folder, const std::string& name) const {
  const auto found = entries_.find(folder);
  return (found == entries_.end() ? folder.front() : found->second.path) + "\\" + name;
}

std::vector<Folders::Key> Folders::Inside(const Key& folder) const {
  std::vector<Key> inside;
  for (const auto& [key, entry] : entries_) {
    if (key.size() == folder.size() + 1 && std::equal(folder.begin(), folder.end(), key.begin())) {
      inside.push_back(key);
    }
  }
  return inside;
}

bool Folders::FolderExists(std::string_view path) const {
  const auto place = PlaceOf(path);
  return place && HasFolder(place->key);
}

void Folders::CreateFolder(std::string_view path) {
  const auto place = PlaceOf(path);
  if (!place) throw Fault{kMissing};
  if (place->key.size() == 1 || entries_.contains(place->key)) throw Fault{kExists};
  const Key parent(place->key.begin(), place->key.end() - 1);
  if (!HasFolder(parent)) throw Fault{kMissing};
  if (!IsCreatable(place->name)) throw Fault{kBadName};
  entries_[place->key] = {PathIn(parent, place->name)};
}

void Folders::CreateFolderPath(const std::string& path) {
  const std::size_t first = path.find('\\');
  std::size_t from = first == std::string::npos ? 0 : first + 1;
  while (from < path.size()) {
    const std::size_t end = std::min(path.find('\\', from), path.size() - 1);
    const std::string part = path.substr(0, end + 1);
    if (!FolderExists(part)) CreateFolder(part);
    from = end + 1;
  }
}

bool Folders::WriteFile(std::string_view path) {
  const auto place = PlaceOf(path);
  const Key parent(place->key.begin(), place->key.end() - 1);
  if (!HasFolder(parent) || HasFolder(place->key)) return false;
  entries_.try_emplace(place->key,
                       Entry{PathIn(parent, place->name), false, place->name.starts_with(".")});
  return true;
}

void Folders::DeleteFiles(const Key& folder) {
  for (const auto& key : Inside(folder)) {
    const Entry& entry = entries_.at(key);
    if (!entry.is_folder && !entry.is_hidden) entries_.erase(key);
  }
}

std::optional<Folders::Key> Folders::FirstSeen(const Key& folder) const {
  for (const auto& key : Inside(folder)) {
    if (!entries_.at(key).is_hidden) return key;
  }
  return std::nullopt;
}

bool Folders::DeleteTree(const std::string& path) {
  if (!MayBeDeleted(path) || !FolderExists(path)) return false;
  const Place place = *PlaceOf(path);
  if (Upper(entries_.at(place.key).path) != Upper(place.spelled)) return false;
  return DeleteFolder(place.key, path.ends_with("\\"));
}

bool Folders::DeleteFolder(const Key& folder, bool with_folders) {
  if (!Empty(folder, with_folders) || !Inside(folder).empty()) return false;
  entries_.erase(folder);
  return true;
}

bool Folders::Empty(const Key& folder, bool with_folders) {
  DeleteFiles(folder);
  while (const auto inside = FirstSeen(folder)) {
    if (!with_folders || !DeleteFolder(*inside, true)) return false;
  }
  return true;
}

void Folders::Clean(const std::string& path) {
  if (FolderExists(path)) Empty(PlaceOf(path)->key, true);
}

bool Folders::HasFileNamed(std::string_view path) const {
  const std::size_t slash = path.rfind('\\');
  const auto folder = PlaceOf(path.substr(0, slash + 1));
  if (!folder) return false;
  const auto upper = [](std::string name) { return Comparable(name + "|"); };
  const std::string wanted = upper(std::string(path.substr(slash + 1)));
  const bool finds_hidden = wanted.starts_with(".") || wanted == "|";  // The pattern is ".*".
  return std::ranges::any_of(Inside(folder->key), [&](const Key& key) {
    const Entry& entry = entries_.at(key);
    if (entry.is_folder || (entry.is_hidden && !finds_hidden)) return false;
    const std::string name = upper(entry.path.substr(entry.path.rfind('\\') + 1));
    return name == wanted || name.starts_with(wanted.substr(0, wanted.size() - 1) + ".");
  });
}

std::string Folders::FreeFolderName(const std::string& parent, const std::string& name) const {
  std::string candidate = name;
  for (int n = 1; FolderExists(parent + "\\" + candidate); ++n)
    candidate = name + std::to_string(n);
  return candidate;
}

std::string Folders::FreeFileName(const std::string& folder, const std::string& name) const {
  std::string candidate = name;
  for (int n = 1; HasFileNamed(folder + "\\" + candidate); ++n)
    candidate = name + std::to_string(n);
  return candidate;
}

std::vector<std::string> Folders::Tree() const {
  std::vector<std::string> tree;
  for (const auto& [key, entry] : entries_)
    tree.push_back(entry.path + (entry.is_folder ? "\\" : ""));
  std::ranges::sort(tree);
  return tree;
}

}  // namespace kvdm::model
