// The system registry: typed values under keys under roots.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kvdm {

enum class RegistryRoot { kLocalMachine, kCurrentUser };

// The type numbers of registry values; only text is ever interpreted.
enum class RegistryType : int { kText = 1, kExpandText = 2, kBinary = 3, kNumber = 4 };

struct RegistryValue {
  RegistryType type = RegistryType::kText;
  // The bytes as stored, converted to UTF-8 from the ANSI code page when `type` is kText. May hold
  // NULs.
  std::string data;
  bool operator==(const RegistryValue&) const = default;
};

// A copy that was kept of a value.
struct PreservedValue {
  std::string when;  // UTC, such as "2026-11-15T07:35:30Z".
  RegistryValue value;
};

// Keys and value names are found whatever the case of their ASCII letters; the system's own
// registry takes no other letter's case either. A key is a path such as "Software\Velk".
class Registry {
 public:
  virtual ~Registry() = default;

  // The value, or nothing when the key or the value is missing or can't be read.
  virtual std::optional<RegistryValue> Read(RegistryRoot root, std::string_view key,
                                            std::string_view name) = 0;

  // Stores `text` in the ANSI code page, its length counted in bytes after that conversion; creates
  // the key. False when the registry refuses; the old value then stands.
  virtual bool WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                         std::string_view text) = 0;

  // Keeps a copy of the value as it now stands, beside later writes, for people to recover. Does
  // nothing when it is missing, or when the same content was kept before. Never fails.
  virtual void Preserve(RegistryRoot root, std::string_view key, std::string_view name) = 0;

  // Whether the ANSI code page has `character`; others are stored replaced.
  [[nodiscard]] virtual bool Holds(char32_t character) const = 0;
};

}  // namespace kvdm
