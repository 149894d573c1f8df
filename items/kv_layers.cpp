#include "items/kv_layers.h"

namespace kvdm {

std::string KVCustLayer::LinkField() { return view().TextOrNothing(attributes::kLinkField); }

void KVCustLayer::SetLinkField(std::string_view field) {
  SetQuietly(attributes::kLinkField, field);
}

bool KVCustLayer::IsTaken(std::string_view name) {
  const auto layers = Required(view().data_manager()).CustLayerCollection();
  return Required(layers).CustLayerExists(name);
}

void KVStoreLayer::SetLayerFile(std::string_view path) {
  view().Set(attributes::kLayerFile, path);
  view().SetAndFlush(attributes::kPathType, path_types::kAbsolute);
}

bool KVStoreLayer::IsTaken(std::string_view name) {
  const auto layers = Required(view().data_manager()).StoreLayerCollection();
  return Required(layers).StoreLayerExists(name);
}

}  // namespace kvdm
