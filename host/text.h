// Text as a terminal shows it.
#pragma once

#include <string>
#include <string_view>

namespace kvdm {

// `text` with control characters, invalid bytes and the marks that reorder text replaced by escapes
// such as "\n" and "\u{202E}", so that it stays on one line and can't steer a terminal.
[[nodiscard]] std::string Printable(std::string_view text);

// As Printable, but lines stay lines and tabs stay tabs: CR LF, CR and LF all end a line.
[[nodiscard]] std::string PrintableLines(std::string_view text);

// The number of terminal columns that printable text takes: wide characters take two, combining
// ones none.
[[nodiscard]] std::size_t DisplayWidth(std::string_view text);

// `text` with blanks appended up to `width` columns.
[[nodiscard]] std::string Padded(std::string_view text, std::size_t width);

}  // namespace kvdm
