#include "platform/windows/utf16.h"

#include "platform/utf8.h"

namespace kvdm {
namespace {

constexpr char32_t kFirstAstral = 0x10000;

bool IsHighSurrogate(wchar_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(wchar_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// Takes the first character off `rest`, which is not empty.
char32_t TakeCharacter(std::wstring_view& rest) {
  const wchar_t first = rest.front();
  rest.remove_prefix(1);
  if (!IsHighSurrogate(first) && !IsLowSurrogate(first)) return first;
  if (IsLowSurrogate(first) || rest.empty() || !IsLowSurrogate(rest.front())) {
    return kReplacementCharacter;
  }
  const wchar_t second = rest.front();
  rest.remove_prefix(1);
  return kFirstAstral + ((first & 0x3FFU) << 10U) + (second & 0x3FFU);
}

}  // namespace

std::wstring ToUtf16(std::string_view text) {
  std::wstring units;
  units.reserve(text.size());
  while (!text.empty()) {
    const char32_t character = TakeCodePoint(text).value;
    if (character < kFirstAstral) {
      units += static_cast<wchar_t>(character);
    } else {
      units += static_cast<wchar_t>(0xD800 + ((character - kFirstAstral) >> 10U));
      units += static_cast<wchar_t>(0xDC00 + (character & 0x3FFU));
    }
  }
  return units;
}

std::string ToUtf8(std::wstring_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  while (!text.empty()) AppendUtf8(TakeCharacter(text), bytes);
  return bytes;
}

}  // namespace kvdm
