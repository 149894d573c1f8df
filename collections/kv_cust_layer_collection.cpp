#include "collections/kv_cust_layer_collection.h"

#include "collections/messages.h"
#include "items/kv_cust_layer.h"
#include "util/default_dir_names.h"
#include "util/kvdm_utils.h"
#include "util/tags.h"

namespace kvdm {
namespace {

constexpr CollectionRules kRules = {
    .tag = tags::kCustLayer,
    .reports = ReportStyle::kByName,
    .list_failed = messages::kCustLayersList,
    .create_failed = messages::kCreateCustLayer,
    .delete_failed = messages::kDeleteCustLayer,
    .get_failed = messages::kGetCustLayer,
};

}  // namespace

KVCustLayerCollection::KVCustLayerCollection(std::shared_ptr<GisCore> gis_core)
    : layers_(kRules, sDefaultDirNames::kCustLayers, std::move(gis_core)) {}

NameListRef KVCustLayerCollection::CustLayersList() {
  return layers_.view().List(attributes::kName);
}

NameListRef KVCustLayerCollection::CustLayersGUIDsList() {
  return layers_.view().List(attributes::kGuid);
}

bool KVCustLayerCollection::CreateCustLayer(std::string_view name) { return layers_.Create(name); }

bool KVCustLayerCollection::DeleteCustLayer(std::string_view name) {
  return layers_.Delete(attributes::kName, WrapName(name));
}

bool KVCustLayerCollection::DeleteCustLayerByGUID(std::string_view guid) {
  return layers_.Delete(attributes::kGuid, guid);
}

std::shared_ptr<IKVCustLayer> KVCustLayerCollection::GetCustLayer(std::string_view name) {
  return layers_.Get<KVCustLayer>(attributes::kName, WrapName(name));
}

std::shared_ptr<IKVCustLayer> KVCustLayerCollection::GetCustLayerByGUID(std::string_view guid) {
  return layers_.Get<KVCustLayer>(attributes::kGuid, guid);
}

bool KVCustLayerCollection::CustLayerExists(std::string_view name) { return layers_.Exists(name); }

bool KVCustLayerCollection::CustLayerExistsByGUID(std::string_view guid) {
  return layers_.ExistsByGUID(guid);
}

std::string KVCustLayerCollection::CustLayersDir() { return layers_.Folder(); }

}  // namespace kvdm
