// What would be different in each run of a test, made the same.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "tests/boundary/client/import_hook.h"

namespace kvdm::client {

// As long as it lives: identifiers that the DLL generates count up from
// {00000000-0000-4000-8000-000000000001}, it is 11/15/2026 7:35:30 AM for it, and its messages are
// handed to a function instead of the user. There may be one at a time.
class PinnedSystem {
 public:
  // Texts are what the system's message box would show.
  using Show = std::function<void(const std::string& text, const std::string& caption, int style)>;

  explicit PinnedSystem(Show show);
  PinnedSystem(const PinnedSystem&) = delete;
  PinnedSystem& operator=(const PinnedSystem&) = delete;
  ~PinnedSystem();

 private:
  static HRESULT STDAPICALLTYPE NextGuid(GUID* guid);
  static void WINAPI GetPinnedTime(SYSTEMTIME* time);
  static int WINAPI ShowMessage(HWND owner, LPCSTR text, LPCSTR caption, UINT style);

  static PinnedSystem* pinned_;
  Show show_;
  unsigned guids_ = 0;
  ImportHook guid_hook_;
  ImportHook time_hook_;
  ImportHook message_hook_;
};

}  // namespace kvdm::client
