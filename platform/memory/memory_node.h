// The tree behind the file system in memory.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_names.h"

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
  [[nodiscard]] std::vector<std::string> Names() const;

  // Those that are seen: neither hidden nor system, and without a leading dot unless `with_dots`.
  [[nodiscard]] std::vector<std::string> SeenNames(bool with_dots = false) const;

  // The name of the entry that `name` means, by `find` (FindName or FindSameName); nothing when
  // there is none.
  [[nodiscard]] std::optional<std::string> Find(std::string_view name, NameFinder find) const;
};

}  // namespace kvdm
