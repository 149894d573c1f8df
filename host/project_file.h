// The file NAME.kvdm that holds a project, and the files beside it.
//
//   NAME.kvdm        the project
//   NAME.kvdm.bak    the project before the last change
//   NAME.kvdm.~1~    and before earlier ones
//   NAME.kvdm.lock   held while a command changes the project
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "host/project.h"
#include "safety/result.h"

namespace kvdm {

// The project file to work with: `given`, a file or the folder that has it, if it is not "", else
// what the environment variable KVDM_PROJECT names, else the one in the current folder or the
// nearest folder above that has one. Where one may be put in place at the moment, because its lock
// file is there, that is waited for. Of several in a folder it is the one that is named like the
// folder, which is said. Failure kNotFound when there is none, kConflict when none of several is
// named so, kRefused when another process keeps the lock.
[[nodiscard]] std::filesystem::path FindProjectFile(std::string_view given);

// Reads a project. Failure kNotFound or kUnreadable, with what can be done about it.
[[nodiscard]] Project ReadProjectFile(const std::filesystem::path& file);

// Fails as `failure` does, adding which project it is about and what can be done.
[[noreturn]] void FailToOpen(const std::filesystem::path& file, const Failure& failure);

// The project is saved, but a loss of power may bring back what was before.
class Unconfirmed : public Failure {
 public:
  explicit Unconfirmed(const std::filesystem::path& file);
};

// Writes a project unless the file has that very text: beside it, to the disk, read back, compared,
// and only then put in its place; the previous file is kept. True when it wrote. Failure kRefused
// when that can't be done; the project file then is what it was, unless the failure is Unconfirmed.
bool WriteProjectFile(const std::filesystem::path& file, const Project& project);

// Waits half a minute for the lock file `file`, which then holds off other processes as long as the
// result lives; its folder is made when it is missing. Failure kRefused, naming `what`, when
// another process keeps it.
[[nodiscard]] std::shared_ptr<void> WaitForLock(const std::filesystem::path& file,
                                                std::string_view what);

// `file` with `suffix` appended to its name.
[[nodiscard]] std::filesystem::path WithSuffix(const std::filesystem::path& file,
                                               std::string_view suffix);

}  // namespace kvdm
