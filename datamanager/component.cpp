#include <algorithm>
#include <iterator>
#include <string>

#include <kvdm/datamanager/component.h>

#include "collections/kv_analysis_collection.h"
#include "collections/kv_data_collection.h"
#include "collections/kv_layer_collections.h"
#include "datamanager/kv_data_manager.h"
#include "items/kv_analysis.h"
#include "items/kv_data_item.h"
#include "items/kv_layers.h"
#include "studyarea/kv_file_info.h"
#include "studyarea/kv_study_area.h"
#include "studyarea/kv_study_area_collection.h"

namespace kvdm {
namespace {

using Creator = std::shared_ptr<Unknown> (*)(const Platform&);

template <class Class>
std::shared_ptr<Unknown> Create(const Platform& platform) {
  if constexpr (std::is_constructible_v<Class, Platform>) {
    return std::make_shared<Class>(platform);
  } else if constexpr (std::is_constructible_v<Class, std::shared_ptr<GisCore>>) {
    return std::make_shared<Class>(platform.gis_core);
  } else {
    return std::make_shared<Class>();
  }
}

struct Class {
  std::string_view identity;
  Creator create;
};

constexpr Class kClasses[] = {
    {kDataManagerClass, &Create<KVDataManager>},
    {"KVDM.KVStudyAreaCollection", &Create<KVStudyAreaCollection>},
    {"KVDM.KVStudyArea", &Create<KVStudyArea>},
    {"KVDM.KVTablesManager", &Create<KVTablesManager>},
    {"KVDM.KVFileInfo", &Create<KVFileInfo>},
    {"KVDM.KVAnalysisCollection", &Create<KVAnalysisCollection>},
    {"KVDM.KVStoreLayerCollection", &Create<KVStoreLayerCollection>},
    {"KVDM.KVCustLayerCollection", &Create<KVCustLayerCollection>},
    {"KVDM.KVDataCollection", &Create<KVDataCollection>},
    {"KVDM.KVAnalysis", &Create<KVAnalysis>},
    {"KVDM.KVCustLayer", &Create<KVCustLayer>},
    {"KVDM.KVStoreLayer", &Create<KVStoreLayer>},
    {"KVDM.KVDataItem", &Create<KVDataItem>},
};

}  // namespace

std::shared_ptr<Unknown> CreateObject(std::string_view class_identity, const Platform& platform) {
  const auto* found = std::ranges::find(kClasses, class_identity, &Class::identity);
  if (found != std::end(kClasses)) return found->create(platform);
  throw RuntimeError(
      kCannotCreateObject, "KVDM",
      "Component can't create object: there is no class " + std::string(class_identity));
}

std::vector<std::string_view> ClassIdentities() {
  std::vector<std::string_view> identities;
  std::ranges::transform(kClasses, std::back_inserter(identities), &Class::identity);
  return identities;
}

}  // namespace kvdm
