#include "host/os.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace kvdm::os {
namespace {

[[noreturn]] void Fail(const std::filesystem::path& path, int error = errno) {
  throw std::system_error(error, std::generic_category(), path.string());
}

class Descriptor {
 public:
  Descriptor(const std::filesystem::path& path, int flags) : path_(path) {
    constexpr mode_t kMode = 0666;
    descriptor_ = ::open(path.c_str(), flags | O_CLOEXEC, kMode);
    if (descriptor_ < 0) Fail(path);
  }
  ~Descriptor() { ::close(descriptor_); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  [[nodiscard]] int Get() const { return descriptor_; }

  // Some file systems can't sync a folder; they say so with EINVAL.
  void Sync() const {
    if (::fsync(descriptor_) != 0 && errno != EINVAL) Fail(path_);
  }

 private:
  std::filesystem::path path_;
  int descriptor_;
};

}  // namespace

bool Exists(const std::filesystem::path& path) {
  std::error_code refused;
  const auto status = std::filesystem::symlink_status(path, refused);
  return status.type() != std::filesystem::file_type::not_found;
}

std::filesystem::path Absolute(const std::filesystem::path& path) {
  return std::filesystem::absolute(path).lexically_normal();
}

std::filesystem::path Canonical(const std::filesystem::path& path) {
  std::error_code failed;
  auto canonical = std::filesystem::canonical(path, failed);
  if (failed) Fail(path, failed.value());
  return canonical;
}

std::vector<std::filesystem::path> FilesIn(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> files;
  std::error_code unreadable;
  for (const auto& entry : std::filesystem::directory_iterator(folder, unreadable)) {
    std::error_code vanished;
    if (entry.is_regular_file(vanished)) files.push_back(entry.path());
  }
  return files;
}

void CreateFolders(const std::filesystem::path& folder) {
  std::error_code failed;
  std::filesystem::create_directories(folder, failed);
  if (failed) Fail(folder, failed.value());
}

std::string ReadBytes(const std::filesystem::path& file) {
  // A pipe with nobody at its other end does not hold up the opening.
  const Descriptor source(file, O_RDONLY | O_NONBLOCK);
  struct stat status {};
  if (::fstat(source.Get(), &status) != 0) Fail(file);
  if (!S_ISREG(status.st_mode)) Fail(file, S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
  std::string bytes;
  std::array<char, 65536> block{};
  for (;;) {
    const ssize_t count = ::read(source.Get(), block.data(), block.size());
    if (count == 0) return bytes;
    if (count < 0 && errno != EINTR) Fail(file);
    if (count > 0) bytes.append(block.data(), static_cast<std::size_t>(count));
  }
}

void WriteBytes(const std::filesystem::path& file, std::string_view bytes) {
  const Descriptor target(file, O_WRONLY | O_CREAT | O_TRUNC);
  while (!bytes.empty()) {
    const ssize_t count = ::write(target.Get(), bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) Fail(file);
    if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  target.Sync();
}

void KeepAs(const std::filesystem::path& file, const std::filesystem::path& second) {
  std::filesystem::remove(second);
  std::error_code unlinkable;
  std::filesystem::create_hard_link(file, second, unlinkable);
  if (unlinkable) std::filesystem::copy_file(file, second);
}

void PutInPlace(const std::filesystem::path& from, const std::filesystem::path& to) {
  const auto replaced = std::filesystem::status(to);
  if (std::filesystem::exists(replaced)) {
    std::filesystem::permissions(from, replaced.permissions());
  }
  std::filesystem::rename(from, to);
  Descriptor(to.parent_path(), O_RDONLY | O_DIRECTORY).Sync();
}

std::shared_ptr<void> TryLock(const std::filesystem::path& file) {
  auto lock = std::make_shared<Descriptor>(file, O_RDWR | O_CREAT);
  if (::flock(lock->Get(), LOCK_EX | LOCK_NB) == 0) return lock;
  if (errno != EWOULDBLOCK && errno != EINTR) Fail(file);
  return nullptr;
}

bool InputIsTerminal() { return ::isatty(STDIN_FILENO) == 1; }

bool OutputIsTerminal() { return ::isatty(STDOUT_FILENO) == 1; }

std::size_t ColumnsOf(char32_t character) {
  return static_cast<std::size_t>(
      std::max(0, utf8proc_charwidth(static_cast<utf8proc_int32_t>(character))));
}

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

std::string ToText(const std::filesystem::path& path) { return path.string(); }

std::filesystem::path ToPath(std::string_view text) { return {text}; }

std::string ComponentPath(const std::filesystem::path& absolute) {
  std::string path = "Z:" + Absolute(absolute).string();
  std::replace(path.begin(), path.end(), '/', '\\');
  return path;
}

}  // namespace kvdm::os
