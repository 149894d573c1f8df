#include <kvdm/datamanager/analyses.h>
#include <kvdm/datamanager/data_items.h>
#include <kvdm/datamanager/layers.h>
#include <kvdm/datamanager/study_areas.h>

#include "tests/model/commands.h"
#include "tests/model/describe.h"

namespace kvdm::model {
namespace {

// The operations of one collection class under the names that all of them share.
template <class CollectionType, class ItemType>
struct Calls {
  using Collection = CollectionType;
  template <class Result>
  using Of = Result (Collection::*)(std::string_view);

  Kind kind;
  const char* name;
  std::shared_ptr<Collection> (IKVDataManager::*accessor)();
  NameListRef (Collection::*names)();
  NameListRef (Collection::*guids)();
  Of<bool> create;
  Of<bool> remove;
  Of<bool> remove_by_guid;
  Of<bool> exists;
  Of<bool> exists_by_guid;
  Of<std::shared_ptr<ItemType>> get;
  Of<std::shared_ptr<ItemType>> get_by_guid;
};

constexpr Calls<IKVStudyAreaCollection, IKVStudyArea> kStudyAreaCalls = {
    Kind::kStudyArea,
    "StudyArea",
    &IKVDataManager::StudyAreaCollection,
    &IKVStudyAreaCollection::StudyAreasList,
    &IKVStudyAreaCollection::StudyAreasGUIDsList,
    &IKVStudyAreaCollection::CreateStudyArea,
    &IKVStudyAreaCollection::DeleteStudyArea,
    &IKVStudyAreaCollection::DeleteStudyAreaByGUID,
    &IKVStudyAreaCollection::StudyAreaExists,
    &IKVStudyAreaCollection::StudyAreaExistsByGUID,
    &IKVStudyAreaCollection::GetStudyArea,
    &IKVStudyAreaCollection::GetStudyAreaByGUID};

constexpr Calls<IKVAnalysisCollection, IKVAnalysis> kAnalysisCalls = {
    Kind::kAnalysis,
    "Analysis",
    &IKVDataManager::AnalysisCollection,
    &IKVAnalysisCollection::AnalysesList,
    &IKVAnalysisCollection::AnalysesGUIDsList,
    &IKVAnalysisCollection::CreateAnalysis,
    &IKVAnalysisCollection::DeleteAnalysis,
    &IKVAnalysisCollection::DeleteAnalysisByGUID,
    &IKVAnalysisCollection::AnalysisExists,
    &IKVAnalysisCollection::AnalysisExistsByGUID,
    &IKVAnalysisCollection::GetAnalysis,
    &IKVAnalysisCollection::GetAnalysisByGUID};

constexpr Calls<IKVCustLayerCollection, IKVCustLayer> kCustLayerCalls = {
    Kind::kCustLayer,
    "CustLayer",
    &IKVDataManager::CustLayerCollection,
    &IKVCustLayerCollection::CustLayersList,
    &IKVCustLayerCollection::CustLayersGUIDsList,
    &IKVCustLayerCollection::CreateCustLayer,
    &IKVCustLayerCollection::DeleteCustLayer,
    &IKVCustLayerCollection::DeleteCustLayerByGUID,
    &IKVCustLayerCollection::CustLayerExists,
    &IKVCustLayerCollection::CustLayerExistsByGUID,
    &IKVCustLayerCollection::GetCustLayer,
    &IKVCustLayerCollection::GetCustLayerByGUID};

constexpr Calls<IKVStoreLayerCollection, IKVStoreLayer> kStoreLayerCalls = {
    Kind::kStoreLayer,
    "StoreLayer",
    &IKVDataManager::StoreLayerCollection,
    &IKVStoreLayerCollection::StoreLayersList,
    &IKVStoreLayerCollection::StoreLayersGUIDsList,
    &IKVStoreLayerCollection::CreateStoreLayer,
    &IKVStoreLayerCollection::DeleteStoreLayer,
    &IKVStoreLayerCollection::DeleteStoreLayerByGUID,
    &IKVStoreLayerCollection::StoreLayerExists,
    &IKVStoreLayerCollection::StoreLayerExistsByGUID,
    &IKVStoreLayerCollection::GetStoreLayer,
    &IKVStoreLayerCollection::GetStoreLayerByGUID};

constexpr Calls<IKVDataCollection, IKVDataItem> kDataItemCalls = {
    Kind::kDataItem,
    "DataItem",
    &IKVDataManager::DataCollection,
    &IKVDataCollection::DataItemsList,
    &IKVDataCollection::DataItemsGUIDsList,
    &IKVDataCollection::CreateDataItem,
    &IKVDataCollection::DeleteDataItem,
    &IKVDataCollection::DeleteDataItemByGUID,
    &IKVDataCollection::DataItemExists,
    &IKVDataCollection::DataItemExistsByGUID,
    &IKVDataCollection::GetDataItem,
    &IKVDataCollection::GetDataItemByGUID};

// A new collection object. Run-time error 91 for Nothing.
template <class Calls>
auto CollectionOf(System& system, const Calls& calls) {
  auto collection = (system.Manager().*calls.accessor)();
  static_cast<void>(Required(collection));
  return collection;
}

template <class Calls>
void AddLists(const Calls& calls, std::vector<Operation>& operations) {
  const std::string name = calls.name;
  const auto add = [&](const std::string& text, auto member, const std::string& attribute) {
    operations.push_back({calls.kind, text + " of " + name, 2,
                          [=](System& system, const Arguments&) {
                            return OutcomeOf(
                                [&] { return ((*CollectionOf(system, calls)).*member)(); });
                          },
                          [=](Model& model, const Arguments&) {
                            return OutcomeOf([&] { return model.List(calls.kind, attribute); });
                          }});
  };
  add("Names", calls.names, "NAME");
  add("GUIDs", calls.guids, "GUID");
}

// One operation by name and its twin by identifier.
template <class Calls, class Member, class Expect>
void AddKeyed(const std::string& text, const Calls& calls, Member by_name, Member by_guid,
              Expect expect, std::vector<Operation>& operations) {
  const auto add = [&](const std::string& suffix, Member member, std::string Arguments::*key,
                       const std::string& attribute) {
    operations.push_back(
        {calls.kind, text + " " + calls.name + suffix, 2,
         [=](System& system, const Arguments& with) {
           return OutcomeOf([&] { return ((*CollectionOf(system, calls)).*member)(with.*key); });
         },
         [=](Model& model, const Arguments& with) {
           return OutcomeOf([&] { return (model.*expect)(calls.kind, attribute, with.*key); });
         }});
  };
  add(" by name", by_name, &Arguments::name, "NAME");
  add(" by GUID", by_guid, &Arguments::guid, "GUID");
}

// Creates an item and keeps it, so that operations on items have one.
template <class Calls>
void AddCreate(const Calls& calls, std::vector<Operation>& operations) {
  operations.push_back({calls.kind, std::string("Create ") + calls.name, 10,
                        [=](System& system, const Arguments& with) {
                          return OutcomeOf([&] {
                            const bool created =
                                ((*CollectionOf(system, calls)).*calls.create)(with.name);
                            if (created)
                              system.Kept()[calls.kind] = ItemNamed(system, calls.kind, with.name);
                            return created;
                          });
                        },
                        [=](Model& model, const Arguments& with) {
                          return OutcomeOf([&] {
                            const bool created = model.Create(calls.kind, with.name);
                            if (created)
                              model.Kept()[calls.kind] = model.Get(calls.kind, "NAME", with.name);
                            return created;
                          });
                        }});
}

// Gets an item and keeps it, whatever becomes of its element.
template <class Calls, class Member>
void AddKeep(const std::string& text, const Calls& calls, Member member,
             std::string Arguments::*key, const std::string& attribute,
             std::vector<Operation>& operations) {
  operations.push_back({calls.kind, text + " " + calls.name, 3,
                        [=](System& system, const Arguments& with) {
                          return OutcomeOf([&] {
                            return system.Kept()[calls.kind] =
                                       ((*CollectionOf(system, calls)).*member)(with.*key);
                          });
                        },
                        [=](Model& model, const Arguments& with) {
                          return OutcomeOf([&] {
                            return model.Kept()[calls.kind] =
                                       model.Get(calls.kind, attribute, with.*key);
                          });
                        }});
}

template <class Calls>
void AddCollection(const Calls& calls, std::vector<Operation>& operations) {
  AddCreate(calls, operations);
  AddLists(calls, operations);
  AddKeyed("Exists", calls, calls.exists, calls.exists_by_guid, &Model::Exists, operations);
  AddKeyed("Delete", calls, calls.remove, calls.remove_by_guid, &Model::Delete, operations);
  AddKeep("Get by name", calls, calls.get, &Arguments::name, "NAME", operations);
  AddKeep("Get by GUID", calls, calls.get_by_guid, &Arguments::guid, "GUID", operations);
}

template <class Calls, class Member>
void AddFolder(const Calls& calls, Member member, std::vector<Operation>& operations) {
  operations.push_back({calls.kind, std::string("Folder of ") + calls.name, 2,
                        [=](System& system, const Arguments&) {
                          return OutcomeOf(
                              [&] { return ((*CollectionOf(system, calls)).*member)(); });
                        },
                        [=](Model& model, const Arguments&) {
                          return OutcomeOf([&] { return model.FolderOf(calls.kind); });
                        }});
}

}  // namespace

void AddCollectionOperations(std::vector<Operation>& operations) {
  AddCollection(kStudyAreaCalls, operations);
  AddCollection(kAnalysisCalls, operations);
  AddCollection(kCustLayerCalls, operations);
  AddCollection(kStoreLayerCalls, operations);
  AddCollection(kDataItemCalls, operations);
  AddFolder(kCustLayerCalls, &IKVCustLayerCollection::CustLayersDir, operations);
  AddFolder(kStoreLayerCalls, &IKVStoreLayerCollection::StoreLayersDir, operations);
  AddFolder(kDataItemCalls, &IKVDataCollection::DataItemsDir, operations);
}

std::shared_ptr<Unknown> ItemNamed(System& system, Kind kind, const std::string& name) {
  switch (kind) {
    case Kind::kStudyArea:
      return CollectionOf(system, kStudyAreaCalls)->GetStudyArea(name);
    case Kind::kAnalysis:
      return CollectionOf(system, kAnalysisCalls)->GetAnalysis(name);
    case Kind::kCustLayer:
      return CollectionOf(system, kCustLayerCalls)->GetCustLayer(name);
    case Kind::kStoreLayer:
      return CollectionOf(system, kStoreLayerCalls)->GetStoreLayer(name);
    default:
      return CollectionOf(system, kDataItemCalls)->GetDataItem(name);
  }
}

}  // namespace kvdm::model
