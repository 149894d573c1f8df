// System error codes as run-time errors. Each operating system brings its own table.
#pragma once

#include <string_view>
#include <system_error>

#include <kvdm/platform/error.h>

namespace kvdm {

// Throws the system error with this code, a value of errno or of GetLastError.
[[noreturn]] void ThrowSystemError(int error);

// Throws the system error of the call that failed last.
[[noreturn]] void ThrowLastError();

// Whether an error code says that there is nothing at a path, and not that this can't be told.
[[nodiscard]] bool MeansMissing(int error);

// The run-time error that clients know for an error code, about `path`.
[[nodiscard]] RuntimeError SystemErrorAt(std::string_view path, int error);

// Calls `body`; a system error in it becomes the run-time error about `path`.
template <class Body>
auto TranslatingErrors(std::string_view path, Body body) {
  try {
    return body();
  } catch (const std::system_error& error) {
    throw SystemErrorAt(path, error.code().value());
  }
}

// The same, but the answer is the empty one when there is nothing at `path`.
template <class Answer, class Body>
Answer AnswerUnlessMissing(std::string_view path, Body body) {
  return TranslatingErrors(path, [&]() -> Answer {
    try {
      return body();
    } catch (const std::system_error& error) {
      if (!MeansMissing(error.code().value())) throw;
      return {};
    }
  });
}

}  // namespace kvdm
