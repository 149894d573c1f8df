#include "host/project_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <system_error>
#include <thread>
#include <vector>

#include "host/os.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::seconds kLockPatience{5};
constexpr std::chrono::milliseconds kLockPause{20};

std::vector<fs::path> ProjectsIn(const fs::path& folder) {
  auto files = os::FilesIn(folder);
  std::erase_if(files, [](const fs::path& file) { return file.extension() != ".kvdm"; });
  std::sort(files.begin(), files.end());
  return files;
}

[[noreturn]] void SeveralProjects(const std::vector<fs::path>& projects) {
  std::vector<Record> candidates;
  for (const fs::path& project : projects) {
    candidates.push_back({{"project", os::ToText(project)}});
  }
  throw Failure(ExitCode::kConflict, "This folder holds several projects. Choose one with -p FILE.",
                std::move(candidates));
}

fs::path GivenProjectFile(std::string_view given) {
  try {
    // A link is followed here, so that saving replaces the project and not the link to it.
    return os::Canonical(os::ToPath(given));
  } catch (const std::system_error& error) {
    throw Failure(ExitCode::kNotFound,
                  fmt::format("There is no project {} ({}).", given, error.code().message()));
  }
}

// What to do about a project file that can't be used.
std::string WayOut(const fs::path& file) {
  const fs::path previous = Beside(file, ".bak");
  if (!os::Exists(previous)) return "Restore it from a backup.";
  return fmt::format(
      "The state before the last change is in {}: copy that file over {} to return "
      "to it.",
      os::ToText(previous), os::ToText(file));
}

void Replace(const fs::path& file, const std::string& text, bool replaces) {
  const fs::path temporary = Beside(file, ".tmp");
  os::WriteBytes(temporary, text);
  if (os::ReadBytes(temporary) != text) {
    throw std::system_error(std::make_error_code(std::errc::io_error), os::ToText(temporary));
  }
  if (replaces) os::KeepAs(file, Beside(file, ".bak"));
  os::PutInPlace(temporary, file);
}

}  // namespace

fs::path Beside(const fs::path& file, std::string_view suffix) {
  fs::path beside = file;
  beside += suffix;
  return beside;
}

fs::path FindProjectFile(std::string_view given) {
  if (!given.empty()) return GivenProjectFile(given);
  fs::path folder = fs::current_path();
  for (;;) {
    const auto projects = ProjectsIn(folder);
    if (projects.size() > 1) SeveralProjects(projects);
    if (projects.size() == 1) return os::Canonical(projects.front());
    if (folder == folder.parent_path()) break;
    folder = folder.parent_path();
  }
  throw Failure(ExitCode::kNotFound,
                "There is no project here or in a folder above. Run 'kvdm init' to make one, or "
                "name one with -p FILE.");
}

Project ReadProjectFile(const fs::path& file) {
  try {
    return ParseProject(os::ReadBytes(file));
  } catch (const std::system_error& error) {
    throw Failure(ExitCode::kUnreadable, fmt::format("The project {} can't be read: {}.",
                                                     os::ToText(file), error.code().message()));
  } catch (const Failure& failure) {
    FailToOpen(file, failure);
  }
}

void FailToOpen(const fs::path& file, const Failure& failure) {
  throw Failure(failure.code(), fmt::format("The project {} can't be opened. {} {}",
                                            os::ToText(file), failure.what(), WayOut(file)));
}

bool WriteProjectFile(const fs::path& file, const Project& project) {
  const std::string text = ProjectText(project);
  try {
    const bool replaces = os::Exists(file);
    if (replaces && os::ReadBytes(file) == text) return false;
    Replace(file, text, replaces);
    return true;
  } catch (const std::system_error& error) {
    throw Failure(ExitCode::kRefused,
                  fmt::format("The project {} can't be saved: {}. It is what it was before.",
                              os::ToText(file), error.what()));
  }
}

std::shared_ptr<void> WaitForLock(const fs::path& file, std::string_view what) {
  try {
    os::CreateFolders(file.parent_path());
    const auto deadline = std::chrono::steady_clock::now() + kLockPatience;
    while (std::chrono::steady_clock::now() < deadline) {
      if (auto lock = os::TryLock(file)) return lock;
      std::this_thread::sleep_for(kLockPause);
    }
  } catch (const std::system_error& error) {
    throw Failure(ExitCode::kRefused, fmt::format("{} can't be changed: {}.", what, error.what()));
  }
  throw Failure(ExitCode::kRefused, fmt::format("{} is being changed by another kvdm. Try again "
                                                "when that one is done.",
                                                what));
}

}  // namespace kvdm
