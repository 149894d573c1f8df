// Deletion of items whose folders go with them, and what deletions that were ended left behind.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/session.h"

namespace kvdm {

// An item that is to be deleted.
struct Deletion {
  std::string item;  // as sentences say it: "study area North"
  std::string guid;
  std::string folder;             // what the component is to delete with it, as it has the path
  std::function<bool()> perform;  // has the component delete both; whether it did so
};

// Deletes an item, saves that, and only then deletes its folder: what stands in the way before is a
// Failure, and the folder is in its place. Answers what became of both.
[[nodiscard]] std::string DeleteWithFolder(Session& session, const Deletion& deletion);

// Deletes an item as DeleteWithFolder does, without an answer. True when there was a folder that
// is gone now.
bool DeleteAndSave(Session& session, const Deletion& deletion);

// A folder that waits where the deletion of its item set it aside, because kvdm was ended before
// the deletion was done.
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
