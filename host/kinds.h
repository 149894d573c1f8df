// The kinds of items that several commands look for: what differs between them, side by side.
#pragma once

#include <memory>
#include <string>

#include "host/items.h"

namespace kvdm {

struct StudyAreaKind : CollectionKind<StudyAreaKind, IKVStudyArea> {
  static constexpr char kWord[] = "study area";
  static constexpr char kPlural[] = "study areas";
  static constexpr char kCommand[] = "area";
  static constexpr bool kInRegistry = true;
  static constexpr auto kCollection = &IKVDataManager::StudyAreaCollection;
  static constexpr auto kNames = &IKVStudyAreaCollection::StudyAreasList;
  static constexpr auto kGuids = &IKVStudyAreaCollection::StudyAreasGUIDsList;
  static constexpr auto kGet = &IKVStudyAreaCollection::GetStudyArea;
  static constexpr auto kGetByGuid = &IKVStudyAreaCollection::GetStudyAreaByGUID;

  static void RequireReadable(Session& session) { session.Component().RequireRegistry(); }
  // Failure kUnreadable when the list of study areas can't be used as it is stored.
  static void RequireList(Session& session) {
    const std::string problem = session.Component().CatalogueProblem();
    if (!problem.empty()) throw Failure(ExitCode::kUnreadable, problem);
  }

  static Record Columns(const Ref& area) { return {{"folder", area->StudyAreaDir()}}; }
  static std::string WhereOf(const Ref& area);
  static void RequireChangeable(Session& session, const Ref& area);
};

struct AnalysisKind : CollectionKind<AnalysisKind, IKVAnalysis> {
  static constexpr char kWord[] = "analysis";
  static constexpr char kPlural[] = "analyses";
  static constexpr char kCommand[] = "analysis";
  static constexpr auto kCollection = &IKVDataManager::AnalysisCollection;
  static constexpr auto kNames = &IKVAnalysisCollection::AnalysesList;
  static constexpr auto kGuids = &IKVAnalysisCollection::AnalysesGUIDsList;
  static constexpr auto kGet = &IKVAnalysisCollection::GetAnalysis;
  static constexpr auto kGetByGuid = &IKVAnalysisCollection::GetAnalysisByGUID;

  static void RequireReadable(Session& session) {
    session.Component().RequireRegistryForStudyArea();
  }

  static std::string GuidOf(const Ref& analysis) { return analysis->AnalysisGUID(); }
  static Record Columns(const Ref& analysis) {
    return {{"created", analysis->CreationTime()}, {"folder", analysis->AnalysisDir()}};
  }
};

template <class Kind, class Layer>
struct LayerKind : CollectionKind<Kind, Layer> {
  static Record Columns(const std::shared_ptr<Layer>& layer) {
    return {{"created", layer->CreationTime()}, {"layer_file", layer->LayerFile()}};
  }
};

struct StoreLayerKind : LayerKind<StoreLayerKind, IKVStoreLayer> {
  static constexpr char kWord[] = "store layer";
  static constexpr char kPlural[] = "store layers";
  static constexpr char kCommand[] = "store";
  static constexpr auto kCollection = &IKVDataManager::StoreLayerCollection;
  static constexpr auto kNames = &IKVStoreLayerCollection::StoreLayersList;
  static constexpr auto kGuids = &IKVStoreLayerCollection::StoreLayersGUIDsList;
  static constexpr auto kGet = &IKVStoreLayerCollection::GetStoreLayer;
  static constexpr auto kGetByGuid = &IKVStoreLayerCollection::GetStoreLayerByGUID;
  static constexpr auto kCreate = &IKVStoreLayerCollection::CreateStoreLayer;
  static constexpr auto kDelete = &IKVStoreLayerCollection::DeleteStoreLayer;
  static constexpr auto kDeleteByGuid = &IKVStoreLayerCollection::DeleteStoreLayerByGUID;
  static constexpr auto kFolder = &IKVStoreLayerCollection::StoreLayersDir;
  // Deleting one by its identifier takes the files of all.
  static constexpr bool kGuidTakesFolder = true;
};

struct CustLayerKind : LayerKind<CustLayerKind, IKVCustLayer> {
  static constexpr char kWord[] = "customer layer";
  static constexpr char kPlural[] = "customer layers";
  static constexpr char kCommand[] = "customer";
  static constexpr auto kCollection = &IKVDataManager::CustLayerCollection;
  static constexpr auto kNames = &IKVCustLayerCollection::CustLayersList;
  static constexpr auto kGuids = &IKVCustLayerCollection::CustLayersGUIDsList;
  static constexpr auto kGet = &IKVCustLayerCollection::GetCustLayer;
  static constexpr auto kGetByGuid = &IKVCustLayerCollection::GetCustLayerByGUID;
  static constexpr auto kCreate = &IKVCustLayerCollection::CreateCustLayer;
  static constexpr auto kDelete = &IKVCustLayerCollection::DeleteCustLayer;
  static constexpr auto kDeleteByGuid = &IKVCustLayerCollection::DeleteCustLayerByGUID;
  static constexpr auto kFolder = &IKVCustLayerCollection::CustLayersDir;
  static constexpr bool kGuidTakesFolder = false;
};

}  // namespace kvdm
