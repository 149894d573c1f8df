#include "platform/windows/windows_guid.h"

#include <windows.h>
// Needs the types of the former.
#include <objbase.h>

#include <array>

#include "platform/windows/hresult.h"
#include "platform/windows/utf16.h"

namespace kvdm {

std::string WindowsGuid() {
  GUID guid{};
  Check(::CoCreateGuid(&guid));
  std::array<wchar_t, 39> text{};  // 38 characters and a NUL.
  ::StringFromGUID2(guid, text.data(), static_cast<int>(text.size()));
  return ToUtf8(text.data());
}

}  // namespace kvdm
