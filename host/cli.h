// The program `kvdm`: its command line, and what becomes of errors.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace kvdm {

// Runs the command line that `arguments` gives, the program's own name left out. Answers the exit
// status, also when memory runs out at any moment, `arguments` included.
int RunCommandLine(const std::function<std::vector<std::string>()>& arguments);

}  // namespace kvdm
