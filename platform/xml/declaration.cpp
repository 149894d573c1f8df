#include "platform/xml/declaration.h"

#include <algorithm>

#include "platform/xml/xml_text.h"

namespace kvdm {
namespace {

using xml::Skip;
using xml::SkipWhiteSpace;

bool IsDigit(char character) { return character >= '0' && character <= '9'; }

bool IsLetter(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool IsVersion(std::string_view text) {
  constexpr std::string_view kMajor = "1.";
  return text.starts_with(kMajor) && std::ranges::all_of(text.substr(kMajor.size()), IsDigit);
}

bool IsEncoding(std::string_view text) {
  static constexpr std::string_view kOthers = "._-";
  return !text.empty() && IsLetter(text.front()) && std::ranges::all_of(text, [](char character) {
    return IsLetter(character) || IsDigit(character) || kOthers.find(character) != kOthers.npos;
  });
}

bool IsYesOrNo(std::string_view text) { return text == "yes" || text == "no"; }

// Takes a quoted value off `rest`.
std::optional<std::string_view> TakeQuoted(std::string_view& rest) {
  if (!rest.starts_with('"') && !rest.starts_with('\'')) return std::nullopt;
  const auto end = rest.find(rest.front(), 1);
  if (end == std::string_view::npos) return std::nullopt;
  const std::string_view value = rest.substr(1, end - 1);
  rest.remove_prefix(end + 1);
  return value;
}

// Takes white space and `name="value"` off `rest` where they are next; else leaves `rest`.
std::optional<std::string_view> TakePart(std::string_view name, bool (*fits)(std::string_view),
                                         std::string_view& rest) {
  std::string_view after = rest;
  if (!SkipWhiteSpace(after) || !Skip(name, after)) return std::nullopt;
  SkipWhiteSpace(after);
  if (!Skip("=", after)) return std::nullopt;
  SkipWhiteSpace(after);
  const auto value = TakeQuoted(after);
  if (!value || !fits(*value)) return std::nullopt;
  rest = after;
  return value;
}

}  // namespace

std::optional<XmlDeclaration> DeclarationOf(std::string_view text) {
  std::string_view rest = text;
  if (!Skip("<?xml", rest) || !TakePart("version", IsVersion, rest)) return std::nullopt;
  const auto encoding = TakePart("encoding", IsEncoding, rest);
  TakePart("standalone", IsYesOrNo, rest);
  SkipWhiteSpace(rest);
  if (!Skip("?>", rest)) return std::nullopt;
  return XmlDeclaration{encoding.value_or(std::string_view()), text.size() - rest.size()};
}

}  // namespace kvdm
