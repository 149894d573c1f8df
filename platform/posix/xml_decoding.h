// The encodings of XML texts.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kvdm {

// The UTF-8 form, without a byte order mark, of a text in the encoding that its byte order mark or
// else its declaration names, UTF-8 without both. Nothing when the encoding is unknown or doesn't
// fit the bytes.
std::optional<std::string> DecodedXml(std::string_view bytes);

// `text` without the byte order mark of UTF-8.
std::string_view WithoutByteOrderMark(std::string_view text);

}  // namespace kvdm
