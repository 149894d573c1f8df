// Open files and folders of the system: handles, entries, deletion, replacement. Links are never
// followed here. Errors are std::system_error.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kvdm {

class FileHandle {
 public:
  explicit FileHandle(HANDLE value) : value_(value) {}
  FileHandle(FileHandle&& other) noexcept
      : value_(std::exchange(other.value_, INVALID_HANDLE_VALUE)) {}
  FileHandle& operator=(FileHandle&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  ~FileHandle() {
    if (is_open()) ::CloseHandle(value_);
  }

  [[nodiscard]] HANDLE get() const { return value_; }
  [[nodiscard]] bool is_open() const { return value_ != INVALID_HANDLE_VALUE; }

 private:
  HANDLE value_;
};

// An entry of a folder. Everything that is no folder counts as a file, a link to a folder too. The
// name is the system's: not each one is text.
struct FolderEntry {
  std::wstring name;
  DWORD attributes = 0;
  bool is_link = false;
  LONGLONG id = 0;  // Which file or folder of its volume it is; 0 where the system does not tell.

  [[nodiscard]] bool IsFolder() const {
    return !is_link && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  }
  [[nodiscard]] bool IsSeen() const {
    return (attributes & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM)) == 0;
  }
  [[nodiscard]] bool IsReadOnly() const { return (attributes & FILE_ATTRIBUTE_READONLY) != 0; }
};

// The access to a folder with which its entries can be listed and opened.
inline constexpr DWORD kListAccess = FILE_LIST_DIRECTORY | FILE_READ_ATTRIBUTES | SYNCHRONIZE;
// Others may do what they like with an open folder, or with a file that is being deleted.
inline constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// All entries but "." and "..", in the system's order. Empty for a folder that was removed
// meanwhile.
[[nodiscard]] std::vector<FolderEntry> EntriesOf(const FileHandle& folder);

// Opens the entry itself, in this very folder, wherever the folder's path leads by then. Throws
// ERROR_REPARSE_TAG_MISMATCH unless what was opened is still what `entry` says, under that name.
[[nodiscard]] FileHandle OpenEntry(const FileHandle& folder, const FolderEntry& entry,
                                   DWORD access);

// Deletes a file, an empty folder or a link; what a link leads to stays. What other programs hold
// is tried again for a moment.
void DeleteEntry(const FileHandle& folder, const FolderEntry& entry);

// Deletes the open file or folder, for which `file` needs the access DELETE. Its name is gone when
// the handle is closed, on newer systems at once. False when the system refuses, for the reason
// that GetLastError tells.
[[nodiscard]] bool DeleteOpened(const FileHandle& file);

// Writes `bytes` to a new file beside `path`, a path as the system takes it, reads them again, and
// lets it take that place in one step, with the attributes and access rights of what is there.
// That stays as `previous`, unless that is "". What other programs hold is tried again for a
// moment. After a failure the file is as before.
void SaveFile(const std::wstring& path, std::string_view bytes, const std::wstring& previous = {});

// What is left to read of an open file, but no more than `most` bytes.
[[nodiscard]] std::string ReadAll(const FileHandle& file, std::size_t most = std::string::npos);

}  // namespace kvdm
