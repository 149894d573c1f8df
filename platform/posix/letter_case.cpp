#include <utf8proc.h>

#include "platform/file_names.h"

namespace kvdm {

char16_t UpperCase(char16_t unit) {
  const auto upper = utf8proc_toupper(static_cast<utf8proc_int32_t>(unit));
  return upper > 0xFFFF ? unit : static_cast<char16_t>(upper);
}

}  // namespace kvdm
