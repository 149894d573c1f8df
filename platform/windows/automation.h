// The text, values and dates of automation (BSTR, VARIANT, DATE), and the component's own.
#pragma once

#include <windows.h>
// Needs the types of the former.
#include <oleauto.h>

#include <string>
#include <string_view>
#include <utility>

#include <kvdm/platform/value.h>

namespace kvdm {

// Owns a text of automation. Null, which means "", without a text.
class Bstr {
 public:
  Bstr() = default;
  // Bytes that are not UTF-8 become U+FFFD each.
  explicit Bstr(std::string_view utf8);
  Bstr(Bstr&& other) noexcept : text_(other.Release()) {}
  Bstr& operator=(Bstr&& other) noexcept {
    std::swap(text_, other.text_);
    return *this;
  }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  ~Bstr() { ::SysFreeString(text_); }

  [[nodiscard]] BSTR get() const { return text_; }
  // Where a callee puts a text; only while this is null.
  [[nodiscard]] BSTR* address() { return &text_; }
  // Hands the text over.
  [[nodiscard]] BSTR Release() { return std::exchange(text_, nullptr); }

 private:
  BSTR text_ = nullptr;
};

// The text as UTF-8; "" for null. A surrogate without its pair becomes U+FFFD.
[[nodiscard]] std::string ToText(BSTR text);

// Owns a value of automation. VT_EMPTY without one.
class Variant {
 public:
  Variant() { ::VariantInit(&value_); }
  explicit Variant(const Value& value);
  Variant(Variant&& other) noexcept : value_(other.Release()) {}
  Variant& operator=(Variant&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
  ~Variant() { ::VariantClear(&value_); }

  [[nodiscard]] const VARIANT& get() const { return value_; }
  // Where a callee puts a value; only while this is VT_EMPTY.
  [[nodiscard]] VARIANT* address() { return &value_; }
  // Hands the value over.
  [[nodiscard]] VARIANT Release() { return std::exchange(value_, VARIANT{}); }

 private:
  VARIANT value_{};
};

// The value, also one that is passed by reference. A missing argument is Empty; whole numbers that
// no Long has, 64-bit, decimal and currency numbers are Doubles. Run-time error 13 for objects,
// arrays, error values and dates outside the years 100 to 9999.
[[nodiscard]] Value FromVariant(const VARIANT& value);

// Overwrites `out` without clearing it.
void ToVariant(const Value& value, VARIANT* out);

}  // namespace kvdm
