#include "safety/disk_view.h"

#include <algorithm>

#include <kvdm/platform/error.h>

#include "safety/paths.h"

namespace kvdm {
namespace {

// The letters of ASCII of a name, in one case and up to trailing blanks and dots. Names with
// different ones can't mean the same entry.
std::string Skeleton(std::string_view name) {
  std::string letters;
  for (const char character : paths::Key(name)) {
    if (static_cast<unsigned char>(character) < 0x80) letters += character;
  }
  letters.erase(letters.find_last_not_of(". ") + 1);
  return letters;
}

}  // namespace

bool DiskView::HasFolder(const std::string& path) const {
  const std::string plain = paths::Plain(path);
  const auto [found, is_new] = folders_.try_emplace(plain, false);
  if (is_new) found->second = files_->FolderExists(path);
  return found->second;
}

bool DiskView::HasFile(const std::string& path) const {
  const std::string name = paths::LastName(path);
  if (name.find_first_of("*?") != name.npos) return false;
  const Listing& listing = ListingOf(paths::Parent(path));
  if (!listing.is_known || listing.files.contains(name)) return true;
  const bool may_be_hidden = name.starts_with('.');
  if (!may_be_hidden && !listing.skeletons.contains(Skeleton(name))) return false;
  return !files_->FindFiles(path).empty();
}

bool DiskView::HasFileNamed(const std::string& folder, const std::string& base_name) const {
  const Listing& listing = ListingOf(folder);
  return !listing.is_known || listing.base_names.contains(base_name) ||
         listing.files.contains(base_name);
}

std::vector<std::string> DiskView::FilesIn(const std::string& folder) const {
  const Listing& listing = ListingOf(folder);
  return {listing.files.begin(), listing.files.end()};
}

std::vector<std::string> DiskView::FoldersIn(const std::string& folder) const {
  const Listing& listing = ListingOf(folder);
  return {listing.folders.begin(), listing.folders.end()};
}

const DiskView::Listing& DiskView::ListingOf(const std::string& folder) const {
  const auto [found, is_new] = listings_.try_emplace(paths::Plain(folder));
  if (is_new) found->second = Listed(folder);
  return found->second;
}

DiskView::Listing DiskView::Listed(const std::string& folder) const {
  Listing listing;
  if (!HasFolder(folder + "\\")) return listing;
  try {
    const auto directory = files_->OpenFolder(folder + "\\");
    for (const std::string& name : directory->Files()) {
      listing.files.insert(name);
      listing.skeletons.insert(Skeleton(name));
      listing.base_names.emplace(paths::WithoutExtension(name));
    }
    for (const std::string& name : directory->Entries()) {
      if (!listing.files.contains(name)) listing.folders.insert(name);
    }
  } catch (const RuntimeError& error) {
    listing.is_known = error.number() == kPathNotFound;
  }
  return listing;
}

}  // namespace kvdm
