#include "platform/windows/text.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "platform/code_page.h"
#include "platform/file_names.h"
#include "platform/utf8.h"

namespace kvdm {
namespace {

constexpr unsigned kGb18030 = 54936;
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

// These have every character, and the system takes no options for them.
bool HasEveryCharacter(unsigned page) { return page == CP_UTF8 || page == kGb18030; }

// `is_missing` tells whether a character had to be replaced.
std::string Encoded(std::wstring_view units, unsigned page, BOOL* is_missing) {
  const bool every = HasEveryCharacter(page);
  const DWORD options = every ? 0 : WC_NO_BEST_FIT_CHARS;
  const char* const replacement = every ? nullptr : "?";
  BOOL* const replaced = every ? nullptr : is_missing;
  const auto count = static_cast<int>(units.size());
  std::string bytes(
      ::WideCharToMultiByte(page, options, units.data(), count, nullptr, 0, replacement, replaced),
      '\0');
  ::WideCharToMultiByte(page, options, units.data(), count, bytes.data(),
                        static_cast<int>(bytes.size()), replacement, replaced);
  return bytes;
}

struct Encoding {
  std::string_view name;
  unsigned page;
};

constexpr unsigned kAscii = 20127;
// Of ISO 8859-n, n from 1 to 15.
constexpr unsigned kBeforeIso8859 = 28590;
constexpr unsigned kLastIso8859 = 15;

constexpr std::array kEncodings = {
    Encoding{"us-ascii", kAscii}, Encoding{"ascii", kAscii},       Encoding{"latin1", 28591},
    Encoding{"koi8-r", 20866},    Encoding{"koi8-u", 21866},       Encoding{"shift_jis", 932},
    Encoding{"windows-31j", 932}, Encoding{"euc-jp", 20932},       Encoding{"gb2312", 936},
    Encoding{"gbk", 936},         Encoding{"gb18030", kGb18030},   Encoding{"big5", 950},
    Encoding{"euc-kr", 949},      Encoding{"ks_c_5601-1987", 949},
};

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(), [](char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter;
  });
  return lower;
}

// The number n, from 1 to `last`, of a name that is `prefix` followed by n.
std::optional<unsigned> NumberAfter(std::string_view prefix, std::string_view name, unsigned last) {
  if (!name.starts_with(prefix)) return std::nullopt;
  name.remove_prefix(prefix.size());
  unsigned number = 0;
  const char* const end = name.data() + name.size();
  const auto [stop, error] = std::from_chars(name.data(), end, number);
  if (error != std::errc() || stop != end || number == 0 || number > last) return std::nullopt;
  return number;
}

// The code page of an encoding; nothing for an unknown one.
std::optional<unsigned> PageOf(std::string_view name) {
  constexpr unsigned kLastAnsi = 1258;
  for (const auto prefix : {"windows-", "cp", "ibm"}) {
    if (const auto page = NumberAfter(prefix, name, kLastAnsi)) return page;
  }
  if (const auto part = NumberAfter("iso-8859-", name, kLastIso8859)) return kBeforeIso8859 + *part;
  const auto* found = std::ranges::find(kEncodings, name, &Encoding::name);
  if (found == kEncodings.end()) return std::nullopt;
  return found->page;
}

// Code pages let bytes that stand for no character stand for controls or private characters. (In
// ISO 8859 the controls are meant, and GB 18030 has every character.)
bool StandsForNothing(wchar_t unit, unsigned page) {
  const bool is_iso = page > kBeforeIso8859 && page <= kBeforeIso8859 + kLastIso8859;
  const bool is_control = unit >= 0x80 && unit <= 0x9F;
  const bool is_private = unit >= 0xE000 && unit <= 0xF8FF;
  return page != kGb18030 && (is_private || (is_control && !is_iso));
}

bool IsAscii(std::string_view bytes) {
  return std::ranges::all_of(bytes, [](char byte) { return static_cast<signed char>(byte) >= 0; });
}

std::optional<std::string> FromPage(unsigned page, std::string_view bytes) {
  // The system would cut off what is beyond ASCII.
  if (page == kAscii && !IsAscii(bytes)) return std::nullopt;
  const auto count = static_cast<int>(bytes.size());
  std::wstring units(bytes.size(), L'\0');  // No character takes more units than bytes.
  const int length =
      ::MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, bytes.data(), count, units.data(), count);
  units.resize(static_cast<std::size_t>(length));
  const auto is_nothing = [page](wchar_t unit) { return StandsForNothing(unit, page); };
  if ((length == 0 && count != 0) || std::ranges::any_of(units, is_nothing)) return std::nullopt;
  return ToUtf8(units);
}

// Nothing when there is half a character.
std::optional<std::string> FromUtf16(std::string_view bytes, std::size_t low_byte) {
  if (bytes.size() % 2 != 0) return std::nullopt;
  std::wstring units;
  units.reserve(bytes.size() / 2);
  for (; !bytes.empty(); bytes.remove_prefix(2)) {
    const auto low = static_cast<unsigned char>(bytes[low_byte]);
    const auto high = static_cast<unsigned char>(bytes[1 - low_byte]);
    units += static_cast<wchar_t>(high << 8U | low);
  }
  std::string text = ToUtf8(units);
  // What isn't paired has become another character.
  if (ToUtf16(text) != units) return std::nullopt;
  return text;
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

std::string ToAnsi(std::string_view text, unsigned page) {
  BOOL ignored = FALSE;
  return Encoded(ToUtf16(text), page, &ignored);
}

std::string ToAnsi(std::string_view text) { return ToAnsi(text, ::GetACP()); }

std::string FromAnsi(std::string_view bytes, unsigned page) {
  const auto count = static_cast<int>(bytes.size());
  std::wstring units(::MultiByteToWideChar(page, 0, bytes.data(), count, nullptr, 0), L'\0');
  ::MultiByteToWideChar(page, 0, bytes.data(), count, units.data(), static_cast<int>(units.size()));
  return ToUtf8(units);
}

std::string FromAnsi(std::string_view bytes) { return FromAnsi(bytes, ::GetACP()); }

bool HasAnsi(char32_t character, unsigned page) {
  if (!Holds(CodePage::kUtf8, character)) return false;
  std::string text;
  AppendUtf8(character, text);
  BOOL is_missing = FALSE;
  return !Encoded(ToUtf16(text), page, &is_missing).empty() && is_missing == FALSE;
}

unsigned MachineCodePage() {
  DWORD page = 0;
  ::GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_IDEFAULTANSICODEPAGE | LOCALE_RETURN_NUMBER,
                   reinterpret_cast<LPWSTR>(&page), sizeof page / sizeof(wchar_t));
  return page != 0 ? page : ::GetACP();
}

bool HasAnsi(char32_t character) { return HasAnsi(character, ::GetACP()); }

std::optional<std::string> Utf8From(std::string_view encoding, std::string_view bytes) {
  const std::string name = LowerCase(encoding);
  if (name == "utf-16le") return FromUtf16(bytes, 0);
  if (name == "utf-16be") return FromUtf16(bytes, 1);
  if (name == "utf-8" || name == "utf8") {
    return IsValidUtf8(bytes) ? std::optional(std::string(bytes)) : std::nullopt;
  }
  const auto page = PageOf(name);
  return page ? FromPage(*page, bytes) : std::nullopt;
}

char16_t UpperCase(char16_t unit) {
  auto letter = static_cast<wchar_t>(unit);
  ::CharUpperBuffW(&letter, 1);
  return static_cast<char16_t>(letter);
}

}  // namespace kvdm
