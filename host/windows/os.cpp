#include "host/os.h"

#include <windows.h>

#include <system_error>

#include "platform/utf8.h"
#include "platform/windows/text.h"

namespace kvdm::os {
namespace {

// What terminals show two columns wide: the scripts of East Asia, and pictographs.
constexpr CodePointRange kWide[] = {{0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0x33FF},
                                    {0x3400, 0x4DBF},   {0x4E00, 0x9FFF},   {0xA000, 0xA4CF},
                                    {0xA960, 0xA97F},   {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},
                                    {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},
                                    {0x16FE0, 0x18CFF}, {0x1B000, 0x1B2FF}, {0x1F300, 0x1F64F},
                                    {0x1F680, 0x1F6FF}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};

// Whether a character is drawn over the one before it, or not at all.
bool TakesNoColumn(char32_t character) {
  if (character >= 0x200B && character <= 0x200F) return true;
  if (character > 0xFFFF) return false;
  const auto unit = static_cast<wchar_t>(character);
  WORD type = 0;
  // A letter that is written with a mark has the mark's type too.
  return GetStringTypeW(CT_CTYPE3, &unit, 1, &type) != FALSE &&
         (type & (C3_NONSPACING | C3_ALPHA)) == C3_NONSPACING;
}

bool IsConsole(DWORD stream, DWORD wanted_mode) {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(stream), &mode) != FALSE &&
         (mode & wanted_mode) == wanted_mode;
}

}  // namespace

bool ReadInput(std::string& text) {
  constexpr DWORD kPiece = 1 << 16;
  const std::size_t size = text.size();
  text.resize(size + kPiece);
  DWORD count = 0;
  const BOOL done =
      ReadFile(GetStdHandle(STD_INPUT_HANDLE), text.data() + size, kPiece, &count, nullptr);
  const DWORD error = done != FALSE ? ERROR_SUCCESS : GetLastError();
  text.resize(size + count);
  // A pipe whose writer is gone has ended.
  if (error != ERROR_SUCCESS && error != ERROR_BROKEN_PIPE && error != ERROR_HANDLE_EOF) {
    throw std::system_error(static_cast<int>(error), std::system_category(), "standard input");
  }
  return count > 0;
}

bool InputWouldWait() {
  const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
  DWORD available = 0;
  if (GetFileType(input) != FILE_TYPE_PIPE) return InputIsTerminal();
  return PeekNamedPipe(input, nullptr, 0, nullptr, &available, nullptr) != FALSE && available == 0;
}

bool InputIsTerminal() { return IsConsole(STD_INPUT_HANDLE, 0); }
bool OutputIsTerminal() { return IsConsole(STD_OUTPUT_HANDLE, ENABLE_VIRTUAL_TERMINAL_PROCESSING); }

std::size_t ColumnsOf(char32_t character) {
  if (TakesNoColumn(character)) return 0;
  return IsIn(kWide, character) ? 2 : 1;
}

std::string Environment(const char* name) {
  const std::wstring wide_name = ToUtf16(name);
  std::wstring value(GetEnvironmentVariableW(wide_name.c_str(), nullptr, 0), L'\0');
  value.resize(
      GetEnvironmentVariableW(wide_name.c_str(), value.data(), static_cast<DWORD>(value.size())));
  return ToUtf8(value);
}

}  // namespace kvdm::os
