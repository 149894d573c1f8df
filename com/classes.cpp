#include "com/classes.h"

#include <algorithm>

#include "com/collection_faces.h"
#include "com/item_faces.h"
#include "com/kvdm.h"
#include "com/manager_faces.h"
#include "com/object.h"
#include "com/study_area_faces.h"

namespace kvdm::com {
namespace {

template <class... Faces>
void AddFaces(Object& object, const std::shared_ptr<Unknown>& core) {
  (object.Add<Faces>(Query<typename Faces::Core>(core)), ...);
}

template <class Face, class... Faces>
constexpr auto kFaces = &AddFaces<Face, Faces...>;

const Class kClasses[] = {
    {"KVDM.KVDataManager", &CLSID_KVDataManager, typeid(IKVDataManager),
     kFaces<DataManagerFace, InitializeFace, PersistFace>},
    {"KVDM.KVStudyAreaCollection", &CLSID_KVStudyAreaCollection, typeid(IKVStudyAreaCollection),
     kFaces<StudyAreaCollectionFace>},
    {"KVDM.KVStudyArea", &CLSID_KVStudyArea, typeid(IKVStudyArea),
     kFaces<PropertySetFace, StudyAreaFace, MetadataFace, LayerEditFace, StudyArea2Face>},
    {"KVDM.KVTablesManager", &CLSID_KVTablesManager, typeid(IKVTablesManager),
     kFaces<TablesManagerFace>},
    {"KVDM.KVFileInfo", &CLSID_KVFileInfo, typeid(IKVFileInfo), kFaces<FileInfoFace>},
    {"KVDM.KVAnalysisCollection", &CLSID_KVAnalysisCollection, typeid(IKVAnalysisCollection),
     kFaces<AnalysisCollectionFace>},
    {"KVDM.KVStoreLayerCollection", &CLSID_KVStoreLayerCollection, typeid(IKVStoreLayerCollection),
     kFaces<StoreLayerCollectionFace>},
    {"KVDM.KVCustLayerCollection", &CLSID_KVCustLayerCollection, typeid(IKVCustLayerCollection),
     kFaces<CustLayerCollectionFace>},
    {"KVDM.KVDataCollection", &CLSID_KVDataCollection, typeid(IKVDataCollection),
     kFaces<DataCollectionFace>},
    {"KVDM.KVAnalysis", &CLSID_KVAnalysis, typeid(IKVAnalysis),
     kFaces<AnalysisFace, LayerEditFace, MetadataFace>},
    {"KVDM.KVCustLayer", &CLSID_KVCustLayer, typeid(IKVCustLayer),
     kFaces<CustLayerFace, LayerEditFace, MetadataFace>},
    {"KVDM.KVStoreLayer", &CLSID_KVStoreLayer, typeid(IKVStoreLayer),
     kFaces<StoreLayerFace, LayerEditFace, MetadataFace>},
    {"KVDM.KVDataItem", &CLSID_KVDataItem, typeid(IKVDataItem), kFaces<DataItemFace>},
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
