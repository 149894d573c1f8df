// The XML parser on POSIX systems.
#pragma once

#include <string_view>

#include "platform/xml_parser.h"

namespace kvdm {

// Besides what XmlParser promises, refuses without reading on: texts larger than documents get,
// elements within elements deeper, and attributes of one element more, than documents have. Keeps
// no state and changes none of the process.
class LibxmlParser final : public XmlParser {
 public:
  bool Parse(std::string_view text, XmlEncoding encoding, XmlHandler& handler) override;
};

}  // namespace kvdm
