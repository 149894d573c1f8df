// An open file or folder of the system.
#pragma once

#include <unistd.h>

#include <utility>

namespace kvdm {

// Closes what it holds at the end.
class FileDescriptor {
 public:
  explicit FileDescriptor(int value) : value_(value) {}
  FileDescriptor(FileDescriptor&& other) noexcept : value_(std::exchange(other.value_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  ~FileDescriptor() {
    if (value_ >= 0) ::close(value_);
  }

  [[nodiscard]] int get() const { return value_; }

  // Gives the descriptor to somebody else who closes it.
  int Release() { return std::exchange(value_, -1); }

 private:
  int value_;
};

}  // namespace kvdm
