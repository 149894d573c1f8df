// COM server registration: the component's DLL, and where the system has it registered.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace kvdm {

enum class ComScope { kMachine, kUser };

// The DLL in this program's folder.
[[nodiscard]] std::filesystem::path OwnComServer();

// The version that a file says it has, such as "1.0.0.0"; nothing when it says none.
[[nodiscard]] std::optional<std::string> FileVersion(const std::filesystem::path& file);

// The word size of the programs that can load a DLL, 32 or 64; nothing for a file that is no DLL or
// one for other processors.
[[nodiscard]] std::optional<int> WordSize(const std::filesystem::path& file);

// The DLL that is registered as the data manager's; nothing when none is.
[[nodiscard]] std::optional<std::string> RegisteredComServer(ComScope scope);

// Has a DLL register or unregister itself. Failure kNotFound, kUnreadable or kRefused, with what
// can be done about it.
void RegisterComServer(const std::filesystem::path& file, ComScope scope);
void UnregisterComServer(const std::filesystem::path& file, ComScope scope);

}  // namespace kvdm
