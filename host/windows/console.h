// The console that the program runs in, if any.
#pragma once

#include <windows.h>

namespace kvdm {

// For as long as it lives, standard output and error take UTF-8 text and escape sequences where
// they are a console, and lines end everywhere as they are written.
class Console {
 public:
  Console();
  ~Console();
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

 private:
  UINT code_page_;
  DWORD output_mode_ = 0;
  bool has_output_mode_;
};

}  // namespace kvdm
