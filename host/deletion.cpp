#include "host/deletion.h"

#include <fmt/format.h>

#include <system_error>

#include "host/items.h"
#include "host/waiting_folders.h"

namespace kvdm {
namespace {

void Expect(Session& session, const Deletion& deletion) {
  const auto& [item, guid, folder, perform] = deletion;
  try {
    session.Component().Files().Expect(folder, NameOfPlace(session.File(), guid, folder));
  } catch (const std::system_error& error) {
    throw Failure(ExitCode::kRefused,
                  fmt::format("The folder {} can't be looked for: {}. Nothing was deleted.", folder,
                              error.code().message()));
  }
}

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
  Expect(session, deletion);
  try {
    RequireDeleted(deletion.perform());
    session.Save();
  } catch (const std::exception& why) {
    PutBack(files, why);
    throw;
  }
  return files.Empty();
}

std::string DeleteWithFolder(Session& session, const Deletion& deletion) {
  SettingAsideFiles& files = session.Component().Files();
  const auto& [item, guid, folder, perform] = deletion;
  if (DeleteAndSave(session, deletion)) {
    return fmt::format("Deleted the {} and its folder {}.", item, folder);
  }
  if (!files.Place().empty()) {
    return fmt::format("Deleted the {}. What is left of its folder {} is in {}.", item, folder,
                       files.Place());
  }
  if (!files.WasThere()) {
    return fmt::format("Deleted the {}. Its folder {} was not found, so no files were deleted.",
                       item, folder);
  }
  return fmt::format("Deleted the {}. Its folder {} is still there.", item, folder);
}

}  // namespace kvdm
