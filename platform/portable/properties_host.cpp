#include <kvdm/platform/portable/properties_host.h>

namespace kvdm {

Value PropertySetMap::GetProperty(std::string_view name) {
  const auto found = properties_.find(name);
  return found == properties_.end() ? Value() : found->second;
}

void PropertySetMap::SetProperty(std::string_view name, const Value& value) {
  properties_.insert_or_assign(std::string(name), value);
}

PropertiesHost::PropertiesHost()
    : PropertiesHost(std::make_shared<PropertySetMap>(), std::make_shared<PropertySetMap>()) {}

PropertiesHost::PropertiesHost(std::shared_ptr<HostPropertySet> current_state,
                               std::shared_ptr<HostPropertySet> settings)
    : current_state_(std::move(current_state)), settings_(std::move(settings)) {}

}  // namespace kvdm
