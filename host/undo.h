// Taking back a change: its inverse, applied to what is stored now.
#pragma once

#include <vector>

#include "host/session.h"
#include "safety/result.h"

namespace kvdm {

struct Undone {
  ChangeRecord record;       // what was taken back
  std::vector<Record> left;  // what is not as it left it, and so was not touched
};

// The number of the last change of this person in this project that is not undone. Failure
// kNotFound when there is none.
[[nodiscard]] int LastChange(Session& session);

// Takes back a change, as a change of its own. Elements that are no longer as it left them stay as
// they are, and so do their folders. Failure kNotFound for a number that there is not, kConflict
// when nothing could be taken back or something is in the place of a folder.
Undone Undo(Session& session, int number);

}  // namespace kvdm
