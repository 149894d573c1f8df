// The services of Windows, as one bundle.
#pragma once

#include <memory>

#include <kvdm/platform/platform.h>
#include <kvdm/platform/portable/callback_sinks.h>

namespace kvdm {

// Every member may be left out.
struct WindowsOptions {
  // Where messages go; a message box of the system without it.
  CallbackMessageBox::Callback message_box = {};
  // Where log lines go; to the debugger without it.
  CallbackLog::Callback log = {};
  // The sibling libraries; those that are registered on this machine without it.
  std::shared_ptr<Siblings> siblings = {};
};

Platform MakeWindowsPlatform(const WindowsOptions& options);

}  // namespace kvdm
