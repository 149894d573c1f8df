#include "tests/contract/file_worlds.h"

#include <filesystem>

#include "platform/memory/memory_file_system.h"
#include "platform/posix/dos_attributes.h"
#include "tests/platform/temporary_drive.h"

namespace kvdm {
namespace {

class MemoryFileWorld : public FileWorld {
 public:
  FileSystem& files() override { return files_; }
  void SetAttributes(const std::string& path, unsigned attributes) override {
    files_.SetAttributes(path, attributes);
  }
  void AddLink(const std::string& path) override { files_.AddLink(path); }
  void MoveFolder(const std::string& from, const std::string& to) override {
    files_.MoveFolder(from, to);
  }
  void RemoveTree(const std::string& path) override { files_.RemoveTree(path); }
  void SetCurrentFolder(const std::string& path) override { files_.SetCurrentFolder(path); }

 private:
  MemoryFileSystem files_;
};

class PosixFileWorld : public FileWorld {
 public:
  PosixFileWorld() : start_(std::filesystem::current_path()), files_(drive_.Options()) {}
  ~PosixFileWorld() override {
    std::error_code ignored;
    std::filesystem::current_path(start_, ignored);
  }

  FileSystem& files() override { return files_; }
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
  PosixFileSystem files_;
};

template <class World>
std::unique_ptr<FileWorld> Make() {
  return std::make_unique<World>();
}

}  // namespace

std::vector<FileWorldMaker> FileWorldMakers() {
  return {{"Memory", Make<MemoryFileWorld>}, {"Posix", Make<PosixFileWorld>}};
}

}  // namespace kvdm
