// The file system contract on drive D: of Windows.
#include <array>

#include "platform/windows/windows_file_system.h"
#include "tests/contract/file_worlds.h"
#include "tests/platform/windows/refusing_volume.h"
#include "tests/platform/windows/scratch_drive.h"

namespace kvdm {
namespace {

class WindowsFileWorld : public FileWorld {
 public:
  WindowsFileWorld() {
    start_.resize(::GetCurrentDirectoryW(static_cast<DWORD>(start_.size()), start_.data()));
  }
  ~WindowsFileWorld() override { ::SetCurrentDirectoryW(start_.c_str()); }

  FileSystem& files() override { return *files_; }
  [[nodiscard]] bool IsWine() const override { return kvdm::IsWine(); }
  [[nodiscard]] bool HidesDots() const override { return kvdm::IsWine(); }
  void SetAttributes(const std::string& path, unsigned attributes) override {
    drive_.SetAttributes(path, attributes != 0 ? attributes : FILE_ATTRIBUTE_NORMAL);
  }
  void AddLink(const std::string& path) override {
    drive_.AddLink(path, IsWine() ? EmptyFolder() : R"(D:\nowhere)");
  }
  void MoveFolder(const std::string& from, const std::string& to) override {
    drive_.MoveFolder(from, to);
  }
  void RemoveTree(const std::string& path) override { drive_.RemoveTree(path); }
  void SetCurrentFolder(const std::string& path) override {
    ::SetCurrentDirectoryW(ToUtf16(path).c_str());
  }

 private:
  static std::string EmptyFolder() {
    ::CreateDirectoryW(LR"(C:\kvdm-empty)", nullptr);
    return R"(C:\kvdm-empty)";
  }

  std::wstring start_ = std::wstring(MAX_PATH, L'\0');
  ScratchDrive drive_;
  std::shared_ptr<FileSystem> files_ = MakeWindowsFileSystem();
};

// The same on a volume that refuses what others answer.
template <RefusingVolume::Classes (*kRefused)()>
class RefusingFileWorld final : public WindowsFileWorld {
  RefusingVolume volume_{kRefused()};
};

class OldShareFileWorld final : public WindowsFileWorld {
  OldShare share_;
};

template <class World>
FileWorldMaker MakerOf(std::string_view name) {
  return {name, []() -> std::unique_ptr<FileWorld> { return std::make_unique<World>(); }};
}

}  // namespace

std::vector<FileWorldMaker> SystemFileWorldMakers() {
  return {MakerOf<WindowsFileWorld>("Windows"),
          MakerOf<RefusingFileWorld<&RefusingVolume::Identifiers>>("WithoutIdentifiers"),
          MakerOf<RefusingFileWorld<&RefusingVolume::Tags>>("WithoutTags"),
          MakerOf<OldShareFileWorld>("OldShare")};
}

}  // namespace kvdm
