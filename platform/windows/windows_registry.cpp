#include "platform/windows/windows_registry.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <tuple>

#include "platform/windows/ansi.h"
#include "platform/windows/registry_key.h"

namespace kvdm {
namespace {

// The length of "2026-11-15T07:35:30Z".
constexpr std::size_t kTimeLength = 20;

std::string UtcNow() {
  SYSTEMTIME now{};
  ::GetSystemTime(&now);
  std::array<char, 64> buffer{};
  std::snprintf(buffer.data(), buffer.size(), "%04d-%02d-%02dT%02d:%02d:%02dZ", now.wYear,
                now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond);
  return buffer.data();
}

std::string HistoryOf(std::string_view key, std::string_view name) {
  return std::string(key).append("\\History\\").append(name);
}

// The NUL at the end is the registry's, not the text's.
RegistryValue Decoded(StoredValue stored) {
  const auto type = static_cast<RegistryType>(stored.type);
  if (type != RegistryType::kText) return {type, std::move(stored.bytes)};
  if (stored.bytes.ends_with('\0')) stored.bytes.pop_back();
  return {type, FromAnsi(stored.bytes)};
}

// The names of what was preserved, the oldest first: the time, and a number where there would
// otherwise be several of one time.
std::vector<std::string> NamesIn(const RegistryKey& history) {
  std::vector<std::string> names = history.ValueNames();
  std::ranges::sort(names, {}, [](const std::string& name) {
    return std::tuple(name.substr(0, kTimeLength), name.size(), name);
  });
  return names;
}

bool Keep(const RegistryKey& history, const StoredValue& value) {
  const std::string now = UtcNow();
  std::string name = now;
  for (int number = 2; history.Read(name); ++number) name = now + " " + std::to_string(number);
  return history.Write(name, value);
}

bool Has(const RegistryKey& history, const StoredValue& value) {
  return std::ranges::any_of(history.ValueNames(),
                             [&](const std::string& name) { return history.Read(name) == value; });
}

}  // namespace

std::optional<RegistryValue> WindowsRegistry::Read(RegistryRoot root, std::string_view key,
                                                   std::string_view name) {
  const auto open_key = RegistryKey::Open(root, key);
  auto stored = open_key ? open_key->ReadAnsi(name) : std::nullopt;
  if (!stored) return std::nullopt;
  return Decoded(std::move(*stored));
}

bool WindowsRegistry::WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                                std::string_view text) {
  const auto open_key = RegistryKey::Create(root, key);
  return NotedUnless(open_key && open_key->WriteAnsi(name, ToAnsi(text)), key, name);
}

void WindowsRegistry::Preserve(RegistryRoot root, std::string_view key, std::string_view name) {
  const auto open_key = RegistryKey::Open(root, key);
  const auto value = open_key ? open_key->Read(name) : std::nullopt;
  if (!value) return;
  const std::string history_key = HistoryOf(key, name);
  const auto history = RegistryKey::Create(root, history_key);
  NotedUnless(history && (Has(*history, *value) || Keep(*history, *value)), history_key, name);
}

// Programs with another code page read what this one writes.
bool WindowsRegistry::Holds(char32_t character) const {
  return HasAnsi(character) && HasAnsi(character, MachineCodePage());
}

std::vector<PreservedValue> WindowsRegistry::Preserved(RegistryRoot root, std::string_view key,
                                                       std::string_view name) const {
  std::vector<PreservedValue> values;
  const auto history = RegistryKey::Open(root, HistoryOf(key, name));
  if (!history) return values;
  for (const std::string& entry : NamesIn(*history)) {
    auto stored = history->ReadAnsi(entry);
    if (stored) values.push_back({entry.substr(0, kTimeLength), Decoded(std::move(*stored))});
  }
  return values;
}

bool WindowsRegistry::NotedUnless(bool done, std::string_view key, std::string_view name) const {
  if (!done) log_->Note("The registry refuses " + std::string(key) + ", " + std::string(name));
  return done;
}

}  // namespace kvdm
