#include "tests/faults/item_kinds.h"

namespace kvdm::faults {
namespace {

template <class Interface>
std::string FileOf(Interface& item) {
  if constexpr (requires { item.StudyAreaDir(); }) {
    return item.StudyAreaDir() + "owner";
  } else if constexpr (requires { item.AnalysisDir(); }) {
    return item.AnalysisDir() + "owner";
  } else if constexpr (requires { item.AdditionalInfo(); }) {
    return item.LayerFile() + ".shp";
  } else {
    return item.LayerFile();
  }
}

template <class Interface>
std::optional<Item> ItemOf(const std::shared_ptr<Interface>& item) {
  if (!item) return std::nullopt;
  Item answer;
  answer.name = [item] { return item->Name(); };
  answer.file = [item] { return FileOf(*item); };
  answer.rename = [item](std::string_view name) { item->SetName(name); };
  answer.guid = [item] {
    if constexpr (requires { item->AnalysisGUID(); }) {
      return item->AnalysisGUID();
    } else {
      return item->GUID();
    }
  };
  if constexpr (requires { item->SetParameter("", ""); }) {
    answer.set = [item](auto name, auto value) { return item->SetParameter(name, value); };
    answer.get = [item](auto name) { return item->GetParameter(name); };
  } else {
    const auto set = Query<IKVPropertySet>(item);
    answer.set = [set](auto name, auto value) {
      return set->SetProperty(name, std::string(value));
    };
    answer.get = [set](auto name) { return ToText(set->GetProperty(name)); };
  }
  return answer;
}

std::vector<std::string> TextsOf(const NameListRef& names) {
  std::vector<std::string> texts;
  for (const Value& name : *names) texts.push_back(ToText(name));
  return texts;
}

template <class Collection, class Interface>
ItemKind KindOf(const char* word, bool has_folder,
                std::shared_ptr<Collection> (IKVDataManager::*collection)(),
                bool (Collection::*create)(std::string_view),
                bool (Collection::*exists)(std::string_view),
                bool (Collection::*remove)(std::string_view),
                bool (Collection::*remove_by_guid)(std::string_view),
                std::shared_ptr<Interface> (Collection::*find)(std::string_view),
                std::shared_ptr<Interface> (Collection::*find_by_guid)(std::string_view),
                NameListRef (Collection::*names)()) {
  const auto on = [=](auto operation) {
    return [=](IKVDataManager& manager, std::string_view key) {
      return ((*(manager.*collection)()).*operation)(key);
    };
  };
  const auto item_on = [=](auto operation) {
    return [=](IKVDataManager& manager, std::string_view key) {
      return ItemOf(((*(manager.*collection)()).*operation)(key));
    };
  };
  return {word,
          has_folder,
          on(create),
          on(exists),
          on(remove),
          on(remove_by_guid),
          item_on(find),
          item_on(find_by_guid),
          [=](IKVDataManager& manager) { return TextsOf(((*(manager.*collection)()).*names)()); }};
}

}  // namespace

const std::vector<ItemKind>& ItemKinds() {
  using Areas = IKVStudyAreaCollection;
  using Analyses = IKVAnalysisCollection;
  using Stores = IKVStoreLayerCollection;
  using Customers = IKVCustLayerCollection;
  using Data = IKVDataCollection;
  static const std::vector<ItemKind> kinds = {
      KindOf("study area", true, &IKVDataManager::StudyAreaCollection, &Areas::CreateStudyArea,
             &Areas::StudyAreaExists, &Areas::DeleteStudyArea, &Areas::DeleteStudyAreaByGUID,
             &Areas::GetStudyArea, &Areas::GetStudyAreaByGUID, &Areas::StudyAreasList),
      KindOf("analysis", true, &IKVDataManager::AnalysisCollection, &Analyses::CreateAnalysis,
             &Analyses::AnalysisExists, &Analyses::DeleteAnalysis, &Analyses::DeleteAnalysisByGUID,
             &Analyses::GetAnalysis, &Analyses::GetAnalysisByGUID, &Analyses::AnalysesList),
      KindOf("store layer", false, &IKVDataManager::StoreLayerCollection, &Stores::CreateStoreLayer,
             &Stores::StoreLayerExists, &Stores::DeleteStoreLayer, &Stores::DeleteStoreLayerByGUID,
             &Stores::GetStoreLayer, &Stores::GetStoreLayerByGUID, &Stores::StoreLayersList),
      KindOf("customer layer", false, &IKVDataManager::CustLayerCollection,
             &Customers::CreateCustLayer, &Customers::CustLayerExists, &Customers::DeleteCustLayer,
             &Customers::DeleteCustLayerByGUID, &Customers::GetCustLayer,
             &Customers::GetCustLayerByGUID, &Customers::CustLayersList),
      KindOf("data item", false, &IKVDataManager::DataCollection, &Data::CreateDataItem,
             &Data::DataItemExists, &Data::DeleteDataItem, &Data::DeleteDataItemByGUID,
             &Data::GetDataItem, &Data::GetDataItemByGUID, &Data::DataItemsList),
  };
  return kinds;
}

}  // namespace kvdm::faults
