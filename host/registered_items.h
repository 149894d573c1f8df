// The data manager's own registry of study areas and layers, of which the component's interfaces
// show nothing.
#pragma once

#include "datamanager/area_registry.h"
#include "host/session.h"

namespace kvdm {

// Lives as long as the session. Its failures are messages.
[[nodiscard]] AreaRegistry& RegistryOf(Session& session);

struct RegisteredAreaKind {
  using Item = IKVStudyArea;
  static constexpr char kWord[] = "registered study area";
  static constexpr char kCommand[] = "area";
  static constexpr auto kNames = &AreaRegistry::StudyAreaNames;
  static constexpr auto kGuids = &AreaRegistry::StudyAreaGUIDs;
  static constexpr auto kExists = &AreaRegistry::StudyAreaExists;
  static constexpr auto kExistsByGuid = &AreaRegistry::StudyAreaExistsByGUID;
  static constexpr auto kGet = &AreaRegistry::GetStudyArea;
  static constexpr auto kGetByGuid = &AreaRegistry::GetStudyAreaByGUID;
  static constexpr auto kCreate = &AreaRegistry::CreateStudyArea;
  static constexpr bool (AreaRegistry::*kDelete)(std::string_view) = &AreaRegistry::DeleteStudyArea;
  static constexpr auto kDeleteByGuid = &AreaRegistry::DeleteStudyAreaByGUID;
  static constexpr bool kHasFolder = true;  // which is deleted with it
};

struct RegisteredCustomerKind {
  using Item = IKVCustLayer;
  static constexpr char kWord[] = "registered customer layer";
  static constexpr char kCommand[] = "customer";
  static constexpr auto kNames = &AreaRegistry::CustLayerNames;
  static constexpr auto kGuids = &AreaRegistry::CustLayerGUIDs;
  static constexpr auto kExists = &AreaRegistry::CustLayerExists;
  static constexpr auto kExistsByGuid = &AreaRegistry::CustLayerExistsByGUID;
  static constexpr auto kGet = &AreaRegistry::GetCustLayer;
  static constexpr auto kGetByGuid = &AreaRegistry::GetCustLayerByGUID;
  static constexpr auto kCreate = &AreaRegistry::RegisterCustLayer;
  static constexpr auto kDelete = &AreaRegistry::UnregisterCustLayer;
  static constexpr auto kDeleteByGuid = &AreaRegistry::UnregisterCustLayerByGUID;
  static constexpr auto kLayersFolder = &AreaRegistry::CustomersDir;
  static constexpr bool kHasFolder = false;
};

struct RegisteredStoreKind {
  using Item = IKVStoreLayer;
  static constexpr char kWord[] = "registered store layer";
  static constexpr char kCommand[] = "store";
  static constexpr auto kNames = &AreaRegistry::StoreLayerNames;
  static constexpr auto kGuids = &AreaRegistry::StoreLayerGUIDs;
  static constexpr auto kExists = &AreaRegistry::StoreLayerExists;
  static constexpr auto kExistsByGuid = &AreaRegistry::StoreLayerExistsByGUID;
  static constexpr auto kGet = &AreaRegistry::GetStoreLayer;
  static constexpr auto kGetByGuid = &AreaRegistry::GetStoreLayerByGUID;
  static constexpr auto kCreate = &AreaRegistry::RegisterStoreLayer;
  static constexpr auto kDelete = &AreaRegistry::UnregisterStoreLayer;
  static constexpr auto kDeleteByGuid = &AreaRegistry::UnregisterStoreLayerByGUID;
  static constexpr auto kLayersFolder = &AreaRegistry::StoresDir;
  static constexpr bool kHasFolder = false;
};

}  // namespace kvdm
