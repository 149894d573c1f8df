// The declaration at the start of an XML text.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace kvdm {

struct XmlDeclaration {
  std::string_view encoding;  // "" when it names none.
  std::size_t length = 0;     // From "<?xml" to "?>", in bytes.
};

// The declaration that `text` starts with; nothing when there is none or it isn't well-formed.
[[nodiscard]] std::optional<XmlDeclaration> DeclarationOf(std::string_view text);

}  // namespace kvdm
