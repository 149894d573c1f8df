// Free names for folders and files, asked for one by one: what every file system does that has no
// shorter way.
#include <kvdm/platform/file_system.h>

#include "platform/file_names.h"

namespace kvdm {

std::string FileSystem::FreeFolderName(std::string_view parent, std::string_view name) {
  const std::string path = std::string(parent).append(name);
  const int number =
      FirstFreeNumber([&](int tried) { return FolderExists(Numbered(path, tried)); });
  return Numbered(name, number);
}

std::string FileSystem::FreeFileName(std::string_view folder, std::string_view name) {
  const std::string path = std::string(folder).append("\\").append(name);
  const int number = FirstFreeNumber(
      [&](int tried) { return !FindFiles(Numbered(path, tried).append(".*")).empty(); });
  return Numbered(name, number);
}

std::vector<std::string> Directory::ClearFiles() {
  if (!Files().empty()) DeleteFiles();
  return Entries();
}

}  // namespace kvdm
