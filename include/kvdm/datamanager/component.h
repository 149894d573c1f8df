// The component registry: objects by class identity.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include <kvdm/datamanager/unknown.h>
#include <kvdm/export.h>
#include <kvdm/platform/platform.h>

namespace kvdm {

inline constexpr char kDataManagerClass[] = "KVDM.KVDataManager";

// A new object of the class "KVDM." + class name. Views made this way are unbound and answer with
// their neutral results. Run-time error 429 for a class that the component does not have.
//
//   auto manager = Query<IKVDataManager>(CreateObject("KVDM.KVDataManager", platform));
[[nodiscard]] KVDM_EXPORT std::shared_ptr<Unknown> CreateObject(std::string_view class_identity,
                                                                const Platform& platform);

// The identities of all classes.
[[nodiscard]] KVDM_EXPORT std::vector<std::string_view> ClassIdentities();

}  // namespace kvdm
