// Sibling libraries, created by their registered classes and called by name.
#pragma once

#include <utility>

#include <kvdm/platform/siblings.h>

#include "platform/windows/automation.h"

namespace kvdm {

class ComDatasetManager final : public DatasetManager {
 public:
  explicit ComDatasetManager(Microsoft::WRL::ComPtr<IDispatch> object)
      : object_(std::move(object)) {}

  Value Initialize() override;

  // The very object, for clients.
  [[nodiscard]] IDispatch* Object() const { return object_.TheObject().Get(); }

 private:
  LateObject object_;
};

// The thread must have initialised COM.
class ComSiblings final : public Siblings {
 public:
  std::shared_ptr<DatasetManager> CreateDatasetManager() override;
  std::shared_ptr<ResourceFinder> CreateResourceFinder() override;
};

}  // namespace kvdm
