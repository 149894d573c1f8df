#include <gtest/gtest.h>
#include <windows.h>

#include "platform/windows/windows_platform.h"

namespace kvdm {
namespace {

// Counts the dialogues that this thread opens, and presses their button. (Wine without a display
// opens none to the end.)
class BoxWatcher {
 public:
  BoxWatcher() : hook_(::SetWindowsHookExW(WH_CBT, OnEvent, nullptr, ::GetCurrentThreadId())) {
    dialogues = 0;
  }
  BoxWatcher(const BoxWatcher&) = delete;
  BoxWatcher& operator=(const BoxWatcher&) = delete;
  ~BoxWatcher() { ::UnhookWindowsHookEx(hook_); }

  static inline int dialogues = 0;

 private:
  static LRESULT CALLBACK OnEvent(int event, WPARAM window, LPARAM details) {
    const auto handle = reinterpret_cast<HWND>(window);
    if (event == HCBT_CREATEWND) Count(*reinterpret_cast<CBT_CREATEWNDW*>(details)->lpcs);
    if (event == HCBT_ACTIVATE) ::PostMessageW(handle, WM_COMMAND, IDOK, 0);
    return 0;
  }

  static void Count(const CREATESTRUCTW& window) {
    if (window.lpszClass == WC_DIALOG) ++dialogues;
  }

  HHOOK hook_;
};

TEST(Win32MessageBoxTest, OpensABoxOfTheSystem) {
  const BoxWatcher watcher;
  MakeWindowsPlatform({}).message_box->Show("Can't save \u0416", "Kelvaro",
                                            MessageStyle::kExclamation);
  EXPECT_EQ(BoxWatcher::dialogues, 1);
}

}  // namespace
}  // namespace kvdm
