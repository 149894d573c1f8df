// Folders of items that wait where their deletion set them aside, because kvdm was ended before the
// deletion was done.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "host/session.h"

namespace kvdm {

// The name of the place, beside a folder, where that waits until its deletion is saved:
//
//   .kvdm-deleted-1C0FFEE85A0B3D6E9F7A4C1288D1E6B7C0A9F3D20123abcd
//
// The first 8 digits stand for the project, the next 32 are the item's identifier, or 0, and the
// last 8 are chance. "-files" follows when only the files of the folder go, as for a path without a
// separator at its end.
[[nodiscard]] std::string NameOfPlace(const std::filesystem::path& project, std::string_view guid,
                                      std::string_view folder);

struct WaitingFolder {
  enum class Item { kListed, kGone, kOfOtherProject };

  std::string place;   // full paths
  std::string folder;  // where it was; "" when nothing waits in that place
  Item item = Item::kListed;
  bool only_files = false;
};

// Those beside the folders of the project's items. Failure when it can't be told which items are
// listed, std::system_error when a folder can't be looked at.
[[nodiscard]] std::vector<WaitingFolder> WaitingFolders(Session& session);

// Tells where folders wait, and what can be done.
void TellOfWaitingFolders(Session& session);

// Puts folders of listed items back in their place, deletes those whose items are gone, and tells
// so. What can't be done stays as it is.
void SettleWaitingFolders(Session& session);

}  // namespace kvdm
