#include "platform/xml/xml_input.h"

#include <algorithm>

#include "platform/utf8.h"
#include "platform/xml/limits.h"
#include "platform/xml/xml_text.h"

namespace kvdm {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

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

void SkipPast(std::string_view end, std::string_view& rest) {
  const auto found = rest.find(end);
  rest.remove_prefix(found == std::string_view::npos ? rest.size() : found + end.size());
}

bool TrySkip(std::string_view start, std::string_view end, std::string_view& rest) {
  if (!rest.starts_with(start)) return false;
  rest.remove_prefix(start.size());
  SkipPast(end, rest);
  return true;
}

// Skips a tag, each of whose quoted values is an attribute's; their number.
std::size_t SkipTag(std::string_view& rest) {
  std::size_t attributes = 0;
  while (true) {
    rest.remove_prefix(std::min(rest.size(), rest.find_first_of(">\"'")));
    if (rest.empty() || rest.front() == '>') return attributes;
    const std::string_view quote = rest.substr(0, 1);
    rest.remove_prefix(1);
    SkipPast(quote, rest);
    ++attributes;
  }
}

// Whether every tag is too short for more attributes than `limit`, which take five bytes each.
bool HasShortTags(std::string_view text, std::size_t limit) {
  constexpr std::size_t kLeast = 5;
  while (true) {
    const std::size_t size = std::min(text.size(), text.find('<', 1));
    if (size > kLeast * limit) return false;
    text.remove_prefix(size);
    if (text.empty()) return true;
  }
}

std::string_view WithoutByteOrderMark(std::string_view text) {
  if (text.starts_with(kUtf8Mark)) text.remove_prefix(kUtf8Mark.size());
  return text;
}

// Whether a text that starts with a declaration starts with a well-formed one: not every parser
// wants white space between its parts.
bool StartsWell(std::string_view text) {
  constexpr std::string_view kStart = "<?xml";
  const bool is_declared = text.starts_with(kStart) && text.size() > kStart.size() &&
                           xml::kWhiteSpace.find(text[kStart.size()]) != xml::kWhiteSpace.npos;
  return !is_declared || DeclarationOf(text);
}

bool CanBeDocument(std::string_view text) {
  return text.size() <= xml::kMaxInputBytes && !text.starts_with(kUtf8Mark) &&
         text.find('\0') == std::string_view::npos && IsValidUtf8(text) && StartsWell(text) &&
         HasAttributesWithin(text, xml::kMaxAttributes);
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

bool HasAttributesWithin(std::string_view text, std::size_t limit) {
  if (HasShortTags(text, limit)) return true;
  while (true) {
    text.remove_prefix(std::min(text.size(), text.find('<')));
    if (text.empty()) return true;
    if (TrySkip("<!--", "-->", text) || TrySkip("<![CDATA[", "]]>", text) ||
        TrySkip("<?", "?>", text)) {
      continue;
    }
    if (SkipTag(text) > limit) return false;
  }
}

std::optional<std::string> DecodedXml(std::string_view bytes) {
  using std::string_view_literals::operator""sv;
  if (bytes.starts_with(kUtf8Mark)) return std::string(WithoutByteOrderMark(bytes));
  if (bytes.starts_with("\xFF\xFE"sv)) return Utf8From("UTF-16LE", bytes.substr(2));
  if (bytes.starts_with("\xFE\xFF"sv)) return Utf8From("UTF-16BE", bytes.substr(2));
  if (bytes.starts_with("<\0?\0"sv)) return Utf8From("UTF-16LE", bytes);
  if (bytes.starts_with("\0<\0?"sv)) return Utf8From("UTF-16BE", bytes);
  const auto declaration = DeclarationOf(bytes);
  if (!declaration || declaration->encoding.empty()) return std::string(bytes);
  return Utf8From(declaration->encoding, bytes);
}

bool ParseDecoded(std::string_view text, XmlEncoding encoding,
                  const std::function<bool(std::string_view utf8)>& parse) {
  if (text.size() > xml::kMaxInputBytes) return false;
  if (encoding == XmlEncoding::kUtf8) {
    const std::string_view utf8 = WithoutByteOrderMark(text);
    return CanBeDocument(utf8) && parse(utf8);
  }
  const auto decoded = DecodedXml(text);
  return decoded && CanBeDocument(*decoded) && parse(*decoded);
}

}  // namespace kvdm
