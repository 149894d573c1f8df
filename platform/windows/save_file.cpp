#include "platform/windows/save_file.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <string>
#include <system_error>
#include <tuple>
#include <vector>

#include "platform/file_names.h"
#include "platform/system_error.h"
#include "platform/windows/folder_entries.h"
#include "platform/windows/utf16.h"

namespace kvdm {
namespace {

// A new name in the folder of `path`.
std::wstring TemporaryPath(const std::wstring& path) {
  return path.substr(0, path.rfind(L'\\') + 1) + ToUtf16(TemporaryFileName());
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

// Moves a file to a place in one step: a file that is there is so until the new one is. Programs
// that look at each file hold some for a moment, so that is waited for.
void Move(const std::wstring& from, const std::wstring& to) {
  constexpr DWORD kFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  constexpr int kTries = 30;
  constexpr DWORD kPause = 10;
  for (int tries = 1; ::MoveFileExW(from.c_str(), to.c_str(), kFlags) == FALSE; ++tries) {
    const DWORD error = ::GetLastError();
    const bool passes = error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED;
    if (!passes || tries == kTries) ThrowSystemError(error);
    ::Sleep(kPause);
  }
}

// A new file, which is deleted at the end unless it was moved to its place. It stays open all the
// time, so that nothing else is deleted in its stead.
class TemporaryFile {
 public:
  TemporaryFile(const std::wstring& place, DWORD attributes, std::vector<std::byte> rights)
      : file_(INVALID_HANDLE_VALUE) {
    SECURITY_ATTRIBUTES security{sizeof security, rights.empty() ? nullptr : rights.data(), FALSE};
    do {
      path_ = TemporaryPath(place);
      file_ = FileHandle(::CreateFileW(path_.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE,
                                       kShareAll, &security, CREATE_NEW, attributes, nullptr));
    } while (!file_.is_open() && ::GetLastError() == ERROR_FILE_EXISTS);
    if (!file_.is_open()) ThrowLastError();
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (!moved_) std::ignore = DeleteOpened(file_);
  }

  // On return the bytes are on the disk, and can be read again.
  void Write(std::string_view bytes) {
    for (std::string_view rest = bytes; !rest.empty();) {
      constexpr std::size_t kMost = std::numeric_limits<DWORD>::max() / 2;
      const auto size = static_cast<DWORD>(std::min(rest.size(), kMost));
      DWORD written = 0;
      if (::WriteFile(file_.get(), rest.data(), size, &written, nullptr) == FALSE) {
        ThrowLastError();
      }
      rest.remove_prefix(written);
    }
    if (::FlushFileBuffers(file_.get()) == FALSE) ThrowLastError();
    if (::SetFilePointerEx(file_.get(), {}, nullptr, FILE_BEGIN) == FALSE) ThrowLastError();
    if (ReadAll(file_, bytes.size() + 1) != bytes) ThrowSystemError(ERROR_CRC);
  }

  void MoveTo(const std::wstring& path) {
    Move(path_, path);
    moved_ = true;
  }

 private:
  std::wstring path_;
  FileHandle file_;
  bool moved_ = false;
};

// Not every drive gives files second names; a copy does then.
void KeepAs(const std::wstring& path, const std::wstring& second) {
  const std::wstring temporary = TemporaryPath(second);
  if (::CreateHardLinkW(temporary.c_str(), path.c_str(), nullptr) == FALSE &&
      ::CopyFileW(path.c_str(), temporary.c_str(), TRUE) == FALSE) {
    ThrowLastError();
  }
  const auto removed = [&] { ::DeleteFileW(temporary.c_str()); };
  try {
    Move(temporary, second);
  } catch (const std::system_error&) {
    removed();
    throw;
  }
  // Two names of one file may stay two when one is moved to the other.
  removed();
}

}  // namespace

std::string ReadAll(const FileHandle& file, std::size_t most) {
  std::string content;
  std::array<char, 65536> buffer;
  while (content.size() < most) {
    const auto wanted = static_cast<DWORD>(std::min(buffer.size(), most - content.size()));
    DWORD size = 0;
    if (::ReadFile(file.get(), buffer.data(), wanted, &size, nullptr) == FALSE) ThrowLastError();
    if (size == 0) break;
    content.append(buffer.data(), size);
  }
  return content;
}

void SaveFile(const std::wstring& path, std::string_view bytes, const std::wstring& previous) {
  constexpr DWORD kKept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                          FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
  const DWORD old = ::GetFileAttributesW(path.c_str());
  const bool replaces = old != INVALID_FILE_ATTRIBUTES;
  const DWORD kept = replaces ? old & kKept : 0;
  TemporaryFile temporary(path, kept != 0 ? kept : FILE_ATTRIBUTE_NORMAL, AccessRights(path));
  temporary.Write(bytes);
  if (replaces && !previous.empty()) KeepAs(path, previous);
  temporary.MoveTo(path);
}

}  // namespace kvdm
