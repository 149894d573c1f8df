// Name prefixes: whether an element can stand at a place and still be read there.
#pragma once

#include "platform/xml/node.h"

namespace kvdm::xml {

// Whether every prefix that `tree` uses is declared in it or at `parent`, which is null for the top
// level, and no element would have the same attribute under two prefixes.
[[nodiscard]] bool CanStandUnder(const Node& tree, const Element* parent);

}  // namespace kvdm::xml
