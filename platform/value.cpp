#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

#include <kvdm/platform/error.h>
#include <kvdm/platform/value.h>

namespace kvdm {
namespace {

std::string NumberText(double number) {
  constexpr int kSignificantDigits = 15;
  std::array<char, 32> buffer{};
  const auto end = std::to_chars(buffer.begin(), buffer.end(), number, std::chars_format::general,
                                 kSignificantDigits);
  return {buffer.begin(), end.ptr};
}

bool EqualsIgnoringCase(std::string_view text, std::string_view lower_case) {
  return std::ranges::equal(
      text, lower_case, [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a + 32 : a) == b; });
}

bool BooleanOf(const std::string& text) {
  if (EqualsIgnoringCase(text, "true")) return true;
  if (EqualsIgnoringCase(text, "false")) return false;
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) throw RuntimeError(kTypeMismatch);
  return number != 0;
}

struct TextVisitor {
  std::string operator()(Empty) const { return {}; }
  std::string operator()(Null) const { throw RuntimeError(kInvalidUseOfNull); }
  std::string operator()(bool boolean) const { return boolean ? "-1" : "0"; }
  std::string operator()(std::int32_t number) const { return std::to_string(number); }
  std::string operator()(double number) const { return NumberText(number); }
  std::string operator()(const DateTime& time) const { return DateText(time); }
  std::string operator()(const std::string& text) const { return text; }
};

struct BooleanVisitor {
  bool operator()(Empty) const { return false; }
  bool operator()(Null) const { throw RuntimeError(kInvalidUseOfNull); }
  bool operator()(bool boolean) const { return boolean; }
  bool operator()(std::int32_t number) const { return number != 0; }
  bool operator()(double number) const { return number != 0; }
  bool operator()(const DateTime& time) const { return time != DateTime{}; }
  bool operator()(const std::string& text) const { return BooleanOf(text); }
};

}  // namespace

std::string ToText(const Value& value) { return std::visit(TextVisitor{}, value.storage()); }
bool ToBoolean(const Value& value) { return std::visit(BooleanVisitor{}, value.storage()); }

std::string DateText(const DateTime& time) {
  constexpr int kNoon = 12;
  const int hour = time.hour % kNoon == 0 ? kNoon : time.hour % kNoon;
  std::array<char, 96> buffer{};
  const int length =
      std::snprintf(buffer.data(), buffer.size(), "%d/%d/%d %d:%02d:%02d %s", time.month, time.day,
                    time.year, hour, time.minute, time.second, time.hour < kNoon ? "AM" : "PM");
  return {buffer.data(), static_cast<std::size_t>(length)};
}

}  // namespace kvdm
