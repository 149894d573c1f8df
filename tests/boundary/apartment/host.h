// A host whose only setting is its working directory, with an empty state.
#pragma once

#include <atomic>

#include "platform/windows/automation.h"
#include "tests/boundary/apartment/clients.h"

namespace kvdm::boundary {

// The references of an object with the one interface `Interface`.
template <class Interface>
class HostObject : public Interface {
 public:
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

 protected:
  virtual ~HostObject() = default;

 private:
  std::atomic<ULONG> references_ = 0;
};

class PropertySet final : public HostObject<::IHostPropertySet> {
 public:
  explicit PropertySet(Value value) : value_(std::move(value)) {}

  // Every property has the one value.
  STDMETHODIMP GetProperty(BSTR*, VARIANT* result) override {
    ToVariant(value_, result);
    return S_OK;
  }
  STDMETHODIMP SetProperty(BSTR*, VARIANT* value) override {
    value_ = FromVariant(*value);
    return S_OK;
  }

 private:
  Value value_;
};

class Host final : public HostObject<::IHost> {
 public:
  explicit Host(const char* working_directory)
      : state_(new PropertySet({})), settings_(new PropertySet(working_directory)) {}

  STDMETHODIMP get_CurrentState(::IHostPropertySet** result) override {
    return state_.CopyTo(result);
  }
  STDMETHODIMP Reserved() override { return E_NOTIMPL; }
  STDMETHODIMP get_Settings(::IHostPropertySet** result) override {
    return settings_.CopyTo(result);
  }

 private:
  ComPtr<::IHostPropertySet> state_;
  ComPtr<::IHostPropertySet> settings_;
};

}  // namespace kvdm::boundary
