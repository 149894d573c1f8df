#include "tests/contract/file_worlds.h"

#include "platform/memory/memory_file_system.h"

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

}  // namespace

std::vector<FileWorldMaker> FileWorldMakers() {
  const auto make = []() -> std::unique_ptr<FileWorld> {
    return std::make_unique<MemoryFileWorld>();
  };
  std::vector<FileWorldMaker> makers = SystemFileWorldMakers();
  makers.push_back({"Memory", make});
  return makers;
}

}  // namespace kvdm
