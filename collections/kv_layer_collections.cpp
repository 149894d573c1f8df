#include "collections/kv_layer_collections.h"

#include "items/kv_layers.h"
#include "util/kvdm_utils.h"
#include "util/messages.h"
#include "util/names.h"

namespace kvdm {
namespace {

constexpr CollectionRules kCustLayerRules = {
    .tag = tags::kCustLayer,
    .reports = ReportStyle::kByName,
    .list_failed = messages::kCustLayersList,
    .create_failed = messages::kCreateCustLayer,
    .delete_failed = messages::kDeleteCustLayer,
    .get_failed = messages::kGetCustLayer,
};

constexpr CollectionRules kStoreLayerRules = {
    .tag = tags::kStoreLayer,
    .reports = ReportStyle::kByName,
    .list_failed = messages::kStoreLayersList,
    .create_failed = messages::kCreateStoreLayer,
    .delete_failed = messages::kDeleteStoreLayer,
    .get_failed = messages::kGetStoreLayer,
};

}  // namespace

std::string LayerCollection::Folder() const {
  return guard::Passed([&] {
    if (!view_.node()) return std::string();
    auto folder = Required(view_.data_manager()).WorkingDirectory() + folder_name_;
    auto& files = *view_.services().files;
    if (!files.FolderExists(folder)) files.CreateFolder(folder);
    return folder;
  });
}

bool LayerCollection::Create(std::string_view name) const {
  return guard::Reported(view_.reporter(), view_.rules().create_failed, [&] {
    if (!view_.node() || Exists(name)) return false;
    const auto base_name = view_.services().files->FreeFileName(Folder(), name);
    const auto layer = view_.NewItem(WrapName(name));
    // The folder is asked for again, and made again if it went meanwhile.
    layer.SetAttribute(attributes::kLayerFile, Folder() + "\\" + base_name + ".lyr");
    layer.SetAttribute(attributes::kCreationTime, view_.CreationTime());
    view_.node().Append(layer);
    return true;
  });
}

bool LayerCollection::Delete(const char* attribute, std::string_view key) const {
  return guard::Reported(view_.reporter(), view_.rules().delete_failed,
                         [&] { return view_.Remove(attribute, key) != nullptr; });
}

bool LayerCollection::Exists(std::string_view name) const {
  return view_.Find(attributes::kName, WrapName(name)) != nullptr;
}

bool LayerCollection::ExistsByGUID(std::string_view guid) const {
  return view_.Find(attributes::kGuid, guid) != nullptr;
}

KVCustLayerCollection::KVCustLayerCollection(std::shared_ptr<GisCore> gis_core)
    : layers_(kCustLayerRules, sDefaultDirNames::kCustLayers, std::move(gis_core)) {}

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

KVStoreLayerCollection::KVStoreLayerCollection(std::shared_ptr<GisCore> gis_core)
    : layers_(kStoreLayerRules, sDefaultDirNames::kStoreLayers, std::move(gis_core)) {}

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
  return guard::Reported(view.reporter(), kStoreLayerRules.delete_failed, [&] {
    const auto layer = view.Remove(attributes::kGuid, guid);
    if (!layer) return false;
    // An absent DIRNAME counts as "": the folder of all store layers goes
    // (StoreLayerCollectionTest.DeletingByGuidTakesTheWholeFolder).
    const auto dir_name = layer.GetAttribute(attributes::kDirName);
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
