#include "host/ownership.h"

#include <system_error>

#include "host/os.h"
#include "host/project_file.h"
#include "util/guard.h"
#include "util/names.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

constexpr char kProjectGuidProperty[] = "Project GUID";
constexpr char kFolderBeside[] = "KVData";

std::string TextIn(const PropertySetMap::Properties& properties, const char* name) {
  const auto found = properties.find(name);
  const bool is_set = found != properties.end() && found->second.IsText();
  return is_set ? ToText(found->second) : "";
}

// The folder that a copy or a moved project would work in: beside the project file, and not known
// to belong to another project. Nothing when the project works there, or there is none.
std::optional<fs::path> FolderBeside(const fs::path& working_directory, const Holder& holder) {
  const fs::path beside = Resolved(holder.file.parent_path() / kFolderBeside);
  if (!os::Exists(beside) || os::AreSame(beside, working_directory)) return std::nullopt;
  const auto owner = ReadOwner(beside);
  const bool is_anothers = TenureOf(beside, owner, holder) == Tenure::kForeign;
  return is_anothers ? std::nullopt : std::optional(beside);
}

// False for a project that can't be read.
bool WorksIn(const fs::path& project_file, const fs::path& working_directory) {
  return guard::Quiet(nullptr, [&] {
    const Project project = ReadProjectFile(project_file);
    return os::AreSame(DirectoryOf(project).Place(), working_directory);
  });
}

std::string RebaseCommand(const WorkingDirectory& directory, const std::optional<fs::path>& to) {
  if (!to) return "'kvdm project rebase'";
  std::string from = directory.Path();
  if (from.ends_with('\\') && from.size() > 3) from.pop_back();
  return fmt::format("'kvdm project rebase \"{}\" \"{}\"'", from, os::ComponentPath(*to));
}

std::string BelongsToAnother(const WorkingDirectory& directory, const fs::path& owner,
                             const std::optional<fs::path>& beside) {
  return fmt::format(
      "The working directory {0} belongs to the project {1}, so that this one can be read, but not "
      "changed. Give this one its own with {2}, or let both work there with 'kvdm project share -p "
      "\"{1}\"'. --outside changes it all the same.",
      WithSeparator(directory.Path()), os::ToText(owner), RebaseCommand(directory, beside));
}

std::string LiesElsewhere(const WorkingDirectory& directory, const fs::path& beside) {
  return fmt::format(
      "The project works in {}, but {} lies beside it: this may be a copy, which can be read, but "
      "not changed. Let it work there with {}. --outside changes it where it is.",
      WithSeparator(directory.Path()), os::ToText(beside), RebaseCommand(directory, beside));
}

void RecordProject(Session& session) {
  const fs::path place = DirectoryOf(session).Place();
  const Holder holder = HolderOf(session);
  const auto owner = ReadOwner(place);
  const Tenure tenure = TenureOf(place, owner, holder);
  if (tenure == Tenure::kForeign || tenure == Tenure::kShared) return;
  if (tenure == Tenure::kUnclaimed && !TenureProblem(session).empty()) return;
  const bool is_recorded = owner && ProjectOf(place, *owner) == holder.file && !holder.id.empty() &&
                           owner->id == holder.id;
  if (is_recorded) return;
  RecordOwner(place, holder.id.empty() ? NewHolder(session.Component(), holder.file) : holder);
}

void RecordCurrentArea(Session& session) {
  HostedComponent& component = session.Component();
  const std::string name = component.CurrentStudyArea();
  if (name.empty() || !component.CurrentStudyAreaGuid().empty()) return;
  const auto areas = session.Manager().StudyAreaCollection();
  const auto area = areas ? areas->GetStudyArea(name) : nullptr;
  if (area && IsOwn(session, area)) component.SetCurrentStudyArea(name, area->GUID());
}

}  // namespace

WorkingDirectory DirectoryOf(const Project& project) {
  return {project.drives, WorkingDirectoryIn(project.settings)};
}

WorkingDirectory DirectoryOf(Session& session) { return DirectoryOf(session.GetProject()); }

Holder HolderOf(const fs::path& file, const Project& project) {
  return {file, TextIn(project.state, kProjectGuidProperty)};
}

Holder HolderOf(Session& session) {
  return {session.File(), session.Component().State(kProjectGuidProperty)};
}

std::string TenureProblem(Session& session) {
  return TenureProblem(DirectoryOf(session), HolderOf(session));
}

std::string TenureProblem(const WorkingDirectory& directory, const Holder& holder) {
  const auto owner = ReadOwner(directory.Place());
  const Tenure tenure = TenureOf(directory.Place(), owner, holder);
  if (tenure == Tenure::kOwn || tenure == Tenure::kShared) return "";
  const auto beside = FolderBeside(directory.Place(), holder);
  if (tenure == Tenure::kForeign) {
    return BelongsToAnother(directory, ProjectOf(directory.Place(), *owner), beside);
  }
  if (beside) return LiesElsewhere(directory, *beside);
  const auto another = ProjectBeside(directory.Place());
  const bool is_anothers = another && !os::AreSame(*another, holder.file);
  return is_anothers ? BelongsToAnother(directory, *another, beside) : "";
}

void TellOfTenure(Session& session) try {
  const std::string problem = TenureProblem(session);
  if (!problem.empty()) Output::Tell("kvdm: " + problem);
} catch (const std::exception& error) {
  Output::Tell(fmt::format("kvdm: whose the working directory is can't be told: {}", error.what()));
}

void RequireTenure(Session& session) {
  const std::string problem = TenureProblem(session);
  if (!problem.empty() && !session.GetAllowed().outside) throw Failure(ExitCode::kUnsafe, problem);
}

void RecordTenure(Session& session) {
  RecordProject(session);
  RecordCurrentArea(session);
  session.LeaveStateUnrecorded();
}

std::optional<fs::path> ProjectBeside(const fs::path& working_directory) {
  std::optional<fs::path> found;
  guard::Skipping(nullptr, [&] {
    for (const fs::path& file : os::FilesIn(working_directory.parent_path())) {
      if (!found && file.extension() == ".kvdm" && WorksIn(file, working_directory)) found = file;
    }
  });
  return found;
}

Holder NewHolder(HostedComponent& component, const fs::path& file) {
  PropertySetMap::Properties state;
  Holder holder = NewHolder(component.GetServices().platform, state, file);
  component.SetState(kProjectGuidProperty, holder.id);
  return holder;
}

Holder NewHolder(const Platform& platform, PropertySetMap::Properties& state,
                 const fs::path& file) {
  const auto identifier = platform.gis_core->CreateIdentifier();
  identifier->Generate();
  state[kProjectGuidProperty] = identifier->GetValue();
  return {Resolved(file), identifier->GetValue()};
}

Holder HolderIn(const PropertySetMap::Properties& state, const fs::path& file) {
  return {Resolved(file), TextIn(state, kProjectGuidProperty)};
}

void RequireNobodys(const WorkingDirectory& directory, const Holder& holder) {
  const auto owner = ReadOwner(directory.Place());
  const Tenure tenure = TenureOf(directory.Place(), owner, holder);
  auto other = tenure == Tenure::kUnclaimed ? ProjectBeside(directory.Place()) : std::nullopt;
  if (tenure == Tenure::kForeign && !IsGone(directory.Place(), *owner)) {
    other = ProjectOf(directory.Place(), *owner);
  }
  if (!other || os::AreSame(*other, holder.file)) return;
  throw Failure(
      ExitCode::kUnsafe,
      fmt::format("The working directory {} belongs to the project {}. Choose another "
                  "one, or let both work there: 'kvdm project share -p \"{}\"'.",
                  WithSeparator(directory.Path()), os::ToText(*other), os::ToText(*other)));
}

void RecordOwner(const fs::path& working_directory, const Holder& holder, bool is_shared) {
  Owner owner = OwnerFor(working_directory, holder);
  owner.is_shared = is_shared;
  try {
    WriteOwner(working_directory, owner);
  } catch (const std::system_error& error) {
    throw Failure(ExitCode::kRefused,
                  fmt::format("Whose the working directory is can't be recorded in it: {}. Nothing "
                              "was changed.",
                              error.what()));
  }
}

bool IsOwn(Session& session, const StudyAreaKind::Ref& area) {
  return DirectoryOf(session).Holds(area->StudyAreaDir());
}

std::string StudyAreaKind::WhereOf(const Ref& area) {
  const std::string theirs = WorkingDirectoryOf(area->StudyAreaDir());
  return theirs.empty() ? "" : fmt::format(", in the working directory {}", theirs);
}

void StudyAreaKind::RequireChangeable(Session& session, const Ref& area) {
  if (session.GetAllowed().foreign || IsOwn(session, area)) return;
  const std::string ours = WithSeparator(DirectoryOf(session).Path());
  const std::string theirs = WorkingDirectoryOf(area->StudyAreaDir());
  throw Failure(
      ExitCode::kUnsafe,
      fmt::format(
          "The study area {} {}. Add --foreign to work with it all the same.", area->Name(),
          theirs.empty() || theirs == ours
              ? fmt::format("is not this project's own: its folder {} is not in the working "
                            "directory {}",
                            area->StudyAreaDir(), ours)
              : fmt::format("belongs to the working directory {}, not to this project", theirs)));
}

std::optional<Failure> CurrentAreaProblem(Session& session) {
  const std::string name = session.Component().CurrentStudyArea();
  if (name.empty()) return std::nullopt;
  const std::string guid = session.Component().CurrentStudyAreaGuid();
  const auto areas = StudyAreaKind::Collection(session);
  const auto area = areas->GetStudyArea(name);
  const std::string begin = fmt::format("The project works in the study area {}, ", name);
  const std::string end =
      "Open another one with 'kvdm area use NAME', or none with 'kvdm area use --none'.";
  if (area && (guid.empty() || guid == area->GUID())) {
    if (!guid.empty() || IsOwn(session, area)) return std::nullopt;
    return Failure(ExitCode::kUnsafe, fmt::format("{}which belongs to {}. {}", begin,
                                                  WorkingDirectoryOf(area->StudyAreaDir()), end));
  }
  StudyAreaKind::RequireList(session);
  const auto renamed = guid.empty() ? nullptr : areas->GetStudyAreaByGUID(guid);
  if (renamed) {
    return Failure(
        ExitCode::kNotFound,
        fmt::format("{0}which is named {1} by now. Open it with 'kvdm area use \"{1}\"', or "
                    "none with 'kvdm area use --none'.",
                    begin, renamed->Name()));
  }
  return Failure(ExitCode::kNotFound,
                 area ? fmt::format("{}which is no more: the one of that name in {} is another. {}",
                                    begin, area->StudyAreaDir(), end)
                      : fmt::format("{}which is not in the list of study areas: it was deleted or "
                                    "renamed. {}",
                                    begin, end));
}

void TellOfCurrentArea(Session& session) {
  if (const auto problem = CurrentAreaProblem(session)) {
    Output::Tell(fmt::format("kvdm: {}", problem->what()));
  }
}

void RequireCurrentArea(Session& session) {
  if (const auto problem = CurrentAreaProblem(session)) throw Failure(*problem);
}

}  // namespace kvdm
