// The documents of a project and its user, as the safety library changes them.
#pragma once

#include <filesystem>

#include "host/project.h"
#include "host/services.h"
#include "safety/backups.h"
#include "safety/changes.h"
#include "safety/rebase.h"

namespace kvdm {

// The states of a file that are kept, for a list.
[[nodiscard]] std::vector<Record> RowsOf(const Backups& backups);

// A JSON object: the names of what the component calls customer and store layers.
inline constexpr char kAliasesDocument[] = "aliases";

// The documents in a project.
[[nodiscard]] Documents DocumentsOf(const Project& project);
// Puts those documents that are in a project into one.
void PutInto(Project& project, const Documents& documents);

// The same as a rebase and an adoption take them, and documents with what these lead to.
[[nodiscard]] Holdings HoldingsIn(const Documents& documents);
[[nodiscard]] Documents With(Documents documents, const Holdings& holdings);

// Whether changes are of what the registry holds.
[[nodiscard]] bool AreInRegistry(const Changes& changes);

// The documents that are stored now, those in the registry only if they are asked for. Failure
// kUnreadable when one can't be read.
[[nodiscard]] Documents StoredDocuments(const std::filesystem::path& project_file,
                                        Registry& registry, bool with_registry = true);

// Stores what differs between two states of documents: the catalogue as a difference, so that
// what others write meanwhile stays, and the project last. Failure kRefused.
void StoreDocuments(const std::filesystem::path& project_file, const Platform& platform,
                    const Documents& before, const Documents& after);

// The last states of the catalogue; nothing where they have no place.
[[nodiscard]] std::optional<Backups> CatalogueBackups();

}  // namespace kvdm
