// COM calls into the component, all of one shape.
//
// A call's arguments are those of the component's operation as automation types, then a pointer to
// the result. Pointers are checked, the result is cleared, arguments are converted, the operation
// is called, its result is converted; an error becomes a result code and an error object. No C++
// exception leaves.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include <kvdm/kvdm.h>
#include <kvdm/platform/error.h>

#include "com/client_objects.h"
#include "com/wrappers.h"
#include "platform/windows/automation.h"
#include "platform/windows/com_headers.h"

namespace kvdm::com::abi {

// Parameter<T>: a parameter T of an operation. Made of what the client passed if that is IsValid;
// Get() is what the operation is given.
template <class T>
class Parameter;

template <>
class Parameter<std::string_view> {
 public:
  using Abi = BSTR*;
  static bool IsValid(Abi text) { return text != nullptr; }
  explicit Parameter(Abi text) : text_(ToText(*text)) {}
  std::string_view Get() { return text_; }

 private:
  std::string text_;
};

template <>
class Parameter<bool> {
 public:
  using Abi = VARIANT_BOOL;
  static bool IsValid(Abi) { return true; }
  explicit Parameter(Abi given) : given_(given != VARIANT_FALSE) {}
  bool Get() { return given_; }

 private:
  bool given_;
};

template <>
class Parameter<const Value&> {
 public:
  using Abi = VARIANT*;
  static bool IsValid(Abi value) { return value != nullptr; }
  explicit Parameter(Abi value) : value_(FromVariant(*value)) {}
  const Value& Get() { return value_; }

 private:
  Value value_;
};

// An object of the client's.
template <class T>
class Parameter<const std::shared_ptr<T>&> {
 public:
  using Abi = IUnknown*;
  static bool IsValid(Abi) { return true; }
  explicit Parameter(Abi object) : object_(FromClient<T>(object)) {}
  const std::shared_ptr<T>& Get() { return object_; }

 private:
  std::shared_ptr<T> object_;
};

// An [in, out] object: the operation may create it when there is none.
template <class T>
class Parameter<std::shared_ptr<T>&> {
 public:
  using Abi = IUnknown**;
  static bool IsValid(Abi object) { return object != nullptr; }
  explicit Parameter(Abi place) : place_(place), object_(FromClient<T>(*place)) {}
  std::shared_ptr<T>& Get() { return object_; }
  void HandOut() {
    if (*place_ == nullptr && object_) *place_ = ToClient(object_).Detach();
  }

 private:
  Abi place_;
  std::shared_ptr<T> object_;
};

// Gives the client what the operation created for a parameter.
template <class Parameter>
void Finish(Parameter& parameter) {
  if constexpr (requires { parameter.HandOut(); }) parameter.HandOut();
}

// [out] results: Clear stores the neutral value, Put the operation's result.
inline void Clear(BSTR* out) { *out = nullptr; }
inline void Clear(VARIANT_BOOL* out) { *out = VARIANT_FALSE; }
inline void Clear(long* out) { *out = 0; }
inline void Clear(VARIANT* out) { ::VariantInit(out); }
template <class Interface>
void Clear(Interface** out) {
  *out = nullptr;
}

inline void Put(const std::string& text, BSTR* out) { *out = Bstr(text).Release(); }
inline void Put(bool yes, VARIANT_BOOL* out) { *out = yes ? VARIANT_TRUE : VARIANT_FALSE; }
inline void Put(int number, long* out) { *out = number; }
inline void Put(const Value& value, VARIANT* out) { ToVariant(value, out); }
inline void Put(const std::vector<Value>& values, VARIANT* out) { PutArray(values, out); }
template <class T, class Interface>
void Put(const std::shared_ptr<T>& object, Interface** out) {
  if (object) Check(ToClient(object).CopyTo(__uuidof(Interface), reinterpret_cast<void**>(out)));
}

// Runs `body`, and answers its result code if it has one. An error becomes the result code, and an
// error object that names the class `class_identity` and the interface `iid`.
template <class Body>
HRESULT Guarded(const char* class_identity, const IID& iid, const Body& body) {
  try {
    if constexpr (std::is_void_v<std::invoke_result_t<Body>>) {
      body();
      return S_OK;
    } else {
      return body();
    }
  } catch (...) {
    return RaiseCurrentError(class_identity, iid);
  }
}

// An error object that an earlier call left is no answer to this one.
inline void ForgetErrors() { ::SetErrorInfo(0, nullptr); }

template <class Result, class Out>
bool ClearResult(const Out& out) {
  if constexpr (!std::is_void_v<Result>) {
    if (out == nullptr) return false;
    Clear(out);
  }
  return true;
}

// Calls `operation`, a pointer to an operation of `core` with this result and these parameters.
template <class Result, class... Parameters>
struct Caller {
  template <class Core, class Operation, class... Arguments>
  static HRESULT Call(const char* class_identity, const IID& iid, Core& core, Operation operation,
                      Arguments... arguments) {
    constexpr std::size_t kCount = sizeof...(Parameters);
    static_assert(sizeof...(Arguments) == kCount + (std::is_void_v<Result> ? 0 : 1));
    ForgetErrors();
    const auto all = std::make_tuple(arguments..., nullptr);
    if (!ClearResult<Result>(std::get<kCount>(all))) return E_POINTER;
    return [&]<std::size_t... I>(std::index_sequence<I...>) {
      if (!(Parameter<Parameters>::IsValid(std::get<I>(all)) && ...)) return E_POINTER;
      return Guarded(class_identity, iid, [&] {
        std::tuple<Parameter<Parameters>...> converted(std::get<I>(all)...);
        if constexpr (std::is_void_v<Result>) {
          (core.*operation)(std::get<I>(converted).Get()...);
        } else {
          Put((core.*operation)(std::get<I>(converted).Get()...), std::get<kCount>(all));
        }
        (Finish(std::get<I>(converted)), ...);
      });
    }
    (std::make_index_sequence<kCount>());
  }
};

template <class Core, class Result, class... Parameters>
Caller<Result, Parameters...> CallerOf(Result (Core::*)(Parameters...));
template <class Core, class Result, class... Parameters>
Caller<Result, Parameters...> CallerOf(Result (Core::*)(Parameters...) const);

}  // namespace kvdm::com::abi
