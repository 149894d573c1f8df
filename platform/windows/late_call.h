// Calls of an object's operations by name.
#pragma once

#include <windows.h>
// Needs the types of the former.
#include <oaidl.h>
#include <wrl/client.h>

#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/windows/automation.h"

namespace kvdm {

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
