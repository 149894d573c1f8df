// The program `kvdm`: its command line, and what becomes of errors.
#pragma once

#include <string>
#include <vector>

namespace kvdm {

// Runs the command line `arguments`, the program's own name left out. Answers the exit status.
int RunCommandLine(std::vector<std::string> arguments);

}  // namespace kvdm
