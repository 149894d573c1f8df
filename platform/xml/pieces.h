// The pieces of an XML text, for parsers that judge a text but don't hand it out as it is written.
#pragma once

#include <string>
#include <string_view>

#include "platform/xml_parser.h"

namespace kvdm {

// `text` with LF for each CR LF and each CR, as XML wants a text to be before anything else.
[[nodiscard]] std::string WithLineFeeds(std::string_view text);

// Reports the pieces of `text`, a UTF-8 text without CR, as XmlHandler wants them. False when the
// handler refuses one, at a document type declaration, at elements deeper than documents have, and
// where no well-formed text could go on as this one does; apart from that, doesn't judge whether
// the text is well-formed.
bool ReportPieces(std::string_view text, XmlHandler& handler);

}  // namespace kvdm
