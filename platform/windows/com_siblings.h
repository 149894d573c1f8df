// The sibling libraries as they are registered on this machine.
#pragma once

#include <windows.h>
// Needs the types of the former.
#include <oaidl.h>
#include <wrl/client.h>

#include <utility>

#include <kvdm/platform/siblings.h>

#include "platform/windows/late_call.h"

namespace kvdm {

// The dataset manager, called by name.
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
