// Reference counting for objects with one interface.
#pragma once

#include <atomic>

#include "com/module.h"
#include "platform/windows/com_headers.h"

namespace kvdm::com {

// An object that starts with one reference and lives until its last one goes.
template <class Interface>
class Counted : public Interface {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
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

 protected:
  Counted() = default;
  virtual ~Counted() = default;

 private:
  ModuleLock lock_;
  std::atomic<ULONG> references_ = 1;
};

}  // namespace kvdm::com
