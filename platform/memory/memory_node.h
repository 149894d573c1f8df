// The tree behind the file system in memory.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

  // Whether listings show it: neither hidden nor system.
  [[nodiscard]] bool IsSeen() const;

  // The names inside, in the order of a listing.
  [[nodiscard]] std::vector<std::string> Names() const;

  // The name of the entry that `name` means; nothing when there is none.
  [[nodiscard]] std::optional<std::string> Find(std::string_view name) const;
};

}  // namespace kvdm
