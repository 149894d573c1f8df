// Telling Wine from Windows, and going past it, for tests of what differs.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "platform/windows/text.h"

namespace kvdm {

inline bool IsWine() {
  return ::GetProcAddress(::GetModuleHandleW(L"ntdll"), "wine_get_version") != nullptr;
}

// The path that the system around Wine has for a path.
inline std::string UnixPath(std::string_view path) {
  using UnixName = char*(CDECL*)(const wchar_t*);
  const auto unix_name = reinterpret_cast<UnixName>(reinterpret_cast<void*>(
      ::GetProcAddress(::GetModuleHandleW(L"kernel32"), "wine_get_unix_file_name")));
  char* name = unix_name(ToUtf16(path).c_str());
  std::string text = name;
  ::HeapFree(::GetProcessHeap(), 0, name);
  return text;
}

// A program under Wine is a process of Linux, whose calls make and remove what Wine can't.
#ifdef _WIN64
inline constexpr long kSymlink = 88;
inline constexpr long kUnlink = 87;
#else
inline constexpr long kSymlink = 83;
inline constexpr long kUnlink = 10;
#endif

inline bool LinuxCall(long number, const std::string& first, const std::string& second) {
#ifdef _WIN64
  long long result = number;
  asm volatile("syscall"
               : "+a"(result)
               : "D"(first.c_str()), "S"(second.c_str())
               : "rcx", "r11", "memory");
#else
  long result = number;
  asm volatile("int $0x80" : "+a"(result) : "b"(first.c_str()), "c"(second.c_str()) : "memory");
#endif
  return result == 0;
}

inline bool MakeUnixLink(const std::string& link, const std::string& target) {
  return LinuxCall(kSymlink, target, link);
}

inline bool RemoveUnixFile(const std::string& path) { return LinuxCall(kUnlink, path, {}); }

}  // namespace kvdm
