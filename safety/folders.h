// Whole folders of the system: moved, copied and compared.
#pragma once

#include <filesystem>

namespace kvdm {

// How a folder got to its new place.
enum class MoveKind { kRenamed, kCopied };

// Gives a folder another place, where nothing is: by a rename, else, on another disk, by a copy
// that is compared byte by byte; then the old folder still is there. Links are copied as links.
// After a failure the old folder is as before and the new place is empty. std::system_error.
MoveKind MoveOrCopyFolder(const std::filesystem::path& from, const std::filesystem::path& to);

// Copies a folder as MoveOrCopyFolder does.
void CopyFolder(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace kvdm
