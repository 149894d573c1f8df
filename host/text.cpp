#include "host/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "host/os.h"
#include "platform/utf8.h"

namespace kvdm {
namespace {

// Control characters; line and paragraph separators; and the format characters, of Unicode's
// general category Cf, which change the direction of what follows, hide in it or join it.
constexpr CodePointRange kUnsafe[] = {
    {0x00, 0x1F},       {0x7F, 0x9F},       {0xAD, 0xAD},       {0x600, 0x605},
    {0x61C, 0x61C},     {0x6DD, 0x6DD},     {0x70F, 0x70F},     {0x890, 0x891},
    {0x8E2, 0x8E2},     {0x180E, 0x180E},   {0x200B, 0x200F},   {0x2028, 0x202E},
    {0x2060, 0x2064},   {0x2066, 0x206F},   {0xFEFF, 0xFEFF},   {0xFFF9, 0xFFFB},
    {0x110BD, 0x110BD}, {0x110CD, 0x110CD}, {0x13430, 0x1343F}, {0x1BCA0, 0x1BCA3},
    {0x1D173, 0x1D17A}, {0xE0001, 0xE0001}, {0xE0020, 0xE007F},
};

std::string Escaped(char32_t character) {
  switch (character) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      return fmt::format("\\u{{{:X}}}", static_cast<std::uint32_t>(character));
  }
}

// `text` escaped, but for the characters that `kept` names.
std::string EscapedBut(std::string_view kept, std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const char byte = text.front();
    const CodePoint point = TakeCodePoint(text);
    if (!point.valid) {
      result += fmt::format("\\x{:02X}", static_cast<unsigned char>(byte));
    } else if (!IsSafe(point.value) && !(point.value < 0x80 && kept.find(byte) != kept.npos)) {
      result += Escaped(point.value);
    } else {
      AppendUtf8(point.value, result);
    }
  }
  return result;
}

// The form that JSON has for a character: of its UTF-16 units.
std::string JsonEscaped(char32_t character) {
  const auto unit = [](std::uint32_t value) { return fmt::format("\\u{:04x}", value); };
  if (character <= 0xFFFF) return unit(character);
  const std::uint32_t offset = character - 0x10000;
  return unit(0xD800 + (offset >> 10U)) + unit(0xDC00 + (offset & 0x3FFU));
}

}  // namespace

bool IsSafe(char32_t character) { return !IsIn(kUnsafe, character); }

std::string PrintableJson(std::string_view json) {
  std::string result;
  while (!json.empty()) {
    const char32_t character = TakeCodePoint(json).value;
    if (character == '\n' || IsSafe(character)) {
      AppendUtf8(character, result);
    } else {
      result += JsonEscaped(character);
    }
  }
  return result;
}

std::string Printable(std::string_view text) { return EscapedBut("", text); }

std::string PrintableLines(std::string_view text) {
  std::string lines;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool ends_line = text[i] == '\r';
    if (ends_line && i + 1 < text.size() && text[i + 1] == '\n') continue;
    lines += ends_line ? '\n' : text[i];
  }
  return EscapedBut("\n\t", lines);
}

std::size_t DisplayWidth(std::string_view text) {
  std::size_t width = 0;
  while (!text.empty()) width += os::ColumnsOf(TakeCodePoint(text).value);
  return width;
}

std::string Padded(std::string_view text, std::size_t width) {
  std::string padded(text);
  padded.append(width - std::min(width, DisplayWidth(text)), ' ');
  return padded;
}

namespace {

// The letters to change, add or leave out to make one word of the other.
std::size_t Distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t changed = diagonal + (a[i] == b[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({changed, diagonal + 1, row[j] + 1});
    }
  }
  return row[b.size()];
}

}  // namespace

std::string Nearest(std::string_view word, const std::vector<std::string>& candidates) {
  constexpr std::size_t kLongestWord = 100;
  std::size_t least = word.size() < 5 ? 2 : 3;
  std::string nearest;
  for (const std::string& candidate : candidates) {
    if (word.size() > kLongestWord || candidate.size() > kLongestWord) continue;
    const std::size_t distance = Distance(word, candidate);
    if (distance >= least || distance >= word.size()) continue;
    least = distance;
    nearest = candidate;
  }
  return nearest;
}

}  // namespace kvdm
