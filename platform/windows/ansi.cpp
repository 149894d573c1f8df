#include "platform/windows/ansi.h"

#include <windows.h>

#include "platform/utf8.h"
#include "platform/windows/utf16.h"

namespace kvdm {
namespace {

constexpr unsigned kGb18030 = 54936;

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

bool IsCharacter(char32_t character) {
  constexpr char32_t kLast = 0x10FFFF;
  return character <= kLast && (character < 0xD800 || character > 0xDFFF);
}

}  // namespace

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
  if (!IsCharacter(character)) return false;
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

}  // namespace kvdm
