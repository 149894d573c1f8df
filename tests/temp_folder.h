// A folder of a test's own, removed with all that is in it.
#pragma once

#include <filesystem>
#include <random>
#include <string>

namespace kvdm {

class TempFolder {
 public:
  TempFolder() {
    do {
      const auto name = "kvdm-test-" + std::to_string(std::random_device()());
      path_ = (std::filesystem::temp_directory_path() / name).string();
    } while (!std::filesystem::create_directory(path_));
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  [[nodiscard]] const std::string& Path() const { return path_; }
  [[nodiscard]] std::string Path(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

}  // namespace kvdm
