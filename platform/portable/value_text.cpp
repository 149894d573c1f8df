#include "platform/portable/value_text.h"

#include <array>
#include <cstdio>

namespace kvdm {

std::string DateText(const DateTime& time, char between) {
  std::array<char, 96> buffer{};
  const int length =
      std::snprintf(buffer.data(), buffer.size(), "%04d-%02d-%02d%c%02d:%02d:%02d", time.year,
                    time.month, time.day, between, time.hour, time.minute, time.second);
  return {buffer.data(), static_cast<std::size_t>(length)};
}

std::optional<DateTime> DateIn(std::string_view text, char between) {
  const std::array separators = {'-', '-', between, ':', ':'};
  DateTime time;
  const std::array fields = {&time.year, &time.month,  &time.day,
                             &time.hour, &time.minute, &time.second};
  const char* next = text.data();
  const char* const end = next + text.size();
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i > 0 && (next == end || *next++ != separators.at(i - 1))) return std::nullopt;
    const auto [rest, error] = std::from_chars(next, end, *fields.at(i));
    if (error != std::errc()) return std::nullopt;
    next = rest;
  }
  if (next != end) return std::nullopt;
  return time;
}

}  // namespace kvdm
