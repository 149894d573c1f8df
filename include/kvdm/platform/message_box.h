// Messages that the user has to see.
#pragma once

#include <string_view>

#include <kvdm/export.h>

namespace kvdm {

// How a message looks; the numbers are the platform's own.
enum class MessageStyle : int {
  kPlain = 0,         // an OK button
  kExclamation = 48,  // an OK button and the exclamation icon
};

class KVDM_EXPORT MessageBox {
 public:
  virtual ~MessageBox() = default;

  // Shows `text` under `caption` and returns once it was acknowledged. Characters outside the ANSI
  // code page are shown replaced.
  virtual void Show(std::string_view text, std::string_view caption, MessageStyle style) = 0;
};

}  // namespace kvdm
