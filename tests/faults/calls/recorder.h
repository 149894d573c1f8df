// Writes down what system calls do to files, so that it can be done again in part.
#pragma once

#include <fstream>
#include <functional>
#include <string>

#include "tests/faults/calls/system_calls.h"

namespace kvdm::faults {

// A line for each thing done, of words between tabs. Files are named by their inode's number.
//
//   create PATH FILE        a new, empty file
//   write FILE OFFSET HEX
//   truncate FILE SIZE
//   sync FILE               a file or a folder
//   mkdir PATH FILE
//   rename PATH PATH, link PATH PATH, unlink PATH, rmdir PATH
class Recorder {
 public:
  explicit Recorder(const std::string& file) : lines_(file, std::ios::binary) {}

  // What is to be called with the result of the call that is about to be made; nothing for one that
  // changes no file. Ends the program for a change that the record has no line for.
  std::function<void(long long)> Before(const Tracee& tracee, long number);

 private:
  std::function<void(long long)> Transfer(const Tracee& tracee, unsigned long long offset);
  std::function<void(long long)> Opening(const std::string& path, unsigned long long flags);
  std::function<void(long long)> Done(std::string line);
  std::function<void(long long)> Made(const std::string& path, const char* word);

  std::ofstream lines_;
};

}  // namespace kvdm::faults
