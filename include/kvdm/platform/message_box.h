/// @file
/// Message box service: messages that the user has to see.
#pragma once

#include <string_view>

#include <kvdm/export.h>

namespace kvdm {

/// How a message looks; the numbers are those of the system's message box.
enum class MessageStyle : int {
  kPlain = 0,         ///< an OK button
  kExclamation = 48,  ///< an OK button and the exclamation icon
};

/// Shows messages. A host catches them by an implementation of its own, or with CallbackMessageBox.
class KVDM_EXPORT MessageBox {
 public:
  virtual ~MessageBox() = default;

  /// Shows `text` under `caption` and returns once it was acknowledged. Characters outside the ANSI
  /// code page are shown replaced. A failure to show changes nothing for the operation that
  /// reports.
  virtual void Show(std::string_view text, std::string_view caption, MessageStyle style) = 0;
};

}  // namespace kvdm
