#include "datamanager/area_registry.h"

#include <utility>

#include "datamanager/area_rules.h"
#include "datamanager/kv_data_manager.h"
#include "datamanager/messages.h"
#include "items/kv_cust_layer.h"
#include "items/kv_store_layer.h"
#include "items/path_types.h"
#include "studyarea/kv_study_area.h"
#include "util/default_dir_names.h"
#include "util/guard.h"
#include "util/kvdm_utils.h"
#include "util/registry_strings.h"
#include "util/tags.h"

namespace kvdm {

namespace {

constexpr char kErrorSource[] = "KVDATAMANAGER";
constexpr char kDataFolder[] = "Data";
constexpr char kLayersFolder[] = "Layers";
constexpr char kStudyAreaFile[] = "Study Area.shp";
constexpr char kLayerFileExtension[] = ".shp";
constexpr char kInternal[] = "TRUE";
constexpr char kCustomer[] = "Customer";
constexpr char kStore[] = "Store";

void Bind(KVStudyArea& study_area, std::shared_ptr<xml::Element> element, DataManagerRef manager) {
  study_area.SetNode(std::move(element));
  study_area.SetDataManager(std::move(manager));
}

template <class Layer>
void Bind(Layer& layer, std::shared_ptr<xml::Element> element, DataManagerRef manager) {
  layer.AttachNode(std::move(element));
  layer.AttachDataManager(std::move(manager));
}

}  // namespace

template <class Body>
auto AreaRegistry::Reported(const AreaReports& reports, Body&& body) {
  return guard::Handled(
      [&](const RuntimeError& error) {
        const bool missing = error.number() == kCollectionMissing;
        manager_.KVDMHandleError(missing ? reports.collection_missing : reports.failed);
      },
      std::forward<Body>(body));
}

std::shared_ptr<xml::Element> AreaRegistry::Collection(const AreaRules& rules) const {
  const auto root = Required(manager_.metadata_).DocumentElement();
  auto collection = Required(root).SelectSingleNode(rules.collection);
  if (!collection) {
    throw RuntimeError(kCollectionMissing, kErrorSource, rules.collection_missing);
  }
  return collection;
}

std::shared_ptr<xml::Element> AreaRegistry::NewItem(const AreaRules& rules, std::string_view name) {
  auto item = xml::Element::Create(rules.tag);
  item->SetAttribute(attributes::kName, WrapName(name));
  item->SetAttribute(attributes::kGuid, NewGuidString(*manager_.platform_.gis_core));
  return item;
}

template <class Add>
NameListRef AreaRegistry::List(const AreaRules& rules, Add&& add) {
  const auto list = Reported(rules.list, [&] {
    auto texts = std::make_shared<NameList>();
    for (const auto& item : Collection(rules)->Children(rules.tag)) add(*item, *texts);
    return texts;
  });
  return list ? list : std::make_shared<NameList>();
}

NameListRef AreaRegistry::Names(const AreaRules& rules) {
  return List(rules, [&](const xml::Element& item, NameList& names) {
    const auto name = UnwrapName(ToText(item.GetAttribute(attributes::kName)));
    if (name != rules.unlisted) names.Add(name);
  });
}

NameListRef AreaRegistry::GUIDs(const AreaRules& rules) {
  return List(rules, [&](const xml::Element& item, NameList& guids) {
    guids.Add(ToText(item.GetAttribute(attributes::kGuid)));
  });
}

bool AreaRegistry::Exists(const AreaExistenceTest& test, std::string_view key) {
  return Reported({test.failed, test.failed}, [&] {
    const auto root = manager_.metadata_ ? manager_.metadata_->DocumentElement() : nullptr;
    if (!root) {
      manager_.KVDMHandleError(messages::areas::kNoDocumentElement);
      manager_.metadata_valid_ = false;
      return false;
    }
    return root->SelectSingleNode(QueryFor(test.query, key)) != nullptr;
  });
}

template <class Item>
std::shared_ptr<Item> AreaRegistry::Get(const AreaRules& rules, const char* query,
                                        std::string_view key) {
  return Reported(rules.get, [&]() -> std::shared_ptr<Item> {
    auto element = Collection(rules)->SelectSingleNode(QueryFor(query, key));
    if (!element) return nullptr;
    auto item = std::make_shared<Item>(manager_.platform_.gis_core);
    Bind(*item, std::move(element),
         std::dynamic_pointer_cast<DataManagerFriend>(manager_.shared_from_this()));
    return item;
  });
}

// Study areas.

NameListRef AreaRegistry::StudyAreaNames() { return Names(kStudyAreaRules); }

NameListRef AreaRegistry::StudyAreaGUIDs() { return GUIDs(kStudyAreaRules); }

bool AreaRegistry::CreateStudyArea(std::string_view name) {
  return Reported(kStudyAreaRules.create, [&] {
    if (StudyAreaExists(name)) return false;
    const auto folder_name = CreateStudyAreaFolders();
    const auto collection = Collection(kStudyAreaRules);
    const auto study_area = NewItem(kStudyAreaRules, name);
    study_area->SetAttribute(attributes::kDirName, folder_name);
    study_area->SetAttribute(attributes::kShapeFile, kStudyAreaFile);
    collection->Append(study_area);
    for (const auto* child : {tags::kAnalysisCollection, tags::kLayerCollection, tags::kDataGroup,
                              tags::kStudyAreaProperties}) {
      study_area->Append(xml::Element::Create(child));
    }
    manager_.Flush();
    return true;
  });
}

// Returns the name of the new folder in the working directory.
std::string AreaRegistry::CreateStudyAreaFolders() {
  auto folder_name = manager_.GenerateFolderName("", sDefaultDirNames::kStudyAreaPrefix);
  const auto folder = manager_.working_directory_ + "\\" + folder_name + "\\";
  auto& files = *manager_.platform_.files;
  files.CreateFolder(folder);
  for (const auto* name :
       {sDefaultDirNames::kAnalyses, kDataFolder, sDefaultDirNames::kTables, kLayersFolder}) {
    files.CreateFolder(folder + name);
  }
  return folder_name;
}

bool AreaRegistry::DeleteStudyArea(std::string_view name) {
  return DeleteStudyArea(kStudyAreaRules.by_name, WrapName(name));
}

bool AreaRegistry::DeleteStudyAreaByGUID(std::string_view guid) {
  return DeleteStudyArea(kStudyAreaRules.by_guid, guid);
}

// The folder's path has no "\" at its end, so a folder that holds others stays
// (AreaRegistryTest.DeletingLeavesAFolderThatHoldsFolders). An empty name is no folder's,
// and without a working directory the path would lead to the root of the current drive.
bool AreaRegistry::DeleteStudyArea(const char* query, std::string_view key) {
  return Reported(kStudyAreaRules.remove, [&] {
    const auto collection = Collection(kStudyAreaRules);
    const auto study_area = collection->SelectSingleNode(QueryFor(query, key));
    if (!study_area) return false;
    collection->Remove(study_area);
    const auto folder_name = ToText(study_area->GetAttribute(attributes::kDirName));
    if (!folder_name.empty() && !manager_.working_directory_.empty()) {
      DeleteFolderTree(*manager_.platform_.files, manager_.working_directory_ + "\\" + folder_name);
    }
    manager_.Flush();
    return true;
  });
}

std::shared_ptr<IKVStudyArea> AreaRegistry::GetStudyArea(std::string_view name) {
  return Get<KVStudyArea>(kStudyAreaRules, kStudyAreaRules.by_name, WrapName(name));
}

std::shared_ptr<IKVStudyArea> AreaRegistry::GetStudyAreaByGUID(std::string_view guid) {
  return Get<KVStudyArea>(kStudyAreaRules, kStudyAreaRules.by_guid, guid);
}

bool AreaRegistry::StudyAreaExists(std::string_view name) {
  return Exists(kStudyAreaRules.exists_by_name, WrapName(name));
}

bool AreaRegistry::StudyAreaExistsByGUID(std::string_view guid) {
  return Exists(kStudyAreaRules.exists_by_guid, guid);
}

// Layers.

std::string AreaRegistry::LayersDir(const AreaRules& rules) const {
  return manager_.metadata_valid_ ? manager_.working_directory_ + rules.folder : std::string();
}

bool AreaRegistry::RegisterLayer(const AreaRules& rules, std::string_view name) {
  return Reported(rules.create, [&] {
    if (!manager_.metadata_valid_ || Exists(rules.exists_by_name, WrapName(name))) return false;
    const auto collection = Collection(rules);
    const auto layer = NewItem(rules, name);
    const auto base_name =
        UniqueFileName(*manager_.platform_.files, LayersDir(rules), rules.base_name);
    layer->SetAttribute(attributes::kShapeFile, base_name + kLayerFileExtension);
    layer->SetAttribute(attributes::kPathType, path_types::kRelative);
    layer->SetAttribute(attributes::kIsInternal, kInternal);
    layer->SetAttribute(attributes::kCreationTime, manager_.platform_.clock->Now());
    collection->Append(layer);
    if (rules.child != nullptr) layer->Append(xml::Element::Create(rules.child));
    manager_.Flush();
    return true;
  });
}

bool AreaRegistry::UnregisterLayer(const AreaRules& rules, const char* query,
                                   std::string_view key) {
  return Reported(rules.remove, [&] {
    const auto collection = Collection(rules);
    const auto layer = collection->SelectSingleNode(QueryFor(query, key));
    if (layer) collection->Remove(layer);
    manager_.Flush();
    return true;
  });
}

std::string AreaRegistry::CustomersDir() const { return LayersDir(kCustLayerRules); }

NameListRef AreaRegistry::CustLayerNames() { return Names(kCustLayerRules); }

NameListRef AreaRegistry::CustLayerGUIDs() { return GUIDs(kCustLayerRules); }

bool AreaRegistry::RegisterCustLayer(std::string_view name) {
  return RegisterLayer(kCustLayerRules, name);
}

bool AreaRegistry::UnregisterCustLayer(std::string_view name) {
  return UnregisterLayer(kCustLayerRules, kCustLayerRules.by_name, WrapName(name));
}

bool AreaRegistry::UnregisterCustLayerByGUID(std::string_view guid) {
  return UnregisterLayer(kCustLayerRules, kCustLayerRules.by_guid, guid);
}

std::shared_ptr<IKVCustLayer> AreaRegistry::GetCustLayer(std::string_view name) {
  return Get<KVCustLayer>(kCustLayerRules, kCustLayerRules.by_name, WrapName(name));
}

std::shared_ptr<IKVCustLayer> AreaRegistry::GetCustLayerByGUID(std::string_view guid) {
  return Get<KVCustLayer>(kCustLayerRules, kCustLayerRules.by_guid, guid);
}

bool AreaRegistry::CustLayerExists(std::string_view name) {
  return Exists(kCustLayerRules.exists_by_name, WrapName(name));
}

bool AreaRegistry::CustLayerExistsByGUID(std::string_view guid) {
  return Exists(kCustLayerRules.exists_by_guid, guid);
}

std::string AreaRegistry::StoresDir() const { return LayersDir(kStoreLayerRules); }

NameListRef AreaRegistry::StoreLayerNames() { return Names(kStoreLayerRules); }

NameListRef AreaRegistry::StoreLayerGUIDs() { return GUIDs(kStoreLayerRules); }

bool AreaRegistry::RegisterStoreLayer(std::string_view name) {
  return RegisterLayer(kStoreLayerRules, name);
}

bool AreaRegistry::UnregisterStoreLayer(std::string_view name) {
  return UnregisterLayer(kStoreLayerRules, kStoreLayerRules.by_name, WrapName(name));
}

bool AreaRegistry::UnregisterStoreLayerByGUID(std::string_view guid) {
  return UnregisterLayer(kStoreLayerRules, kStoreLayerRules.by_guid, guid);
}

std::shared_ptr<IKVStoreLayer> AreaRegistry::GetStoreLayer(std::string_view name) {
  return Get<KVStoreLayer>(kStoreLayerRules, kStoreLayerRules.by_name, WrapName(name));
}

std::shared_ptr<IKVStoreLayer> AreaRegistry::GetStoreLayerByGUID(std::string_view guid) {
  return Get<KVStoreLayer>(kStoreLayerRules, kStoreLayerRules.by_guid, guid);
}

bool AreaRegistry::StoreLayerExists(std::string_view name) {
  return Exists(kStoreLayerRules.exists_by_name, WrapName(name));
}

bool AreaRegistry::StoreLayerExistsByGUID(std::string_view guid) {
  return Exists(kStoreLayerRules.exists_by_guid, guid);
}

// Aliases.

std::string AreaRegistry::Alias(const char* value_name, const char* otherwise) {
  const auto alias = guard::Quiet([&] {
    return ToText(ReadRegistryString(*manager_.platform_.registry, RegistryRoot::kLocalMachine,
                                     kRegistryKey, value_name));
  });
  return alias.empty() ? otherwise : alias;
}

void AreaRegistry::SetAlias(const char* value_name, std::string_view alias) {
  guard::Reported(manager_.report_, messages::areas::kWriteAlias, [&] {
    WriteRegistryString(*manager_.platform_.registry, RegistryRoot::kLocalMachine, kRegistryKey,
                        value_name, alias);
  });
}

std::string AreaRegistry::CustomerAlias() { return Alias(kCustomerAliasValue, kCustomer); }

void AreaRegistry::SetCustomerAlias(std::string_view alias) {
  SetAlias(kCustomerAliasValue, alias);
}

std::string AreaRegistry::StoreAlias() { return Alias(kStoreAliasValue, kStore); }

void AreaRegistry::SetStoreAlias(std::string_view alias) { SetAlias(kStoreAliasValue, alias); }

}  // namespace kvdm
