// From the system's error codes to run-time errors.
#pragma once

#include <string_view>
#include <system_error>

#include <kvdm/platform/error.h>

namespace kvdm {

// Throws the system error that `error` (an errno value) stands for.
[[noreturn]] void ThrowSystemError(int error);

// Whether `error` (an errno value) says that there is nothing at a path, and not that nobody can
// tell.
[[nodiscard]] bool MeansMissing(int error);

// The run-time error that clients know for an errno value, about `path`.
[[nodiscard]] RuntimeError PosixError(int error, std::string_view path);

// Calls `body`; a system error in it becomes the run-time error about `path`.
template <class Body>
auto TranslatingErrors(std::string_view path, Body body) {
  try {
    return body();
  } catch (const std::system_error& error) {
    throw PosixError(error.code().value(), path);
  }
}

}  // namespace kvdm
