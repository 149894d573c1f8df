#include "collections/kv_store_layer_collection.h"

#include "collections/messages.h"
#include "items/kv_store_layer.h"
#include "util/default_dir_names.h"
#include "util/kvdm_utils.h"
#include "util/tags.h"

namespace kvdm {
namespace {

constexpr CollectionRules kRules = {
    .tag = tags::kStoreLayer,
    .reports = ReportStyle::kByName,
    .list_failed = messages::kStoreLayersList,
    .create_failed = messages::kCreateStoreLayer,
    .delete_failed = messages::kDeleteStoreLayer,
    .get_failed = messages::kGetStoreLayer,
};

}  // namespace

KVStoreLayerCollection::KVStoreLayerCollection(std::shared_ptr<GisCore> gis_core)
    : layers_(kRules, sDefaultDirNames::kStoreLayers, std::move(gis_core)) {}

NameListRef KVStoreLayerCollection::StoreLayersList() {
  return layers_.view().List(attributes::kName);
}

NameListRef KVStoreLayerCollection::StoreLayersGUIDsList() {
  return layers_.view().List(attributes::kGuid);
}

bool KVStoreLayerCollection::CreateStoreLayer(std::string_view name) {
  return layers_.Create(name);
}

bool KVStoreLayerCollection::DeleteStoreLayer(std::string_view name) {
  return layers_.Delete(attributes::kName, WrapName(name));
}

bool KVStoreLayerCollection::DeleteStoreLayerByGUID(std::string_view guid) {
  const auto& view = layers_.view();
  return guard::Reported(view.reporter(), kRules.delete_failed, [&] {
    const auto layer = view.Remove(attributes::kGuid, guid);
    if (!layer) return false;
    // An absent DIRNAME counts as "": the folder of all store layers goes
    // (StoreLayerCollectionTest.DeletingByGuidTakesTheWholeFolder).
    const auto dir_name = layer->GetAttribute(attributes::kDirName);
    view.DeleteFolder(Required(view.data_manager()).WorkingDirectory() +
                      sDefaultDirNames::kStoreLayers + "\\" +
                      (dir_name.IsNull() ? std::string() : ToText(dir_name)));
    return true;
  });
}

std::shared_ptr<IKVStoreLayer> KVStoreLayerCollection::GetStoreLayer(std::string_view name) {
  return layers_.Get<KVStoreLayer>(attributes::kName, WrapName(name));
}

std::shared_ptr<IKVStoreLayer> KVStoreLayerCollection::GetStoreLayerByGUID(std::string_view guid) {
  return layers_.Get<KVStoreLayer>(attributes::kGuid, guid);
}

bool KVStoreLayerCollection::StoreLayerExists(std::string_view name) {
  return layers_.Exists(name);
}

bool KVStoreLayerCollection::StoreLayerExistsByGUID(std::string_view guid) {
  return layers_.ExistsByGUID(guid);
}

std::string KVStoreLayerCollection::StoreLayersDir() { return layers_.Folder(); }

}  // namespace kvdm
