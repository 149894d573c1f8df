// What XML parsers have in common before they parse.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/xml_parser.h"

namespace kvdm {

struct XmlDeclaration {
  std::string_view encoding;  // "" when it names none.
  std::size_t length = 0;     // From "<?xml" to "?>", in bytes.
};

// The declaration that `text` starts with; nothing when there is none or it isn't well-formed.
[[nodiscard]] std::optional<XmlDeclaration> DeclarationOf(std::string_view text);

// Whether no tag of `text` has more than `limit` attributes. Takes time in proportion to the text,
// which a parser's own check for repeated attributes may not. Says nothing of what comes after the
// first place that is not well-formed.
[[nodiscard]] bool HasAttributesWithin(std::string_view text, std::size_t limit);

// The UTF-8 form, without a byte order mark, of a text in the encoding that its byte order mark or
// else its declaration names, UTF-8 without both. Nothing when the encoding is unknown or doesn't
// fit the bytes.
std::optional<std::string> DecodedXml(std::string_view bytes);

// Answers what `parse` answers for the UTF-8 form of `text`, without a byte order mark and with no
// NULs. False, without calling it, when the text doesn't fit its encoding, starts with a
// declaration that is not well-formed, is larger than documents get, or gives an element more
// attributes than elements have.
bool ParseDecoded(std::string_view text, XmlEncoding encoding,
                  const std::function<bool(std::string_view utf8)>& parse);

}  // namespace kvdm
