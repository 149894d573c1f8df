#include "host/set_aside.h"

#include <algorithm>

#include "platform/file_names.h"
#include "util/guard.h"
#include "util/kvdm_utils.h"

namespace kvdm {
namespace {

using Names = std::vector<std::string>;

Names NamesOf(std::string_view path) {
  const auto resolved = ResolvePath(SplitPath(path), {});
  return resolved ? resolved->names : Names();
}

// Whether two paths consist of the same names, in whatever letter case; nothing is cut off them.
bool SameNames(const Names& a, const Names& b) { return std::ranges::equal(a, b, SameName); }

bool IsIn(std::string_view folder, std::string_view parent) {
  Names names = NamesOf(folder);
  if (names.empty()) return false;
  names.pop_back();
  return SameNames(names, NamesOf(parent));
}

// A path without the separator that it may end in.
std::string_view WithoutEnd(std::string_view path) {
  if (path.ends_with('\\') || path.ends_with('/')) path.remove_suffix(1);
  return path;
}

std::string ParentOf(std::string_view full_path) {
  return std::string(full_path.substr(0, full_path.rfind('\\') + 1));
}

}  // namespace

void SettingAsideFiles::Expect(std::string_view folder, std::string_view place) {
  place_ = place;
  expected_ = folder;
  found_ = os::FindFolder(drives_, folder);
  armed_ = true;
}

// The component opens the folder above the one that it deletes. To it that one is missing by then.
std::unique_ptr<Directory> SettingAsideFiles::OpenFolder(std::string_view path) {
  if (!armed_) return files_->OpenFolder(path);
  armed_ = false;
  if (found_ && IsIn(expected_, path)) guard::Skipping(nullptr, [&] { SetAside(); });
  throw PathError(kPathNotFound, path);
}

void SettingAsideFiles::SetAside() {
  if (!SameNames(NamesOf(expected_), NamesOf(*found_))) return;
  const std::string parent = ParentOf(*found_);
  const std::string place = parent + place_;
  files_->CreateFolder(place);
  guard::Skipping(nullptr, [&] { files_->HideFolder(place); });
  aside_ = place + "\\" + found_->substr(parent.size());
  if (!guard::Skipping(nullptr, [&] { os::MoveFolder(drives_, *found_, aside_); })) RemovePlace();
}

bool SettingAsideFiles::Empty() {
  armed_ = false;
  if (aside_.empty()) return false;
  const bool closed = WithoutEnd(expected_) != expected_;
  const bool gone = DeleteFolderTree(*files_, aside_ + (closed ? "\\" : ""));
  if (gone) {
    RemovePlace();
  } else {
    PutBack();
  }
  return gone;
}

void SettingAsideFiles::PutBack() {
  armed_ = false;
  if (aside_.empty()) return;
  if (guard::Skipping(nullptr, [&] { os::MoveFolder(drives_, aside_, *found_); })) RemovePlace();
}

void SettingAsideFiles::RemovePlace() {
  const std::string place = ParentOf(aside_);
  aside_.clear();
  DeleteFolderTree(*files_, place);
}

}  // namespace kvdm
