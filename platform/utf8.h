// UTF-8 text, code point by code point, and from other encodings.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
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

// How many bytes at the start of `text` are before the first that `mark` marks. It is given eight
// bytes as a number, and sets the high bit of the first of them that counts; of bytes after that as
// it likes.
template <class Mark>
[[nodiscard]] std::size_t RunWithoutMarks(std::string_view text, const Mark& mark) {
  static_assert(std::endian::native == std::endian::little);
  constexpr std::size_t kWord = sizeof(std::uint64_t);
  const auto marked = [&](const char* bytes, std::size_t count) {
    std::uint64_t word = 0x6161616161616161U;  // letters, which nobody marks
    std::memcpy(&word, bytes, count);
    return static_cast<std::size_t>(std::countr_zero(mark(word))) / kWord;  // kWord for none
  };
  std::size_t size = 0;
  for (; text.size() - size >= kWord; size += kWord) {
    const std::size_t first = marked(text.data() + size, kWord);
    if (first < kWord) return size + first;
  }
  return std::min(text.size(), size + marked(text.data() + size, text.size() - size));
}

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
