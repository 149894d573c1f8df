// Where the tables of the current study area live.
#pragma once

#include <kvdm/datamanager/study_areas.h>

#include "items/friends.h"

namespace kvdm {

class KVTablesManager final : public IKVTablesManager {
 public:
  std::string TablesDir() override;
  std::string FreeTablePath() override;

  // Bound by the data manager right after creation.
  void SetDataManager(DataManagerRef data_manager) { data_manager_ = std::move(data_manager); }

 private:
  DataManagerRef data_manager_;
};

}  // namespace kvdm
