// The drives of the system, as tests prepare and look at them past the component.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tests/platform/windows/scratch_drive.h"

namespace kvdm::client {

// An empty drive D:, which is the current one, and of drive C: what is not the system's own.
// Empties both at the end.
class Disk {
 public:
  Disk();
  ~Disk();
  Disk(const Disk&) = delete;
  Disk& operator=(const Disk&) = delete;

  // Creates a folder and those above it, as far as they are missing.
  void AddFolder(std::string_view path);
  // Creates or replaces a file, and the folders above it.
  void AddFile(std::string_view path, std::string_view content);
  void SetAttributes(std::string_view path, DWORD attributes);
  // A folder, with all that is in it.
  void Remove(std::string_view folder);

  [[nodiscard]] bool FolderExists(std::string_view path) const;
  [[nodiscard]] bool IsHidden(std::string_view path) const;
  // All that is in a folder, sorted, folders ending in "\".
  [[nodiscard]] std::vector<std::string> Tree(std::string_view path) const;

 private:
  ScratchDrive drive_;
  std::set<std::wstring> system_;  // What was on C: before.
  std::wstring start_ = std::wstring(MAX_PATH, L'\0');
};

}  // namespace kvdm::client
