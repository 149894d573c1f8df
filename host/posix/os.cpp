#include "host/os.h"

#include <poll.h>
#include <unistd.h>
#include <utf8proc.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace kvdm::os {

bool ReadInput(std::string& text) {
  constexpr std::size_t kPiece = 1 << 16;
  const std::size_t size = text.size();
  text.resize(size + kPiece);
  ssize_t count = 0;
  do {
    count = ::read(STDIN_FILENO, text.data() + size, kPiece);
  } while (count < 0 && errno == EINTR);
  text.resize(size + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  if (count < 0) throw std::system_error(errno, std::generic_category(), "standard input");
  return count > 0;
}

bool InputWouldWait() {
  pollfd input{STDIN_FILENO, POLLIN, 0};
  return ::poll(&input, 1, 0) == 0;
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

}  // namespace kvdm::os
