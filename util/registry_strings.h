// The component's strings in the system registry, all in one key of the local machine.
#pragma once

#include <string_view>

#include <kvdm/platform/registry.h>
#include <kvdm/platform/value.h>

namespace kvdm {

inline constexpr char kRegistryKey[] = "Software\\Velk\\Kelvaro";

inline constexpr char kPresetDataDirectoryValue[] = "Preset Data Directory";
inline constexpr char kStudyAreaCollectionValue[] = "StudyAreaCollection";
inline constexpr char kCustomerAliasValue[] = "Customer Alias";
inline constexpr char kStoreAliasValue[] = "Store Alias";

// The text of a string value up to its first NUL. Empty for a value of another type, a missing one,
// and one that can't be read.
Value ReadRegistryString(Registry& registry, RegistryRoot root, std::string_view subkey,
                         std::string_view value_name);

// Writes a string value and creates the key. False when the registry refuses.
bool WriteRegistryString(Registry& registry, RegistryRoot root, std::string_view subkey,
                         std::string_view value_name, std::string_view value);

}  // namespace kvdm
