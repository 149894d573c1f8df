// The component as this build of the program has it.
#pragma once

#include <memory>

#include "tests/model/system.h"

namespace kvdm::differential {

// Empty drives and an empty registry of code page 1252. The current folder is "D:\".
[[nodiscard]] std::unique_ptr<model::System> MakeSystem();

}  // namespace kvdm::differential
