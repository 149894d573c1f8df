// The file system contract on a folder of a POSIX system.
#include <filesystem>

#include "tests/contract/file_worlds.h"
#include "tests/platform/temporary_drive.h"

namespace kvdm {
namespace {

class PosixFileWorld : public FileWorld {
 public:
  PosixFileWorld()
      : start_(std::filesystem::current_path()), files_(MakePosixFileSystem(drive_.Options())) {}
  ~PosixFileWorld() override {
    std::error_code ignored;
    std::filesystem::current_path(start_, ignored);
  }

  FileSystem& files() override { return *files_; }
  void SetAttributes(const std::string& path, unsigned attributes) override {
    using std::filesystem::perm_options;
    const auto writing = std::filesystem::perms(0222);
    const bool read_only = (attributes & kReadOnlyAttribute) != 0;
    drive_.SetDosAttribute(path, FormatDosAttributes(attributes));
    if (read_only) std::filesystem::permissions(drive_.At(path), writing, perm_options::remove);
  }
  void AddLink(const std::string& path) override {
    std::filesystem::create_symlink("nowhere", drive_.At(path));
  }
  void MoveFolder(const std::string& from, const std::string& to) override {
    std::filesystem::rename(drive_.At(from), drive_.At(to));
  }
  void RemoveTree(const std::string& path) override {
    std::filesystem::remove_all(drive_.At(path));
  }
  void SetCurrentFolder(const std::string& path) override {
    std::filesystem::current_path(drive_.At(path));
  }

 private:
  std::filesystem::path start_;
  TemporaryDrive drive_;
  std::shared_ptr<FileSystem> files_;
};

}  // namespace

std::vector<FileWorldMaker> SystemFileWorldMakers() {
  return {
      {"Posix", []() -> std::unique_ptr<FileWorld> { return std::make_unique<PosixFileWorld>(); }}};
}

}  // namespace kvdm
