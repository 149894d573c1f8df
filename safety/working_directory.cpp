#include "safety/working_directory.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "safety/ownership.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kStudyAreas = "\\StudyAreas\\";

// Nothing for what is not there, or can't be looked at.
std::optional<fs::path> CanonicalOf(const fs::path& path) {
  try {
    return os::Canonical(path);
  } catch (const std::system_error&) {
    return std::nullopt;
  }
}

}  // namespace

fs::path Resolved(const fs::path& path) {
  if (const auto found = CanonicalOf(path)) return *found;
  const fs::path parent = path.parent_path();
  return parent == path ? path : Resolved(parent) / path.filename();
}

bool IsAtOrBelow(const fs::path& path, const fs::path& top) {
  const auto [in_path, in_top] =
      std::mismatch(path.begin(), path.end(), top.begin(), top.end(), os::AreSame);
  return !top.empty() && in_top == top.end();
}

WorkingDirectory::WorkingDirectory(os::Drives drives, std::string path)
    : drives_(std::move(drives)), path_(std::move(path)), place_(PlaceOf(path_).value_or("")) {}

std::optional<fs::path> WorkingDirectory::PlaceOf(std::string_view path) const {
  const auto native = os::NativePlace(drives_, path);
  return native ? std::optional(Resolved(*native)) : std::nullopt;
}

bool WorkingDirectory::Holds(std::string_view folder) const {
  const auto place = PlaceOf(folder);
  if (!place || place_.empty()) return false;
  for (fs::path above = *place; IsAtOrBelow(above, place_); above = above.parent_path()) {
    if (os::AreSame(above, place_)) return !os::AreSame(*place, place_);
    if (IsClaimed(above)) return false;
  }
  return false;
}

std::string WorkingDirectoryOf(std::string_view area_folder) {
  std::string path(area_folder);
  std::ranges::replace(path, '/', '\\');
  const auto same = [](char a, char b) { return (a | 0x20) == (b | 0x20); };
  const auto found =
      std::find_end(path.begin(), path.end(), kStudyAreas.begin(), kStudyAreas.end(), same);
  if (found == path.end()) return "";
  return std::string(area_folder.substr(0, found - path.begin() + 1));
}

}  // namespace kvdm
