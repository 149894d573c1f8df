/// @file
/// Class factory: objects by class identity.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include <kvdm/datamanager/unknown.h>
#include <kvdm/export.h>
#include <kvdm/platform/platform.h>

namespace kvdm {

/// The class identity of the root object.
inline constexpr char kDataManagerClass[] = "KVDM.KVDataManager";

/// A new object of the class "KVDM." + class name. Only the data manager and "KVDM.KVFileInfo" are
/// of use so; objects of other classes are unbound. Run-time error 429 for a class that the
/// component does not have.
///
///     auto manager = Query<IKVDataManager>(CreateObject(kDataManagerClass, platform));
[[nodiscard]] KVDM_EXPORT std::shared_ptr<Unknown> CreateObject(std::string_view class_identity,
                                                                const Platform& platform);

/// The identities of all classes.
[[nodiscard]] KVDM_EXPORT std::vector<std::string_view> ClassIdentities();

}  // namespace kvdm
