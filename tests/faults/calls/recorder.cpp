#include "tests/faults/calls/recorder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <cstdlib>
#include <iostream>

namespace kvdm::faults {
namespace {

// The inode's number; "" for what is not there.
std::string FileAt(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 ? std::to_string(status.st_ino) : "";
}

// Only what stands in folders can be lost.
bool IsPlain(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

std::string Hex(const std::string& bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    text += kDigits[value >> 4];
    text += kDigits[value & 0xF];
  }
  return text;
}

// Where the next byte of an open file goes.
unsigned long long Position(const Tracee& tracee) {
  std::ifstream facts("/proc/" + std::to_string(tracee.process) + "/fdinfo/" +
                      std::to_string(tracee.Argument(0)));
  std::string word;
  unsigned long long position = 0;
  facts >> word >> position;
  return position;
}

constexpr unsigned long long kHere = static_cast<unsigned long long>(AT_FDCWD);

}  // namespace

std::function<void(long long)> Recorder::Done(std::string line) {
  return [this, line = std::move(line)](long long result) {
    if (result >= 0) lines_ << line << '\n' << std::flush;
  };
}

std::function<void(long long)> Recorder::Made(const std::string& path, const char* word) {
  return [this, path, word](long long result) {
    if (result >= 0) lines_ << word << '\t' << path << '\t' << FileAt(path) << '\n' << std::flush;
  };
}

std::function<void(long long)> Recorder::Transfer(const Tracee& tracee, unsigned long long offset) {
  const std::string file = tracee.Descriptor(tracee.Argument(0));
  if (!IsPlain(file)) return {};
  return [this, file = FileAt(file), offset,
          bytes = tracee.Memory(tracee.Argument(1), tracee.Argument(2))](long long result) {
    if (result <= 0) return;
    lines_ << "write\t" << file << '\t' << offset << '\t'
           << Hex(bytes.substr(0, static_cast<std::size_t>(result))) << '\n'
           << std::flush;
  };
}

std::function<void(long long)> Recorder::Opening(const std::string& path,
                                                 unsigned long long flags) {
  const std::string file = FileAt(path);
  if (file.empty() && (flags & O_CREAT) != 0) return Made(path, "create");
  if ((flags & O_TRUNC) != 0 && IsPlain(path)) return Done("truncate\t" + file + "\t0");
  return {};
}

std::function<void(long long)> Recorder::Before(const Tracee& tracee, long number) {
  const auto argument = [&](int index) { return tracee.Argument(index); };
  const auto path = [&](unsigned long long folder, int index) {
    return tracee.FullPath(folder, argument(index));
  };
  const auto unlink = [&](const std::string& name, bool is_folder) {
    return Done((is_folder ? "rmdir\t" : "unlink\t") + name);
  };
  switch (number) {
    case SYS_write:
      return Transfer(tracee, Position(tracee));
    case SYS_pwrite64:
      return Transfer(tracee, argument(3));
    case SYS_open:
      return Opening(path(kHere, 0), argument(1));
    case SYS_openat:
      return Opening(path(argument(0), 1), argument(2));
    case SYS_fsync:
    case SYS_fdatasync:
      return Done("sync\t" + FileAt(tracee.Descriptor(argument(0))));
    case SYS_ftruncate:
      return Done("truncate\t" + FileAt(tracee.Descriptor(argument(0))) + '\t' +
                  std::to_string(argument(1)));
    case SYS_rename:
      return Done("rename\t" + path(kHere, 0) + '\t' + path(kHere, 1));
    case SYS_renameat:
    case SYS_renameat2:
      return Done("rename\t" + path(argument(0), 1) + '\t' + path(argument(2), 3));
    case SYS_link:
      return Done("link\t" + path(kHere, 0) + '\t' + path(kHere, 1));
    case SYS_linkat:
      return Done("link\t" + path(argument(0), 1) + '\t' + path(argument(2), 3));
    case SYS_unlink:
      return unlink(path(kHere, 0), false);
    case SYS_rmdir:
      return unlink(path(kHere, 0), true);
    case SYS_unlinkat:
      return unlink(path(argument(0), 1), (argument(2) & AT_REMOVEDIR) != 0);
    case SYS_mkdir:
      return Made(path(kHere, 0), "mkdir");
    case SYS_mkdirat:
      return Made(path(argument(0), 1), "mkdir");
    case SYS_writev:
    case SYS_creat:
    case SYS_openat2:
    case SYS_truncate:
    case SYS_fallocate:
    case SYS_sendfile:
    case SYS_copy_file_range:
    case SYS_symlink:
    case SYS_symlinkat:
      std::cerr << "disturb: no line of the record is for system call " << number << '\n';
      std::exit(EXIT_FAILURE);
    default:
      return {};
  }
}

}  // namespace kvdm::faults
