#include "host/checked_project.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <optional>

#include "host/items.h"
#include "host/os.h"
#include "host/ownership.h"
#include "host/project_file.h"
#include "platform/portable/catalogue_update.h"
#include "util/names.h"
#include "util/registry_strings.h"

namespace kvdm {
namespace {

constexpr bool kMarksFolders = std::filesystem::path::preferred_separator == '/';

// What a project file holds, or why it can't be read.
struct ReadAttempt {
  std::optional<Project> project;
  std::string problem;
};

ReadAttempt TryToRead(const std::filesystem::path& file) {
  try {
    return {ReadProjectFile(file), ""};
  } catch (const Failure& failure) {
    return {std::nullopt, failure.what()};
  }
}

Holdings HoldingsOf(const Project& project) {
  return {DocumentsOf(project)[kProjectDocument], project.settings, project.state, ""};
}

Project ProjectIn(const std::filesystem::path& file) {
  auto attempt = TryToRead(file);
  if (attempt.project) return std::move(*attempt.project);
  return TryToRead(WithSuffix(file, ".bak")).project.value_or(Project());
}

}  // namespace

CheckedProject::CheckedProject(std::filesystem::path file, Access access, Output& out)
    : file_(std::move(file)),
      project_(ProjectIn(file_)),
      services_(MakeServices(project_.drives, access, out)) {
  subject_.platform = services_.platform;
  subject_.place = os::ComponentPath(file_.parent_path());
  subject_.registry = RegistryPlace();
  subject_.is_read_only = [drives = project_.drives](const std::string& path) {
    const auto place = os::NativePlace(drives, path);
    // A folder that is marked so on Windows can be written all the same.
    const bool counts = place && (kMarksFolders || !std::filesystem::is_directory(*place));
    return counts && os::IsReadOnly(*place);
  };
  ReadProject();
  ReadCatalogue();
  ReadOwnership();
}

void CheckedProject::ReadProject() {
  const auto stored = TryToRead(file_);
  const auto previous = TryToRead(WithSuffix(file_, ".bak"));
  subject_.problem = stored.problem;
  if (stored.project) subject_.stored = HoldingsOf(*stored.project);
  if (previous.project) subject_.previous = HoldingsOf(*previous.project);
}

void CheckedProject::ReadCatalogue() {
  Registry& registry = *services_.registry;
  const auto root = RegistryRoot::kLocalMachine;
  try {
    const auto stored = registry.Read(root, kRegistryKey, kStudyAreaCollectionValue);
    if (stored) subject_.stored.catalogue = UpToNul(stored->data);
    const auto presets = registry.Read(root, kRegistryKey, kPresetDataDirectoryValue);
    if (presets) subject_.preset_folder = UpToNul(presets->data);
    subject_.kept = registry.Kept(root, kRegistryKey, kStudyAreaCollectionValue);
  } catch (const RuntimeError&) {
    subject_.has_catalogue = false;  // The condition says why.
  }
  subject_.condition = services_.registry->Unread().value_or(registry.Condition());
}

void CheckedProject::ReadOwnership() {
  if (!subject_.problem.empty()) return;
  const auto directory = DirectoryOf(project_).Place();
  try {
    const auto owner = ReadOwner(directory);
    if (TenureOf(directory, owner, HolderOf(file_, project_)) != Tenure::kForeign) return;
    subject_.other_owner = os::ToText(ProjectOf(directory, *owner));
  } catch (const std::exception& error) {
    subject_.owner_problem = error.what();
  }
}

std::string CheckedProject::TenureProblem() const {
  if (!subject_.problem.empty()) return "";
  return kvdm::TenureProblem(DirectoryOf(project_), HolderOf(file_, project_));
}

Place CheckedProject::GetPlace() const {
  const std::string directory = DirectoryOf(project_).Path();
  return {file_, WithSeparator(directory), project_.drives, &services_};
}

void CheckedProject::Recover(const std::vector<std::string>& command, bool outside) {
  if (!subject_.problem.empty() || !subject_.has_catalogue) return;
  Recording(GetPlace(), command).Recover(outside);
}

Documents CheckedProject::DocumentsIn(const Holdings& holdings) const {
  Documents documents = {{kProjectDocument, holdings.metadata},
                         {kSettingsDocument, PropertiesText(holdings.settings)},
                         {kStateDocument, PropertiesText(holdings.state)},
                         {kDrivesDocument, DrivesText(project_.drives)}};
  if (subject_.has_catalogue) documents[kCatalogueDocument] = holdings.catalogue;
  return documents;
}

void CheckedProject::Store(const Repair& repair, const std::vector<std::string>& command) {
  if (!subject_.problem.empty()) {
    Project project = project_;
    PutInto(project, DocumentsIn(repair.wanted));
    WriteProjectFile(file_, project);
    return;
  }
  Recording recording(GetPlace(), command);
  MakeFolders(services_.platform, repair);
  for (const std::string& folder : repair.folders) recording.Made(folder);
  std::vector<Move> moves;
  for (const std::string& folder : repair.trashed) {
    std::ranges::move(GetPlace().GetTrash().Plan(folder, ""), std::back_inserter(moves));
  }
  recording.Store(DocumentsIn(subject_.stored), DocumentsIn(repair.wanted), moves);
  ChangeIdentities(services_.platform, repair);
}

}  // namespace kvdm
