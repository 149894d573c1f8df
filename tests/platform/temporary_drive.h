// A folder of the system that stands for drive D: in a test.
#pragma once

#include <sys/stat.h>
#include <sys/xattr.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>

#include "platform/posix/posix_file_system.h"
#include "tests/temp_folder.h"

namespace kvdm {

class TemporaryDrive {
 public:
  [[nodiscard]] const std::filesystem::path& root() const { return root_; }

  [[nodiscard]] PosixFileOptions Options() const {
    return {{{'C', (root_ / "drive_c").string()}, {'D', root_.string()}}};
  }

  // The system's path of "D:\..." and of names below the root.
  [[nodiscard]] std::filesystem::path At(std::string path) const {
    if (path.starts_with("D:\\")) path.erase(0, 3);
    std::ranges::replace(path, '\\', '/');
    return root_ / path;
  }

  // Writes a file, past the component.
  void Put(const std::string& path, std::string_view content = {}) const {
    std::ofstream(At(path), std::ios::binary) << content;
  }

  [[nodiscard]] std::string Get(const std::string& path) const {
    std::ostringstream content;
    content << std::ifstream(At(path), std::ios::binary).rdbuf();
    return content.str();
  }

  [[nodiscard]] bool Has(const std::string& path) const {
    return std::filesystem::exists(std::filesystem::symlink_status(At(path)));
  }

  // Gives an entry the extended attribute that holds its attributes.
  void SetDosAttribute(const std::string& path, std::string_view value) const {
    const std::string file = At(path).string();
    if (::setxattr(file.c_str(), "user.DOSATTRIB", value.data(), value.size(), 0) != 0) {
      throw std::system_error(errno, std::generic_category(), file);
    }
  }

 private:
  TempFolder folder_;
  std::filesystem::path root_ = folder_.Path();
};

}  // namespace kvdm
