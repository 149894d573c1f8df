#include "tests/boundary/client/objects.h"

#include <map>

#include "platform/windows/automation.h"
#include "tests/boundary/client/collection_clients.h"
#include "tests/boundary/client/host_objects.h"
#include "tests/boundary/client/item_clients.h"
#include "tests/boundary/client/manager_clients.h"
#include "tests/boundary/client/study_area_clients.h"

namespace kvdm::client {
namespace {

using Microsoft::WRL::ComPtr;

class IdentifierClient final : public Identifier, public Slots<::IIdentifier> {
 public:
  using Slots::Slots;

  void Generate() override { Call(&Abi::Generate); }
  [[nodiscard]] std::string GetValue() const override { return Call(&Abi::GetValue); }
  void PutValue(std::string_view text) override { Call(&Abi::PutValue, text); }
};

// A set that the DLL made.
class ValueSetClient final : public NamedValueSet, public Slots<::INamedValueSet> {
 public:
  using Slots::Slots;

  std::vector<Value> GetValues(std::string_view path) override {
    Bstr text(path);
    Variant values;
    Check(TheObject()->GetValues(text.address(), values.address()));
    return FromArray(values.get());
  }
  void PutValue(std::string_view path, const Value& value) override {
    Call(&Abi::PutValue, path, value);
  }
  Listing ListAll() override {
    Variant names;
    Variant values;
    Check(TheObject()->ListAll(names.address(), values.address()));
    Listing listing;
    for (const Value& name : FromArray(names.get())) listing.names.push_back(ToText(name));
    listing.values = FromArray(values.get());
    return listing;
  }
  int EntryCount() override { return Call(&Abi::EntryCount); }
  void PrepareForUpdate() override { Call(&Abi::PrepareForUpdate); }
};

class DatasetManagerClient final : public DatasetManager {
 public:
  explicit DatasetManagerClient(const ComPtr<IDispatch>& object) : object_(object) {}

  Value Initialize() override { return FromVariant(object_.Call("Initialize").get()); }

 private:
  LateObject object_;
};

template <class Client>
std::shared_ptr<Unknown> AnsweredBy(IUnknown* object) {
  ComPtr<typename Client::Abi> found;
  if (FAILED(object->QueryInterface(IID_PPV_ARGS(&found)))) return nullptr;
  return std::make_shared<Client>(found);
}

// The interface `Interface` of an object; null when it does not have it, or for null.
template <class Interface>
ComPtr<Interface> As(const ComPtr<IUnknown>& object) {
  ComPtr<Interface> found;
  if (object) static_cast<void>(object.As(&found));
  return found;
}

using Facets = std::map<std::type_index, std::shared_ptr<Unknown> (*)(IUnknown*)>;

template <class... Clients>
Facets FacetsOf() {
  return {{typeid(typename Clients::Core), &AnsweredBy<Clients>}...};
}

const Facets& AllFacets() {
  static const Facets facets =
      FacetsOf<DataManagerClient, InitializeClient, PersistClient, CatalogueClient,
               TablesManagerClient, FileInfoClient, StudyAreaCollectionClient, StudyAreaClient,
               StudyArea2Client, PropertySetClient, AnalysisCollectionClient,
               StoreLayerCollectionClient, CustLayerCollectionClient, DataCollectionClient,
               AnalysisClient, StoreLayerClient, CustLayerClient, DataItemClient, LayerEditClient,
               MetadataClient>();
  return facets;
}

}  // namespace

std::shared_ptr<Unknown> FacetOf(IUnknown* object, std::type_index interface_type) {
  const auto found = AllFacets().find(interface_type);
  return object == nullptr || found == AllFacets().end() ? nullptr : found->second(object);
}

ComPtr<IUnknown> ToDll(const std::shared_ptr<NamedValueSet>& set) {
  if (const auto made_by_dll = std::dynamic_pointer_cast<ValueSetClient>(set)) {
    return made_by_dll->TheObject();
  }
  return HostObject(set);
}

DllObject::operator std::shared_ptr<NameList>() const {
  const auto list = As<::INameList>(object_);
  if (!list) return nullptr;
  auto copy = std::make_shared<NameList>();
  const int count = Call(*list.Get(), &::INameList::get_Count);
  for (long position = 1; position <= count; ++position) {
    Variant value;
    Check(list->get_Item(position, value.address()));
    copy->Add(FromVariant(value.get()));
  }
  return copy;
}

DllObject::operator std::shared_ptr<Identifier>() const {
  const auto identifier = As<::IIdentifier>(object_);
  if (!identifier) return nullptr;
  return std::make_shared<IdentifierClient>(identifier);
}

DllObject::operator std::shared_ptr<NamedValueSet>() const {
  if (auto own = OwnValueSet(object_.Get())) return own;
  const auto set = As<::INamedValueSet>(object_);
  if (!set) return nullptr;
  return std::make_shared<ValueSetClient>(set);
}

DllObject::operator std::shared_ptr<DatasetManager>() const {
  const auto manager = As<IDispatch>(object_);
  if (!manager) return nullptr;
  return std::make_shared<DatasetManagerClient>(manager);
}

}  // namespace kvdm::client
