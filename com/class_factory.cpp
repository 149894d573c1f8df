#include "com/class_factory.h"

#include <atomic>

#include "com/abi.h"
#include "com/module.h"
#include "com/objects.h"

namespace kvdm::com {
namespace {

class ClassFactory final : public IClassFactory {
 public:
  explicit ClassFactory(const Class& of) : class_(of) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    const bool known = ::IsEqualIID(iid, IID_IUnknown) || ::IsEqualIID(iid, IID_IClassFactory);
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

  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    HRESULT result = S_OK;
    const HRESULT created = abi::Guarded(
        class_.identity, iid, [&] { result = com::CreateInstance(class_).CopyTo(iid, out); });
    return FAILED(created) ? created : result;
  }
  STDMETHODIMP LockServer(BOOL lock) override {
    LockModule(lock != FALSE);
    return S_OK;
  }

 private:
  ~ClassFactory() = default;

  ModuleLock lock_;
  std::atomic<ULONG> references_ = 1;
  const Class& class_;
};

}  // namespace

Microsoft::WRL::ComPtr<IClassFactory> MakeClassFactory(const Class& of) {
  Microsoft::WRL::ComPtr<IClassFactory> factory;
  *factory.GetAddressOf() = new ClassFactory(of);
  return factory;
}

}  // namespace kvdm::com
