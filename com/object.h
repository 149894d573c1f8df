// COM identity of an object of the component: IUnknown, IDispatch and the interfaces it answers.
#pragma once

#include <atomic>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include "com/abi.h"
#include "com/module.h"
#include "com/object_type.h"
#include "platform/windows/com_headers.h"

namespace kvdm::com {

// One interface of an object.
class WrapperBase {
 public:
  virtual ~WrapperBase() = default;
  [[nodiscard]] virtual const IID& Iid() const = 0;
  [[nodiscard]] virtual IUnknown* Interface() = 0;
};

// One identity with any number of interfaces, and calls by name into all of them. It lives until
// its last reference goes, and keeps the component's object alive, which a view's data manager is
// part of.
class Object final : public IDispatch, public ISupportErrorInfo, public IProvideClassInfo {
 public:
  // An object without interfaces, with one reference. `identity` names its class in errors.
  [[nodiscard]] static Microsoft::WRL::ComPtr<Object> Make(const char* identity);

  // Adds an interface. Of two operations of one name, calls by name reach the one added first.
  template <class Wrapper>
  void Add(std::shared_ptr<typename Wrapper::Core> core) {
    wrappers_.push_back(std::make_unique<Wrapper>(*this, std::move(core)));
  }

  [[nodiscard]] const char* Identity() const { return identity_; }

  STDMETHODIMP QueryInterface(REFIID iid, void** out) override;
  STDMETHODIMP_(ULONG) AddRef() override;
  STDMETHODIMP_(ULONG) Release() override;

  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** type) override;
  STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                             DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                      VARIANT* result, EXCEPINFO* exception, UINT* wrong_argument) override;

  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID iid) override;

  STDMETHODIMP GetClassInfo(ITypeInfo** type) override;

 private:
  explicit Object(const char* identity) : identity_(identity) {}
  ~Object() = default;

  [[nodiscard]] WrapperBase* Find(REFIID iid) const;
  // What clients learn about the object; read when one first asks.
  [[nodiscard]] const ObjectType& Type();
  HRESULT QueryByType(REFIID iid, void** out);
  // Runs `body`. What fails is told by the result code alone.
  template <class Body>
  HRESULT GuardedQuietly(const Body& body);

  ModuleLock lock_;
  const char* identity_;
  std::atomic<ULONG> references_ = 1;
  std::vector<std::unique_ptr<WrapperBase>> wrappers_;
  const ObjectType* type_ = nullptr;
};

// The interface `Abi` of an object, each operation of which calls one of the component's `Core`.
template <class AbiInterface, class CoreInterface>
class WrapperOf : public AbiInterface, public WrapperBase {
 public:
  using Core = CoreInterface;

  WrapperOf(Object& object, std::shared_ptr<Core> core) : object_(object), core_(std::move(core)) {}

  [[nodiscard]] const IID& Iid() const override { return __uuidof(AbiInterface); }
  [[nodiscard]] IUnknown* Interface() override { return this; }

  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    return object_.QueryInterface(iid, out);
  }
  STDMETHODIMP_(ULONG) AddRef() override { return object_.AddRef(); }
  STDMETHODIMP_(ULONG) Release() override { return object_.Release(); }

 protected:
  // Calls the component's operation with the same arguments.
  template <class Operation, class... Arguments>
  HRESULT Call(Operation operation, Arguments... arguments) {
    using Caller = decltype(abi::CallerOf(operation));
    const Microsoft::WRL::ComPtr<IUnknown> alive = Alive();
    return Caller::Call(object_.Identity(), Iid(), *core_, operation, arguments...);
  }

  template <class Body>
  HRESULT Guarded(const Body& body) {
    const Microsoft::WRL::ComPtr<IUnknown> alive = Alive();
    return abi::Guarded(object_.Identity(), Iid(), body);
  }

  // Keeps the object during a call, in which the client may let go of it.
  [[nodiscard]] Microsoft::WRL::ComPtr<IUnknown> Alive() {
    return static_cast<IDispatch*>(&object_);
  }

  Object& object_;
  std::shared_ptr<Core> core_;
};

}  // namespace kvdm::com
