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

// Whether `folder` is in the folder `parent`.
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

void SettingAsideFiles::Expect(std::string_view folder) {
  armed_ = true;
  expected_ = folder;
}

// The component opens the folder above the one that it deletes. To it that one is missing by then.
std::unique_ptr<Directory> SettingAsideFiles::OpenFolder(std::string_view path) {
  if (!armed_) return files_->OpenFolder(path);
  armed_ = false;
  if (IsIn(expected_, path)) guard::Skipping([&] { SetAside(); });
  throw PathError(kPathNotFound, path);
}

void SettingAsideFiles::SetAside() {
  const std::string folder = files_->FullPath(expected_);
  if (!SameNames(NamesOf(expected_), NamesOf(folder))) return;
  const std::string parent = ParentOf(folder);
  const std::string place = parent + ".kvdm-deleted-" + RandomDigits();
  files_->CreateFolder(place);
  guard::Skipping([&] { files_->HideFolder(place); });
  original_ = folder;
  aside_ = place + "\\" + folder.substr(parent.size());
  if (!guard::Skipping([&] { move_(original_, aside_); })) RemovePlace();
}

void SettingAsideFiles::Empty() {
  armed_ = false;
  if (aside_.empty()) return;
  const bool closed = WithoutEnd(expected_) != expected_;
  if (DeleteFolderTree(*files_, aside_ + (closed ? "\\" : ""))) return RemovePlace();
  PutBack();
}

void SettingAsideFiles::PutBack() {
  armed_ = false;
  if (aside_.empty()) return;
  if (guard::Skipping([&] { move_(aside_, original_); })) RemovePlace();
}

void SettingAsideFiles::RemovePlace() {
  const std::string place = ParentOf(aside_);
  aside_.clear();
  DeleteFolderTree(*files_, place);
}

}  // namespace kvdm
