// From the system's error codes to run-time errors.
#pragma once

#include <windows.h>

#include <string_view>
#include <system_error>

#include <kvdm/platform/error.h>

namespace kvdm {

// Throws the system error that `error` (a code of GetLastError) stands for.
[[noreturn]] void ThrowSystemError(DWORD error);
[[noreturn]] void ThrowLastError();

// Whether `error` says that there is nothing at a path, and not that nobody can tell.
[[nodiscard]] bool MeansMissing(DWORD error);

// The run-time error that clients know for an error code, about `path`.
[[nodiscard]] RuntimeError Win32Error(DWORD error, std::string_view path);

// Calls `body`; a system error in it becomes the run-time error about `path`.
template <class Body>
auto TranslatingErrors(std::string_view path, Body body) {
  try {
    return body();
  } catch (const std::system_error& error) {
    throw Win32Error(static_cast<DWORD>(error.code().value()), path);
  }
}

}  // namespace kvdm
