#include "com/class_factory.h"

#include "com/abi.h"
#include "com/counted.h"
#include "com/module.h"
#include "com/objects.h"

namespace kvdm::com {
namespace {

class ClassFactory final : public Counted<IClassFactory> {
 public:
  explicit ClassFactory(const Class& of) : class_(of) {}

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
  const Class& class_;
};

}  // namespace

Microsoft::WRL::ComPtr<IClassFactory> MakeClassFactory(const Class& of) {
  Microsoft::WRL::ComPtr<IClassFactory> factory;
  *factory.GetAddressOf() = new ClassFactory(of);
  return factory;
}

}  // namespace kvdm::com
