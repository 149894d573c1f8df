// Text in the ANSI code page.
#pragma once

#include <string>
#include <string_view>

#include <kvdm/platform/code_page.h>

namespace kvdm {

// Whether `page` has `character`. In Windows-1252 the five bytes that stand for no character stand
// for the C1 control of the same number.
[[nodiscard]] bool Holds(CodePage page, char32_t character);

// UTF-8 text as bytes in `page`. A character that it does not have becomes "?", two of them where
// the character takes two UTF-16 units; there are no best-fit substitutes.
[[nodiscard]] std::string Encode(std::string_view text, CodePage page);

// Bytes in `page` as UTF-8 text. Bytes that are not UTF-8 become U+FFFD each.
[[nodiscard]] std::string Decode(std::string_view bytes, CodePage page);

}  // namespace kvdm
