#include "items/kv_layers.h"

#include "items/metadata_exchange.h"
#include "util/names.h"

namespace kvdm {

std::string KVCustLayer::LinkField() { return view().TextOrNothing(attributes::kLinkField); }

void KVCustLayer::SetLinkField(std::string_view field) {
  SetQuietly(attributes::kLinkField, field);
}

bool KVCustLayer::IsTaken(std::string_view name) {
  const auto layers = Required(view().data_manager()).CustLayerCollection();
  return Required(layers).CustLayerExists(name);
}

void KVCustLayer::ExportMetadata(const std::shared_ptr<LayerMetadata>& metadata) {
  ExportDocument(metadata, gis_core(), view().log(), [&](NamedValueSet& document) {
    document.PutValue(metadata_paths::kLayerType, layer_types::kCustLayer);
    document.PutValue(metadata_paths::kName, Name());
    document.PutValue(metadata_paths::kGuid, GUID());
    document.PutValue(metadata_paths::kIdField, IDField());
    document.PutValue(metadata_paths::kLinkField, LinkField());
    document.PutValue(metadata_paths::kNameField, NameField());
    document.PutValue(metadata_paths::kComments, Comments());
    document.PutValue(metadata_paths::kIsInternalData, IsInternalData());
  });
}

void KVCustLayer::ImportMetadata(const std::shared_ptr<LayerMetadata>& metadata) {
  guard::Quiet(view().log(), [&] {
    const auto document = ReadDocumentOf(metadata, layer_types::kCustLayer);
    if (!document) return;
    SetIDField(FirstText(*document, metadata_paths::kIdField));
    SetLinkField(FirstText(*document, metadata_paths::kLinkField));
    SetNameField(FirstText(*document, metadata_paths::kNameField));
    SetComments(FirstText(*document, metadata_paths::kComments));
    layer_edit().SetGUID(FirstText(*document, metadata_paths::kGuid));
    SetIsInternalData(ToBoolean(FirstValue(*document, metadata_paths::kIsInternalData)));
  });
}

void KVStoreLayer::SetLayerFile(std::string_view path) {
  view().Set(attributes::kLayerFile, path);
  view().SetAndFlush(attributes::kPathType, path_types::kAbsolute);
}

bool KVStoreLayer::IsTaken(std::string_view name) {
  const auto layers = Required(view().data_manager()).StoreLayerCollection();
  return Required(layers).StoreLayerExists(name);
}

void KVStoreLayer::ExportMetadata(const std::shared_ptr<LayerMetadata>& metadata) {
  ExportDocument(metadata, gis_core(), view().log(), [&](NamedValueSet& document) {
    document.PutValue(metadata_paths::kLayerType, layer_types::kStoreLayer);
    document.PutValue(metadata_paths::kName, Name());
    document.PutValue(metadata_paths::kGuid, GUID());
    document.PutValue(metadata_paths::kIdField, IDField());
    document.PutValue(metadata_paths::kNameField, NameField());
    document.PutValue(metadata_paths::kComments, Comments());
    document.PutValue(metadata_paths::kIsInternalData, IsInternalData());
  });
}

void KVStoreLayer::ImportMetadata(const std::shared_ptr<LayerMetadata>& metadata) {
  guard::Quiet(view().log(), [&] {
    const auto document = ReadDocumentOf(metadata, layer_types::kStoreLayer);
    if (!document) return;
    SetIDField(FirstText(*document, metadata_paths::kIdField));
    SetNameField(FirstText(*document, metadata_paths::kNameField));
    SetComments(FirstText(*document, metadata_paths::kComments));
    layer_edit().SetGUID(FirstText(*document, metadata_paths::kGuid));
    SetIsInternalData(ToBoolean(FirstValue(*document, metadata_paths::kIsInternalData)));
  });
}

}  // namespace kvdm
