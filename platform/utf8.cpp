#include "platform/utf8.h"

#include <algorithm>
#include <cstdint>

namespace kvdm {
namespace {

// The length of the sequence that `lead` starts and the smallest value it may hold; 0 for no lead
// byte.
struct Sequence {
  std::size_t length;
  char32_t least;
  char32_t bits;
};

Sequence SequenceOf(unsigned char lead) {
  if (lead < 0x80) return {1, 0, lead};
  if (lead < 0xC2) return {0, 0, 0};
  if (lead < 0xE0) return {2, 0x80, lead & 0x1FU};
  if (lead < 0xF0) return {3, 0x800, lead & 0x0FU};
  if (lead < 0xF5) return {4, 0x10000, lead & 0x07U};
  return {0, 0, 0};
}

CodePoint Invalid(std::string_view& rest) {
  rest.remove_prefix(1);
  return {kReplacementCharacter, false};
}

}  // namespace

CodePoint TakeCodePoint(std::string_view& rest) {
  const Sequence sequence = SequenceOf(static_cast<unsigned char>(rest.front()));
  if (sequence.length == 0 || sequence.length > rest.size()) return Invalid(rest);
  char32_t value = sequence.bits;
  for (std::size_t i = 1; i < sequence.length; ++i) {
    const auto byte = static_cast<unsigned char>(rest[i]);
    if ((byte & 0xC0U) != 0x80U) return Invalid(rest);
    value = value << 6U | (byte & 0x3FU);
  }
  const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
  if (value < sequence.least || value > 0x10FFFF || surrogate) return Invalid(rest);
  rest.remove_prefix(sequence.length);
  return {value, true};
}

void AppendUtf8(char32_t code_point, std::string& text) {
  const auto tail = [&](unsigned shift) {
    text += static_cast<char>(0x80U | ((code_point >> shift) & 0x3FU));
  };
  if (code_point < 0x80) {
    text += static_cast<char>(code_point);
  } else if (code_point < 0x800) {
    text += static_cast<char>(0xC0U | (code_point >> 6U));
    tail(0);
  } else if (code_point < 0x10000) {
    text += static_cast<char>(0xE0U | (code_point >> 12U));
    tail(6);
    tail(0);
  } else {
    text += static_cast<char>(0xF0U | (code_point >> 18U));
    tail(12);
    tail(6);
    tail(0);
  }
}

std::size_t AsciiRun(std::string_view text) {
  return RunWithoutMarks(text, [](std::uint64_t word) { return word & 0x8080808080808080U; });
}

bool IsValidUtf8(std::string_view text) {
  while (true) {
    text.remove_prefix(AsciiRun(text));
    if (text.empty()) return true;
    if (!TakeCodePoint(text).valid) return false;
  }
}

bool IsIn(std::span<const CodePointRange> ranges, char32_t code_point) {
  return std::ranges::any_of(ranges, [code_point](const CodePointRange& range) {
    return range.first <= code_point && code_point <= range.last;
  });
}

std::size_t Utf16Length(std::string_view text) {
  std::size_t length = 0;
  while (!text.empty()) length += TakeCodePoint(text).value > 0xFFFF ? 2 : 1;
  return length;
}

}  // namespace kvdm
