// Automation: result codes, texts (BSTR), values (VARIANT), dates (DATE) and calls by name
// (IDispatch), and the component's own errors and values.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kvdm/platform/error.h>
#include <kvdm/platform/value.h>

#include "platform/windows/com_headers.h"

namespace kvdm {

// The run-time error that a failed call means. Description and source are those that the callee
// left for the calling thread, which are taken away by this; else the number's own and `source`.
[[nodiscard]] RuntimeError ErrorOf(HRESULT result, std::string source = {});

// The result code that gives a caller the error's number. Always a failure.
[[nodiscard]] HRESULT ResultOf(const RuntimeError& error);

// Throws what ErrorOf gives when `result` is a failure.
void Check(HRESULT result);

// Puts the exception that is being handled into the calling thread's error object, with its
// description, with its source or else `source`, and with the interface `iid`; answers its
// result code. To be called in a catch clause. Never throws.
HRESULT RaiseCurrentError(const char* source, const IID& iid) noexcept;

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

// Lists of values are arrays of VARIANTs, which scripts can read too.

// Overwrites `out`, without clearing it, with an array counted from 0; with Empty when there are no
// values.
void PutArray(const std::vector<Value>& values, VARIANT* out);

// The values of a one-dimensional array of VARIANTs or of texts, of one value, or of Empty, which
// has none. Run-time error 13 for others.
[[nodiscard]] std::vector<Value> FromArray(const VARIANT& array);

// An object whose operations are called by name (late binding).
class LateObject {
 public:
  // `object` is not null.
  explicit LateObject(Microsoft::WRL::ComPtr<IDispatch> object) : object_(std::move(object)) {}

  // Calls the operation `name` with these arguments, in order; or reads the property `name`.
  // Answers what it answers. Run-time error 438 for a name that the object does not have; else what
  // the operation failed with.
  Variant Call(std::string_view name, std::vector<VARIANT> arguments = {}) const;

  [[nodiscard]] const Microsoft::WRL::ComPtr<IDispatch>& TheObject() const { return object_; }

 private:
  Microsoft::WRL::ComPtr<IDispatch> object_;
};

// The object in a value, or in the variable that it refers to. Null for Nothing, Null and Empty;
// run-time error 13 for another value.
[[nodiscard]] IUnknown* ObjectIn(const VARIANT& value);

// An object as a value that callers by name can use; Nothing for null.
[[nodiscard]] Variant ObjectValue(IUnknown* object);

// Forms of an argument. What they are made of must outlive the call.
[[nodiscard]] VARIANT Passed(const Bstr& text);
[[nodiscard]] VARIANT Passed(const Variant& value);
// A variable that the operation may set.
[[nodiscard]] VARIANT PassedByReference(Variant& variable);

}  // namespace kvdm
