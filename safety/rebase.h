// Rebase: what a project and the catalogue name below one folder is to be below another one.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/document_tree.h>
#include <kvdm/platform/platform.h>
#include <kvdm/platform/portable/properties_host.h>

#include "safety/history.h"
#include "safety/path_prefix.h"
#include "safety/result.h"

namespace kvdm {

// Properties of the state: the study area that a project works in, and its identifier.
inline constexpr char kOpenArea[] = "Study Area Name";
inline constexpr char kOpenAreaGuid[] = "Study Area GUID";

// What a project and the catalogue hold, as texts and properties.
struct Holdings {
  std::string metadata;  // "" for none
  PropertySetMap::Properties settings;
  PropertySetMap::Properties state;
  std::string catalogue;  // "" for none

  bool operator==(const Holdings&) const = default;
};

// One path and what becomes of it.
struct PathChange {
  std::string document;  // "project", "settings", "state", "catalogue" or "side-car"
  std::string item;      // the item's name, or the property's
  std::string field;     // the attribute; "" for a property
  std::string before;
  std::string after;
  bool is_found = false;  // whether there is something at the place that is looked at

  bool operator==(const PathChange&) const = default;
};

[[nodiscard]] Record ToRecord(const PathChange& change);

struct Rebase {
  Holdings result;
  std::vector<PathChange> changes;
  // Study areas that stay where they are: their folder still is at its old place, so that they are
  // another project's.
  std::vector<PathChange> staying;

  // The folders of items that are not there.
  [[nodiscard]] std::vector<PathChange> MissingFolders() const;
};

// When a rebase is planned: it decides which study areas go along, and at which place is looked.
enum class RebaseStage {
  kBefore,  // before the folder is moved: all, old
  kCopied,  // when the folder is at both places and the old one is to go: all, new
  kMoved,   // whatever was moved: those whose folder is no longer at the old place, new
};

// Whether two paths lead to one place: the same folder, or none both.
[[nodiscard]] PathPrefix::SamePlace SamePlaceIn(const Platform& platform);

// Changes nothing. Failure kUnreadable for documents that are not well-formed. Texts in which
// nothing changes stay what they are to the byte.
[[nodiscard]] Rebase PlanRebase(const Platform& platform, const Holdings& holdings,
                                const PathPrefix& prefix, RebaseStage stage);

// Whether a change is of where a project works: that is taken back as a whole or not at all.
[[nodiscard]] bool ChangesSettings(const ChangeRecord& record);

// A record with its paths as they are by now: the working directory may have been moved since to
// `working_directory`. One that changed where the project works stays as it is.
[[nodiscard]] ChangeRecord RebasedRecord(XmlParser& parser, ChangeRecord record,
                                         std::string_view working_directory);

// The paths of all elements and attributes below a document's root that begin with the prefix are
// replaced, names and identifiers excepted.
std::vector<PathChange> RebaseElements(DocumentNode& root, const PathPrefix& prefix,
                                       std::string_view document);

// The side-cars of the layer files of a document, and what of them begins with the prefix; they are
// written when `writes`. One that can't be read or written is left out, and noted in the log.
[[nodiscard]] std::vector<PathChange> RebaseSidecars(const Platform& platform,
                                                     std::string_view document,
                                                     const PathPrefix& prefix, bool writes);

}  // namespace kvdm
