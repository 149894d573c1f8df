// Working directory: the folder in which a project keeps its files, and what lies in it.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "safety/os.h"

namespace kvdm {

// The absolute path of what a path leads to, links followed as far as anything is there. What can't
// be looked at stays as it is written.
[[nodiscard]] std::filesystem::path Resolved(const std::filesystem::path& path);

// Whether a resolved path is another one, or below it.
[[nodiscard]] bool IsAtOrBelow(const std::filesystem::path& path, const std::filesystem::path& top);

class WorkingDirectory {
 public:
  // `path` in the component's form, as the settings have it. `drives` are the project's.
  WorkingDirectory(os::Drives drives, std::string path);

  [[nodiscard]] const std::string& Path() const { return path_; }
  [[nodiscard]] const os::Drives& Drives() const { return drives_; }
  // Where it is, resolved; "" where this computer has no such drive.
  [[nodiscard]] const std::filesystem::path& Place() const { return place_; }

  // Where a path of the component leads, resolved; nothing for one that is not full or on a drive
  // that this computer does not have.
  [[nodiscard]] std::optional<std::filesystem::path> PlaceOf(std::string_view path) const;

  // Whether a folder of the component is strictly below it, and below no other working directory
  // that lies in it.
  [[nodiscard]] bool Holds(std::string_view folder) const;

 private:
  os::Drives drives_;
  std::string path_;
  std::filesystem::path place_;
};

// The working directory that a study area's folder names, with a separator at its end; "" when the
// folder stands in no "StudyAreas".
//
//   WorkingDirectoryOf(R"(D:\Data\StudyAreas\North\)")   // D:\Data\ (with its separator)
[[nodiscard]] std::string WorkingDirectoryOf(std::string_view area_folder);

}  // namespace kvdm
