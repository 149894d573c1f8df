#include <fcntl.h>
#include <io.h>
#include <objbase.h>
#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include "host/command.h"
#include "host/os.h"

// Arguments are names and texts: "*" in them is no file pattern.
extern "C" {
int _dowildcard = 0;
}

namespace {

constexpr std::size_t kConsoleBufferSize = 65536;

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

Console::Console()
    : code_page_(GetConsoleOutputCP()),
      has_output_mode_(GetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), &output_mode_) != FALSE) {
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
  // Characters of several bytes reach a console in one piece.
  static_cast<void>(std::setvbuf(stdout, nullptr, _IOFBF, kConsoleBufferSize));
  static_cast<void>(std::setvbuf(stderr, nullptr, _IOFBF, kConsoleBufferSize));
  // What is typed at a console ends with Ctrl+Z.
  if (!kvdm::os::InputIsTerminal()) _setmode(_fileno(stdin), _O_BINARY);
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

// The parser and the sibling libraries are COM objects.
class ComApartment {
 public:
  ComApartment() : result_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
  ~ComApartment() {
    if (SUCCEEDED(result_)) CoUninitialize();
  }
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;

 private:
  HRESULT result_;
};

}  // namespace

extern "C" int wmain(int count, wchar_t** words) {
  const Console console;
  const ComApartment apartment;
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(kvdm::os::ToText(words[i]));
  return kvdm::RunCommandLine(arguments);
}
