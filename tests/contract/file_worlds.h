// The file systems that the file system contract is checked on.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/file_system.h>

#include "platform/file_names.h"

namespace kvdm {

// A file system with an empty drive D: and no drive Q:, and what a test does to its content from
// outside.
class FileWorld {
 public:
  virtual ~FileWorld() = default;

  virtual FileSystem& files() = 0;
  // Whether the system is Wine, which follows links when it deletes, and deletes by the path that
  // an open folder had.
  [[nodiscard]] virtual bool IsWine() const { return false; }
  // Whether a leading dot hides an entry.
  [[nodiscard]] virtual bool HidesDots() const { return true; }
  virtual void SetAttributes(const std::string& path, unsigned attributes) = 0;
  // Makes a link that leads nowhere; under Wine, which does not show such a link, one to an empty
  // folder outside.
  virtual void AddLink(const std::string& path) = 0;
  virtual void MoveFolder(const std::string& from, const std::string& to) = 0;
  virtual void RemoveTree(const std::string& path) = 0;
  virtual void SetCurrentFolder(const std::string& path) = 0;
};

// A way to make a world, with the name of the file system.
struct FileWorldMaker {
  std::string_view name;
  std::unique_ptr<FileWorld> (*make)();
};

// Make worlds of the system's own files.
std::vector<FileWorldMaker> SystemFileWorldMakers();

std::vector<FileWorldMaker> FileWorldMakers();

}  // namespace kvdm
