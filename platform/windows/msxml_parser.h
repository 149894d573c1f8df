// The XML parser on Windows.
#pragma once

#include <string_view>

#include "platform/xml_parser.h"

namespace kvdm {

// MSXML says whether a text is well-formed. What it holds is read from the text itself: MSXML's
// document gives names, declarations and white space back differently from version to version.
//
// Besides what XmlParser promises, refuses without reading on: texts larger than documents get,
// elements within elements deeper, and attributes of one element more, than documents have. The
// thread must have initialised COM. Run-time error 429 where MSXML isn't installed.
class MsxmlParser final : public XmlParser {
 public:
  bool Parse(std::string_view text, XmlEncoding encoding, XmlHandler& handler) override;
};

}  // namespace kvdm
