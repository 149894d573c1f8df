// A volume that does not answer what the system's own volumes do, put between this program's code
// and the system.
#pragma once

#include <windows.h>

// Need the types of <windows.h>.
#include <winternl.h>

#include <optional>
#include <set>

#include "tests/boundary/client/import_hook.h"

namespace kvdm {

// The system's own functions: calls by their names end in the replacements.
template <class Function>
Function* SystemFunction(const wchar_t* library, const char* name, Function*) {
  return reinterpret_cast<Function*>(
      reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(library), name)));
}
inline BOOL AskSystem(HANDLE file, FILE_INFO_BY_HANDLE_CLASS kind, void* info, DWORD size) {
  static auto* const ask = SystemFunction(L"kernel32.dll", "GetFileInformationByHandleEx",
                                          &::GetFileInformationByHandleEx);
  return ask(file, kind, info, size);
}

// As long as it lives the volume answers `error` where it is asked for information of one of the
// given classes. There may be one at a time.
class RefusingVolume {
 public:
  using Classes = std::set<FILE_INFO_BY_HANDLE_CLASS>;

  // Without identifiers of files: listings that tell them are refused.
  static Classes Identifiers() { return {FileIdBothDirectoryInfo, FileIdBothDirectoryRestartInfo}; }
  // Without reparse points, as FAT and exFAT are.
  static Classes Tags() { return {FileAttributeTagInfo}; }

  explicit RefusingVolume(Classes refused, DWORD error = ERROR_INVALID_PARAMETER)
      : hook_(::GetModuleHandleW(nullptr), "KERNEL32.dll", "GetFileInformationByHandleEx", &Ask) {
    refused_ = std::move(refused);
    error_ = error;
  }

 private:
  static BOOL WINAPI Ask(HANDLE file, FILE_INFO_BY_HANDLE_CLASS kind, void* info, DWORD size) {
    if (!refused_.contains(kind)) {
      return AskSystem(file, kind, info, size);
    }
    ::SetLastError(error_);
    return FALSE;
  }

  static inline Classes refused_;
  static inline DWORD error_ = 0;

  client::ImportHook hook_;
};

// A share of an old server: it takes every entry for an ordinary file unless it was opened for
// reading. There may be one at a time.
class OldShare {
 public:
  OldShare()
      : open_hook_(::GetModuleHandleW(nullptr), "ntdll.dll", "NtCreateFile", &Open),
        ask_hook_(::GetModuleHandleW(nullptr), "KERNEL32.dll", "GetFileInformationByHandleEx",
                  &Ask) {
    unreadable_.reset();
  }

 private:
  static NTSTATUS NTAPI Open(HANDLE* file, ACCESS_MASK access, OBJECT_ATTRIBUTES* attributes,
                             IO_STATUS_BLOCK* result, LARGE_INTEGER* size, ULONG kind, ULONG share,
                             ULONG disposition, ULONG options, void* extended, ULONG length) {
    static auto* const open = SystemFunction(L"ntdll.dll", "NtCreateFile", &::NtCreateFile);
    const NTSTATUS status = open(file, access, attributes, result, size, kind, share, disposition,
                                 options, extended, length);
    if ((access & FILE_READ_DATA) == 0) unreadable_ = *file;
    return status;
  }
  static BOOL WINAPI Ask(HANDLE file, FILE_INFO_BY_HANDLE_CLASS kind, void* info, DWORD size) {
    const BOOL done = AskSystem(file, kind, info, size);
    if (kind == FileAttributeTagInfo && unreadable_ == file) {
      static_cast<FILE_ATTRIBUTE_TAG_INFO*>(info)->FileAttributes = FILE_ATTRIBUTE_NORMAL;
    }
    return done;
  }

  static inline std::optional<HANDLE> unreadable_;

  client::ImportHook open_hook_;
  client::ImportHook ask_hook_;
};

}  // namespace kvdm
