// How large a document may get. Setters and loaders keep the same limits, so what was set can
// always be loaded again.
#pragma once

#include <cstddef>

namespace kvdm::xml {

// Elements within elements, the root included.
inline constexpr std::size_t kMaxDepth = 256;

// Attributes of one element.
inline constexpr std::size_t kMaxAttributes = 1000;

// Bytes of one tag or attribute name.
inline constexpr std::size_t kMaxNameBytes = 50'000;

// Bytes of one attribute value or one text, in UTF-8.
inline constexpr std::size_t kMaxValueBytes = 10'000'000;

// Bytes of a document's text form.
inline constexpr std::size_t kMaxDocumentBytes = std::size_t{64} << 20U;

// Bytes of a text to load. More than a document's own text form has: numeric character references
// take up to seven bytes for a character of two.
inline constexpr std::size_t kMaxInputBytes = 4 * kMaxDocumentBytes;

}  // namespace kvdm::xml
