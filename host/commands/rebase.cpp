// kvdm project rebase and move: a project whose folders have another place.
#include <fmt/format.h>

#include <algorithm>
#include <system_error>

#include "host/commands/groups.h"
#include "host/items.h"
#include "host/os.h"
#include "host/ownership.h"
#include "host/project_file.h"
#include "host/stored_project.h"
#include "safety/adopt.h"
#include "safety/folders.h"
#include "safety/items.h"
#include "util/guard.h"

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

// What a rebase leads to: a project whose old folder is still there is a copy, and gets study areas
// and an identifier of its own.
struct Outcome {
  Rebase plan;
  std::vector<PathChange> copies;  // study areas, and where they are from
  std::vector<std::string> left;   // the names of those that have no folder at the new place
  Holdings result;
};

Outcome OutcomeOf(const StoredProject& project, Rebase plan, const PathPrefix& prefix) {
  const Platform& platform = project.GetPlatform();
  Adoption adoption = AdoptStaying(platform, plan, prefix);
  Outcome outcome{std::move(plan), {}, {}, std::move(adoption.result)};
  const PathPrefix back = prefix.Reversed();
  for (const PathChange& area : outcome.plan.staying) {
    const auto copy = std::ranges::find_if(adoption.found, [&](const Found& found) {
      return back.Replaced(found.item.element.Attribute("DIRNAME")) == area.before;
    });
    if (copy == adoption.found.end()) {
      outcome.left.push_back(area.item);
      continue;
    }
    const DocumentNode& element = copy->item.element;
    outcome.copies.push_back({"catalogue", ItemName(element), "DIRNAME", area.before,
                              element.Attribute("DIRNAME"), true});
  }
  const std::string directory = WorkingDirectoryIn(outcome.result.settings);
  const bool is_copy = directory != WorkingDirectoryIn(project.Stored().settings) &&
                       platform.files->FolderExists(project.WorkingDirectory() + "\\");
  if (is_copy) NewHolder(platform, outcome.result.state, project.File());
  return outcome;
}

// What becomes of the study areas whose folder is still at the old place, in sentences.
std::string Staying(const Outcome& outcome) {
  std::string sentences;
  for (const PathChange& copy : outcome.copies) {
    sentences += fmt::format(" The study area in {} is {} here, a copy.", copy.after, copy.item);
  }
  for (const std::string& name : outcome.left) {
    sentences += fmt::format(
        " The study area {} stays as before: its folder is at the old place "
        "alone.",
        name);
  }
  return sentences;
}

// Replaces the prefix in all that is stored, and in the side-cars.
std::size_t Store(StoredProject& project, const Outcome& outcome, const PathPrefix& prefix,
                  const Invocation& invocation) {
  project.Save(outcome.result, invocation);
  std::size_t count = outcome.plan.changes.size();
  for (const std::string& text : {outcome.result.metadata, outcome.result.catalogue}) {
    count += RebaseSidecars(project.GetPlatform(), text, prefix, true).size();
  }
  return count;
}

void PrintPlan(const Outcome& outcome, const std::vector<PathChange>& sidecars, Output& out) {
  std::vector<PathChange> all = outcome.plan.changes;
  all.insert(all.end(), outcome.copies.begin(), outcome.copies.end());
  all.insert(all.end(), sidecars.begin(), sidecars.end());
  out.Items(RowsOf(all), "Nothing would change.");
  const std::string staying = Staying(outcome);
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
    Rebase plan = PlanRebase(platform, project.Stored(), prefix, RebaseStage::kMoved);
    if (plan.changes.empty()) NothingToDo(prefix);
    RequireFound(plan, allow_missing_);
    const Outcome outcome = OutcomeOf(project, std::move(plan), prefix);
    if (dry_run_) {
      return PrintPlan(outcome, SidecarsOf(platform, outcome.result, prefix), invocation.out);
    }
    const std::size_t count = Store(project, outcome, prefix, invocation);
    invocation.out.Done({{"old", prefix.From()},
                         {"new", prefix.To()},
                         {"paths", static_cast<std::int64_t>(count)},
                         {"copies", static_cast<std::int64_t>(outcome.copies.size())},
                         {"staying", static_cast<std::int64_t>(outcome.left.size())}},
                        fmt::format("Changed {} from {} to {}.{}", Counted(count), prefix.From(),
                                    prefix.To(), Staying(outcome)));
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

  [[noreturn]] static void NothingToDo(const PathPrefix& prefix) {
    throw Failure(ExitCode::kNotFound,
                  fmt::format("Nothing of the project is below {}. 'kvdm status' shows its working "
                              "directory.",
                              prefix.From()));
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
    Check(file, to, invocation);
    lock.reset();  // An open file in it would keep the folder where it is.
    fs::current_path(from.parent_path());
    const MoveKind kind = Moved(from, to);
    try {
      Rebased(from, to / file.filename(), kind, invocation);
    } catch (const Unconfirmed&) {
      throw;
    } catch (const std::exception&) {
      BringBack(from, to, kind);
      throw;
    }
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
    PrintPlan({plan, {}, {}, {}},
              SidecarsOf(project.GetPlatform(), project.Stored(),
                         Prefix(project.GetPlatform(), file.parent_path(), to)),
              out);
  }

  // Fails before anything is moved for a project that can't be changed or rebased.
  static void Check(const fs::path& file, const fs::path& to, const Invocation& invocation) {
    StoredProject project(file, Access::kRead, invocation.out);
    project.RequireOwn(project.Stored(), invocation.allowed);
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

  static void Rebased(const fs::path& from, const fs::path& file, MoveKind kind,
                      const Invocation& invocation) {
    const ChangeLock lock(file, Access::kChangeRegistry);
    StoredProject project(file, Access::kChangeRegistry, invocation.out);
    const fs::path to = file.parent_path();
    const PathPrefix prefix = Prefix(project.GetPlatform(), from, to);
    Rebase plan = PlanRebase(project.GetPlatform(), project.Stored(), prefix, RebaseStage::kCopied);
    const Holdings result = plan.result;
    const std::size_t count = Store(project, {std::move(plan), {}, {}, result}, prefix, invocation);
    const std::string directory = WithSeparator(
        prefix.Replaced(project.WorkingDirectory()).value_or(project.WorkingDirectory()));
    std::string rest;
    if (kind == MoveKind::kCopied) rest = Removed(from);
    invocation.out.Done({{"project", os::ToText(file)},
                         {"working_directory", directory},
                         {"paths", static_cast<std::int64_t>(count)},
                         {"copied", kind == MoveKind::kCopied}},
                        fmt::format("Moved the project to {} and changed {} paths.{}",
                                    os::ToText(to), count, rest));
  }

  // What could not be stored leads to the folder where it was.
  static void BringBack(const fs::path& from, const fs::path& to, MoveKind kind) {
    guard::Skipping(nullptr,
                    [&] { kind == MoveKind::kCopied ? os::DeleteTree(to) : fs::rename(to, from); });
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
      "rebase", "Replace a folder in all paths, after it was moved or copied",
      "kvdm project rebase /old/Shops /new/Shops --dry-run\nkvdm project rebase D:\\Old E:\\New");
}

}  // namespace kvdm
