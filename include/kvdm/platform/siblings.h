// The sibling libraries of the product that the data manager starts.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <kvdm/export.h>
#include <kvdm/platform/value.h>

namespace kvdm {

// The dataset manager, class "QSObjectModel.QSManager".
class KVDM_EXPORT DatasetManager {
 public:
  virtual ~DatasetManager() = default;

  // Called once at start-up.
  virtual Value Initialize() = 0;
};

// The finder of localised texts, class "KVDMRes.clsFindResource".
class KVDM_EXPORT ResourceFinder {
 public:
  virtual ~ResourceFinder() = default;

  // The text with the number `id`, such as "101".
  virtual std::string FindString(std::string_view id) = 0;
};

// Creates the siblings' objects. Run-time error 429 when a library is not there.
class KVDM_EXPORT Siblings {
 public:
  virtual ~Siblings() = default;
  virtual std::shared_ptr<DatasetManager> CreateDatasetManager() = 0;
  virtual std::shared_ptr<ResourceFinder> CreateResourceFinder() = 0;
};

}  // namespace kvdm
