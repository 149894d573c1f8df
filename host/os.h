// The few things that the host asks of the operating system itself. Failures are std::system_error.
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace kvdm::os {

// The bytes of a regular file.
[[nodiscard]] std::string ReadBytes(const std::filesystem::path& file);

// Writes a file anew; on return its bytes are on the disk.
void WriteBytes(const std::filesystem::path& file, std::string_view bytes);

// Puts `from` in the place of `to` in one step; on return the folder is on the disk too.
void ReplaceFile(const std::filesystem::path& from, const std::filesystem::path& to);

// Locks a file, which is made when it is missing, against other processes for as long as the result
// lives. Nothing when another process holds it.
[[nodiscard]] std::shared_ptr<void> TryLock(const std::filesystem::path& file);

[[nodiscard]] bool InputIsTerminal();
[[nodiscard]] bool OutputIsTerminal();

// The columns that a character takes on a terminal: 0, 1 or 2.
[[nodiscard]] std::size_t ColumnsOf(char32_t character);

// The environment variable; "" when it is not set.
[[nodiscard]] std::string Environment(const char* name);

// A path as UTF-8 text, and back.
[[nodiscard]] std::string ToText(const std::filesystem::path& path);
[[nodiscard]] std::filesystem::path ToPath(std::string_view text);

// An absolute path in the component's own form.
//
//   ComponentPath("/home/ann/North")   // Z:\home\ann\North
[[nodiscard]] std::string ComponentPath(const std::filesystem::path& absolute);

}  // namespace kvdm::os
