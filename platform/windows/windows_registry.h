// The registry of the system, and its keys.
#pragma once

#include <windows.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kvdm/platform/log.h>
#include <kvdm/platform/registry.h>

namespace kvdm {

// What was kept of a value stands in the key "History", then the value's name, below the value's
// own key, each under the time at which it was kept. An update holds off those of all other
// processes and users of the machine.
[[nodiscard]] std::unique_ptr<Registry> MakeWindowsRegistry(std::shared_ptr<Log> log);

// A value of any type.
struct StoredValue {
  DWORD type = REG_SZ;
  std::string bytes;
  bool operator==(const StoredValue&) const = default;
};

// An open key. Failures are std::system_error.
class RegistryKey {
 public:
  // Nothing when the key is missing.
  static std::optional<RegistryKey> Open(RegistryRoot root, std::string_view path);
  // Whether the system refuses a write to a key that is there.
  static bool IsReadOnly(RegistryRoot root, std::string_view path);
  // Creates the key where it is missing.
  static RegistryKey Create(RegistryRoot root, std::string_view path);

  RegistryKey(RegistryKey&& other) noexcept : key_(std::exchange(other.key_, nullptr)) {}
  RegistryKey& operator=(RegistryKey&& other) noexcept {
    std::swap(key_, other.key_);
    return *this;
  }
  RegistryKey(const RegistryKey&) = delete;
  RegistryKey& operator=(const RegistryKey&) = delete;
  ~RegistryKey();

  // The value with a text's bytes in the ANSI code page; nothing when it is missing.
  [[nodiscard]] std::optional<StoredValue> ReadAnsi(std::string_view name) const;
  // Stores a text whose bytes are in the ANSI code page. The registry adds a NUL of its own, unless
  // the text is empty or ends with one.
  void WriteAnsi(std::string_view name, const std::string& text) const;

  // The value with the very bytes that the registry keeps.
  [[nodiscard]] std::optional<StoredValue> Read(std::string_view name) const;
  void Write(std::string_view name, const StoredValue& value) const;
  void Delete(std::string_view name) const;

  [[nodiscard]] std::vector<std::string> ValueNames() const;

 private:
  explicit RegistryKey(HKEY key) : key_(key) {}

  HKEY key_;
};

}  // namespace kvdm
