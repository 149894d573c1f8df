/// @file
/// Host: the application that the component is loaded into.
#pragma once

#include <memory>
#include <string_view>

#include <kvdm/export.h>
#include <kvdm/platform/value.h>

namespace kvdm {

/// A set of the host's properties. Names are matched exactly. What it throws is a failure of the
/// operation that asked.
class KVDM_EXPORT HostPropertySet {
 public:
  virtual ~HostPropertySet() = default;

  /// The property's value; Empty for one that is not set.
  virtual Value GetProperty(std::string_view name) = 0;

  /// Sets the property. The component sets "Study Area Name" to "" when that study area is deleted.
  virtual void SetProperty(std::string_view name, const Value& value) = 0;
};

/// The application, as IKVDMInitialize::DMInitialize takes it. It is asked again at each use; the
/// data manager holds it until it is given another one or Nothing, so a host that holds the data
/// manager in turn breaks the circle with Nothing.
class KVDM_EXPORT Host {
 public:
  virtual ~Host() = default;

  /// What is open now: holds "Study Area Name", the name of the current study area or "".
  virtual std::shared_ptr<HostPropertySet> CurrentState() = 0;

  /// The user's settings: holds "VELKKVDirectory", the working directory, which may end in "\".
  virtual std::shared_ptr<HostPropertySet> Settings() = 0;
};

/// What an application is told of the study area catalogue. The data manager holds it until it is
/// given another one or Nothing. What it throws is noted in the log.
class KVDM_EXPORT CatalogueListener {
 public:
  virtual ~CatalogueListener() = default;

  /// Others have changed the study areas; IKVCatalogue::Reload, which may be called at once, shows
  /// them.
  virtual void CatalogueChanged() = 0;
};

}  // namespace kvdm
