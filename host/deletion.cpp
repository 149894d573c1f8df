#include "host/deletion.h"

#include <fmt/format.h>

#include <system_error>

#include "host/items.h"
#include "host/os.h"
#include "safety/working_directory.h"

namespace kvdm {
namespace {

// Whether there is a folder; one that is found only without its last dots and blanks counts.
bool IsThere(const os::Drives& drives, const std::string& folder) try {
  return os::FindFolder(drives, folder).has_value();
} catch (const std::system_error& error) {
  throw Failure(ExitCode::kRefused,
                fmt::format("The folder {} can't be looked for: {}. Nothing was deleted.", folder,
                            error.code().message()));
}

// Of a path without a separator at its end the component deletes only a folder without folders in
// it.
void RequireWhole(const os::Drives& drives, const std::string& folder) {
  const bool closed = folder.ends_with('\\') || folder.ends_with('/');
  if (closed || os::FoldersIn(drives, folder, "").empty()) return;
  throw Failure(ExitCode::kUnsafe,
                fmt::format("The folder {} has folders in it, which would stay, so it can't go to "
                            "the trash as a whole. Nothing was deleted. Move them away, or add "
                            "--no-trash to delete its files for ever.",
                            folder));
}

}  // namespace

std::string DeleteWithFolder(Session& session, const Deletion& deletion) {
  const os::Drives& drives = session.GetProject().drives;
  const auto& [item, guid, folder, perform] = deletion;
  const bool was_there = IsThere(drives, folder);
  Recording& recording = session.GetRecording();
  if (was_there && recording.UsesTrash()) RequireWhole(drives, folder);
  const bool in_trash = was_there && recording.MoveAway(folder, guid);
  RequireDeleted(perform());
  session.Save();
  if (in_trash) {
    const bool is_inside =
        WorkingDirectory(drives, session.GetPlace().working_directory).Holds(folder);
    return fmt::format(
        "Deleted the {}. Its folder {} is in the trash: 'kvdm undo{}' brings both "
        "back.",
        item, folder, is_inside ? "" : " --outside");
  }
  if (!was_there) {
    return fmt::format("Deleted the {}. Its folder {} was not found, so no files were deleted.",
                       item, folder);
  }
  return fmt::format("Deleted the {}{}", item,
                     IsThere(drives, folder)
                         ? fmt::format(". Its folder {} is still there.", folder)
                         : fmt::format(" and its folder {}.", folder));
}

}  // namespace kvdm
