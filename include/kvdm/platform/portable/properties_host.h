/// @file
/// Ready-made host that is nothing but its two property sets.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include <kvdm/export.h>
#include <kvdm/platform/host.h>

namespace kvdm {

/// A property set in memory.
class KVDM_EXPORT PropertySetMap : public HostPropertySet {
 public:
  /// Values by name.
  using Properties = std::map<std::string, Value, std::less<>>;

  PropertySetMap() = default;

  /// Starts with these properties.
  explicit PropertySetMap(Properties properties) : properties_(std::move(properties)) {}

  Value GetProperty(std::string_view name) override;
  void SetProperty(std::string_view name, const Value& value) override;

  /// All properties that are set, by name.
  [[nodiscard]] const Properties& All() const { return properties_; }

 private:
  Properties properties_;
};

/// A host with a property set for each purpose.
class KVDM_EXPORT PropertiesHost : public Host {
 public:
  /// Both sets are empty.
  PropertiesHost();

  /// Neither set may be Nothing.
  PropertiesHost(std::shared_ptr<HostPropertySet> current_state,
                 std::shared_ptr<HostPropertySet> settings);

  std::shared_ptr<HostPropertySet> CurrentState() override { return current_state_; }
  std::shared_ptr<HostPropertySet> Settings() override { return settings_; }

 private:
  std::shared_ptr<HostPropertySet> current_state_;
  std::shared_ptr<HostPropertySet> settings_;
};

}  // namespace kvdm
