#include "host/services.h"

namespace kvdm {

std::optional<RegistryValue> WatchedRegistry::Read(RegistryRoot root, std::string_view key,
                                                   std::string_view name) {
  return registry_->Read(root, key, name);
}

bool WatchedRegistry::WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                                std::string_view text) {
  const bool written = registry_->WriteText(root, key, name, text);
  if (!written) refused_ = true;
  return written;
}

void WatchedRegistry::Preserve(RegistryRoot root, std::string_view key, std::string_view name) {
  registry_->Preserve(root, key, name);
}

bool WatchedRegistry::Holds(char32_t character) const { return registry_->Holds(character); }

}  // namespace kvdm
