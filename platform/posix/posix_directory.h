// An open folder of the system.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/file_system.h>

#include "platform/posix/file_descriptor.h"
#include "platform/posix/folder_entries.h"

namespace kvdm {

// On a long way down it keeps only the first folders and the last one open; the others are opened
// again on the way back, from the one inside.
class PosixDirectory : public Directory {
 public:
  // `path` is what errors name.
  PosixDirectory(FileDescriptor folder, std::string path);

  std::vector<std::string> Files() override;
  std::vector<std::string> Entries() override;
  void DeleteFiles() override;
  void Enter(std::string_view name) override;
  void Leave() override;
  // What replacements of files that were broken off left in the folder does not keep it.
  void RemoveFolder(std::string_view name) override;

 private:
  struct Level {
    FileDescriptor folder;
    FileIdentity identity;
    std::size_t path_length;
    std::map<std::string, FileIdentity> known;  // What was listed or entered, by name.
  };

  [[nodiscard]] int Here() const { return way_.back().folder.get(); }
  [[nodiscard]] std::string PathOf(std::string_view name) const;
  // The real name of an entry. Throws std::system_error ENOENT when it is missing.
  [[nodiscard]] std::string RealName(std::string_view name) const;
  // Throws std::system_error ENOTDIR unless `found` is what is known by this name, if anything.
  void RequireKnown(const std::string& name, const FileIdentity& found) const;
  [[nodiscard]] std::vector<std::string> DeletableFiles() const;

  std::vector<Level> way_;  // The last one is where it is.
  std::string path_;
};

}  // namespace kvdm
