#include "tests/faults/calls/system_calls.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <filesystem>

namespace kvdm::faults {
namespace {

namespace fs = std::filesystem;

constexpr auto kLooking = SystemCall::kLooking;
constexpr auto kChanging = SystemCall::kChanging;
constexpr auto kTransfer = SystemCall::kTransfer;

constexpr SystemCall kSystemCalls[] = {
    {SYS_read, "read", kTransfer, false},
    {SYS_pread64, "pread64", kTransfer, false},
    {SYS_write, "write", kTransfer, true},
    {SYS_pwrite64, "pwrite64", kTransfer, true},
    {SYS_readv, "readv", kLooking, false},
    {SYS_writev, "writev", kChanging, true},
    {SYS_open, "open", kLooking, false},
    {SYS_openat, "openat", kLooking, false},
    {SYS_openat2, "openat2", kLooking, false},
    {SYS_creat, "creat", kChanging, true},
    {SYS_close, "close", kLooking, false},
    {SYS_stat, "stat", kLooking, false},
    {SYS_fstat, "fstat", kLooking, false},
    {SYS_lstat, "lstat", kLooking, false},
    {SYS_newfstatat, "newfstatat", kLooking, false},
    {SYS_statx, "statx", kLooking, false},
    {SYS_statfs, "statfs", kLooking, false},
    {SYS_fstatfs, "fstatfs", kLooking, false},
    {SYS_access, "access", kLooking, false},
    {SYS_faccessat, "faccessat", kLooking, false},
    {SYS_faccessat2, "faccessat2", kLooking, false},
    {SYS_readlink, "readlink", kLooking, false},
    {SYS_readlinkat, "readlinkat", kLooking, false},
    {SYS_getdents64, "getdents64", kLooking, false},
    {SYS_getcwd, "getcwd", kLooking, false},
    {SYS_lseek, "lseek", kLooking, false},
    {SYS_fcntl, "fcntl", kLooking, false},
    {SYS_flock, "flock", kLooking, false},
    {SYS_dup, "dup", kLooking, false},
    {SYS_getxattr, "getxattr", kLooking, false},
    {SYS_lgetxattr, "lgetxattr", kLooking, false},
    {SYS_fgetxattr, "fgetxattr", kLooking, false},
    {464, "getxattrat", kLooking, false},  // of newer systems than the headers
    {SYS_getrandom, "getrandom", kLooking, false},
    {SYS_fsync, "fsync", kChanging, true},
    {SYS_fdatasync, "fdatasync", kChanging, true},
    {SYS_truncate, "truncate", kChanging, true},
    {SYS_ftruncate, "ftruncate", kChanging, true},
    {SYS_fallocate, "fallocate", kChanging, true},
    {SYS_sendfile, "sendfile", kChanging, true},
    {SYS_copy_file_range, "copy_file_range", kChanging, true},
    {SYS_rename, "rename", kChanging, true},
    {SYS_renameat, "renameat", kChanging, true},
    {SYS_renameat2, "renameat2", kChanging, true},
    {SYS_link, "link", kChanging, true},
    {SYS_linkat, "linkat", kChanging, true},
    {SYS_symlink, "symlink", kChanging, true},
    {SYS_symlinkat, "symlinkat", kChanging, true},
    {SYS_unlink, "unlink", kChanging, true},
    {SYS_unlinkat, "unlinkat", kChanging, true},
    {SYS_rmdir, "rmdir", kChanging, true},
    {SYS_mkdir, "mkdir", kChanging, true},
    {SYS_mkdirat, "mkdirat", kChanging, true},
    {SYS_chmod, "chmod", kChanging, true},
    {SYS_fchmod, "fchmod", kChanging, true},
    {SYS_fchmodat, "fchmodat", kChanging, true},
    {SYS_chown, "chown", kChanging, true},
    {SYS_fchown, "fchown", kChanging, true},
    {SYS_lchown, "lchown", kChanging, true},
    {SYS_fchownat, "fchownat", kChanging, true},
    {SYS_utimensat, "utimensat", kChanging, true},
    {SYS_setxattr, "setxattr", kChanging, true},
    {SYS_lsetxattr, "lsetxattr", kChanging, true},
    {SYS_fsetxattr, "fsetxattr", kChanging, true},
};

std::string Link(const std::string& path) {
  std::error_code gone;
  return fs::read_symlink(path, gone).string();
}

}  // namespace

std::span<const SystemCall> SystemCalls() { return kSystemCalls; }

unsigned long long Tracee::Argument(int index) const {
  const unsigned long long arguments[] = {registers.rdi, registers.rsi, registers.rdx,
                                          registers.r10, registers.r8,  registers.r9};
  return arguments[index];
}

std::string Tracee::Memory(unsigned long long address, std::size_t size) const {
  // A page at a time: reading past the last one would give nothing at all.
  constexpr unsigned long long kPage = 4096;
  const std::string memory = "/proc/" + std::to_string(process) + "/mem";
  const int file = ::open(memory.c_str(), O_RDONLY | O_CLOEXEC);
  std::string bytes;
  while (bytes.size() < size) {
    const unsigned long long from = address + bytes.size();
    std::string page(std::min<std::size_t>(size - bytes.size(), kPage - from % kPage), '\0');
    const ssize_t count = ::pread(file, page.data(), page.size(), static_cast<off_t>(from));
    if (count <= 0) break;
    bytes.append(page, 0, static_cast<std::size_t>(count));
  }
  ::close(file);
  return bytes;
}

std::string Tracee::Text(unsigned long long address) const {
  const std::string bytes = Memory(address, PATH_MAX);
  return bytes.substr(0, bytes.find('\0'));
}

std::string Tracee::Descriptor(unsigned long long descriptor) const {
  return "/proc/" + std::to_string(process) + "/fd/" + std::to_string(static_cast<int>(descriptor));
}

std::string Tracee::FullPath(unsigned long long folder, unsigned long long path) const {
  const fs::path text = Text(path);
  if (text.is_absolute()) return text.lexically_normal().string();
  const std::string base = static_cast<int>(folder) == AT_FDCWD
                               ? "/proc/" + std::to_string(process) + "/cwd"
                               : Descriptor(folder);
  return (Link(base) / text).lexically_normal().string();
}

}  // namespace kvdm::faults
