#include "platform/xml/attribute_scan.h"

#include <algorithm>

namespace kvdm {
namespace {

void SkipPast(std::string_view end, std::string_view& rest) {
  const auto found = rest.find(end);
  rest.remove_prefix(found == std::string_view::npos ? rest.size() : found + end.size());
}

bool TrySkip(std::string_view start, std::string_view end, std::string_view& rest) {
  if (!rest.starts_with(start)) return false;
  rest.remove_prefix(start.size());
  SkipPast(end, rest);
  return true;
}

// Skips a tag, each of whose quoted values is an attribute's; their number.
std::size_t SkipTag(std::string_view& rest) {
  std::size_t attributes = 0;
  while (true) {
    rest.remove_prefix(std::min(rest.size(), rest.find_first_of(">\"'")));
    if (rest.empty() || rest.front() == '>') return attributes;
    const std::string_view quote = rest.substr(0, 1);
    rest.remove_prefix(1);
    SkipPast(quote, rest);
    ++attributes;
  }
}

}  // namespace

bool HasAttributesWithin(std::string_view text, std::size_t limit) {
  while (true) {
    text.remove_prefix(std::min(text.size(), text.find('<')));
    if (text.empty()) return true;
    if (TrySkip("<!--", "-->", text) || TrySkip("<![CDATA[", "]]>", text) ||
        TrySkip("<?", "?>", text)) {
      continue;
    }
    if (SkipTag(text) > limit) return false;
  }
}

}  // namespace kvdm
