// The text encodings that the operating system knows.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kvdm {

// The UTF-8 form of `bytes` in `encoding`, such as "windows-1252"; letter case doesn't matter.
// Nothing when the encoding is unknown or doesn't fit the bytes.
[[nodiscard]] std::optional<std::string> Utf8From(std::string_view encoding,
                                                  std::string_view bytes);

}  // namespace kvdm
