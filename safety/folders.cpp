#include "safety/folders.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <system_error>

#include "safety/os.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void Fail(const fs::path& path, std::errc why) {
  throw fs::filesystem_error("", path, std::make_error_code(why));
}

void RequireEqual(const fs::path& a, const fs::path& b) {
  std::ifstream left(a, std::ios::binary);
  std::ifstream right(b, std::ios::binary);
  std::array<char, 1 << 16> one{};
  std::array<char, 1 << 16> other{};
  do {
    left.read(one.data(), one.size());
    right.read(other.data(), other.size());
    const auto count = left.gcount();
    if (count != right.gcount() || !std::equal(one.data(), one.data() + count, other.data())) {
      Fail(b, std::errc::io_error);
    }
  } while (left && right);
  if (!left.eof() || !right.eof()) Fail(b, std::errc::io_error);
}

void CopyEntries(const fs::path& from, const fs::path& to) {
  fs::create_directory(to, from);
  for (const auto& entry : fs::directory_iterator(from)) {
    const fs::path target = to / entry.path().filename();
    if (entry.is_symlink()) {
      fs::copy_symlink(entry.path(), target);
    } else if (entry.is_directory()) {
      CopyEntries(entry.path(), target);
    } else if (entry.is_regular_file()) {
      fs::copy_file(entry.path(), target);
      RequireEqual(entry.path(), target);
      fs::last_write_time(target, entry.last_write_time());
    } else {
      Fail(entry.path(), std::errc::not_supported);  // a pipe, a socket or a device
    }
  }
}

}  // namespace

void CopyFolder(const fs::path& from, const fs::path& to) {
  if (os::Exists(to)) Fail(to, std::errc::file_exists);
  try {
    CopyEntries(from, to);
  } catch (const fs::filesystem_error&) {
    std::error_code ignored;  // The first failure is the one to tell.
    fs::remove_all(to, ignored);
    throw;
  }
}

MoveKind MoveOrCopyFolder(const fs::path& from, const fs::path& to) {
  if (os::Exists(to)) Fail(to, std::errc::file_exists);
  std::error_code failed;
  fs::rename(from, to, failed);
  if (!failed) return MoveKind::kRenamed;
  if (failed != std::errc::cross_device_link) throw fs::filesystem_error("", from, to, failed);
  CopyFolder(from, to);
  return MoveKind::kCopied;
}

}  // namespace kvdm
