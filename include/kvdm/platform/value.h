/// @file
/// Variant value: any type that crosses the boundary, as a property, stream value or list entry.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include <kvdm/export.h>

namespace kvdm {

/// "Not set yet".
struct Empty {
  bool operator==(const Empty&) const = default;
};

/// "No valid data", as opposed to Empty, "not set yet". Converting it to text is an error.
struct Null {
  bool operator==(const Null&) const = default;
};

/// A local date and time.
struct DateTime {
  int year = 1899;  ///< four digits
  int month = 12;   ///< from 1
  int day = 30;     ///< from 1
  int hour = 0;     ///< from 0 to 23
  int minute = 0;   ///< from 0
  int second = 0;   ///< from 0
  bool operator==(const DateTime&) const = default;
};

/// Holds Empty, Null, a Boolean, a Long, a Double, a date or a UTF-8 text.
class Value {
 public:
  /// What a value holds.
  using Storage = std::variant<Empty, Null, bool, std::int32_t, double, DateTime, std::string>;

  /// Empty.
  Value() = default;

  /// @{ A value that holds the argument.
  Value(Null null) : storage_(null) {}                    // NOLINT(google-explicit-constructor)
  Value(bool flag) : storage_(flag) {}                    // NOLINT(google-explicit-constructor)
  Value(std::int32_t number) : storage_(number) {}        // NOLINT(google-explicit-constructor)
  Value(double number) : storage_(number) {}              // NOLINT(google-explicit-constructor)
  Value(DateTime time) : storage_(time) {}                // NOLINT(google-explicit-constructor)
  Value(std::string text) : storage_(std::move(text)) {}  // NOLINT(google-explicit-constructor)
  Value(std::string_view text)
      : storage_(std::string(text)) {}                      // NOLINT(google-explicit-constructor)
  Value(const char* text) : storage_(std::string(text)) {}  // NOLINT(google-explicit-constructor)
  /// @}

  /// Takes the value over.
  Value(Value&&) noexcept = default;

  /// Takes the value over.
  Value& operator=(Value&&) noexcept = default;
  ~Value() = default;

  /// A text is copied first and stored afterwards, so that running out of memory while copying
  /// can't leave a half-stored value.
  Value(const Value& other) : storage_(CopyOf(other.storage_)) {}

  /// Copies as the constructor does.
  Value& operator=(const Value& other) { return *this = Value(other); }

  /// Whether it was not set yet.
  [[nodiscard]] bool IsEmpty() const { return std::holds_alternative<Empty>(storage_); }

  /// Whether it is the value for no valid data.
  [[nodiscard]] bool IsNull() const { return std::holds_alternative<Null>(storage_); }

  /// Whether it holds a text.
  [[nodiscard]] bool IsText() const { return std::holds_alternative<std::string>(storage_); }

  /// What it holds, for `std::visit`.
  [[nodiscard]] const Storage& storage() const { return storage_; }

  bool operator==(const Value&) const = default;

 private:
  static Storage CopyOf(const Storage& storage) {
    return std::visit([](auto held) { return Storage(std::move(held)); }, storage);
  }

  Storage storage_;
};

/// The text form of a value: Empty is "", True "-1", False "0", a date as DateText gives it.
/// Run-time error 94 for Null.
KVDM_EXPORT std::string ToText(const Value& value);

/// A Boolean from a value: a number is True unless zero; "True", "False" in any letter case and
/// numeric texts convert. Run-time error 94 for Null, 13 for a text that is neither.
KVDM_EXPORT bool ToBoolean(const Value& value);

/// The one text form of a date: month/day/year, a blank, h:mm:ss, a blank, AM or PM, with no
/// leading zeros on month, day and hour, and always with the time.
///
///   DateText({2026, 11, 15, 7, 35, 30})   // "11/15/2026 7:35:30 AM"
KVDM_EXPORT std::string DateText(const DateTime& time);

}  // namespace kvdm
