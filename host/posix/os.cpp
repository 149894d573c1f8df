#include "host/os.h"

#include <unistd.h>
#include <utf8proc.h>

#include <algorithm>
#include <cstdlib>

namespace kvdm::os {

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

}  // namespace kvdm::os
