/// @file
/// Factory of the platform of a POSIX system.
#pragma once

#include <map>
#include <string>

#include <kvdm/export.h>
#include <kvdm/platform/code_page.h>
#include <kvdm/platform/platform.h>
#include <kvdm/platform/portable/callback_sinks.h>

namespace kvdm {

/// What a host may decide; every member may be left out.
struct PosixOptions {
  /// The folders behind drive letters, such as {'D', "/srv/data"}.
  std::map<char, std::string> drives = {};

  /// What registry and message box take for the ANSI code page.
  CodePage code_page = CodePage::kUtf8;

  /// The file of the registry; "" for $KVDM_REGISTRY, else registry.db in the user's data folder,
  /// which all programs share.
  std::string registry_path = {};

  /// Where messages go; the standard error stream without it. Called on the thread of the
  /// operation.
  CallbackMessageBox::Callback message_box = {};

  /// Where log lines go; nowhere without it. Called on the thread of the operation.
  CallbackLog::Callback log = {};
};

/// A new bundle with every member set. Opens nothing yet: what can't be opened fails at its use.
KVDM_EXPORT Platform MakePosixPlatform(const PosixOptions& options);

}  // namespace kvdm
