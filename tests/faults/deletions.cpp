// Random deletions in random trees: what goes, what stays and what the answer is are compared with
// a small model of the rules.
#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "tests/faults/loop.h"
#include "tests/platform/temporary_drive.h"
#include "util/kvdm_utils.h"

namespace kvdm::faults {
namespace {

namespace fs = std::filesystem;

enum class Kind { kFolder, kFile, kReadOnlyFile, kHiddenFile, kLink };

struct Node {
  Kind kind = Kind::kFolder;
  std::map<std::string, Node> inside;
};

constexpr const char* kLeftover = ".kvdm-4194305-1.tmp";  // No process has so high a number.
constexpr std::array kNames = {"North",      "north",       "NORTH", "North ", "North.", "North1",
                               "North1 ",    "M",           "M.",    " ",      "  ",     ". ",
                               "Study Area", "Study Area ", "a",     "A.",     "b",      "1",
                               ".hid",       kLeftover,     "..."};

std::string Upper(std::string text) {
  for (char& c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  return text;
}

class Chance {
 public:
  explicit Chance(unsigned seed) : engine_(seed) {}
  int Below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(engine_); }
  bool OneIn(int count) { return Below(count) == 0; }

 private:
  std::mt19937 engine_;
};

Node RandomTree(Chance& chance, int depth) {
  Node folder;
  for (int i = chance.Below(7); i > 0; --i) {
    const std::string name = kNames.at(chance.Below(kNames.size()));
    if (folder.inside.contains(name)) continue;
    if (name != kLeftover && depth > 0 && chance.Below(2) == 0) {
      folder.inside[name] = RandomTree(chance, depth - 1);
    } else {
      constexpr std::array kKinds = {Kind::kFile,         Kind::kFile,       Kind::kFile,
                                     Kind::kReadOnlyFile, Kind::kHiddenFile, Kind::kLink};
      folder.inside[name] = {
          name == kLeftover ? Kind::kFile : kKinds.at(chance.Below(kKinds.size())), {}};
    }
  }
  return folder;
}

// --- The rules

bool IsSeen(const std::string& name, const Node& node) {
  return !name.starts_with('.') && node.kind != Kind::kHiddenFile;
}

// The names that are seen, in the order of a listing.
std::vector<std::string> Seen(const Node& folder) {
  std::vector<std::string> names;
  for (const auto& [name, node] : folder.inside) {
    if (IsSeen(name, node)) names.push_back(name);
  }
  std::ranges::sort(names, {},
                    [](const std::string& name) { return std::pair(Upper(name), name); });
  return names;
}

// False when there are files to delete and none may be.
bool DeleteFiles(Node& folder) {
  bool any = false;
  bool deleted = false;
  for (const std::string& name : Seen(folder)) {
    const Kind kind = folder.inside.at(name).kind;
    if (kind == Kind::kFolder) continue;
    any = true;
    if (kind == Kind::kReadOnlyFile) continue;
    folder.inside.erase(name);
    deleted = true;
  }
  return deleted || !any;
}

bool Remove(Node& parent, const std::string& name, bool closed) {
  Node& folder = parent.inside.at(name);
  if (folder.kind != Kind::kFolder || !DeleteFiles(folder)) return false;
  for (const std::string& inside : Seen(folder)) {
    if (!closed || !Remove(folder, inside, true)) return false;
  }
  folder.inside.erase(kLeftover);
  if (!folder.inside.empty()) return false;
  parent.inside.erase(name);
  return true;
}

std::optional<std::string> Meant(const Node& folder, const std::string& name) {
  if (folder.inside.contains(name)) return name;
  for (const auto& [entry, node] : folder.inside) {
    if (Upper(entry) == Upper(name)) return entry;
  }
  return std::nullopt;
}

// A path to be deleted, as names and as it is spelled.
struct Target {
  std::vector<std::string> names;
  bool closed = true;
  bool refused = false;
  std::string path;
};

// Links in front of what is named lead to `outside`, and are followed.
bool ExpectedAnswer(Node& drive, Node& outside, const Target& target) {
  if (target.refused) return false;
  Node* folder = &drive;
  for (std::size_t i = 0; i < target.names.size(); ++i) {
    const auto name = Meant(*folder, target.names[i]);
    if (!name) return false;
    if (i + 1 == target.names.size()) return Remove(*folder, *name, target.closed);
    Node& next = folder->inside.at(*name);
    folder = next.kind == Kind::kLink ? &outside : &next;
  }
  return false;
}

std::string Respelled(std::string name, Chance& chance) {
  switch (chance.Below(10)) {
    case 0:
      return Upper(name);
    case 1:
      return name + " ";
    case 2:
      return name + ".";
    case 3:
      return name.substr(0, std::max<std::size_t>(name.find_last_not_of(" .") + 1, 1));
    default:
      return name;
  }
}

Target RandomTarget(const Node& drive, Chance& chance) {
  Target target;
  const Node* folder = &drive;
  do {
    std::vector<std::string> folders;
    for (const auto& [name, node] : folder->inside) {
      if (node.kind == Kind::kFolder || chance.OneIn(8)) folders.push_back(name);
    }
    if (folders.empty()) break;
    const std::string& name = folders.at(chance.Below(static_cast<int>(folders.size())));
    target.names.push_back(Respelled(name, chance));
    folder = &folder->inside.at(name);
  } while (chance.Below(3) != 0);
  if (target.names.empty()) target.names.emplace_back("Missing");
  if (chance.OneIn(12)) {
    constexpr std::array kDots = {".", "..", "..."};
    target.names.insert(target.names.begin() + chance.Below(static_cast<int>(target.names.size())),
                        kDots.at(chance.Below(3)));
  }
  target.path = "D:";
  for (const std::string& name : target.names) {
    target.path += (chance.OneIn(10) ? "\\\\" : "\\") + name;
    target.refused = target.refused || name.find_first_not_of('.') == std::string::npos;
  }
  target.closed = chance.Below(3) != 0;
  if (target.closed) target.path += "\\";
  if (chance.OneIn(20)) {
    target.path += R"(\\)";
    target.refused = true;
  }
  return target;
}

// --- The disk

using Paths = std::set<std::string>;

void AppendPaths(const Node& folder, const std::string& path, Paths& paths) {
  for (const auto& [name, node] : folder.inside) {
    paths.insert(path + name);
    AppendPaths(node, path + name + "/", paths);
  }
}

Paths PathsOn(const fs::path& root) {
  Paths paths;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    paths.insert(entry.path().lexically_relative(root).string());
  }
  return paths;
}

void Write(const TemporaryDrive& drive, const Node& folder, const std::string& path,
           const fs::path& outside) {
  for (const auto& [name, node] : folder.inside) {
    const std::string entry = path + name;
    if (node.kind == Kind::kFolder) {
      fs::create_directory(drive.At(entry));
      Write(drive, node, entry + "/", outside);
    } else if (node.kind == Kind::kLink) {
      fs::create_directory_symlink(outside, drive.At(entry));
    } else {
      drive.Put(entry, "x");
      if (node.kind == Kind::kHiddenFile) drive.SetDosAttribute(entry, "0x2");
      if (node.kind == Kind::kReadOnlyFile) fs::permissions(drive.At(entry), fs::perms(0444));
    }
  }
}

// What links lead to: files and folders of the names that are inside too.
Node OutsideTree() {
  const Node files = {
      Kind::kFolder,
      {{"x", {Kind::kFile, {}}}, {"b", {Kind::kFile, {}}}, {"keep", {Kind::kFile, {}}}}};
  Node north = files;
  north.inside["a"] = files;
  return {Kind::kFolder, {{"North", north}, {"M", files}, {"Study Area ", files}}};
}

// Makes what is missing.
void WriteOutside(const Node& folder, const fs::path& path) {
  fs::create_directories(path);
  for (const auto& [name, node] : folder.inside) {
    if (node.kind == Kind::kFolder) {
      WriteOutside(node, path / name);
    } else if (!fs::exists(path / name)) {
      std::ofstream(path / name) << "x";
    }
  }
}

void Tell(const char* what, unsigned seed, int number, const Target& target,
          const std::string& at) {
  std::printf("%s: seed %u, case %d, path '%s': %s\n", what, seed, number, target.path.c_str(),
              at.c_str());
}

void Compare(const Paths& before, const Paths& expected, const Paths& left, auto tell,
             Counts& counts) {
  for (const std::string& path : expected) {
    if (left.contains(path)) continue;
    tell("is gone", path);
    ++counts.lost;
  }
  for (const std::string& path : left) {
    if (expected.contains(path)) continue;
    tell(before.contains(path) ? "is still there" : "is new", path);
    ++counts.wrong;
  }
}

int Run(const Options& options) {
  Counts counts;
  const unsigned seed = options.Seed();
  std::printf("seed %u\n", seed);
  Chance chance(seed);
  TempFolder outside;
  WriteOutside(OutsideTree(), outside.Path());
  for (int number = 0; number < options.CasesOf(300, 50'000); ++number, ++counts.tried) {
    const TemporaryDrive drive;
    const auto files = MakePosixFileSystem(drive.Options());
    Node tree = RandomTree(chance, 3);
    const Target target = RandomTarget(tree, chance);
    Write(drive, tree, "", outside.Path());
    const auto tell = [&](const char* what, const std::string& at) {
      Tell(what, seed, number, target, at);
    };
    const Paths before = PathsOn(drive.root());
    Node outside_tree = OutsideTree();
    const bool expected = ExpectedAnswer(tree, outside_tree, target);
    const bool answer = DeleteFolderTree(*files, target.path);
    if (answer != expected) {
      tell("wrong answer", answer ? "True" : "False");
      ++counts.wrong;
    }
    Paths expected_paths;
    AppendPaths(tree, "", expected_paths);
    Compare(before, expected_paths, PathsOn(drive.root()), tell, counts);
    Paths outside_paths;
    AppendPaths(outside_tree, "", outside_paths);
    if (PathsOn(outside.Path()) != outside_paths) {
      tell("outside", outside.Path());
      ++counts.outside;
    }
    WriteOutside(OutsideTree(), outside.Path());
  }
  return Report("deletions", counts);
}

}  // namespace
}  // namespace kvdm::faults

int main(int count, char** arguments) {
  return kvdm::faults::Run(kvdm::faults::ReadOptions(count, arguments));
}
