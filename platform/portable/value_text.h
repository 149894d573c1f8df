// Text of dates and numbers, as the documents that hold typed values have it.
#pragma once

#include <charconv>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include <kvdm/platform/value.h>

namespace kvdm {

// A date and time with `between` between them.
//
//   DateText({2026, 1, 31, 9, 0, 0}, 'T')   // 2026-01-31T09:00:00
[[nodiscard]] std::string DateText(const DateTime& time, char between);

// The date of such a text; nothing for any other text. Numbers may have fewer digits.
[[nodiscard]] std::optional<DateTime> DateIn(std::string_view text, char between);

// The number that the whole text is; nothing for any other text.
template <class Number>
[[nodiscard]] std::optional<Number> NumberIn(std::string_view text) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || rest != end) return std::nullopt;
  return number;
}

}  // namespace kvdm
