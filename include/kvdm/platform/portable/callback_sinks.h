/// @file
/// Message box and log that hand on what they are given to a function of the host's.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include <kvdm/export.h>
#include <kvdm/platform/code_page.h>
#include <kvdm/platform/log.h>
#include <kvdm/platform/message_box.h>

namespace kvdm {

/// Hands messages to a function.
class KVDM_EXPORT CallbackMessageBox : public MessageBox {
 public:
  /// Takes a message; the arguments are those of MessageBox::Show.
  using Callback =
      std::function<void(std::string_view text, std::string_view caption, MessageStyle style)>;

  /// Without a function, messages are printed on the standard error stream as "caption: text".
  explicit CallbackMessageBox(Callback show = {}, CodePage code_page = CodePage::kUtf8);

  /// Characters that the code page does not have arrive as "?".
  void Show(std::string_view text, std::string_view caption, MessageStyle style) override;

 private:
  Callback show_;
  CodePage code_page_;
};

/// Hands notes to a function.
class KVDM_EXPORT CallbackLog : public Log {
 public:
  /// Takes a line, which ends when the call returns.
  using Callback = std::function<void(std::string_view line)>;

  /// Without a function, nothing is kept.
  explicit CallbackLog(Callback note = {});

  /// When the function fails, the standard error stream gets the line instead.
  void Note(std::string_view line) override;

 private:
  Callback note_;
};

}  // namespace kvdm
