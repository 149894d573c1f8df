#include "platform/windows/win32_message_box.h"

#undef NOMB
#include <windows.h>

#include "platform/windows/ansi.h"

namespace kvdm {

void Win32MessageBox::Show(std::string_view text, std::string_view caption, MessageStyle style) {
  ::MessageBoxA(nullptr, ToAnsi(text).c_str(), ToAnsi(caption).c_str(), static_cast<UINT>(style));
}

}  // namespace kvdm
