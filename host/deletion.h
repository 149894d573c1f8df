// Deletion of items whose folders go with them.
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

// Moves an item's folder into the trash, deletes the item, and saves that: what stands in the way
// is a Failure, and the folder is in its place. The component then finds no folder to delete.
// Answers what became of both.
[[nodiscard]] std::string DeleteWithFolder(Session& session, const Deletion& deletion);

}  // namespace kvdm
