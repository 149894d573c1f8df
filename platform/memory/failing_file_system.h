// A file system of which one chosen call fails, for tests.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/file_system.h>

#include "platform/memory/failure_counter.h"

namespace kvdm {

// Forwards every call, those of opened folders too, to another file system. The call that `counter`
// chooses is not forwarded: it fails with run-time error 70, FolderExists answers False and
// ReadFile nothing.
class FailingFileSystem : public FileSystem {
 public:
  FailingFileSystem(std::shared_ptr<FileSystem> files, std::shared_ptr<FailureCounter> counter);

  bool FolderExists(std::string_view path) override;
  void CreateFolder(std::string_view path) override;
  std::string FullPath(std::string_view path) override;
  void HideFolder(std::string_view path) override;
  std::string SystemDrive() override;
  std::vector<std::string> FindFiles(std::string_view pattern) override;
  std::unique_ptr<Directory> OpenFolder(std::string_view path) override;
  std::optional<std::string> ReadFile(std::string_view path) override;
  void WriteFile(std::string_view path, std::string_view bytes) override;

 private:
  std::shared_ptr<FileSystem> files_;
  std::shared_ptr<FailureCounter> counter_;
};

}  // namespace kvdm
