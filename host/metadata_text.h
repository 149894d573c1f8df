// The metadata document as a project keeps it.
#pragma once

#include <string>
#include <string_view>

#include "platform/xml_parser.h"

namespace kvdm {

// Why the component does not take `text` as a document, as a sentence about `what` that names the
// limit that it is over; "" when it does.
[[nodiscard]] std::string DocumentProblem(XmlParser& parser, std::string_view what,
                                          std::string_view text);

}  // namespace kvdm
