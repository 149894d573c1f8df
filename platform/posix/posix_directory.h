// An open folder of the system.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/posix/file_descriptor.h"

namespace kvdm {

class PosixDirectory : public Directory {
 public:
  // `path` is what errors name.
  PosixDirectory(FileDescriptor folder, std::string path);

  std::vector<std::string> Files() override;
  std::vector<std::string> Entries() override;
  void DeleteFiles() override;
  std::unique_ptr<Directory> Open(std::string_view name) override;
  void RemoveFolder(std::string_view name) override;

 private:
  [[nodiscard]] std::string PathOf(std::string_view name) const;
  // The real name of an entry. Throws std::system_error ENOENT when it is missing.
  [[nodiscard]] std::string RealName(std::string_view name) const;
  [[nodiscard]] std::vector<std::string> DeletableFiles() const;

  FileDescriptor folder_;
  std::string path_;
};

}  // namespace kvdm
