#include "host/services.h"

#include <fmt/format.h>

namespace kvdm {

std::optional<RegistryValue> WatchedRegistry::Read(RegistryRoot root, std::string_view key,
                                                   std::string_view name) {
  try {
    return registry_->Read(root, key, name);
  } catch (const std::exception&) {
    if (!unread_) unread_ = registry_->Condition();
    throw;
  }
}

bool WatchedRegistry::WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                                std::string_view text) {
  return Noted(registry_->WriteText(root, key, name, text));
}

bool WatchedRegistry::Update(RegistryRoot root, std::string_view key, std::string_view name,
                             const TextUpdate& update) {
  return Noted(registry_->Update(root, key, name, update));
}

std::vector<KeptValue> WatchedRegistry::Kept(RegistryRoot root, std::string_view key,
                                             std::string_view name) {
  return registry_->Kept(root, key, name);
}

RegistryCondition WatchedRegistry::Condition() const { return registry_->Condition(); }

bool WatchedRegistry::Holds(char32_t character) const { return registry_->Holds(character); }

bool WatchedRegistry::Noted(bool written) {
  refused_ = written ? std::nullopt : std::optional(registry_->Condition());
  return written;
}

Services Watching(Platform platform) {
  const auto watched = std::make_shared<WatchedRegistry>(platform.registry);
  platform.registry = watched;
  return {std::move(platform), watched};
}

std::string RegistrySentence(const RegistryCondition& condition) {
  const bool can_be_set_aside =
      condition.state == RegistryState::kDamaged || condition.state == RegistryState::kNotADatabase;
  return fmt::format("The registry {} {} ({}). {}{}", RegistryPlace(), condition.Sentence(),
                     condition.cause, condition.Advice(),
                     can_be_set_aside ? " 'kvdm catalogue renew' does that." : "");
}

}  // namespace kvdm
