// The system calls that a program can meet trouble in, and how to look at one that is about to be
// made. For 64-bit PC processors, as Debian has them.
#pragma once

#include <sys/types.h>
#include <sys/user.h>

#include <span>
#include <string>

namespace kvdm::faults {

struct SystemCall {
  enum Kind { kLooking, kChanging, kTransfer };
  // What a kTransfer does: half of it can be done. Writing changes something, reading does not.
  long number;
  const char* name;
  Kind kind;
  bool changes;
};

// All calls on files, folders, locks, and random numbers.
std::span<const SystemCall> SystemCalls();

// A stopped process and the registers of the call that it is about to make, or has just made.
struct Tracee {
  pid_t process;
  user_regs_struct registers;

  // The six arguments, counted from 0.
  [[nodiscard]] unsigned long long Argument(int index) const;
  [[nodiscard]] long long Result() const { return static_cast<long long>(registers.rax); }
  // Bytes of the process's memory; fewer where it ends.
  [[nodiscard]] std::string Memory(unsigned long long address, std::size_t size) const;
  // The text that ends with a NUL there.
  [[nodiscard]] std::string Text(unsigned long long address) const;
  // Where /proc shows an open file of the process.
  [[nodiscard]] std::string Descriptor(unsigned long long descriptor) const;
  // The full path of the file that a path means, seen from an open folder or AT_FDCWD.
  [[nodiscard]] std::string FullPath(unsigned long long folder, unsigned long long path) const;
};

}  // namespace kvdm::faults
