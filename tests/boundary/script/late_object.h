// Objects of the DLL beside the program, called by name as clients by IDispatch call them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/windows/automation.h"
#include "platform/windows/com_headers.h"

namespace kvdm::boundary {

using Microsoft::WRL::ComPtr;

// COM for this thread, and nothing of the component in the registry, while it lives.
class Apartment {
 public:
  Apartment();
  ~Apartment();
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
};

[[nodiscard]] ComPtr<IDispatch> NewObject(const CLSID& clsid);

// The type library that the DLL holds.
[[nodiscard]] ComPtr<ITypeLib> Library();

// What a type says of itself, and the name of a type or of its member.
[[nodiscard]] TYPEATTR AttributesOf(ITypeInfo& type);
[[nodiscard]] std::wstring NameOf(ITypeInfo& type, MEMBERID member = MEMBERID_NIL);

inline constexpr UINT kNoArgument = 4711;

// How a call ended.
struct Outcome {
  HRESULT code = S_OK;
  Variant result;
  // The place of the argument that was refused; kNoArgument when none was named.
  UINT wrong_argument = kNoArgument;
  // When the code is DISP_E_EXCEPTION.
  HRESULT error = S_OK;
  std::string source;
  std::string description;
};

class LateObject {
 public:
  explicit LateObject(ComPtr<IDispatch> object) : object_(std::move(object)) {}
  explicit LateObject(const CLSID& clsid) : LateObject(NewObject(clsid)) {}
  // The object in a result.
  explicit LateObject(const Variant& value) : LateObject(V_DISPATCH(&value.get())) {}

  [[nodiscard]] IDispatch& Names() const { return *object_.Get(); }

  // DISPID_UNKNOWN for a name that the object does not have.
  [[nodiscard]] DISPID IdOf(std::wstring name) const;

  // Calls what is named, with the arguments in order.
  Outcome Invoke(const wchar_t* name, WORD flags, std::vector<VARIANT> arguments = {}) const;
  Outcome Call(const wchar_t* name, std::vector<VARIANT> arguments = {}) const;
  Outcome Get(const wchar_t* name) const;
  Outcome Let(const wchar_t* name, VARIANT value) const;

  // What a call or property answers as a text.
  std::string Text(const wchar_t* name, std::vector<VARIANT> arguments = {}) const;
  // The object that it answers.
  LateObject Object(const wchar_t* name, std::vector<VARIANT> arguments = {}) const;

 private:
  ComPtr<IDispatch> object_;
};

// A text as an argument; lives as long as the program.
VARIANT Arg(std::string_view text);
VARIANT Arg(int number);

// The variable `value` by reference.
VARIANT ByReference(VARIANT& value);
// A place of the value's own type by reference.
VARIANT PlaceOf(VARIANT& value);

}  // namespace kvdm::boundary
