#include "platform/windows/debugger_log.h"

#include <windows.h>

#include <exception>

#include "platform/windows/utf16.h"

namespace kvdm {

void DebuggerLog::Note(std::string_view line) {
  try {
    ::OutputDebugStringW((ToUtf16(line) + L"\r\n").c_str());
  } catch (const std::exception&) {
    ::OutputDebugStringW(L"A line is too long to be noted\r\n");
  }
}

}  // namespace kvdm
