// The collections, preset data and temporary files of the data manager.
#include "collections/kv_analysis_collection.h"
#include "collections/kv_data_collection.h"
#include "collections/kv_layer_collections.h"
#include "datamanager/kv_data_manager.h"
#include "studyarea/kv_study_area.h"
#include "studyarea/kv_study_area_collection.h"
#include "util/guard.h"
#include "util/kvdm_utils.h"
#include "util/messages.h"
#include "util/names.h"

namespace kvdm {
namespace {

constexpr char kTempBaseName[] = "tmp";

std::string Trimmed(const std::string& text) {
  constexpr char kWhiteSpace[] = " \t\r\n";
  const auto first = text.find_first_not_of(kWhiteSpace);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1);
}

}  // namespace

xml::Element KVDataManager::CollectionElement(const char* tag) {
  const auto root = Required(workspace_.metadata).DocumentElement();
  auto element = Required(root).Child(tag);
  if (!element) {
    element = root.CreateNear(tag);
    root.Append(element);
  }
  return element;
}

template <class Collection>
std::shared_ptr<Collection> KVDataManager::BindCollection(xml::Element element) {
  auto collection = std::make_shared<Collection>(platform_.gis_core);
  collection->SetDataManager(Reference());
  collection->SetNode(std::move(element));
  return collection;
}

std::shared_ptr<IKVAnalysisCollection> KVDataManager::AnalysisCollection() {
  return guard::Reported(reporter_, messages::kAnalysisCollection, [&] {
    return BindCollection<KVAnalysisCollection>(CollectionElement(tags::kAnalysisCollection));
  });
}

std::shared_ptr<IKVDataCollection> KVDataManager::DataCollection() {
  return guard::Reported(reporter_, messages::kDataCollection, [&] {
    return BindCollection<KVDataCollection>(CollectionElement(tags::kDataCollection));
  });
}

std::shared_ptr<IKVStudyAreaCollection> KVDataManager::StudyAreaCollection() {
  return guard::Reported(reporter_, messages::kStudyAreaCollection, [&] {
    auto study_areas = BindCollection<KVStudyAreaCollection>(catalogue_->DocumentElement());
    Follow(KVStudyAreaCollection::Followed(study_areas));
    return study_areas;
  });
}

std::shared_ptr<IKVTablesManager> KVDataManager::TablesManager() {
  return guard::Reported(reporter_, messages::kTablesManager, [&] {
    auto tables = std::make_shared<KVTablesManager>();
    tables->SetDataManager(Reference());
    return tables;
  });
}

std::shared_ptr<IKVCustLayerCollection> KVDataManager::CustLayerCollection() {
  return guard::Reported(reporter_, messages::kCustLayerCollection, [&] {
    return BindCollection<KVCustLayerCollection>(CollectionElement(tags::kCustLayerCollection));
  });
}

std::shared_ptr<IKVStoreLayerCollection> KVDataManager::StoreLayerCollection() {
  return guard::Reported(reporter_, messages::kStoreLayerCollection, [&] {
    return BindCollection<KVStoreLayerCollection>(CollectionElement(tags::kStoreLayerCollection));
  });
}

NameListRef KVDataManager::PDataList() { return ListPresets(attributes::kName); }
NameListRef KVDataManager::PDataGUIDList() { return ListPresets(attributes::kGuid); }

NameListRef KVDataManager::ListPresets(const char* attribute) {
  return guard::Reported(reporter_, messages::kPresetList, [&]() -> NameListRef {
    if (!presets_available_) return nullptr;
    auto list = std::make_shared<NameList>();
    const auto root = presets_->DocumentElement();
    if (!root) return list;
    for (const auto& item : root.Children(tags::kDataItem)) list->Add(item.GetAttribute(attribute));
    return list;
  });
}

std::string KVDataManager::GetPDataFile(std::string_view name) {
  return PresetFile(attributes::kName, name);
}

std::string KVDataManager::GetPDataFileByGUID(std::string_view guid) {
  return PresetFile(attributes::kGuid, guid);
}

std::string KVDataManager::PresetFile(const char* attribute, std::string_view key) {
  return guard::Reported(reporter_, messages::kPresetFile, [&] {
    const auto root = presets_available_ ? presets_->DocumentElement() : nullptr;
    const auto item = root ? root.Child(tags::kDataItem, attribute, key) : nullptr;
    return item ? preset_directory_ + "\\" + Trimmed(item.Text()) : std::string();
  });
}

std::string KVDataManager::TempFolder() const {
  return workspace_.directory + sDefaultDirNames::kKelvaroTemp + "\\";
}

std::string KVDataManager::TmpFilePath() {
  return guard::Reported(reporter_, messages::kTempFile, [&] {
    auto& files = *platform_.files;
    const auto folder = TempFolder();
    if (!files.FolderExists(folder)) {
      files.CreateFolder(folder);
      files.HideFolder(folder);
    }
    return folder + files.FreeFileName(folder, kTempBaseName);
  });
}

void KVDataManager::CleanTemp() {
  guard::Quiet(ErrorLog(), [&] {
    // Without a working directory the path would lead into the process's current folder.
    if (workspace_.directory.empty()) return;
    const auto folder = platform_.files->OpenFolder(workspace_.directory);
    Required(folder).Enter(sDefaultDirNames::kKelvaroTemp);
    EmptyFolder(*folder);
  });
}

}  // namespace kvdm
