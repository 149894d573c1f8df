#include "host/services.h"

#include <fmt/format.h>

#include "host/documents.h"
#include "platform/portable/catalogue_update.h"
#include "safety/json.h"
#include "util/registry_strings.h"

namespace kvdm {

template <class Operation>
auto WatchedRegistry::Reading(Operation operation) {
  if (unread_) ThrowUnreadable(*unread_);
  try {
    return operation();
  } catch (const std::exception&) {
    unread_ = registry_->Condition();
    throw;
  }
}

std::optional<RegistryValue> WatchedRegistry::Read(RegistryRoot root, std::string_view key,
                                                   std::string_view name) {
  auto value = Reading([&] { return registry_->Read(root, key, name); });
  if (name == kStudyAreaCollectionValue && !catalogue_) catalogue_ = value ? value->data : "";
  return value;
}

std::vector<KeptValue> WatchedRegistry::Kept(RegistryRoot root, std::string_view key,
                                             std::string_view name) {
  return Reading([&] { return registry_->Kept(root, key, name); });
}

bool WatchedRegistry::WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                                std::string_view text) {
  if (access_ == Access::kRead) return true;
  if (!NotedAlias(name, text)) return false;
  const bool written = registry_->WriteText(root, key, name, text);
  if (!written) refused_text_ = registry_->Condition();
  return written;
}

// An update holds what those before it could not write.
bool WatchedRegistry::Update(RegistryRoot root, std::string_view key, std::string_view name,
                             const TextUpdate& update) {
  const bool changes = !ChangesNothing(update);
  const bool unwanted = access_ == Access::kRead || (access_ == Access::kChange && !changes);
  refused_update_.reset();
  if (unwanted) return true;
  if (changes &&
      !Noted(kCatalogueDocument, catalogue_.value_or(""), update.On(std::nullopt).text)) {
    return false;
  }
  const bool written = registry_->Update(root, key, name, update);
  if (!written && changes) refused_update_ = registry_->Condition();
  return written;
}

// Whether the change was noted, or is not to be.
bool WatchedRegistry::Noted(const char* document, std::string_view before, std::string_view after) {
  if (!note_) return true;
  try {
    note_(document, UpToNul(before), UpToNul(after));
    return true;
  } catch (const std::exception&) {
    note_failure_ = std::current_exception();
    return false;
  }
}

bool WatchedRegistry::NotedAlias(std::string_view name, std::string_view text) {
  if (!note_ || (name != kCustomerAliasValue && name != kStoreAliasValue)) return true;
  const auto stored = Read(RegistryRoot::kLocalMachine, kRegistryKey, name);
  const auto object = [&](std::string_view word) {
    return word.empty() ? "{}" : Json{{std::string(name), word}}.dump();
  };
  return Noted(kAliasesDocument, object(stored ? stored->data : ""), object(text));
}

RegistryCondition WatchedRegistry::Condition() const { return registry_->Condition(); }
bool WatchedRegistry::Holds(char32_t character) const { return registry_->Holds(character); }

Services Watching(Platform platform, Access access) {
  const auto watched = std::make_shared<WatchedRegistry>(platform.registry, access);
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
