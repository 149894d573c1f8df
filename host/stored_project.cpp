#include "host/stored_project.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <system_error>
#include <utility>

#include "host/items.h"
#include "host/os.h"
#include "host/ownership.h"
#include "host/project_file.h"
#include "safety/item_files.h"
#include "util/guard.h"
#include "util/names.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

std::string WithoutEnd(std::string path) {
  while (path.ends_with('\\') || path.ends_with('/')) path.pop_back();
  return path;
}

struct Parts {
  std::string above;
  std::string name;
};

Parts SplitLast(const std::string& path) {
  const auto separator = path.find_last_of("\\/");
  if (separator == path.npos) return {"", path};
  return {path.substr(0, separator), path.substr(separator + 1)};
}

// Whether a folder looks like a working directory.
bool IsWorkingDirectory(const os::Drives& drives, const std::string& folder) {
  return std::ranges::any_of(
      std::to_array({sDefaultDirNames::kCustLayers, sDefaultDirNames::kStoreLayers,
                     sDefaultDirNames::kStudyAreas, sDefaultDirNames::kAnalyses}),
      [&](const char* name) { return os::FindFolder(drives, folder + "\\" + name).has_value(); });
}

std::string DirectoryIn(const PropertySetMap::Properties& settings) {
  return WithoutEnd(WorkingDirectoryIn(settings));
}

// Takes back what Store recorded of the owner.
void PutBack(const fs::path& directory, const std::optional<Owner>& owner) {
  guard::Skipping(nullptr, [&] { owner ? WriteOwner(directory, *owner) : RemoveOwner(directory); });
}

}  // namespace

StoredProject::StoredProject(fs::path file, Access access, Output& out)
    : file_(std::move(file)),
      documents_(DocumentsOf(ReadProjectFile(file_))),
      drives_(DrivesIn(documents_.at(kDrivesDocument))),
      services_(MakeServices(drives_, access, out)) {
  if (access != Access::kChange) documents_ = StoredDocuments(file_, *services_.registry);
  stored_ = HoldingsIn(documents_);
  out.UseDrives(drives_);
}

std::string StoredProject::WorkingDirectory() const { return DirectoryIn(stored_.settings); }

void StoredProject::RequireOwn(const Holdings& wanted, const Allowed& allowed) const {
  if (allowed.outside) return;
  RequireNobodys({drives_, DirectoryIn(wanted.settings)}, HolderIn(wanted.state, file_));
}

void StoredProject::Save(const Holdings& wanted, const Invocation& invocation) {
  RequireOwn(wanted, invocation.allowed);
  const std::string folder = DirectoryIn(wanted.settings);
  const fs::path place = kvdm::WorkingDirectory(drives_, folder).Place();
  if (!os::FindFolder(drives_, folder)) return Store(With(documents_, wanted), "", invocation);
  const Holder holder = HolderIn(wanted.state, file_);
  const auto owner = ReadOwner(place);
  const Tenure tenure = TenureOf(place, owner, holder);
  const bool becomes_owner = tenure != Tenure::kShared && !holder.id.empty();
  if (becomes_owner) RecordOwner(place, holder);
  try {
    Store(With(documents_, wanted), folder, invocation);
  } catch (const Unconfirmed&) {
    throw;
  } catch (const std::exception&) {
    if (becomes_owner) PutBack(place, owner);
    throw;
  }
  ItemFiles(services_.platform, folder, os::ToText(file_.stem()))
      .Follow("", wanted.metadata, wanted.catalogue);
}

void StoredProject::SaveDrives(const os::Drives& drives, const Invocation& invocation) {
  Documents wanted = documents_;
  wanted[kDrivesDocument] = DrivesText(drives);
  drives_ = drives;
  const bool is_there = os::FindFolder(drives, WorkingDirectory()).has_value();
  Store(wanted, is_there ? WorkingDirectory() : "", invocation);
}

void StoredProject::Store(const Documents& wanted, const std::string& directory,
                          const Invocation& invocation) {
  if (directory.empty()) {
    return StoreDocuments(file_, services_.platform, documents_, wanted);
  }
  Recording recording({file_, WithSeparator(directory), drives_, &services_}, invocation.words,
                      invocation.recorded);
  if (recording.Recover(invocation.allowed.outside)) {
    throw Failure(ExitCode::kBusy,
                  "What was interrupted before is settled now. Run the command again.");
  }
  recording.Store(documents_, wanted, {});
}

std::string ComponentFolder(const std::string& given) {
  const bool names_drive = given.size() > 1 && given[1] == ':' &&
                           std::isalpha(static_cast<unsigned char>(given[0])) != 0;
  const fs::path path = os::ToPath(given);
  if (names_drive && !path.has_root_name()) return WithoutEnd(given);
  return WithoutEnd(os::ComponentPath(os::Absolute(path)));
}

std::string Quoted(std::string_view path) {
  const bool has_drives = fs::path("D:\\").has_root_name();
  const std::string native = os::NativePath(path);
  const std::string_view plain = has_drives ? "\\:._-" : "/._-";
  const auto is_plain = [&](unsigned char character) {
    return std::isalnum(character) != 0 || plain.find(static_cast<char>(character)) != plain.npos;
  };
  if (std::ranges::all_of(native, is_plain)) return native;
  return has_drives ? fmt::format("\"{}\"", native) : fmt::format("'{}'", native);
}

std::optional<std::string> ProposedRebase(const fs::path& file, const Project& project) {
  const std::string gone = DirectoryIn(project.settings);
  const auto [above, name] = SplitLast(gone);
  const std::string beside = os::ComponentPath(file.parent_path());
  const std::string candidate = beside + "\\" + name;
  try {
    if (above.empty() || os::FindFolder(project.drives, gone) ||
        !IsWorkingDirectory(project.drives, candidate)) {
      return std::nullopt;
    }
    // The whole folder of the project was moved, unless the old one is still there.
    const bool is_whole = !os::FindFolder(project.drives, above);
    return fmt::format("kvdm project rebase {} {}", Quoted(is_whole ? above : gone),
                       Quoted(is_whole ? beside : candidate));
  } catch (const std::system_error&) {
    return std::nullopt;
  }
}

}  // namespace kvdm
