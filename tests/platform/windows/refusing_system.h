// What Windows refuses or tells and Wine does not, put between this program's code and the system.
// There may be one of each kind at a time.
#pragma once

#include <string>
#include <string_view>

#include "tests/platform/windows/refusing_volume.h"

namespace kvdm {

// A text of the template's argument list.
template <std::size_t kSize>
struct Literal {
  constexpr Literal(const char (&text)[kSize]) {  // NOLINT(google-explicit-constructor)
    for (std::size_t i = 0; i < kSize; ++i) chars[i] = text[i];
  }
  char chars[kSize];
};

// The limit that paths have where they do not begin with "\\\\?\\": longer ones are not found.
class ClassicLimit {
 public:
  static constexpr std::size_t kLongest = 247;  // of folders; files may have a few more

 private:
  static bool Refuses(LPCWSTR path) {
    const std::wstring_view text(path);
    if (text.size() <= kLongest || text.starts_with(LR"(\\?\)")) return false;
    ::SetLastError(ERROR_PATH_NOT_FOUND);
    return true;
  }

  template <Literal kName, class Function>
  struct Limited;
  template <Literal kName, class Result, class... Rest>
  struct Limited<kName, Result WINAPI(LPCWSTR, Rest...)> {
    static Result WINAPI Call(LPCWSTR path, Rest... rest) {
      static auto* const call = SystemFunction(
          L"kernel32.dll", kName.chars, static_cast<Result(WINAPI*)(LPCWSTR, Rest...)>(nullptr));
      if (!Refuses(path)) return call(path, rest...);
      if constexpr (std::is_pointer_v<Result>) {
        return INVALID_HANDLE_VALUE;
      } else {
        return std::is_same_v<Result, BOOL> ? Result{FALSE} : Result(INVALID_FILE_ATTRIBUTES);
      }
    }
    client::ImportHook hook{::GetModuleHandleW(nullptr), "KERNEL32.dll", kName.chars, &Call};
  };

  Limited<"CreateFileW", decltype(::CreateFileW)> files_;
  Limited<"CreateDirectoryW", decltype(::CreateDirectoryW)> folders_;
  Limited<"GetFileAttributesW", decltype(::GetFileAttributesW)> attributes_;
  Limited<"SetFileAttributesW", decltype(::SetFileAttributesW)> changed_attributes_;
  Limited<"MoveFileExW", decltype(::MoveFileExW)> moves_;
  Limited<"CreateHardLinkW", decltype(::CreateHardLinkW)> links_;
  Limited<"DeleteFileW", decltype(::DeleteFileW)> deletions_;
};

// The process's current folder, as the system tells it.
class CurrentFolder {
 public:
  explicit CurrentFolder(std::wstring path)
      : hook_(::GetModuleHandleW(nullptr), "KERNEL32.dll", "GetCurrentDirectoryW", &Ask) {
    path_ = std::move(path);
  }

 private:
  static DWORD WINAPI Ask(DWORD size, LPWSTR path) {
    if (size <= path_.size()) return static_cast<DWORD>(path_.size()) + 1;
    ::lstrcpyW(path, path_.c_str());
    return static_cast<DWORD>(path_.size());
  }

  static inline std::wstring path_;

  client::ImportHook hook_;
};

// The file or folder of that name is a reparse point with this tag.
class ReparsePoint {
 public:
  ReparsePoint(std::wstring name, DWORD tag)
      : hook_(::GetModuleHandleW(nullptr), "KERNEL32.dll", "GetFileInformationByHandleEx", &Ask) {
    name_ = std::move(name);
    tag_ = tag;
  }

 private:
  static BOOL WINAPI Ask(HANDLE file, FILE_INFO_BY_HANDLE_CLASS kind, void* info, DWORD size) {
    const BOOL done = AskSystem(file, kind, info, size);
    if (done == FALSE) return FALSE;
    if (RefusingVolume::Identifiers().contains(kind)) Mark(static_cast<char*>(info));
    if (kind == FileAttributeTagInfo && IsNamed(file)) {
      auto& told = *static_cast<FILE_ATTRIBUTE_TAG_INFO*>(info);
      told.FileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
      told.ReparseTag = tag_;
    }
    return TRUE;
  }

  // Marks it in a listing.
  static void Mark(char* next) {
    while (true) {
      auto& entry = *reinterpret_cast<FILE_ID_BOTH_DIR_INFO*>(next);
      if (std::wstring_view(entry.FileName, entry.FileNameLength / sizeof(wchar_t)) == name_) {
        entry.FileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
        entry.EaSize = tag_;
      }
      if (entry.NextEntryOffset == 0) return;
      next += entry.NextEntryOffset;
    }
  }

  static bool IsNamed(HANDLE file) {
    struct {
      FILE_NAME_INFO info;
      wchar_t rest[MAX_PATH];
    } path{};
    AskSystem(file, FileNameInfo, &path, sizeof path);
    return std::wstring_view(path.info.FileName, path.info.FileNameLength / sizeof(wchar_t))
        .ends_with(L'\\' + name_);
  }

  static inline std::wstring name_;
  static inline DWORD tag_ = 0;

  client::ImportHook hook_;
};

// A cloud store that is not running: what it keeps can't be opened to be read, or not be read, and
// is marked as such. Remembers with which attributes new files are made.
class CloudStore {
 public:
  static constexpr DWORD kNotRunning = 362;
  static constexpr DWORD kMarks = 0x00400000 | FILE_ATTRIBUTE_OFFLINE | FILE_ATTRIBUTE_SPARSE_FILE;

  CloudStore() { made_with = 0; }

  static inline DWORD made_with = 0;

 private:
  static NTSTATUS NTAPI Open(HANDLE* file, ACCESS_MASK access, OBJECT_ATTRIBUTES* attributes,
                             IO_STATUS_BLOCK* result, LARGE_INTEGER* size, ULONG kind, ULONG share,
                             ULONG disposition, ULONG options, void* extended, ULONG length) {
    constexpr auto kCloudProviderNotRunning = static_cast<NTSTATUS>(0xC000CF15);
    static auto* const open = SystemFunction(L"ntdll.dll", "NtCreateFile", &::NtCreateFile);
    if ((access & FILE_READ_DATA) != 0) return kCloudProviderNotRunning;
    return open(file, access, attributes, result, size, kind, share, disposition, options, extended,
                length);
  }
  static BOOL WINAPI Read(HANDLE, void*, DWORD, DWORD*, OVERLAPPED*) {
    ::SetLastError(kNotRunning);
    return FALSE;
  }
  static DWORD WINAPI Attributes(LPCWSTR path) {
    static auto* const ask =
        SystemFunction(L"kernel32.dll", "GetFileAttributesW", &::GetFileAttributesW);
    const DWORD attributes = ask(path);
    const bool is_file = (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    return is_file ? attributes | kMarks : attributes;
  }
  static HANDLE WINAPI Create(LPCWSTR path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* rights,
                              DWORD disposition, DWORD attributes, HANDLE model) {
    static auto* const create = SystemFunction(L"kernel32.dll", "CreateFileW", &::CreateFileW);
    if (disposition == CREATE_NEW) made_with = attributes;
    return create(path, access, share, rights, disposition, attributes, model);
  }

  const HMODULE program_ = ::GetModuleHandleW(nullptr);
  client::ImportHook open_{program_, "ntdll.dll", "NtCreateFile", &Open};
  client::ImportHook attributes_{program_, "KERNEL32.dll", "GetFileAttributesW", &Attributes};
  client::ImportHook create_{program_, "KERNEL32.dll", "CreateFileW", &Create};

 public:
  // Nothing can be read as long as it lives.
  struct Unreadable {
    client::ImportHook read{::GetModuleHandleW(nullptr), "KERNEL32.dll", "ReadFile", &Read};
  };
};

}  // namespace kvdm
