// Text as a terminal shows it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kvdm {

// Whether a terminal shows a character in its own place and does nothing else with it. Control and
// format characters and the separators of lines and paragraphs are not safe.
[[nodiscard]] bool IsSafe(char32_t character);

// `text` with invalid bytes and all that is not safe replaced by escapes such as "\n" and
// "\u{202E}", so that it stays on one line and can't steer a terminal.
[[nodiscard]] std::string Printable(std::string_view text);

// As Printable, but lines stay lines and tabs stay tabs: CR LF, CR and LF all end a line.
[[nodiscard]] std::string PrintableLines(std::string_view text);

// A JSON document, of which line ends are the only white space but blanks, with the same characters
// as JSON's own escapes.
[[nodiscard]] std::string PrintableJson(std::string_view json);

// The number of terminal columns that printable text takes: wide characters take two, combining
// ones none.
[[nodiscard]] std::size_t DisplayWidth(std::string_view text);

// `text` with blanks appended up to `width` columns.
[[nodiscard]] std::string Padded(std::string_view text, std::size_t width);

// Of `candidates` the one that a misspelt word most likely means; "" when none is near.
[[nodiscard]] std::string Nearest(std::string_view word,
                                  const std::vector<std::string>& candidates);

}  // namespace kvdm
