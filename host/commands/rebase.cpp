// kvdm project rebase and move: a project whose folders have another place.
#include <fmt/format.h>

#include <system_error>

#include "host/commands/groups.h"
#include "host/os.h"
#include "host/project_file.h"
#include "host/stored_project.h"
#include "safety/folders.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

std::vector<Record> RowsOf(const std::vector<PathChange>& changes) {
  std::vector<Record> rows;
  for (const PathChange& change : changes) rows.push_back(ToRecord(change));
  return rows;
}

void RequireFound(const Rebase& plan, bool allow_missing) {
  const auto missing = plan.MissingFolders();
  if (missing.empty() || allow_missing) return;
  throw Failure(ExitCode::kNotFound,
                fmt::format("{} of the folders would not be there, such as {} of {}. Nothing was "
                            "changed. Bring them there, or add --allow-missing.",
                            missing.size(), missing.front().after, missing.front().item),
                RowsOf(missing));
}

// What stays with those whose folders are still there.
std::string Staying(const Rebase& plan) {
  if (plan.staying.empty()) return "";
  const std::size_t others = plan.staying.size() - 1;
  return fmt::format(
      " The study area {}{} as before: its folder is still at the old place. 'kvdm adopt' takes up "
      "those at the new place.",
      plan.staying.front().item, others == 0 ? " stays" : fmt::format(" and {} more stay", others));
}

// Replaces the prefix in all that is stored, and in the side-cars.
std::size_t Store(StoredProject& project, const Rebase& plan, const PathPrefix& prefix) {
  const auto& platform = project.GetPlatform();
  project.Save(plan.result, fmt::format("kvdm project rebase {} {}", Quoted(prefix.From()),
                                        Quoted(prefix.To())));
  std::size_t count = plan.changes.size();
  for (const std::string& text : {plan.result.metadata, plan.result.catalogue}) {
    count += RebaseSidecars(platform, text, prefix, true).size();
  }
  return count;
}

void PrintPlan(const Rebase& plan, std::vector<PathChange> sidecars, Output& out) {
  std::vector<PathChange> all = plan.changes;
  all.insert(all.end(), sidecars.begin(), sidecars.end());
  out.Items(RowsOf(all), "Nothing would change.");
  const std::string staying = Staying(plan);
  if (!staying.empty()) Output::Tell("kvdm:" + staying);
}

std::vector<PathChange> SidecarsOf(const Platform& platform, const Holdings& holdings,
                                   const PathPrefix& prefix) {
  auto changes = RebaseSidecars(platform, holdings.metadata, prefix, false);
  const auto more = RebaseSidecars(platform, holdings.catalogue, prefix, false);
  changes.insert(changes.end(), more.begin(), more.end());
  return changes;
}

class ProjectRebase : public Command {
 public:
  explicit ProjectRebase(Arguments arguments) {
    arguments.Required("OLD", old_, "The folder that paths begin with");
    arguments.Required("NEW", new_, "The folder that they are to begin with");
    arguments.Flag("--dry-run", dry_run_, "Show what would change, and change nothing");
    arguments.Flag("--allow-missing", allow_missing_,
                   "Go on when folders of items are not at the new place");
  }

  void Execute(const Invocation& invocation) override {
    const fs::path file = FindProjectFile(invocation.project);
    const Access access = dry_run_ ? Access::kRead : Access::kChangeRegistry;
    std::optional<ChangeLock> lock;
    if (!dry_run_) lock.emplace(file, access);
    StoredProject project(file, access, invocation.out);
    const Platform& platform = project.GetPlatform();
    const PathPrefix prefix(ComponentFolder(old_), ComponentFolder(new_), SamePlaceIn(platform));
    RequireFolder(platform, prefix.To());
    const Rebase plan = PlanRebase(platform, project.Stored(), prefix, RebaseStage::kMoved);
    if (plan.changes.empty()) NothingToDo(plan, prefix);
    RequireFound(plan, allow_missing_);
    if (dry_run_) {
      return PrintPlan(plan, SidecarsOf(platform, plan.result, prefix), invocation.out);
    }
    const std::size_t count = Store(project, plan, prefix);
    invocation.out.Done({{"old", prefix.From()},
                         {"new", prefix.To()},
                         {"paths", static_cast<std::int64_t>(count)},
                         {"staying", static_cast<std::int64_t>(plan.staying.size())}},
                        fmt::format("Changed {} from {} to {}.{}", Counted(count), prefix.From(),
                                    prefix.To(), Staying(plan)));
  }

 private:
  static std::string Counted(std::size_t count) {
    return count == 1 ? "1 path" : fmt::format("{} paths", count);
  }

  static void RequireFolder(const Platform& platform, const std::string& folder) {
    if (platform.files->FolderExists(folder + "\\")) return;
    throw Failure(ExitCode::kNotFound,
                  fmt::format("There is no folder {}. Nothing was changed.", folder));
  }

  [[noreturn]] static void NothingToDo(const Rebase& plan, const PathPrefix& prefix) {
    throw Failure(ExitCode::kNotFound,
                  fmt::format("Nothing of the project is below {}. 'kvdm status' shows its working "
                              "directory.{}",
                              prefix.From(), Staying(plan)));
  }

  std::string old_;
  std::string new_;
  bool dry_run_ = false;
  bool allow_missing_ = false;
};

class ProjectMove : public Command {
 public:
  explicit ProjectMove(Arguments arguments) {
    arguments.Required("NEWDIR", new_, "The new folder, which must not be there yet");
    arguments.Flag("--dry-run", dry_run_, "Show what would change, and change nothing");
  }

  void Execute(const Invocation& invocation) override {
    const fs::path file = FindProjectFile(invocation.project);
    const fs::path from = file.parent_path();
    fs::path to = os::Absolute(os::ToPath(new_));
    if (!to.has_filename()) to = to.parent_path();
    RequireMovable(file, to);
    if (dry_run_) return Plan(file, to, invocation.out);
    std::optional<ChangeLock> lock;
    lock.emplace(file, Access::kChangeRegistry);
    Check(file, to, invocation.out);
    lock.reset();  // An open file in it would keep the folder where it is.
    fs::current_path(from.parent_path());
    const MoveKind kind = Moved(from, to);
    lock.emplace(to / file.filename(), Access::kChangeRegistry);
    Rebased(from, to / file.filename(), kind, invocation.out);
  }

 private:
  static PathPrefix Prefix(const Platform& platform, const fs::path& from, const fs::path& to) {
    return {os::ComponentPath(from), os::ComponentPath(to), SamePlaceIn(platform)};
  }

  static void RequireMovable(const fs::path& file, const fs::path& to) {
    const fs::path from = file.parent_path();
    const std::string home = os::Environment("HOME");
    const bool is_wide = !from.has_relative_path() || (!home.empty() && from == fs::path(home));
    const auto inside = to.lexically_relative(from);
    const bool is_inside = !inside.empty() && *inside.begin() != "..";
    if (is_wide || is_inside) {
      throw Failure(ExitCode::kUnsafe,
                    fmt::format("The folder {} can't be moved to {}: it is a root or home folder, "
                                "or the new place is inside it. Move the files of the project by "
                                "hand and run 'kvdm project rebase'.",
                                os::ToText(from), os::ToText(to)));
    }
    if (os::Exists(to)) {
      throw Failure(ExitCode::kConflict, fmt::format("There is a {} already. Name a folder that is "
                                                     "not there yet.",
                                                     os::ToText(to)));
    }
    for (const fs::path& other : os::FilesIn(from)) {
      if (other.extension() != ".kvdm" || other.filename() == file.filename()) continue;
      throw Failure(ExitCode::kConflict,
                    fmt::format("The folder {} holds another project too, {}, which would lose its "
                                "files. Put that one elsewhere first.",
                                os::ToText(from), os::ToText(other.filename())));
    }
  }

  static Rebase Planned(StoredProject& project, const fs::path& to) {
    const fs::path from = project.File().parent_path();
    return PlanRebase(project.GetPlatform(), project.Stored(),
                      Prefix(project.GetPlatform(), from, to), RebaseStage::kBefore);
  }

  static void Plan(const fs::path& file, const fs::path& to, Output& out) {
    StoredProject project(file, Access::kRead, out);
    const Rebase plan = Planned(project, to);
    PrintPlan(plan,
              SidecarsOf(project.GetPlatform(), project.Stored(),
                         Prefix(project.GetPlatform(), file.parent_path(), to)),
              out);
  }

  // Fails before anything is moved for documents that can't be rebased.
  static void Check(const fs::path& file, const fs::path& to, Output& out) {
    StoredProject project(file, Access::kRead, out);
    static_cast<void>(Planned(project, to));
  }

  static MoveKind Moved(const fs::path& from, const fs::path& to) {
    try {
      os::CreateFolders(to.parent_path());
      return MoveOrCopyFolder(from, to);
    } catch (const std::system_error& error) {
      throw Failure(ExitCode::kRefused,
                    fmt::format("The folder {} can't be moved to {}: {}. It is where it was.",
                                os::ToText(from), os::ToText(to), error.code().message()));
    }
  }

  static void Rebased(const fs::path& from, const fs::path& file, MoveKind kind, Output& out) {
    StoredProject project(file, Access::kChangeRegistry, out);
    const fs::path to = file.parent_path();
    const PathPrefix prefix = Prefix(project.GetPlatform(), from, to);
    const Rebase plan =
        PlanRebase(project.GetPlatform(), project.Stored(), prefix, RebaseStage::kCopied);
    const std::size_t count = Store(project, plan, prefix);
    std::string rest;
    if (kind == MoveKind::kCopied) rest = Removed(from);
    out.Done({{"project", os::ToText(file)},
              {"working_directory", project.WorkingDirectory()},
              {"paths", static_cast<std::int64_t>(count)},
              {"copied", kind == MoveKind::kCopied}},
             fmt::format("Moved the project to {} and changed {} paths.{}", os::ToText(to), count,
                         rest));
  }

  // What is to say when the old folder, of which there is a copy, could not be removed.
  static std::string Removed(const fs::path& from) {
    std::error_code failed;
    fs::remove_all(from, failed);
    if (!failed) return "";
    return fmt::format(" The old folder {} could not be removed ({}): remove it yourself.",
                       os::ToText(from), failed.message());
  }

  std::string new_;
  bool dry_run_ = false;
};

}  // namespace

void AddProjectPlaces(const CommandGroup& project) {
  project.Add<ProjectMove>("move", "Move the project's folder and all paths with it",
                           "kvdm project move ../Shops2 --dry-run\nkvdm project move ../Shops2");
  project.Add<ProjectRebase>(
      "rebase", "Replace a folder in all paths, after it was moved",
      "kvdm project rebase /old/Shops /new/Shops --dry-run\nkvdm project rebase D:\\Old E:\\New");
}

}  // namespace kvdm
