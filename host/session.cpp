#include "host/session.h"

#include <fmt/format.h>

#include <system_error>

#include "host/os.h"
#include "host/project_file.h"
#include "host/stored_project.h"
#include "safety/item_files.h"
#include "util/guard.h"
#include "util/registry_strings.h"

namespace kvdm {
namespace {

HostedComponent Start(const std::filesystem::path& file, const Project& project, Access access,
                      Output& out) {
  try {
    return HostedComponent(project, access, out);
  } catch (const Failure& failure) {
    FailToOpen(file, failure);
  }
}

std::string MetadataOf(const Project& project) { return DocumentsOf(project).at(kProjectDocument); }

// Failure kConflict when a state of the documents would leave the project without its working
// directory, as one from before the folder was moved would.
void RequireDirectory(const Documents& stored, const Documents& wanted) {
  const auto same = [&](const char* name) { return stored.at(name) == wanted.at(name); };
  if (same(kSettingsDocument) && same(kDrivesDocument)) return;
  const std::string folder = WorkingDirectoryIn(PropertiesIn(wanted.at(kSettingsDocument)));
  if (os::FindFolder(DrivesIn(wanted.at(kDrivesDocument)), folder)) return;
  throw Failure(
      ExitCode::kConflict,
      fmt::format("That would lead the project back to the working directory {}, which "
                  "is not there. Nothing was changed. Where the project's folder was moved, "
                  "'kvdm project move' moves it back.",
                  folder));
}

// None where there can't be one: then the registry can't be written either, which is the concern of
// those who need it.
std::shared_ptr<void> LockRegistry() {
  const auto file = RegistryLockFile();
  if (!file) return nullptr;
  try {
    os::CreateFolders(file->parent_path());
    static_cast<void>(os::TryLock(*file));
  } catch (const std::system_error&) {
    return nullptr;
  }
  return WaitForLock(*file, fmt::format("The list of study areas in {}", RegistryPlace()));
}

}  // namespace

ChangeLock::ChangeLock(const std::filesystem::path& project_file, Access access)
    : project_(WaitForLock(WithSuffix(project_file, ".lock"),
                           fmt::format("The project {}", os::ToText(project_file)))),
      registry_(access == Access::kChangeRegistry ? LockRegistry() : nullptr) {}

Session::Session(const std::filesystem::path& file, Access access, const Allowed& allowed,
                 Output& out)
    : file_(file),
      project_(ReadProjectFile(file_)),
      component_(Start(file_, project_, access, out)),
      allowed_(allowed) {
  if (component_.WorkingDirectoryWasThere() != false) return;
  const auto command = ProposedRebase(file_, project_);
  if (!command) return;
  component_.SetWayOut(
      fmt::format(" One that fits stands beside the project: '{}' takes it.", *command));
}

Session::~Session() {
  for (const auto& undo : undos_) guard::Skipping(nullptr, undo);
  component_.OnMadeFolder(nullptr);
}

Place Session::GetPlace() {
  return {file_, Manager().WorkingDirectory(), project_.drives, &component_.GetServices()};
}

void Session::Record(const std::vector<std::string>& command, std::vector<int>* recorded) {
  recording_ = std::make_unique<Recording>(GetPlace(), command, recorded);
  component_.OnMadeFolder([this](std::string_view folder) { recording_->Made(folder); });
}

int Session::CountIn(const std::string& list, const std::function<NameListRef()>& make,
                     const std::string& text) {
  const auto [known, is_new] = counts_.try_emplace(list);
  auto& counts = known->second;
  const NameListRef texts = is_new ? make() : nullptr;
  if (texts) {
    for (const Value& value : *texts) ++counts[value.IsNull() ? std::string() : ToText(value)];
  }
  const auto found = counts.find(text);
  return found == counts.end() ? 0 : found->second;
}

bool Session::Save() {
  const Project before = project_;
  component_.SaveTo(project_);
  if (recording_) recording_->NoteProject(before, project_);
  const bool written = Write();
  if (recording_) recording_->End();
  KeepItems(MetadataOf(before), MetadataOf(project_));
  return written;
}

bool Session::Write() {
  try {
    const bool written = WriteProjectFile(file_, project_);
    undos_.clear();
    is_saved_ = true;
    return written;
  } catch (const Unconfirmed&) {
    undos_.clear();
    if (recording_) recording_->End();
    throw;
  }
}

void Session::Store(const Documents& stored, const Documents& wanted,
                    const std::vector<Move>& moves, int undoes) {
  RequireDirectory(stored, wanted);
  recording_->Store(stored, wanted, moves, undoes);
  is_saved_ = true;
  KeepItems(stored.at(kProjectDocument), wanted.at(kProjectDocument));
}

// The recovery side-cars follow what was saved.
void Session::KeepItems(const std::string& before, const std::string& now) {
  const Services& services = component_.GetServices();
  const std::string catalogue = ToText(ReadRegistryString(
      *services.registry, RegistryRoot::kLocalMachine, kRegistryKey, kStudyAreaCollectionValue));
  ItemFiles(services.platform, Manager().WorkingDirectory(), os::ToText(file_.stem()))
      .Follow(before, now, catalogue);
}

}  // namespace kvdm
