// The fixture of the file system's contract.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include <kvdm/platform/error.h>

#include "tests/contract/file_worlds.h"
#include "tests/throws_number.h"

namespace kvdm {

// A world with the empty folder D:\Data.
class FileSystemContract : public ::testing::TestWithParam<FileWorldMaker> {
 protected:
  FileSystemContract() { files_.CreateFolder(R"(D:\Data)"); }

  void Put(const std::string& path, const std::string& content = {}) {
    files_.WriteFile(path, content);
  }
  int CreateError(const std::string& path) {
    return ErrorOf([&] { files_.CreateFolder(path); });
  }
  int WriteError(const std::string& path) {
    return ErrorOf([&] { files_.WriteFile(path, "new"); });
  }

  std::unique_ptr<FileWorld> world_ = GetParam().make();
  FileSystem& files_ = world_->files();
};

}  // namespace kvdm
