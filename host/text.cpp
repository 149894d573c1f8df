#include "host/text.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/os.h"
#include "platform/utf8.h"

namespace kvdm {
namespace {

bool IsControl(char32_t character) {
  return character < 0x20 || (character >= 0x7F && character <= 0x9F);
}

// Line and paragraph separators, and the marks that change the direction of what follows.
bool Rearranges(char32_t character) {
  return (character >= 0x2028 && character <= 0x202E) ||
         (character >= 0x2066 && character <= 0x2069) || character == 0x200E || character == 0x200F;
}

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
    const auto byte = static_cast<unsigned char>(text.front());
    const CodePoint point = TakeCodePoint(text);
    if (!point.valid) {
      result += fmt::format("\\x{:02X}", byte);
    } else if ((IsControl(point.value) && kept.find(static_cast<char>(byte)) == kept.npos) ||
               Rearranges(point.value)) {
      result += Escaped(point.value);
    } else {
      AppendUtf8(point.value, result);
    }
  }
  return result;
}

}  // namespace

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

}  // namespace kvdm
