// Whose a working directory and a study area are, and what a project may do with them.
#pragma once

#include <optional>
#include <string>

#include "host/kinds.h"
#include "safety/ownership.h"
#include "safety/working_directory.h"

namespace kvdm {

// The working directory of the project's settings.
[[nodiscard]] WorkingDirectory DirectoryOf(const Project& project);
[[nodiscard]] WorkingDirectory DirectoryOf(Session& session);

// The project as records know it.
[[nodiscard]] Holder HolderOf(const std::filesystem::path& file, const Project& project);
[[nodiscard]] Holder HolderOf(Session& session);

// What speaks against changing anything: the working directory belongs to another project, or lies
// elsewhere although one lies beside the project file, as with a copy. A sentence with the ways
// out; "" when nothing does. Failure kUnreadable for a record that can't be read.
[[nodiscard]] std::string TenureProblem(const WorkingDirectory& directory, const Holder& holder);
[[nodiscard]] std::string TenureProblem(Session& session);

// Tells that problem, or that it can't be told.
void TellOfTenure(Session& session);

// Failure kUnsafe with it, unless what lies outside is allowed.
void RequireTenure(Session& session);

// Records the project as the owner of a working directory that has none, or that it was moved with;
// and the identifier of the open study area where only its name is known. That is nobody's change
// and not undone. Failure kRefused when it can't be written.
void RecordTenure(Session& session);

// The project that a working directory, given by its resolved path, belongs to without a record: it
// lies beside it and works there. Nothing when there is none.
[[nodiscard]] std::optional<std::filesystem::path> ProjectBeside(
    const std::filesystem::path& working_directory);

// A project that gets an identifier of its own, which its state then has.
[[nodiscard]] Holder NewHolder(HostedComponent& component, const std::filesystem::path& file);
Holder NewHolder(const Platform& platform, PropertySetMap::Properties& state,
                 const std::filesystem::path& file);

// A project by its state, as records know it.
[[nodiscard]] Holder HolderIn(const PropertySetMap::Properties& state,
                              const std::filesystem::path& file);

// Failure kUnsafe when another project, which is still there, has the working directory.
void RequireNobodys(const WorkingDirectory& directory, const Holder& holder);

// Records a project as the owner. Failure kRefused when that can't be written.
void RecordOwner(const std::filesystem::path& working_directory, const Holder& holder,
                 bool is_shared = false);

// Whether a study area is the project's own: its folder is below the working directory.
[[nodiscard]] bool IsOwn(Session& session, const StudyAreaKind::Ref& area);

// What is wrong with the study area that the project works in, when what is made there would go
// somewhere else or to another project: it is not in the list, another one has its name, or it is
// foreign and was not opened as such.
[[nodiscard]] std::optional<Failure> CurrentAreaProblem(Session& session);
void TellOfCurrentArea(Session& session);
// Fails with it.
void RequireCurrentArea(Session& session);

}  // namespace kvdm
