// Deleting items whose folders go with them.
#pragma once

#include <functional>
#include <string>

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

}  // namespace kvdm
