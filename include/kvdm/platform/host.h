// The application that the component is loaded into.
#pragma once

#include <memory>
#include <string_view>

#include <kvdm/export.h>
#include <kvdm/platform/value.h>

namespace kvdm {

// A set of the host's properties. Names are matched exactly.
class KVDM_EXPORT HostPropertySet {
 public:
  virtual ~HostPropertySet() = default;

  // The property's value; Empty for one that is not set.
  virtual Value GetProperty(std::string_view name) = 0;
  virtual void SetProperty(std::string_view name, const Value& value) = 0;
};

class KVDM_EXPORT Host {
 public:
  virtual ~Host() = default;

  // What is open now: holds "Study Area Name".
  virtual std::shared_ptr<HostPropertySet> CurrentState() = 0;

  // The user's settings: holds "VELKKVDirectory".
  virtual std::shared_ptr<HostPropertySet> Settings() = 0;
};

}  // namespace kvdm
