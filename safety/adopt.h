// Adoption: items that are on the disk and no longer, or not yet, in the documents come back, from
// their recovery side-cars, their layers' metadata, or their folders alone.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/platform.h>

#include "safety/item_files.h"
#include "safety/rebase.h"
#include "safety/result.h"

namespace kvdm {

// What is on the disk of an item.
struct FoundItem {
  KeptItem item;  // its paths are of the places where it was found
  std::string source;
};

// All items in a folder and below it, and those of the side-cars of layers in that folder.
[[nodiscard]] std::vector<FoundItem> SearchItems(const Platform& platform, std::string_view folder);

// The folders directly in a folder, links and hidden ones left out; none when it is missing.
[[nodiscard]] std::vector<std::string> FoldersOf(const Platform& platform, std::string_view folder);

// What becomes of an item that was found.
struct Found {
  KeptItem item;       // as it is to be stored
  std::string source;  // "side-car", "metadata" or "folder"
  // "new"; "copy", when its identifier or its name is another one's by now and it gets a new one;
  // "present", when the documents have it; "moved", when they have it with a folder that is gone,
  // which is for a rebase to mend.
  std::string state;
};

[[nodiscard]] Record ToRecord(const Found& found);

struct Adoption {
  std::vector<Found> found;
  Holdings result;

  // How many items are new or copies.
  [[nodiscard]] std::size_t Count() const;
};

// Looks in `folder` and the folders below it, which are not links, and in the side-cars of layers
// that a working directory among them has. Changes nothing. A study area goes to the catalogue, all
// else to the metadata document.
[[nodiscard]] Adoption PlanAdoption(const Platform& platform, const Holdings& holdings,
                                    std::string_view folder);

// Takes up items that were found otherwise.
[[nodiscard]] Adoption AdoptItems(const Platform& platform, const Holdings& holdings,
                                  std::vector<FoundItem> items);

// The same of the study areas of a project that is a copy: the one that it works in is its own from
// now on.
[[nodiscard]] Adoption AdoptCopies(const Platform& platform, const Holdings& holdings,
                                   const std::vector<FoundItem>& areas);

// What a rebase leads to, with copies of the study areas that it left where they are, as far as
// there are folders for them at the new place. The project works in no other one's study area.
[[nodiscard]] Adoption AdoptStaying(const Platform& platform, const Rebase& rebase,
                                    const PathPrefix& prefix);

// Whether a folder that no document names looks like one of a study area: it has a recovery
// side-car, analyses or a study area's layer.
[[nodiscard]] bool LooksLikeStudyArea(const Platform& platform, const std::string& folder);

// The folders among the study areas of a working directory that the catalogue does not name.
[[nodiscard]] std::vector<std::string> UnlistedAreaFolders(const Platform& platform,
                                                           std::string_view working_directory,
                                                           std::string_view catalogue);

}  // namespace kvdm
