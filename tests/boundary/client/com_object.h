// COM objects of the test's own.
#pragma once

#include <atomic>

#include "platform/windows/com_headers.h"

namespace kvdm::client {

// An object with the one interface `Interface`, and one reference.
template <class Interface>
class ComObject : public Interface {
 public:
  ComObject() = default;
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;
  virtual ~ComObject() = default;

  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    const bool known = ::IsEqualIID(iid, IID_IUnknown) || ::IsEqualIID(iid, __uuidof(Interface));
    *out = known ? this : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 private:
  std::atomic<ULONG> references_ = 1;
};

// Takes over a reference: ComPtr::Attach of MinGW adds one.
template <class Object>
[[nodiscard]] Microsoft::WRL::ComPtr<Object> Owned(Object* object) {
  Microsoft::WRL::ComPtr<Object> owner;
  *owner.GetAddressOf() = object;
  return owner;
}

}  // namespace kvdm::client
