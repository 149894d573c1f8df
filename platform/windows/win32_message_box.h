// Message boxes of the system.
#pragma once

#include <kvdm/platform/message_box.h>

namespace kvdm {

class Win32MessageBox final : public MessageBox {
 public:
  void Show(std::string_view text, std::string_view caption, MessageStyle style) override;
};

}  // namespace kvdm
