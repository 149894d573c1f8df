#include "com/wrappers.h"

#include <algorithm>

#include <kvdm/datamanager/component.h>

#include "com/client_objects.h"
#include "com/counted.h"
#include "com/kvdm.h"
#include "com/object.h"
#include "platform/windows/com_siblings.h"
#include "platform/windows/windows_platform.h"

namespace kvdm::com {
namespace {

using Microsoft::WRL::ComPtr;

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

// The list of names that operations answer. Calls by name go the object's way.
class NameListWrapper final : public WrapperOf<::INameList, NameList> {
 public:
  using WrapperOf::WrapperOf;

  STDMETHODIMP get_Item(long position, VARIANT* result) override {
    if (result == nullptr) return E_POINTER;
    ::VariantInit(result);
    return Guarded([&] { ToVariant(core_->Item(position), result); });
  }
  STDMETHODIMP Add(VARIANT* value) override {
    if (value == nullptr) return E_POINTER;
    return Guarded([&] { core_->Add(FromVariant(*value)); });
  }
  STDMETHODIMP get_Count(long* result) override { return Call(&Core::Count, result); }

  STDMETHODIMP get__NewEnum(IUnknown** result) override {
    if (result == nullptr) return E_POINTER;
    *result = nullptr;
    return Guarded([&] { *result = new Enumerator(core_, 1); });
  }

  STDMETHODIMP GetTypeInfoCount(UINT* count) override { return object_.GetTypeInfoCount(count); }
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** type) override {
    return object_.GetTypeInfo(index, locale, type);
  }
  STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                             DISPID* ids) override {
    return object_.GetIDsOfNames(iid, names, count, locale, ids);
  }
  STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                      VARIANT* result, EXCEPINFO* exception, UINT* wrong_argument) override {
    return object_.Invoke(id, iid, locale, flags, parameters, result, exception, wrong_argument);
  }
};

class IdentifierWrapper final : public WrapperOf<::IIdentifier, Identifier> {
 public:
  using WrapperOf::WrapperOf;

  STDMETHODIMP Generate() override { return Call(&Core::Generate); }
  STDMETHODIMP GetValue(BSTR* result) override { return Call(&Core::GetValue, result); }
  STDMETHODIMP PutValue(BSTR* text) override { return Call(&Core::PutValue, text); }
};

class NamedValueSetWrapper final : public WrapperOf<::INamedValueSet, NamedValueSet> {
 public:
  using WrapperOf::WrapperOf;

  STDMETHODIMP GetValues(BSTR* path, VARIANT* result) override {
    return Call(&Core::GetValues, path, result);
  }
  STDMETHODIMP PutValue(BSTR* path, VARIANT* value) override {
    return Call(&Core::PutValue, path, value);
  }
  STDMETHODIMP ListAll(VARIANT* names, VARIANT* values) override {
    for (VARIANT* list : {names, values}) {
      if (list != nullptr) ::VariantInit(list);
    }
    if (names == nullptr || values == nullptr) return E_POINTER;
    return Guarded([&] {
      const NamedValueSet::Listing all = core_->ListAll();
      Variant all_names;
      Variant all_values;
      PutArray({all.names.begin(), all.names.end()}, all_names.address());
      PutArray(all.values, all_values.address());
      *names = all_names.Release();
      *values = all_values.Release();
    });
  }

  STDMETHODIMP EntryCount(long* result) override { return Call(&Core::EntryCount, result); }
  STDMETHODIMP PrepareForUpdate() override { return Call(&Core::PrepareForUpdate); }
};

ComPtr<IUnknown> ObjectOf(const Class& of, const std::shared_ptr<Unknown>& core) {
  const ComPtr<Object> object = Object::Make(of.identity);
  of.add_wrappers(*object.Get(), core);
  return static_cast<IDispatch*>(object.Get());
}

// An object with one interface, in place of a library's.
template <class Wrapper>
ComPtr<IUnknown> WithOneInterface(const char* identity,
                                  const std::shared_ptr<typename Wrapper::Core>& core) {
  if (!core) return nullptr;
  const ComPtr<Object> object = Object::Make(identity);
  object->Add<Wrapper>(core);
  return static_cast<IDispatch*>(object.Get());
}

}  // namespace

ComPtr<IUnknown> NewObject(const std::shared_ptr<Unknown>& core, std::type_index interface_type) {
  return core ? ObjectOf(ClassAnswering(interface_type), core) : nullptr;
}

ComPtr<IUnknown> ToClient(const std::shared_ptr<NameList>& list) {
  return WithOneInterface<NameListWrapper>("KVDM.NameList", list);
}

ComPtr<IUnknown> ToClient(const std::shared_ptr<Identifier>& identifier) {
  return WithOneInterface<IdentifierWrapper>("KVDM.Identifier", identifier);
}

ComPtr<IUnknown> ToClient(const std::shared_ptr<NamedValueSet>& set) {
  const auto clients = std::dynamic_pointer_cast<ClientObject>(set);
  return clients ? clients->TheObject()
                 : WithOneInterface<NamedValueSetWrapper>("KVDM.NamedValueSet", set);
}

ComPtr<IUnknown> ToClient(const std::shared_ptr<DatasetManager>& manager) {
  const auto siblings = std::dynamic_pointer_cast<ComDatasetManager>(manager);
  return siblings ? siblings->Object() : nullptr;
}

ComPtr<IUnknown> NewInstance(const Class& of) {
  return ObjectOf(of, CreateObject(of.identity, MakeWindowsPlatform({})));
}

}  // namespace kvdm::com
