#include "platform/xml/xml_input.h"

#include "platform/utf8.h"
#include "platform/xml/attribute_scan.h"
#include "platform/xml/declaration.h"
#include "platform/xml/limits.h"
#include "platform/xml/xml_text.h"

namespace kvdm {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

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
