// A quick look at an XML text before it is parsed.
#pragma once

#include <cstddef>
#include <string_view>

namespace kvdm {

// Whether no tag of `text` has more than `limit` attributes. Takes time in proportion to the text,
// which the parser's own check for repeated attributes does not. Says nothing of what comes after
// the first place that is not well-formed.
[[nodiscard]] bool HasAttributesWithin(std::string_view text, std::size_t limit);

}  // namespace kvdm
