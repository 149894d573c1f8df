// UTF-8, the component's text, and UTF-16, the system's.
#pragma once

#include <string>
#include <string_view>

namespace kvdm {

// Bytes that are not UTF-8 become U+FFFD each.
[[nodiscard]] std::wstring ToUtf16(std::string_view text);

// A surrogate without its pair becomes U+FFFD.
[[nodiscard]] std::string ToUtf8(std::wstring_view text);

}  // namespace kvdm
