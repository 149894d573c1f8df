#include "platform/memory/memory_registry.h"

#include <algorithm>

namespace kvdm {
namespace {

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
  const auto found = values_.find(AddressOf(root, key, name));
  if (found == values_.end()) return std::nullopt;
  RegistryValue value = found->second;
  if (value.type == RegistryType::kText) value.data = Decode(value.data, code_page_);
  return value;
}

bool MemoryRegistry::WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                               std::string_view text) {
  if (!writable_) return false;
  Put(root, key, name, RegistryType::kText, Encode(text, code_page_));
  return true;
}

void MemoryRegistry::Preserve(RegistryRoot root, std::string_view key, std::string_view name) {
  const auto value = Read(root, key, name);
  if (!value) return;
  const bool kept = std::ranges::any_of(preserved_, [&](const PreservedValue& old) {
    return AddressOf(old.root, old.key, old.name) == AddressOf(root, key, name) &&
           old.value == *value;
  });
  if (!kept) preserved_.push_back({root, std::string(key), std::string(name), *value});
}

bool MemoryRegistry::Holds(char32_t character) const { return kvdm::Holds(code_page_, character); }

void MemoryRegistry::Put(RegistryRoot root, std::string_view key, std::string_view name,
                         RegistryType type, std::string_view bytes) {
  values_[AddressOf(root, key, name)] = {type, std::string(bytes)};
}

}  // namespace kvdm
