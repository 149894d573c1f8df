// The program `kvdm`: its command line, and what becomes of errors.
#pragma once

#include <string>
#include <vector>

namespace kvdm {

// Runs the command line `arguments`, the program's own name left out. Answers the exit status.
// Where memory runs out, here or before, the program ends at once with a sentence and status 1.
int RunCommandLine(std::vector<std::string> arguments);

}  // namespace kvdm
