// Strict reader: reads texts that are written exactly as the serializer writes them, and no other.
#pragma once

#include <string_view>

#include "platform/xml/pool.h"

namespace kvdm::xml {

struct Records;

// Fills `records`, which have nothing but the document `top`, with what `text` says. False when a
// single byte of it is not as the serializer would write the tree, when it has instructions or
// prefixes of names, or exceeds a limit: a conforming parser may still take it. The records are
// then of no use. What it takes, every conforming parser takes, for the same tree.
[[nodiscard]] bool ReadWrittenForm(std::string_view text, Records& records, Number top);

}  // namespace kvdm::xml
