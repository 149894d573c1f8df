#include "host/registered_items.h"

#include "datamanager/kv_data_manager.h"

namespace kvdm {

AreaRegistry& RegistryOf(Session& session) {
  return dynamic_cast<KVDataManager&>(session.Manager()).Areas();
}

}  // namespace kvdm
