// The services of a POSIX system, as one bundle.
#pragma once

#include <map>
#include <string>

#include <kvdm/export.h>
#include <kvdm/platform/code_page.h>
#include <kvdm/platform/platform.h>
#include <kvdm/platform/portable/callback_sinks.h>

namespace kvdm {

// Every member may be left out.
struct PosixOptions {
  // The folders behind drive letters, such as {'D', "/srv/data"}.
  std::map<char, std::string> drives = {};
  // What registry and message box take for the ANSI code page.
  CodePage code_page = CodePage::kUtf8;
  // The registry's file; "" for the default.
  std::string registry_path = {};
  // Where messages go; the standard error stream without it.
  CallbackMessageBox::Callback message_box = {};
  // Where log lines go; nowhere without it.
  CallbackLog::Callback log = {};
};

KVDM_EXPORT Platform MakePosixPlatform(const PosixOptions& options);

}  // namespace kvdm
