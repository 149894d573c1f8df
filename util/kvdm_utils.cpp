#include "util/kvdm_utils.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "util/guard.h"

namespace kvdm {
namespace {

constexpr std::string_view kSeparators = "\\/";

bool IsSeparator(char character) { return kSeparators.find(character) != std::string_view::npos; }

std::string Replaced(std::string_view text, std::string_view from, std::string_view to) {
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    const auto found = text.find(from, at);
    result += text.substr(at, found - at);
    if (found == std::string_view::npos) break;
    result += to;
    at = found + from.size();
  }
  return result;
}

// The folder that a path names, as its parent's path and its own name.
struct FolderName {
  std::string_view parent;
  std::string_view name;
  // Whether the path ends in a separator.
  bool closed;
};

// The number of components in front of the first one that may be deleted; none for a path that is
// not rooted.
std::optional<int> RootComponents(std::string_view path) {
  constexpr int kServerAndShare = 2;
  const auto is_separator_at = [&](std::size_t at) {
    return path.size() > at && IsSeparator(path[at]);
  };
  if (is_separator_at(0)) return is_separator_at(1) ? kServerAndShare : 0;
  const bool drive = path.size() > 1 && path[1] == ':';
  return drive && is_separator_at(2) ? std::optional(1) : std::nullopt;
}

bool NamesNothing(std::string_view component) {
  return component.find_first_not_of('.') == std::string_view::npos;
}

// True when `path` has more than `roots` components and each of them is a name.
bool LeadsBelowRoot(std::string_view path, int roots) {
  int names = 0;
  while (!path.empty()) {
    const auto end = std::min(path.find_first_of(kSeparators), path.size());
    const auto component = path.substr(0, end);
    if (!component.empty()) {
      if (NamesNothing(component)) return false;
      ++names;
    }
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return names > roots;
}

// Nothing for a path that is refused.
std::optional<FolderName> DeletableFolder(std::string_view path) {
  const auto roots = RootComponents(path);
  if (!roots || !LeadsBelowRoot(path, *roots)) return std::nullopt;
  const bool closed = IsSeparator(path.back());
  if (closed) path.remove_suffix(1);
  if (IsSeparator(path.back())) return std::nullopt;
  const auto name_start = path.find_last_of(kSeparators) + 1;
  return FolderName{path.substr(0, name_start), path.substr(name_start), closed};
}

// A folder on the way down: its name, and what its last listing showed.
struct Level {
  std::string name;
  std::vector<std::string> entries;
  std::size_t next = 0;
  int listings = 1;
};

// Lists the folder again, for what others put into it meanwhile. False when there is nothing.
bool ListAgain(Directory& folder, Level& level) {
  constexpr int kMaxListings = 100;
  level.entries = folder.Entries();
  level.next = 0;
  if (level.entries.empty()) return false;
  if (++level.listings > kMaxListings) throw RuntimeError(kPathFileAccess);
  return true;
}

}  // namespace

std::string WrapName(std::string_view name) { return "_" + std::string(name) + "_"; }

std::string UnwrapName(std::string_view stored_name) {
  const bool wrapped =
      stored_name.size() >= 2 && stored_name.front() == '_' && stored_name.back() == '_';
  return std::string(wrapped ? stored_name.substr(1, stored_name.size() - 2) : stored_name);
}

std::string NewGuidString(GisCore& gis_core) {
  const auto identifier = gis_core.CreateIdentifier();
  Required(identifier).Generate();
  return identifier->GetValue();
}

std::string WidenLineEnds(std::string_view text) { return Replaced(text, "\n", "\r\n"); }
std::string CollapseBackslashes(std::string_view path) { return Replaced(path, "\\\\", "\\"); }

bool DeleteFolderTree(FileSystem& files, std::string_view path, Log* log) {
  const auto folder = DeletableFolder(path);
  if (!folder) return false;
  return guard::Quiet(log, [&] {
    const auto place = files.OpenFolder(folder->parent);
    Required(place).Enter(folder->name);
    if (folder->closed) {
      EmptyFolder(*place);
    } else if (!place->ClearFiles().empty()) {
      return false;  // There are folders inside; they stay.
    }
    place->Leave();
    place->RemoveFolder(folder->name);
    return true;
  });
}

void EmptyFolder(Directory& folder) {
  std::vector<Level> way(1);
  way.back().entries = folder.ClearFiles();
  while (true) {
    Level& level = way.back();
    const bool is_done = level.next == level.entries.size();
    if (is_done && (level.entries.empty() || !ListAgain(folder, level))) {
      if (way.size() == 1) return;
      folder.Leave();
      folder.RemoveFolder(level.name);
      way.pop_back();
      continue;
    }
    const std::string inside = level.entries[level.next++];
    folder.Enter(inside);
    way.push_back({inside, folder.ClearFiles()});
  }
}

void CreateFolderUnlessThere(FileSystem& files, std::string_view path) {
  try {
    files.CreateFolder(path);
  } catch (const RuntimeError& error) {
    if (error.number() != kFileExists || !files.FolderExists(path)) throw;
  }
}

void CreateFolderPath(FileSystem& files, std::string_view path) {
  auto end = path.find('\\') + 1;
  while (end < path.size()) {
    end = std::min(path.find('\\', end), path.size() - 1) + 1;
    const auto folder = path.substr(0, end);
    if (!files.FolderExists(folder)) files.CreateFolder(folder);
  }
}

}  // namespace kvdm
