// Stand-ins for the sibling libraries, for hosts that do not have them.
#pragma once

#include "platform/siblings.h"

namespace kvdm {

// Only notes that it was initialised.
class PortableDatasetManager : public DatasetManager {
 public:
  // Answers Empty.
  Value Initialize() override;
  [[nodiscard]] bool Initialized() const { return initialized_; }

 private:
  bool initialized_ = false;
};

class PortableSiblings : public Siblings {
 public:
  std::shared_ptr<DatasetManager> CreateDatasetManager() override;
  std::shared_ptr<ResourceFinder> CreateResourceFinder() override;
};

}  // namespace kvdm
