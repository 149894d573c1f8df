#include "com/name_list_face.h"

#include <algorithm>

#include "com/counted.h"

namespace kvdm::com {
namespace {

// Goes through a list as it stands at each step.
class Enumerator final : public Counted<IEnumVARIANT> {
 public:
  Enumerator(std::shared_ptr<NameList> list, int next) : list_(std::move(list)), next_(next) {}

  STDMETHODIMP Next(ULONG count, VARIANT* values, ULONG* fetched) override {
    if (fetched != nullptr) *fetched = 0;
    if (values == nullptr || (fetched == nullptr && count != 1)) return E_POINTER;
    ULONG done = 0;
    for (; done < count && next_ <= list_->Count(); ++done) {
      const HRESULT put = abi::Guarded(kIdentity, IID_IEnumVARIANT,
                                       [&] { ToVariant(list_->Item(next_), &values[done]); });
      if (FAILED(put)) {
        std::for_each_n(values, done, [](VARIANT& value) { ::VariantClear(&value); });
        next_ -= static_cast<int>(done);
        return put;
      }
      ++next_;
    }
    if (fetched != nullptr) *fetched = done;
    return done == count ? S_OK : S_FALSE;
  }
  STDMETHODIMP Skip(ULONG count) override {
    const auto left = static_cast<ULONG>(std::max(0, list_->Count() - next_ + 1));
    next_ += static_cast<int>(std::min(count, left));
    return count <= left ? S_OK : S_FALSE;
  }
  STDMETHODIMP Reset() override {
    next_ = 1;
    return S_OK;
  }
  STDMETHODIMP Clone(IEnumVARIANT** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    return abi::Guarded(kIdentity, IID_IEnumVARIANT, [&] { *out = new Enumerator(list_, next_); });
  }

 private:
  static constexpr char kIdentity[] = "KVDM.NameList";

  std::shared_ptr<NameList> list_;
  int next_;
};

}  // namespace

STDMETHODIMP NameListFace::get_Item(long position, VARIANT* result) {
  if (result == nullptr) return E_POINTER;
  ::VariantInit(result);
  return Guarded([&] { ToVariant(core_->Item(position), result); });
}

STDMETHODIMP NameListFace::Add(VARIANT* value) {
  if (value == nullptr) return E_POINTER;
  return Guarded([&] { core_->Add(FromVariant(*value)); });
}

STDMETHODIMP NameListFace::get__NewEnum(IUnknown** result) {
  if (result == nullptr) return E_POINTER;
  *result = nullptr;
  return Guarded([&] { *result = new Enumerator(core_, 1); });
}

}  // namespace kvdm::com
