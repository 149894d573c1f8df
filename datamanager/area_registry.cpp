#include "datamanager/area_registry.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "collections/collection_view.h"
#include "datamanager/documents.h"
#include "items/kv_layers.h"
#include "studyarea/kv_study_area.h"
#include "util/guard.h"
#include "util/kvdm_utils.h"
#include "util/messages.h"
#include "util/names.h"
#include "util/registry_strings.h"

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

void Bind(KVStudyArea& study_area, xml::Element element, DataManagerRef manager) {
  study_area.SetNode(std::move(element));
  study_area.SetDataManager(std::move(manager));
}

template <class Layer>
void Bind(Layer& layer, xml::Element element, DataManagerRef manager) {
  layer.AttachNode(std::move(element));
  layer.AttachDataManager(std::move(manager));
}

}  // namespace

// The texts with which one operation reports that its collection is missing, and any other error.
struct AreaReports {
  const char* collection_missing;
  const char* failed;
};

// What differs between the three collections, side by side.
struct AreaRules {
  const char* collection;
  const char* collection_missing;
  CollectionRules items;
  const char* exists_by_name_failed;
  const char* exists_by_guid_failed;
  AreaReports list;
  AreaReports create;
  AreaReports remove;
  AreaReports get;
  // The name that the list of names leaves out.
  std::optional<std::string_view> unlisted = std::nullopt;
  // Of layers: the folder of their files below the working directory, the first base name there,
  // and a child that a new layer gets.
  const char* folder = nullptr;
  const char* base_name = nullptr;
  const char* child = nullptr;
};

constexpr AreaRules kAreas = {
    .collection = tags::kStudyAreaCollection,
    .collection_missing = "No Study Area Collection found in XML",
    .items = {.tag = tags::kStudyArea, .reports = ReportStyle::kShown},
    .exists_by_name_failed = messages::areas::kNoDocumentElement,
    .exists_by_guid_failed = messages::areas::kNoDocumentElement,
    .list = {messages::areas::kNoStudyAreasToList, messages::areas::kListStudyAreas},
    .create = {messages::areas::kNoStudyAreas, messages::areas::kCreateStudyArea},
    .remove = {messages::areas::kNoStudyAreas, messages::areas::kDeleteStudyArea},
    .get = {messages::areas::kGetStudyArea, messages::areas::kGetStudyArea},
    .unlisted = kUnlistedStudyArea,
};

constexpr AreaRules kCustomers = {
    .collection = tags::kCustomerCollection,
    .collection_missing = "No Customer Collection found in XML",
    .items = {.tag = tags::kCustLayer, .reports = ReportStyle::kShown},
    .exists_by_name_failed = messages::areas::kCustLayerExists,
    .exists_by_guid_failed = messages::areas::kCustLayerExistsByGuid,
    .list = {messages::areas::kListCustLayers, messages::areas::kListCustLayers},
    .create = {messages::areas::kRegisterCustLayer, messages::areas::kRegisterCustLayer},
    .remove = {messages::areas::kUnregisterCustLayer, messages::areas::kUnregisterCustLayer},
    .get = {messages::areas::kGetCustLayer, messages::areas::kGetCustLayer},
    .folder = "Customers\\",
    .base_name = "Cust",
    .child = tags::kLinkField,
};

constexpr AreaRules kStores = {
    .collection = tags::kStoreCollection,
    .collection_missing = "No Store Collection found in XML",
    .items = {.tag = tags::kStoreLayer, .reports = ReportStyle::kShown},
    .exists_by_name_failed = messages::areas::kStoreLayerExists,
    .exists_by_guid_failed = messages::areas::kStoreLayerExistsByGuid,
    .list = {messages::areas::kListStoreLayers, messages::areas::kListStoreLayers},
    .create = {messages::areas::kRegisterStoreLayer, messages::areas::kRegisterStoreLayer},
    .remove = {messages::areas::kUnregisterStoreLayer, messages::areas::kUnregisterStoreLayer},
    .get = {messages::areas::kGetStoreLayer, messages::areas::kGetStoreLayer},
    .folder = "Stores\\",
    .base_name = "Store",
};

template <class Body>
auto AreaRegistry::Reported(const AreaReports& reports, Body&& body) {
  return guard::Handled(
      manager_.ErrorLog(),
      [&](const RuntimeError& error) {
        const bool missing = error.number() == kCollectionMissing;
        manager_.KVDMHandleError(missing ? reports.collection_missing : reports.failed);
      },
      std::forward<Body>(body));
}

CollectionView AreaRegistry::Collection(const AreaRules& rules) const {
  const auto root = Required(workspace_.metadata).DocumentElement();
  auto collection = Required(root).Child(rules.collection);
  if (!collection) {
    throw RuntimeError(kCollectionMissing, kErrorSource, rules.collection_missing);
  }
  CollectionView view(rules.items, platform_.gis_core);
  view.SetDataManager(manager_.Reference());
  view.SetNode(std::move(collection));
  return view;
}

template <class Add>
NameListRef AreaRegistry::List(const AreaRules& rules, Add&& add) {
  const auto list = Reported(rules.list, [&] {
    auto texts = std::make_shared<NameList>();
    for (const auto& item : Collection(rules).node().Children(rules.items.tag)) add(item, *texts);
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

// As stored, where the other collections unwrap them like names.
NameListRef AreaRegistry::GUIDs(const AreaRules& rules) {
  return List(rules, [&](const xml::Element& item, NameList& guids) {
    guids.Add(ToText(item.GetAttribute(attributes::kGuid)));
  });
}

// Looks into every collection element there is: a damaged document may have several.
bool AreaRegistry::Exists(const AreaRules& rules, const char* attribute, std::string_view key,
                          const char* failed) {
  return Reported({failed, failed}, [&] {
    const auto root = workspace_.metadata ? workspace_.metadata->DocumentElement() : nullptr;
    if (!root) {
      manager_.KVDMHandleError(messages::areas::kNoDocumentElement);
      workspace_.metadata_valid = false;
      return false;
    }
    const auto collections = root.Children(rules.collection);
    return std::ranges::any_of(collections, [&](const auto& collection) {
      return collection.Child(rules.items.tag, attribute, key) != nullptr;
    });
  });
}

bool AreaRegistry::ExistsByName(const AreaRules& rules, std::string_view name) {
  return Exists(rules, attributes::kName, WrapName(name), rules.exists_by_name_failed);
}

bool AreaRegistry::ExistsByGUID(const AreaRules& rules, std::string_view guid) {
  return Exists(rules, attributes::kGuid, guid, rules.exists_by_guid_failed);
}

template <class Item>
std::shared_ptr<Item> AreaRegistry::Get(const AreaRules& rules, const char* attribute,
                                        std::string_view key) {
  return Reported(rules.get, [&]() -> std::shared_ptr<Item> {
    auto element = Collection(rules).Find(attribute, key);
    if (!element) return nullptr;
    auto item = std::make_shared<Item>(platform_.gis_core);
    Bind(*item, std::move(element), manager_.Reference());
    return item;
  });
}

// Study areas.

NameListRef AreaRegistry::StudyAreaNames() { return Names(kAreas); }
NameListRef AreaRegistry::StudyAreaGUIDs() { return GUIDs(kAreas); }

bool AreaRegistry::CreateStudyArea(std::string_view name) {
  return Reported(kAreas.create, [&] {
    if (StudyAreaExists(name)) return false;
    const auto folder_name = CreateStudyAreaFolders();
    const auto collection = Collection(kAreas);
    const auto study_area = collection.NewItem(WrapName(name));
    study_area.SetAttribute(attributes::kDirName, folder_name);
    study_area.SetAttribute(attributes::kShapeFile, kStudyAreaFile);
    collection.node().Append(study_area);
    for (const auto* child : {tags::kAnalysisCollection, tags::kLayerCollection, tags::kDataGroup,
                              tags::kStudyAreaProperties}) {
      study_area.Append(study_area.CreateNear(child));
    }
    manager_.Flush();
    return true;
  });
}

// Returns the name of the new folder in the working directory.
std::string AreaRegistry::CreateStudyAreaFolders() {
  auto folder_name = manager_.GenerateFolderName("", sDefaultDirNames::kStudyAreaPrefix);
  const auto folder = workspace_.directory + "\\" + folder_name + "\\";
  auto& files = *platform_.files;
  files.CreateFolder(folder);
  for (const auto* name :
       {sDefaultDirNames::kAnalyses, kDataFolder, sDefaultDirNames::kTables, kLayersFolder}) {
    files.CreateFolder(folder + name);
  }
  return folder_name;
}

bool AreaRegistry::DeleteStudyArea(std::string_view name) {
  return DeleteStudyArea(attributes::kName, WrapName(name));
}

bool AreaRegistry::DeleteStudyAreaByGUID(std::string_view guid) {
  return DeleteStudyArea(attributes::kGuid, guid);
}

// The folder's path has no "\" at its end, so a folder that holds others stays
// (AreaRegistryTest.DeletingLeavesAFolderThatHoldsFolders). An empty name is no folder's,
// and without a working directory the path would lead to the root of the current drive.
bool AreaRegistry::DeleteStudyArea(const char* attribute, std::string_view key) {
  return Reported(kAreas.remove, [&] {
    const auto study_area = Collection(kAreas).Remove(attribute, key);
    if (!study_area) return false;
    const auto folder_name = ToText(study_area.GetAttribute(attributes::kDirName));
    if (!folder_name.empty() && !workspace_.directory.empty()) {
      DeleteFolderTree(*platform_.files, workspace_.directory + "\\" + folder_name,
                       manager_.ErrorLog());
    }
    manager_.Flush();
    return true;
  });
}

std::shared_ptr<IKVStudyArea> AreaRegistry::GetStudyArea(std::string_view name) {
  return Get<KVStudyArea>(kAreas, attributes::kName, WrapName(name));
}

std::shared_ptr<IKVStudyArea> AreaRegistry::GetStudyAreaByGUID(std::string_view guid) {
  return Get<KVStudyArea>(kAreas, attributes::kGuid, guid);
}

bool AreaRegistry::StudyAreaExists(std::string_view name) { return ExistsByName(kAreas, name); }

bool AreaRegistry::StudyAreaExistsByGUID(std::string_view guid) {
  return ExistsByGUID(kAreas, guid);
}

// Layers.

std::string AreaRegistry::LayersDir(const AreaRules& rules) const {
  return workspace_.metadata_valid ? workspace_.directory + rules.folder : std::string();
}

bool AreaRegistry::RegisterLayer(const AreaRules& rules, std::string_view name) {
  return Reported(rules.create, [&] {
    if (!workspace_.metadata_valid || ExistsByName(rules, name)) return false;
    const auto collection = Collection(rules);
    const auto layer = collection.NewItem(WrapName(name));
    const auto base_name = platform_.files->FreeFileName(LayersDir(rules), rules.base_name);
    layer.SetAttribute(attributes::kShapeFile, base_name + kLayerFileExtension);
    layer.SetAttribute(attributes::kPathType, path_types::kRelative);
    layer.SetAttribute(attributes::kIsInternal, kInternal);
    layer.SetAttribute(attributes::kCreationTime, platform_.clock->Now());
    collection.node().Append(layer);
    if (rules.child != nullptr) layer.Append(layer.CreateNear(rules.child));
    manager_.Flush();
    return true;
  });
}

bool AreaRegistry::UnregisterLayer(const AreaRules& rules, const char* attribute,
                                   std::string_view key) {
  return Reported(rules.remove, [&] {
    static_cast<void>(Collection(rules).Remove(attribute, key));
    manager_.Flush();
    return true;
  });
}

std::string AreaRegistry::CustomersDir() const { return LayersDir(kCustomers); }
NameListRef AreaRegistry::CustLayerNames() { return Names(kCustomers); }
NameListRef AreaRegistry::CustLayerGUIDs() { return GUIDs(kCustomers); }

bool AreaRegistry::RegisterCustLayer(std::string_view name) {
  return RegisterLayer(kCustomers, name);
}

bool AreaRegistry::UnregisterCustLayer(std::string_view name) {
  return UnregisterLayer(kCustomers, attributes::kName, WrapName(name));
}

bool AreaRegistry::UnregisterCustLayerByGUID(std::string_view guid) {
  return UnregisterLayer(kCustomers, attributes::kGuid, guid);
}

std::shared_ptr<IKVCustLayer> AreaRegistry::GetCustLayer(std::string_view name) {
  return Get<KVCustLayer>(kCustomers, attributes::kName, WrapName(name));
}

std::shared_ptr<IKVCustLayer> AreaRegistry::GetCustLayerByGUID(std::string_view guid) {
  return Get<KVCustLayer>(kCustomers, attributes::kGuid, guid);
}

bool AreaRegistry::CustLayerExists(std::string_view name) { return ExistsByName(kCustomers, name); }

bool AreaRegistry::CustLayerExistsByGUID(std::string_view guid) {
  return ExistsByGUID(kCustomers, guid);
}

std::string AreaRegistry::StoresDir() const { return LayersDir(kStores); }
NameListRef AreaRegistry::StoreLayerNames() { return Names(kStores); }
NameListRef AreaRegistry::StoreLayerGUIDs() { return GUIDs(kStores); }

bool AreaRegistry::RegisterStoreLayer(std::string_view name) {
  return RegisterLayer(kStores, name);
}

bool AreaRegistry::UnregisterStoreLayer(std::string_view name) {
  return UnregisterLayer(kStores, attributes::kName, WrapName(name));
}

bool AreaRegistry::UnregisterStoreLayerByGUID(std::string_view guid) {
  return UnregisterLayer(kStores, attributes::kGuid, guid);
}

std::shared_ptr<IKVStoreLayer> AreaRegistry::GetStoreLayer(std::string_view name) {
  return Get<KVStoreLayer>(kStores, attributes::kName, WrapName(name));
}

std::shared_ptr<IKVStoreLayer> AreaRegistry::GetStoreLayerByGUID(std::string_view guid) {
  return Get<KVStoreLayer>(kStores, attributes::kGuid, guid);
}

bool AreaRegistry::StoreLayerExists(std::string_view name) { return ExistsByName(kStores, name); }

bool AreaRegistry::StoreLayerExistsByGUID(std::string_view guid) {
  return ExistsByGUID(kStores, guid);
}

// Aliases.

std::string AreaRegistry::Alias(const char* value_name, const char* otherwise) {
  const auto alias = guard::Quiet(manager_.ErrorLog(), [&] {
    return ToText(ReadRegistryString(*platform_.registry, RegistryRoot::kLocalMachine, kRegistryKey,
                                     value_name));
  });
  return alias.empty() ? otherwise : alias;
}

void AreaRegistry::SetAlias(const char* value_name, std::string_view alias) {
  guard::Reported(Reporter{ReportStyle::kShown, &manager_}, messages::areas::kWriteAlias, [&] {
    WriteRegistryString(*platform_.registry, RegistryRoot::kLocalMachine, kRegistryKey, value_name,
                        alias);
  });
}

std::string AreaRegistry::CustomerAlias() { return Alias(kCustomerAliasValue, kCustomer); }

void AreaRegistry::SetCustomerAlias(std::string_view alias) {
  SetAlias(kCustomerAliasValue, alias);
}

std::string AreaRegistry::StoreAlias() { return Alias(kStoreAliasValue, kStore); }
void AreaRegistry::SetStoreAlias(std::string_view alias) { SetAlias(kStoreAliasValue, alias); }

}  // namespace kvdm
