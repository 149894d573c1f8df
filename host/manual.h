// The manual page and the completions for shells, made from what the command line takes.
#pragma once

#include <string>

#include "host/command_tree.h"

namespace kvdm {

// The page kvdm(1) in roff.
[[nodiscard]] std::string ManualPage(const CommandNode& root);

// The parts of that page that differ from system to system: the entries of FILES for the registry,
// and those of ENVIRONMENT.
struct SystemManual {
  const char* registry;
  const char* environment;
};
[[nodiscard]] SystemManual ThisSystemsManual();

// Scripts that complete commands, groups and options; elsewhere the shells complete files.
[[nodiscard]] std::string BashCompletion(const CommandNode& root);
[[nodiscard]] std::string ZshCompletion(const CommandNode& root);
[[nodiscard]] std::string FishCompletion(const CommandNode& root);

}  // namespace kvdm
