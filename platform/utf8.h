// UTF-8 text, code point by code point, and from other encodings.
#pragma once

#include <optional>
#include <span>
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

void AppendUtf8(char32_t code_point, std::string& text);

// How many bytes at the start of `text` are ASCII.
[[nodiscard]] std::size_t AsciiRun(std::string_view text);

[[nodiscard]] bool IsValidUtf8(std::string_view text);

// The UTF-8 form of `bytes` in `encoding`, such as "windows-1252"; letter case doesn't matter.
// Nothing when the encoding is unknown or doesn't fit the bytes. The operating system brings the
// encodings.
[[nodiscard]] std::optional<std::string> Utf8From(std::string_view encoding,
                                                  std::string_view bytes);

// The code points from the first to the last.
struct CodePointRange {
  char32_t first;
  char32_t last;
};
[[nodiscard]] bool IsIn(std::span<const CodePointRange> ranges, char32_t code_point);

// The number of UTF-16 units that `text` has, as the component's clients count lengths.
[[nodiscard]] std::size_t Utf16Length(std::string_view text);

}  // namespace kvdm
