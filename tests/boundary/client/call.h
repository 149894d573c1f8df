// The one shape of every call of an operation of the DLL's objects: arguments are converted to the
// forms of COM, a failure becomes a run-time error, the result is converted back.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include <kvdm/kvdm.h>

#include "com/kvdm.h"
#include "platform/windows/automation.h"
#include "platform/windows/com_headers.h"
#include "tests/boundary/client/objects.h"

namespace kvdm::client {

// Argument<T>: what an operation takes as a T, made of the component's form of it.
template <class Abi>
class Argument;

template <>
class Argument<BSTR*> {
 public:
  explicit Argument(std::string_view text) : text_(text) {}
  BSTR* Get() { return text_.address(); }

 private:
  Bstr text_;
};

template <>
class Argument<VARIANT_BOOL> {
 public:
  explicit Argument(bool yes) : yes_(yes) {}
  [[nodiscard]] VARIANT_BOOL Get() const { return yes_ ? VARIANT_TRUE : VARIANT_FALSE; }

 private:
  bool yes_;
};

template <>
class Argument<VARIANT*> {
 public:
  explicit Argument(const Value& value) : value_(value) {}
  VARIANT* Get() { return value_.address(); }

 private:
  Variant value_;
};

// An object of the test's.
template <>
class Argument<IUnknown*> {
 public:
  template <class T>
  explicit Argument(const std::shared_ptr<T>& object) : object_(ToDll(object)) {}
  [[nodiscard]] IUnknown* Get() const { return object_.Get(); }

 private:
  Microsoft::WRL::ComPtr<IUnknown> object_;
};

// Result<T>: where an operation puts a result through a T.
template <class Abi>
class Result;

template <>
class Result<BSTR*> {
 public:
  BSTR* Place() { return text_.address(); }
  [[nodiscard]] std::string Take() const { return ToText(text_.get()); }

 private:
  Bstr text_;
};

template <>
class Result<VARIANT_BOOL*> {
 public:
  VARIANT_BOOL* Place() { return &yes_; }
  [[nodiscard]] bool Take() const { return yes_ != VARIANT_FALSE; }

 private:
  VARIANT_BOOL yes_ = VARIANT_FALSE;
};

template <>
class Result<long*> {
 public:
  long* Place() { return &number_; }
  [[nodiscard]] int Take() const { return static_cast<int>(number_); }

 private:
  long number_ = 0;
};

template <>
class Result<VARIANT*> {
 public:
  VARIANT* Place() { return value_.address(); }
  [[nodiscard]] Value Take() const { return FromVariant(value_.get()); }

 private:
  Variant value_;
};

// An object, which becomes whatever it is wanted as.
template <class Interface>
class Result<Interface**> {
 public:
  Interface** Place() { return &object_; }
  [[nodiscard]] DllObject Take() const { return DllObject(object_); }

 private:
  Microsoft::WRL::ComPtr<Interface> object_;
};

// Calls `operation` of `object` and answers what it puts through its last parameter; nothing when
// all of its parameters are `arguments`.
template <class Interface, class... Parameters, class... Arguments>
auto Call(Interface& object, HRESULT (STDMETHODCALLTYPE Interface::*operation)(Parameters...),
          const Arguments&... arguments) {
  constexpr std::size_t kCount = sizeof...(Arguments);
  if constexpr (sizeof...(Parameters) == kCount) {
    Check((object.*operation)(Argument<Parameters>(arguments).Get()...));
  } else {
    using All = std::tuple<Parameters...>;
    Result<std::tuple_element_t<kCount, All>> result;
    [&]<std::size_t... I>(std::index_sequence<I...>) {
      Check((object.*operation)(Argument<std::tuple_element_t<I, All>>(arguments).Get()...,
                                result.Place()));
    }
    (std::make_index_sequence<kCount>());
    return result.Take();
  }
}

// The interface `Interface` of an object of the DLL.
template <class Interface>
class Slots {
 public:
  using Abi = Interface;

  explicit Slots(Microsoft::WRL::ComPtr<Interface> object) : object_(std::move(object)) {}

  [[nodiscard]] const Microsoft::WRL::ComPtr<Interface>& TheObject() const { return object_; }

 protected:
  template <class... Parameters, class... Arguments>
  auto Call(HRESULT (STDMETHODCALLTYPE Interface::*operation)(Parameters...),
            const Arguments&... arguments) const {
    return client::Call(*object_.Get(), operation, arguments...);
  }

 private:
  Microsoft::WRL::ComPtr<Interface> object_;
};

// The same as the component's interface `CoreInterface`. Other interfaces of the object are its
// facets.
template <class CoreInterface, class AbiInterface>
class ClientOf : public CoreInterface, public Slots<AbiInterface> {
 public:
  using Core = CoreInterface;
  using Slots<AbiInterface>::Slots;

  std::shared_ptr<Unknown> Facet(std::type_index interface_type) override {
    return FacetOf(this->TheObject().Get(), interface_type);
  }
};

}  // namespace kvdm::client
