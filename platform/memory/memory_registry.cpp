#include "platform/memory/memory_registry.h"

#include <algorithm>

#include <kvdm/platform/error.h>

namespace kvdm {
namespace {

// The same content is kept once.
void Keep(const RegistryValue& value, std::vector<KeptValue>& all) {
  std::erase_if(all, [&](const KeptValue& old) { return old.value == value; });
  all.push_back({"2026-11-15T07:35:30Z", value});
  if (all.size() > kMostKeptValues) all.erase(all.begin());
}

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(), [](char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter;
  });
  return lower;
}

}  // namespace

MemoryRegistry::Address MemoryRegistry::AddressOf(RegistryRoot root, std::string_view key,
                                                  std::string_view name) {
  return {root, LowerCase(key), LowerCase(name)};
}

std::optional<RegistryValue> MemoryRegistry::Read(RegistryRoot root, std::string_view key,
                                                  std::string_view name) {
  if (!readable_) condition_ = {RegistryState::kBusy, "made unreadable"};
  if (!readable_) ThrowUnreadable(condition_);
  condition_ = {};
  const auto found = values_.find(AddressOf(root, key, name));
  if (found == values_.end()) return std::nullopt;
  RegistryValue value = found->second;
  if (value.type == RegistryType::kText) value.data = Decode(value.data, code_page_);
  return value;
}

bool MemoryRegistry::WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                               std::string_view text) {
  condition_ = {};
  if (!writable_) condition_ = {RegistryState::kForbidden, "made unwritable"};
  if (writable_) Put(root, key, name, RegistryType::kText, Encode(text, code_page_));
  return writable_;
}

bool MemoryRegistry::Update(RegistryRoot root, std::string_view key, std::string_view name,
                            const TextUpdate& update) {
  if (!readable_) return false;
  const auto stored = Read(root, key, name);
  std::optional<TextUpdate::Outcome> outcome;
  try {
    outcome = update.On(stored);
  } catch (const RuntimeError& error) {
    condition_ = {RegistryState::kFailing, error.what()};
    return false;
  }
  if (!WriteText(root, key, name, outcome->text)) return false;
  auto& kept = kept_[AddressOf(root, key, name)];
  if (outcome->keeps_stored) Keep(*stored, kept);
  for (const std::string& text : outcome->kept) Keep({RegistryType::kText, text}, kept);
  return true;
}

std::vector<KeptValue> MemoryRegistry::Kept(RegistryRoot root, std::string_view key,
                                            std::string_view name) {
  return kept_[AddressOf(root, key, name)];
}

bool MemoryRegistry::Holds(char32_t character) const { return kvdm::Holds(code_page_, character); }

void MemoryRegistry::Put(RegistryRoot root, std::string_view key, std::string_view name,
                         RegistryType type, std::string_view bytes) {
  values_[AddressOf(root, key, name)] = {type, std::string(bytes)};
}

}  // namespace kvdm
