// The collections, preset data and temporary files of the data manager.
#include "collections/kv_analysis_collection.h"
#include "collections/kv_cust_layer_collection.h"
#include "collections/kv_data_collection.h"
#include "collections/kv_store_layer_collection.h"
#include "datamanager/kv_data_manager.h"
#include "datamanager/messages.h"
#include "items/element_view.h"
#include "studyarea/kv_study_area_collection.h"
#include "studyarea/kv_tables_manager.h"
#include "util/default_dir_names.h"
#include "util/guard.h"
#include "util/kvdm_utils.h"
#include "util/tags.h"

namespace kvdm {
namespace {

constexpr char kPresetByName[] = "./DATAITEM[@NAME = ";
constexpr char kPresetByGuid[] = "./DATAITEM[@GUID = ";
constexpr char kTempBaseName[] = "tmp";

std::string Trimmed(const std::string& text) {
  constexpr char kWhiteSpace[] = " \t\r\n";
  const auto first = text.find_first_not_of(kWhiteSpace);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1);
}

}  // namespace

std::shared_ptr<xml::Element> KVDataManager::CollectionElement(const char* tag) {
  const auto root = Required(metadata_).DocumentElement();
  return SelectOrAppend(Required(root), "./" + std::string(tag), tag);
}

template <class Collection>
std::shared_ptr<Collection> KVDataManager::BindCollection(std::shared_ptr<xml::Element> element) {
  auto collection = std::make_shared<Collection>(platform_.gis_core);
  collection->SetDataManager(std::dynamic_pointer_cast<DataManagerFriend>(shared_from_this()));
  collection->SetNode(std::move(element));
  return collection;
}

std::shared_ptr<IKVAnalysisCollection> KVDataManager::AnalysisCollection() {
  return guard::Reported(report_, messages::kAnalysisCollection, [&] {
    return BindCollection<KVAnalysisCollection>(CollectionElement(tags::kAnalysisCollection));
  });
}

std::shared_ptr<IKVDataCollection> KVDataManager::DataCollection() {
  return guard::Reported(report_, messages::kDataCollection, [&] {
    return BindCollection<KVDataCollection>(CollectionElement(tags::kDataCollection));
  });
}

std::shared_ptr<IKVStudyAreaCollection> KVDataManager::StudyAreaCollection() {
  return guard::Reported(report_, messages::kStudyAreaCollection, [&] {
    return BindCollection<KVStudyAreaCollection>(catalogue_->DocumentElement());
  });
}

std::shared_ptr<IKVTablesManager> KVDataManager::TablesManager() {
  return guard::Reported(report_, messages::kTablesManager, [&] {
    auto tables = std::make_shared<KVTablesManager>();
    tables->SetDataManager(std::dynamic_pointer_cast<DataManagerFriend>(shared_from_this()));
    return tables;
  });
}

std::shared_ptr<IKVCustLayerCollection> KVDataManager::CustLayerCollection() {
  return guard::Reported(report_, messages::kCustLayerCollection, [&] {
    return BindCollection<KVCustLayerCollection>(CollectionElement(tags::kCustLayerCollection));
  });
}

std::shared_ptr<IKVStoreLayerCollection> KVDataManager::StoreLayerCollection() {
  return guard::Reported(report_, messages::kStoreLayerCollection, [&] {
    return BindCollection<KVStoreLayerCollection>(CollectionElement(tags::kStoreLayerCollection));
  });
}

NameListRef KVDataManager::PDataList() { return ListPresets(attributes::kName); }

NameListRef KVDataManager::PDataGUIDList() { return ListPresets(attributes::kGuid); }

NameListRef KVDataManager::ListPresets(const char* attribute) {
  return guard::Reported(report_, messages::kPresetList, [&]() -> NameListRef {
    if (!presets_available_) return nullptr;
    auto list = std::make_shared<NameList>();
    const auto root = presets_->DocumentElement();
    if (!root) return list;
    for (const auto& item : root->Children(tags::kDataItem))
      list->Add(item->GetAttribute(attribute));
    return list;
  });
}

std::string KVDataManager::GetPDataFile(std::string_view name) {
  return PresetFile(kPresetByName, name);
}

std::string KVDataManager::GetPDataFileByGUID(std::string_view guid) {
  return PresetFile(kPresetByGuid, guid);
}

std::string KVDataManager::PresetFile(const char* query, std::string_view key) {
  return guard::Reported(report_, messages::kPresetFile, [&] {
    const auto root = presets_available_ ? presets_->DocumentElement() : nullptr;
    const auto item = root ? root->SelectSingleNode(QueryFor(query, key)) : nullptr;
    return item ? preset_directory_ + "\\" + Trimmed(item->Text()) : std::string();
  });
}

std::string KVDataManager::TempFolder() const {
  return working_directory_ + sDefaultDirNames::kKelvaroTemp + "\\";
}

std::string KVDataManager::TmpFilePath() {
  return guard::Reported(report_, messages::kTempFile, [&] {
    auto& files = *platform_.files;
    const auto folder = TempFolder();
    if (!files.FolderExists(folder)) {
      files.CreateFolder(folder);
      files.HideFolder(folder);
    }
    return folder + UniqueFileName(files, folder, kTempBaseName);
  });
}

void KVDataManager::CleanTemp() {
  guard::Quiet([&] {
    // Without a working directory the folder would be one of the process's current folder, which is
    // nobody's to clean.
    if (working_directory_.empty()) return;
    const auto folder = platform_.files->OpenFolder(working_directory_);
    Required(folder).Enter(sDefaultDirNames::kKelvaroTemp);
    EmptyFolder(*folder);
  });
}

}  // namespace kvdm
