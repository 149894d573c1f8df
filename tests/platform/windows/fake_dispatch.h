// An object that is called by name, for tests.
#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/windows/automation.h"
#include "platform/windows/com_headers.h"
#include "platform/windows/text.h"

namespace kvdm {

// Takes its operations' names in any letter case, as automation does.
class FakeDispatch final : public IDispatch {
 public:
  // What an operation does with its arguments, which are in order.
  using Operation = std::function<HRESULT(const std::vector<VARIANT>& arguments, VARIANT* result,
                                          EXCEPINFO* exception)>;

  static Microsoft::WRL::ComPtr<FakeDispatch> Create(std::map<std::string, Operation> operations) {
    Microsoft::WRL::ComPtr<FakeDispatch> object;
    *object.GetAddressOf() = new FakeDispatch(std::move(operations));
    return object;
  }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    *object = iid == IID_IUnknown || iid == IID_IDispatch ? this : nullptr;
    if (*object == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT /*index*/, LCID /*locale*/, ITypeInfo** /*info*/) override {
    return E_NOTIMPL;
  }
  STDMETHODIMP GetIDsOfNames(REFIID /*reserved*/, LPOLESTR* names, UINT /*count*/, LCID /*locale*/,
                             DISPID* ids) override {
    for (std::size_t i = 0; i < operations_.size(); ++i) {
      ids[0] = static_cast<DISPID>(i);
      if (::lstrcmpiW(ToUtf16(operations_[i].first).c_str(), names[0]) == 0) return S_OK;
    }
    return DISP_E_UNKNOWNNAME;
  }
  STDMETHODIMP Invoke(DISPID id, REFIID /*reserved*/, LCID /*locale*/, WORD /*flags*/,
                      DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                      UINT* /*argument*/) override {
    std::vector<VARIANT> arguments(parameters->rgvarg, parameters->rgvarg + parameters->cArgs);
    std::ranges::reverse(arguments);  // The last comes first.
    return operations_[static_cast<std::size_t>(id)].second(arguments, result, exception);
  }

 private:
  explicit FakeDispatch(std::map<std::string, Operation> operations)
      : operations_(operations.begin(), operations.end()) {}
  ~FakeDispatch() = default;

  ULONG references_ = 1;
  std::vector<std::pair<std::string, Operation>> operations_;
};

// An operation that answers `value`.
inline FakeDispatch::Operation Answering(const Value& value) {
  return [value](const auto& /*arguments*/, VARIANT* result, EXCEPINFO* /*exception*/) {
    ToVariant(value, result);
    return S_OK;
  };
}

// An operation that fails.
inline FakeDispatch::Operation FailingWith(HRESULT code) {
  return [code](const auto& /*arguments*/, VARIANT* /*result*/, EXCEPINFO* /*exception*/) {
    return code;
  };
}

}  // namespace kvdm
