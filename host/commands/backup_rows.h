// Numbers on the command line, and the backups that they name.
#pragma once

#include <string>
#include <vector>

#include "safety/backups.h"
#include "safety/result.h"

namespace kvdm {

// A whole number from 1. Failure kUsage for another text.
[[nodiscard]] int NumberIn(const std::string& text);

// The states of a file, for a list.
[[nodiscard]] std::vector<Record> RowsOf(const Backups& backups);

}  // namespace kvdm
