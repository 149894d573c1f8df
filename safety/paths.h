// Paths of the component as texts: compared and taken apart without a look at the disk.
#pragma once

#include <string>
#include <string_view>

namespace kvdm::paths {

// A path with one "\" between names and none at its end.
[[nodiscard]] std::string Plain(std::string_view path);

// The same in one letter case of ASCII, for keys.
[[nodiscard]] std::string Key(std::string_view path);

// The plain path of what a path is in, and the name that it has there.
//
//   Parent(R"(D:\Data\North\)")   // D:\Data
//   LastName(R"(D:\Data\North\)")   // North
[[nodiscard]] std::string Parent(std::string_view path);
[[nodiscard]] std::string LastName(std::string_view path);

// A name without its extension.
[[nodiscard]] std::string_view WithoutExtension(std::string_view name);

// Whether a path is strictly below a folder.
[[nodiscard]] bool IsBelow(std::string_view path, std::string_view folder);

// Whether a path starts with a drive, a share or the root of a drive.
[[nodiscard]] bool IsFull(std::string_view path);

// Whether one of the names is "..".
[[nodiscard]] bool LeadsUpwards(std::string_view path);

// A text as one word of a command line, in quotes where it must be.
[[nodiscard]] std::string Quoted(std::string_view text);

}  // namespace kvdm::paths
