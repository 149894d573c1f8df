// An open file or folder of the system.
#pragma once

#include <windows.h>

#include <utility>

namespace kvdm {

// Closes what it holds at the end.
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

}  // namespace kvdm
