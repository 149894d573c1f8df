#include "host/windows/console.h"

#include <fcntl.h>
#include <io.h>

#include <cstdio>

#include "host/os.h"

namespace kvdm {
namespace {

constexpr std::size_t kBufferSize = 65536;

}  // namespace

Console::Console()
    : code_page_(GetConsoleOutputCP()),
      has_output_mode_(GetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), &output_mode_) != FALSE) {
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
  // Characters of several bytes reach a console in one piece.
  static_cast<void>(std::setvbuf(stdout, nullptr, _IOFBF, kBufferSize));
  static_cast<void>(std::setvbuf(stderr, nullptr, _IOFBF, kBufferSize));
  // What is typed at a console ends with Ctrl+Z.
  if (!os::InputIsTerminal()) _setmode(_fileno(stdin), _O_BINARY);
  SetConsoleOutputCP(CP_UTF8);
  if (has_output_mode_) {
    SetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE),
                   output_mode_ | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
  }
}

Console::~Console() {
  std::fflush(nullptr);
  if (has_output_mode_) SetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), output_mode_);
  SetConsoleOutputCP(code_page_);
}

}  // namespace kvdm
