#include "platform/xml/xml_text.h"

#include <algorithm>

#include <kvdm/platform/error.h>

#include "platform/utf8.h"
#include "platform/xml/limits.h"

namespace kvdm::xml {
namespace {

constexpr CodePointRange kNameStarts[] = {
    {':', ':'},       {'A', 'Z'},       {'_', '_'},       {'a', 'z'},
    {0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},
    {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF},
    {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF},
};

// What a name may hold after its first character, besides the above.
constexpr CodePointRange kNameTails[] = {
    {'-', '.'}, {'0', '9'}, {0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040},
};

bool IsPrintableAscii(char character) { return character >= 0x20; }

}  // namespace

bool IsXmlCharacter(char32_t character) {
  if (character < 0x20) return character == '\t' || character == '\n' || character == '\r';
  return character != 0xFFFE && character != 0xFFFF;
}

std::size_t PlainRun(std::string_view text) {
  return RunWithoutMarks(text, [](std::uint64_t word) { return Markup(word); });
}

bool IsPlainAscii(std::string_view text) {
  return RunWithoutMarks(text, [](std::uint64_t word) { return MarkupOrForeign(word); }) ==
         text.size();
}

Sanitized::Sanitized(std::string_view text) : view_(text) {
  if (IsPlainAscii(text)) return;
  replaced_.reserve(text.size());
  while (!text.empty()) {
    const auto special = std::ranges::find_if_not(text, IsPrintableAscii);
    replaced_.append(text.begin(), special);
    text.remove_prefix(special - text.begin());
    if (text.empty()) break;
    const char32_t character = TakeCodePoint(text).value;
    AppendUtf8(IsXmlCharacter(character) ? character : kReplacementCharacter, replaced_);
  }
  view_ = replaced_;
}

// What is too long at first is not copied: it only gets longer.
SanitizedValue::SanitizedValue(std::string_view text)
    : Sanitized(text.size() > kMaxValueBytes ? throw RuntimeError(kOutOfMemory) : text) {
  if (std::string_view(*this).size() > kMaxValueBytes) throw RuntimeError(kOutOfMemory);
}

bool IsName(std::string_view name) {
  if (name.empty() || !IsIn(kNameStarts, TakeCodePoint(name).value)) return false;
  while (!name.empty()) {
    const char32_t character = TakeCodePoint(name).value;
    if (!IsIn(kNameStarts, character) && !IsIn(kNameTails, character)) return false;
  }
  return true;
}

bool IsPlainName(std::string_view name) {
  return IsName(name) && name.find(':') == std::string_view::npos;
}

bool IsNamespaceDeclaration(std::string_view name) {
  return name == "xmlns" || PrefixOf(name) == "xmlns";
}

std::string_view PrefixOf(std::string_view name) {
  const auto colon = name.find(':');
  return colon == std::string_view::npos ? std::string_view() : name.substr(0, colon);
}

bool Skip(std::string_view expected, std::string_view& rest) {
  if (!rest.starts_with(expected)) return false;
  rest.remove_prefix(expected.size());
  return true;
}

bool SkipWhiteSpace(std::string_view& rest) {
  const auto size = std::min(rest.size(), rest.find_first_not_of(kWhiteSpace));
  rest.remove_prefix(size);
  return size > 0;
}

}  // namespace kvdm::xml
