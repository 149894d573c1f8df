// An open folder of the file system in memory.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/file_system.h>

#include "platform/memory/memory_node.h"

namespace kvdm {

class MemoryDirectory : public Directory {
 public:
  // `path` is what errors name.
  MemoryDirectory(std::shared_ptr<MemoryNode> folder, std::string path);

  std::vector<std::string> Files() override;
  std::vector<std::string> Entries() override;
  void DeleteFiles() override;
  void Enter(std::string_view name) override;
  void Leave() override;
  void RemoveFolder(std::string_view name) override;

 private:
  using Nodes = std::map<std::string, std::shared_ptr<MemoryNode>, std::less<>>;
  struct Level {
    std::shared_ptr<MemoryNode> folder;
    Nodes known;  // What was listed or entered, by name.
    std::string path;
  };

  [[nodiscard]] MemoryNode& Here() const { return *way_.back().folder; }
  [[nodiscard]] std::string PathOf(std::string_view name) const;
  // A folder inside, by its real name; run-time error 76 or 75.
  [[nodiscard]] Nodes::const_iterator FolderNamed(std::string_view name) const;

  std::vector<Level> way_;  // The last one is where it is.
};

}  // namespace kvdm
