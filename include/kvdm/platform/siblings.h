/// @file
/// Sibling libraries of the product, which the data manager starts.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <kvdm/export.h>
#include <kvdm/platform/value.h>

namespace kvdm {

/// The dataset manager, class "QSObjectModel.QSManager".
class KVDM_EXPORT DatasetManager {
 public:
  virtual ~DatasetManager() = default;

  /// Called once at the start of the data manager; its value is not used. A failure fails the
  /// start.
  virtual Value Initialize() = 0;
};

/// The finder of localised texts, class "KVDMRes.clsFindResource".
class KVDM_EXPORT ResourceFinder {
 public:
  virtual ~ResourceFinder() = default;

  /// The text with the number `id`: "101" for a working directory that is another folder than the
  /// wanted one, "102" for a study area that can hold no properties.
  virtual std::string FindString(std::string_view id) = 0;
};

/// Creates the siblings' objects. Run-time error 429 when a library is not there.
class KVDM_EXPORT Siblings {
 public:
  virtual ~Siblings() = default;

  /// A new dataset manager; called once at the start of a data manager.
  virtual std::shared_ptr<DatasetManager> CreateDatasetManager() = 0;

  /// A new finder; called at each IKVDMInitialize::DMInitialize.
  virtual std::shared_ptr<ResourceFinder> CreateResourceFinder() = 0;
};

}  // namespace kvdm
