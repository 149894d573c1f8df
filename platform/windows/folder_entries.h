// What is in an open folder of the system. Links are never followed here. Errors are
// std::system_error.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "platform/windows/file_handle.h"

namespace kvdm {

// An entry of a folder. Everything that is no folder counts as a file, a link to a folder too. The
// name is the system's: not each one is text.
struct FolderEntry {
  std::wstring name;
  DWORD attributes = 0;
  bool is_link = false;
  LONGLONG id = 0;  // Which file or folder of its volume it is.

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

// Deletes a file, an empty folder or a link; what a link leads to stays.
void DeleteEntry(const FileHandle& folder, const FolderEntry& entry);

// Deletes the open file or folder, for which `file` needs the access DELETE. Its name is gone when
// the handle is closed, on newer systems at once. False when the system refuses, for the reason
// that GetLastError tells.
[[nodiscard]] bool DeleteOpened(const FileHandle& file);

}  // namespace kvdm
