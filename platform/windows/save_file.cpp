#include "platform/windows/save_file.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include "platform/windows/folder_entries.h"
#include "platform/windows/win32_error.h"

namespace kvdm {
namespace {

std::wstring TemporaryPath(DrivePath path) {
  static std::atomic<unsigned> count = 0;
  path.names.back() =
      ".kvdm-" + std::to_string(::GetCurrentProcessId()) + "-" + std::to_string(++count) + ".tmp";
  return SystemPath(path);
}

// The access rights of what is there, as far as the system tells them; else empty, for those that
// the folder gives to new files.
std::vector<std::byte> AccessRights(const std::wstring& path) {
  DWORD size = 0;
  ::GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
  std::vector<std::byte> rights(size);
  const BOOL found =
      ::GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, rights.data(), size, &size);
  return found != FALSE ? rights : std::vector<std::byte>();
}

// A new file, which is deleted at the end unless it was moved to its place. It stays open all the
// time, so that nothing else is deleted in its stead.
class TemporaryFile {
 public:
  TemporaryFile(const DrivePath& place, DWORD attributes, std::vector<std::byte> rights)
      : file_(INVALID_HANDLE_VALUE) {
    SECURITY_ATTRIBUTES security{sizeof security, rights.empty() ? nullptr : rights.data(), FALSE};
    do {
      path_ = TemporaryPath(place);
      file_ = FileHandle(::CreateFileW(path_.c_str(), GENERIC_WRITE | DELETE, kShareAll, &security,
                                       CREATE_NEW, attributes, nullptr));
    } while (!file_.is_open() && ::GetLastError() == ERROR_FILE_EXISTS);
    if (!file_.is_open()) ThrowLastError();
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (!moved_) std::ignore = DeleteOpened(file_);
  }

  void Write(std::string_view bytes) {
    while (!bytes.empty()) {
      constexpr std::size_t kMost = std::numeric_limits<DWORD>::max() / 2;
      const auto size = static_cast<DWORD>(std::min(bytes.size(), kMost));
      DWORD written = 0;
      if (::WriteFile(file_.get(), bytes.data(), size, &written, nullptr) == FALSE) {
        ThrowLastError();
      }
      bytes.remove_prefix(written);
    }
    if (::FlushFileBuffers(file_.get()) == FALSE) ThrowLastError();
  }

  void MoveTo(const std::wstring& path) {
    constexpr DWORD kFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    if (::MoveFileExW(path_.c_str(), path.c_str(), kFlags) == FALSE) ThrowLastError();
    moved_ = true;
  }

 private:
  std::wstring path_;
  FileHandle file_;
  bool moved_ = false;
};

}  // namespace

void SaveFile(const WindowsPlace& place, std::string_view bytes) {
  constexpr DWORD kKept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                          FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
  const DWORD kept = place.attributes.value_or(0) & kKept;
  const std::wstring path = SystemPath(place.path);
  TemporaryFile temporary(place.path, kept != 0 ? kept : FILE_ATTRIBUTE_NORMAL, AccessRights(path));
  temporary.Write(bytes);
  temporary.MoveTo(path);
}

}  // namespace kvdm
