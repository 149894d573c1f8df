// UTF-8 text, code point by code point.
#pragma once

#include <string>
#include <string_view>

namespace kvdm {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

// Takes the first code point off `rest`, which is not empty. A byte that starts no valid sequence
// (invalid, overlong, a surrogate, beyond U+10FFFF) is taken alone and yields U+FFFD with `valid`
// false.
struct CodePoint {
  char32_t value;
  bool valid;
};
CodePoint TakeCodePoint(std::string_view& rest);

// Appends the UTF-8 form of `code_point`.
void AppendUtf8(char32_t code_point, std::string& text);

[[nodiscard]] bool IsValidUtf8(std::string_view text);

// The number of UTF-16 units that `text` has, as the component's clients count lengths.
[[nodiscard]] std::size_t Utf16Length(std::string_view text);

}  // namespace kvdm
