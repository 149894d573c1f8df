#include "util/registry_strings.h"

#include "util/guard.h"

namespace kvdm {

Value ReadRegistryString(Registry& registry, RegistryRoot root, std::string_view subkey,
                         std::string_view value_name) {
  // The registry itself notes what fails.
  const auto value = guard::Quiet(nullptr, [&] { return registry.Read(root, subkey, value_name); });
  if (!value || value->type != RegistryType::kText) return {};
  return value->data.substr(0, value->data.find('\0'));
}

bool WriteRegistryString(Registry& registry, RegistryRoot root, std::string_view subkey,
                         std::string_view value_name, std::string_view value) {
  return registry.WriteText(root, subkey, value_name, value);
}

}  // namespace kvdm
