#include "tests/boundary/client/pinned_system.h"

#include <utility>

#include "platform/windows/text.h"
#include "tests/boundary/client/dll.h"

namespace kvdm::client {

PinnedSystem* PinnedSystem::pinned_ = nullptr;

PinnedSystem::PinnedSystem(Show show)
    : show_(std::move(show)),
      guid_hook_(Dll(), "ole32.dll", "CoCreateGuid", &NextGuid),
      time_hook_(Dll(), "kernel32.dll", "GetLocalTime", &GetPinnedTime),
      message_hook_(Dll(), "user32.dll", "MessageBoxA", &ShowMessage) {
  pinned_ = this;
}

PinnedSystem::~PinnedSystem() { pinned_ = nullptr; }

HRESULT PinnedSystem::NextGuid(GUID* guid) {
  const unsigned number = ++pinned_->guids_;
  *guid = {0, 0, 0x4000, {0x80, 0, 0, 0, 0, 0, 0, 0}};
  guid->Data4[6] = static_cast<unsigned char>(number / 0x100);
  guid->Data4[7] = static_cast<unsigned char>(number % 0x100);
  return S_OK;
}

void PinnedSystem::GetPinnedTime(SYSTEMTIME* time) {
  *time = {.wYear = 2026,
           .wMonth = 11,
           .wDayOfWeek = 0,
           .wDay = 15,
           .wHour = 7,
           .wMinute = 35,
           .wSecond = 30,
           .wMilliseconds = 0};
}

int PinnedSystem::ShowMessage(HWND, LPCSTR text, LPCSTR caption, UINT style) {
  pinned_->show_(FromAnsi(text), FromAnsi(caption), static_cast<int>(style));
  return IDOK;
}

}  // namespace kvdm::client
