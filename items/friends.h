// What the component's own objects may ask of the data manager and its clients may not.
#pragma once

#include <memory>
#include <string_view>

#include <kvdm/datamanager/data_manager.h>
#include <kvdm/platform/platform.h>

namespace kvdm {

class DataManagerFriend : public virtual IKVDataManager {
 public:
  // The host given to DMInitialize; Nothing when none was.
  virtual std::shared_ptr<Host> HostObject() = 0;

  // Shows `message` to the user.
  virtual void KVDMHandleError(std::string_view message) = 0;

  // The finder of localised texts; Nothing before DMInitialize.
  virtual std::shared_ptr<ResourceFinder> Resources() = 0;

  [[nodiscard]] virtual const Platform& Services() const = 0;
};

using DataManagerRef = std::shared_ptr<DataManagerFriend>;

}  // namespace kvdm
