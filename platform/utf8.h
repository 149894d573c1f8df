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
  // kWord for none.
  const auto first = [&](std::uint64_t word) {
    return static_cast<std::size_t>(std::countr_zero(mark(word))) / kWord;
  };
  const auto word_at = [&](std::size_t place) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data() + place, kWord);
    return word;
  };
  if (text.size() < kWord) {
    std::uint64_t word = 0x6161616161616161U;  // letters, which nobody marks
    for (std::size_t i = text.size(); i != 0; --i) {
      word = word << kWord | static_cast<unsigned char>(text[i - 1]);
    }
    return std::min(text.size(), first(word));
  }
  const std::size_t last = text.size() - kWord;
  for (std::size_t place = 0; place < last; place += kWord) {
    const std::size_t run = first(word_at(place));
    if (run < kWord) return place + run;
  }
  return last + first(word_at(last));
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
