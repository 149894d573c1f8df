#include "host/project_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <system_error>
#include <thread>
#include <vector>

#include "host/os.h"
#include "host/output.h"
#include "safety/backups.h"
#include "util/guard.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

// Many programs at once on a busy machine each take their turn.
constexpr std::chrono::seconds kLockPatience{30};
constexpr std::chrono::milliseconds kLockPause{20};

constexpr char kSuffix[] = ".kvdm";
constexpr char kLockSuffix[] = ".lock";

// Tries for a while; nothing when another process keeps the lock.
std::shared_ptr<void> LockPatiently(const fs::path& file) {
  const auto deadline = std::chrono::steady_clock::now() + kLockPatience;
  while (std::chrono::steady_clock::now() < deadline) {
    if (auto lock = os::TryLock(file)) return lock;
    std::this_thread::sleep_for(kLockPause);
  }
  return nullptr;
}

[[noreturn]] void BeingChanged(std::string_view what) {
  throw Failure(ExitCode::kRefused, fmt::format("{} is being changed by another kvdm. Try again "
                                                "when that one is done.",
                                                what));
}

// Calls `look` under the lock of `project`.
template <class Look>
auto LookUndisturbed(const fs::path& project, Look look) {
  std::shared_ptr<void> lock;
  try {
    lock = LockPatiently(WithSuffix(project, kLockSuffix));
  } catch (const std::system_error&) {
    return look();  // Nobody can hold what can't be opened for locking.
  }
  if (!lock) BeingChanged(fmt::format("The project {}", os::ToText(project)));
  return look();
}

// The files in a folder whose names end in `suffix`, each once, however often a folder that is
// being changed lists it.
std::vector<fs::path> FilesEnding(const fs::path& folder, const fs::path& suffix) {
  auto files = os::FilesIn(folder);
  std::erase_if(files, [&](const fs::path& file) {
    const fs::path name = file.filename();
    return name == suffix || !name.native().ends_with(suffix.native());
  });
  std::sort(files.begin(), files.end());
  files.erase(std::unique(files.begin(), files.end()), files.end());
  return files;
}

// The projects in a folder. A look at the moment when another kvdm puts a project in place may find
// none; then the lock that it holds is beside.
std::vector<fs::path> ProjectsIn(const fs::path& folder) try {
  const auto projects = [&] { return FilesEnding(folder, kSuffix); };
  auto found = projects();
  for (fs::path lock : FilesEnding(folder, std::string(kSuffix) + kLockSuffix)) {
    if (!found.empty()) break;
    found = LookUndisturbed(lock.replace_extension(), projects);
  }
  return found;
} catch (const std::system_error& error) {
  throw Failure(ExitCode::kUnreadable,
                fmt::format("The folder {} can't be read ({}), so that nobody can tell whether a "
                            "project is in it. Name the project with -p FILE.",
                            os::ToText(folder), error.code().message()));
}

// Of several projects in a folder the one that is named like it: the others are copies of it, as
// people make them.
fs::path ChosenOf(const std::vector<fs::path>& projects, const fs::path& folder) {
  const auto named = std::ranges::find(projects, folder.filename(), &fs::path::stem);
  if (named != projects.end()) {
    Output::Tell(
        fmt::format("kvdm: This folder holds {} projects. This is about {}, which is named "
                    "like the folder; -p FILE names another one.",
                    projects.size(), os::ToText(named->filename())));
    return *named;
  }
  std::vector<Record> candidates;
  for (const fs::path& project : projects) {
    candidates.push_back({{"project", os::ToText(project)}});
  }
  throw Failure(ExitCode::kConflict, "This folder holds several projects. Choose one with -p FILE.",
                std::move(candidates));
}

// Where a project is. A link is followed here, so that saving replaces the project and not the link
// to it.
fs::path Located(const fs::path& project) {
  const auto locate = [&] { return os::Canonical(project); };
  try {
    return locate();
  } catch (const std::system_error&) {
    if (!os::Exists(WithSuffix(project, kLockSuffix))) throw;
  }
  return LookUndisturbed(project, locate);
}

fs::path ProjectInFolder(const fs::path& folder) {
  const auto projects = ProjectsIn(folder);
  if (projects.size() > 1) return Located(ChosenOf(projects, folder));
  if (projects.size() == 1) return Located(projects.front());
  throw Failure(ExitCode::kNotFound,
                fmt::format("There is no project in the folder {}.", os::ToText(folder)));
}

fs::path GivenProjectFile(std::string_view given) {
  const fs::path path = os::ToPath(given);
  try {
    return fs::is_directory(path) ? ProjectInFolder(path) : Located(path);
  } catch (const std::system_error& error) {
    const std::string cause = error.code().message();
    if (error.code() == std::errc::no_such_file_or_directory ||
        error.code() == std::errc::not_a_directory) {
      throw Failure(ExitCode::kNotFound, fmt::format("There is no project {} ({}).", given, cause));
    }
    throw Failure(ExitCode::kUnreadable,
                  fmt::format("The project {} can't be reached: {}.", given, cause));
  }
}

// Advice about a project file that can't be used.
std::string Advice(const fs::path& file) {
  const fs::path previous = WithSuffix(file, ".bak");
  if (!guard::Quiet(nullptr, [&] { return os::Exists(previous); }))
    return "Restore it from a backup.";
  return fmt::format(
      "The state before the last change is in {}: copy that file over {} to return "
      "to it.",
      os::ToText(previous), os::ToText(file));
}

Failure TooLarge() {
  return {ExitCode::kUnreadable,
          fmt::format("It has more than the {} bytes that a project can have.", kMaxProjectBytes)};
}

}  // namespace

fs::path WithSuffix(const fs::path& file, std::string_view suffix) {
  fs::path path = file;
  path += suffix;
  return path;
}

fs::path FindProjectFile(std::string_view given) {
  const std::string named = given.empty() ? os::Environment("KVDM_PROJECT") : std::string(given);
  if (!named.empty()) return GivenProjectFile(named);
  fs::path folder = fs::current_path();
  for (;;) {
    const auto projects = ProjectsIn(folder);
    if (projects.size() > 1) return Located(ChosenOf(projects, folder));
    if (projects.size() == 1) return Located(projects.front());
    if (folder == folder.parent_path()) break;
    folder = folder.parent_path();
  }
  throw Failure(ExitCode::kNotFound,
                "There is no project here or in a folder above. Run 'kvdm init' to make one, or "
                "name one with -p FILE.");
}

Project ReadProjectFile(const fs::path& file) {
  try {
    return ParseProject(os::ReadBytes(file, kMaxProjectBytes));
  } catch (const std::system_error& error) {
    if (error.code() == std::errc::file_too_large) FailToOpen(file, TooLarge());
    throw Failure(ExitCode::kUnreadable, fmt::format("The project {} can't be read: {}.",
                                                     os::ToText(file), error.code().message()));
  } catch (const Failure& failure) {
    FailToOpen(file, failure);
  }
}

void FailToOpen(const fs::path& file, const Failure& failure) {
  throw Failure(failure.code(), fmt::format("The project {} can't be opened. {} {}",
                                            os::ToText(file), failure.what(), Advice(file)));
}

Unconfirmed::Unconfirmed(const fs::path& file)
    : Failure(ExitCode::kRefused,
              fmt::format("The project {} is saved, but its disk did not confirm that: a loss of "
                          "power may bring back what was before. Look after the disk.",
                          os::ToText(file))) {}

bool WriteProjectFile(const fs::path& file, const Project& project) {
  const std::string text = ProjectText(project);
  if (text.size() > kMaxProjectBytes) {
    throw Failure(ExitCode::kRefused, fmt::format("The project {} would have more than the {} "
                                                  "bytes that a project can have. It is what it "
                                                  "was before.",
                                                  os::ToText(file), kMaxProjectBytes));
  }
  try {
    const std::string old = os::Exists(file) ? os::ReadBytes(file, kMaxProjectBytes) : "";
    if (old == text) return false;
    const bool is_confirmed = os::Replace(file, text, WithSuffix(file, ".bak"));
    if (!old.empty()) guard::Skipping(nullptr, [&] { Backups(file).Keep(old); });
    if (is_confirmed) return true;
  } catch (const std::system_error& error) {
    throw Failure(ExitCode::kRefused,
                  fmt::format("The project {} can't be saved: {}. It is what it was before.",
                              os::ToText(file), error.what()));
  }
  throw Unconfirmed(file);
}

std::shared_ptr<void> WaitForLock(const fs::path& file, std::string_view what) {
  try {
    os::CreateFolders(file.parent_path());
    if (auto lock = LockPatiently(file)) return lock;
  } catch (const std::system_error& error) {
    throw Failure(ExitCode::kRefused, fmt::format("{} can't be changed: {}.", what, error.what()));
  }
  BeingChanged(what);
}

}  // namespace kvdm
