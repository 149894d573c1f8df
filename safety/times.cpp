#include "safety/times.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <chrono>

namespace kvdm {
namespace {

constexpr int kHalfDay = 12;

struct Time {
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;

  [[nodiscard]] bool IsOne() const {
    const std::chrono::year_month_day date(std::chrono::year(year),
                                           std::chrono::month(static_cast<unsigned>(month)),
                                           std::chrono::day(static_cast<unsigned>(day)));
    return date.ok() && year >= 100 && year <= 9999 && hour < 24 && minute < 60 && second < 60;
  }
};

// Reads a text by a pattern: "#" is a number of one to four digits, any other character itself.
template <std::size_t count>
bool Matches(std::string_view text, std::string_view pattern,
             const std::array<int*, count>& numbers) {
  auto next = numbers.begin();
  for (const char expected : pattern) {
    if (expected != '#') {
      if (text.empty() || text.front() != expected) return false;
      text.remove_prefix(1);
      continue;
    }
    const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    if (digits == 0 || digits > 4) return false;
    std::from_chars(text.data(), text.data() + digits, **next++);
    text.remove_prefix(digits);
  }
  return text.empty();
}

}  // namespace

std::optional<std::string> IsoTime(std::string_view stored) {
  Time time;
  const bool afternoon = stored.ends_with(" PM");
  if (!afternoon && !stored.ends_with(" AM")) return std::nullopt;
  stored.remove_suffix(3);
  const std::array numbers = {&time.month, &time.day,    &time.year,
                              &time.hour,  &time.minute, &time.second};
  if (!Matches(stored, "#/#/# #:#:#", numbers)) return std::nullopt;
  if (time.hour < 1 || time.hour > kHalfDay) return std::nullopt;
  time.hour = time.hour % kHalfDay + (afternoon ? kHalfDay : 0);
  if (!time.IsOne()) return std::nullopt;
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}", time.year, time.month, time.day,
                     time.hour, time.minute, time.second);
}

std::optional<std::string> StoredTime(std::string_view iso) {
  Time time;
  const std::array numbers = {&time.year, &time.month,  &time.day,
                              &time.hour, &time.minute, &time.second};
  const bool is_time = Matches(iso, "#-#-#T#:#:#", numbers) || Matches(iso, "#-#-#T#:#", numbers) ||
                       Matches(iso, "#-#-#", numbers);
  if (!is_time || !time.IsOne()) return std::nullopt;
  const int hour = time.hour % kHalfDay == 0 ? kHalfDay : time.hour % kHalfDay;
  return fmt::format("{}/{}/{} {}:{:02}:{:02} {}", time.month, time.day, time.year, hour,
                     time.minute, time.second, time.hour < kHalfDay ? "AM" : "PM");
}

}  // namespace kvdm
