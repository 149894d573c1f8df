// An open folder of the file system in memory.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/memory/memory_node.h"

namespace kvdm {

class MemoryDirectory : public Directory {
 public:
  // `path` is what errors name.
  MemoryDirectory(std::shared_ptr<MemoryNode> folder, std::string path);

  std::vector<std::string> Files() override;
  std::vector<std::string> Entries() override;
  void DeleteFiles() override;
  std::unique_ptr<Directory> Open(std::string_view name) override;
  void RemoveFolder(std::string_view name) override;

 private:
  [[nodiscard]] std::string PathOf(std::string_view name) const;
  // The real name of a folder inside; run-time error 76 or 75.
  [[nodiscard]] std::string FolderName(std::string_view name) const;

  std::shared_ptr<MemoryNode> folder_;
  std::string path_;
};

}  // namespace kvdm
