// What the exit status of `kvdm` tells its caller.
#pragma once

namespace kvdm {

enum class ExitCode : int {
  kDone = 0,
  kRefused = 1,       // the component, or the system around it, said no
  kUsage = 2,         // the command line can't be understood
  kNotFound = 3,      // no such project, item or file
  kConflict = 4,      // the name exists, or means several items
  kRuntimeError = 8,  // an operation of the component ended in a run-time error
  kUnreadable = 9,    // an input file can't be read or understood
};

}  // namespace kvdm
