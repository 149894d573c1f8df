#include "platform/code_page.h"

#include <algorithm>
#include <array>
#include <optional>

#include "platform/utf8.h"

namespace kvdm {
namespace {

constexpr unsigned char kFirstOwnByte = 0x80;

// What the bytes 80 to 9F of Windows-1252 stand for; all others are Latin-1.
constexpr std::array<char32_t, 32> kWindows1252 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr unsigned char kLastOwnByte = kFirstOwnByte + kWindows1252.size() - 1;

char32_t CharacterOf(unsigned char byte) {
  const bool own = byte >= kFirstOwnByte && byte <= kLastOwnByte;
  return own ? kWindows1252[byte - kFirstOwnByte] : byte;
}

std::optional<unsigned char> ByteOf(char32_t character) {
  if (character < kFirstOwnByte || (character > kLastOwnByte && character <= 0xFF)) {
    return static_cast<unsigned char>(character);
  }
  const auto* found = std::ranges::find(kWindows1252, character);
  if (found == kWindows1252.end()) return std::nullopt;
  return static_cast<unsigned char>(kFirstOwnByte + (found - kWindows1252.begin()));
}

// Moves the ASCII at the start of `rest`, which every code page has, to the end of `text`.
void TakeAscii(std::string_view& rest, std::string& text) {
  const std::size_t size = AsciiRun(rest);
  text += rest.substr(0, size);
  rest.remove_prefix(size);
}

// The text with every byte that is not UTF-8 replaced.
std::string Repaired(std::string_view text) {
  if (IsValidUtf8(text)) return std::string(text);
  std::string repaired;
  repaired.reserve(text.size());
  while (!text.empty()) AppendUtf8(TakeCodePoint(text).value, repaired);
  return repaired;
}

}  // namespace

bool Holds(CodePage page, char32_t character) {
  const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
  if (page == CodePage::kUtf8) return character <= 0x10FFFF && !surrogate;
  return ByteOf(character).has_value();
}

std::string Encode(std::string_view text, CodePage page) {
  if (page == CodePage::kUtf8) return Repaired(text);
  std::string bytes;
  bytes.reserve(text.size());
  while (true) {
    TakeAscii(text, bytes);
    if (text.empty()) return bytes;
    const char32_t character = TakeCodePoint(text).value;
    if (const auto byte = ByteOf(character)) {
      bytes += static_cast<char>(*byte);
    } else {
      bytes.append(character > 0xFFFF ? 2 : 1, '?');
    }
  }
}

std::string Decode(std::string_view bytes, CodePage page) {
  if (page == CodePage::kUtf8) return Repaired(bytes);
  std::string text;
  text.reserve(bytes.size());
  while (true) {
    TakeAscii(bytes, text);
    if (bytes.empty()) return text;
    AppendUtf8(CharacterOf(static_cast<unsigned char>(bytes.front())), text);
    bytes.remove_prefix(1);
  }
}

}  // namespace kvdm
