#include "com/classes.h"

#include <algorithm>

#include "com/collection_wrappers.h"
#include "com/item_wrappers.h"
#include "com/kvdm.h"
#include "com/manager_wrappers.h"
#include "com/object.h"
#include "com/study_area_wrappers.h"

namespace kvdm::com {
namespace {

template <class... Wrappers>
void AddWrappers(Object& object, const std::shared_ptr<Unknown>& core) {
  (object.Add<Wrappers>(Query<typename Wrappers::Core>(core)), ...);
}

template <class Wrapper, class... Wrappers>
constexpr auto kWrappers = &AddWrappers<Wrapper, Wrappers...>;

const Class kClasses[] = {
    {"KVDM.KVDataManager", &CLSID_KVDataManager, typeid(IKVDataManager),
     kWrappers<DataManagerWrapper, InitializeWrapper, PersistWrapper, CatalogueWrapper>},
    {"KVDM.KVStudyAreaCollection", &CLSID_KVStudyAreaCollection, typeid(IKVStudyAreaCollection),
     kWrappers<StudyAreaCollectionWrapper>},
    {"KVDM.KVStudyArea", &CLSID_KVStudyArea, typeid(IKVStudyArea),
     kWrappers<PropertySetWrapper, StudyAreaWrapper, MetadataWrapper, LayerEditWrapper,
               StudyArea2Wrapper>},
    {"KVDM.KVTablesManager", &CLSID_KVTablesManager, typeid(IKVTablesManager),
     kWrappers<TablesManagerWrapper>},
    {"KVDM.KVFileInfo", &CLSID_KVFileInfo, typeid(IKVFileInfo), kWrappers<FileInfoWrapper>},
    {"KVDM.KVAnalysisCollection", &CLSID_KVAnalysisCollection, typeid(IKVAnalysisCollection),
     kWrappers<AnalysisCollectionWrapper>},
    {"KVDM.KVStoreLayerCollection", &CLSID_KVStoreLayerCollection, typeid(IKVStoreLayerCollection),
     kWrappers<StoreLayerCollectionWrapper>},
    {"KVDM.KVCustLayerCollection", &CLSID_KVCustLayerCollection, typeid(IKVCustLayerCollection),
     kWrappers<CustLayerCollectionWrapper>},
    {"KVDM.KVDataCollection", &CLSID_KVDataCollection, typeid(IKVDataCollection),
     kWrappers<DataCollectionWrapper>},
    {"KVDM.KVAnalysis", &CLSID_KVAnalysis, typeid(IKVAnalysis),
     kWrappers<AnalysisWrapper, LayerEditWrapper, MetadataWrapper>},
    {"KVDM.KVCustLayer", &CLSID_KVCustLayer, typeid(IKVCustLayer),
     kWrappers<CustLayerWrapper, LayerEditWrapper, MetadataWrapper>},
    {"KVDM.KVStoreLayer", &CLSID_KVStoreLayer, typeid(IKVStoreLayer),
     kWrappers<StoreLayerWrapper, LayerEditWrapper, MetadataWrapper>},
    {"KVDM.KVDataItem", &CLSID_KVDataItem, typeid(IKVDataItem), kWrappers<DataItemWrapper>},
};

}  // namespace

std::span<const Class> Classes() { return kClasses; }

const Class* FindClass(const CLSID& clsid) {
  const auto* found = std::ranges::find_if(
      kClasses, [&](const Class& candidate) { return ::IsEqualCLSID(*candidate.clsid, clsid); });
  return found == std::end(kClasses) ? nullptr : found;
}

const Class& ClassAnswering(std::type_index interface_type) {
  const auto* found = std::ranges::find(kClasses, interface_type, &Class::answered_as);
  if (found == std::end(kClasses)) throw RuntimeError(kCannotCreateObject);
  return *found;
}

}  // namespace kvdm::com
