#include "host/deletion.h"

#include <fmt/format.h>

#include "host/items.h"

namespace kvdm {
namespace {

// Undoes what was done to the folder, and says so where that fails.
void PutBack(SettingAsideFiles& files, const std::exception& why) {
  files.PutBack();
  if (files.Place().empty()) return;
  throw Failure(ExitCode::kRefused,
                fmt::format("{} The folder is in {} now and could not be put back.", why.what(),
                            files.Place()));
}

}  // namespace

bool DeleteAndSave(Session& session, const Deletion& deletion) {
  SettingAsideFiles& files = session.Component().Files();
  const bool was_there = files.FolderExists(deletion.folder);
  try {
    files.Expect(deletion.folder);
    RequireDeleted(deletion.perform());
    session.Save();
  } catch (const std::exception& why) {
    PutBack(files, why);
    throw;
  }
  files.Empty();
  return was_there && !files.FolderExists(deletion.folder);
}

std::string DeleteWithFolder(Session& session, const Deletion& deletion) {
  SettingAsideFiles& files = session.Component().Files();
  const auto& [item, folder, perform] = deletion;
  if (DeleteAndSave(session, deletion) && files.Place().empty()) {
    return fmt::format("Deleted the {} and its folder {}.", item, folder);
  }
  if (!files.Place().empty()) {
    return fmt::format("Deleted the {}. What is left of its folder {} is in {}.", item, folder,
                       files.Place());
  }
  if (!files.FolderExists(folder)) {
    return fmt::format("Deleted the {}. Its folder {} was not found, so no files were deleted.",
                       item, folder);
  }
  return fmt::format("Deleted the {}. Its folder {} is still there.", item, folder);
}

}  // namespace kvdm
