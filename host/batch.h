// Commands one after another: those that can share one session, which is saved once for all.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/command_line.h"

namespace kvdm {

class Batch {
 public:
  // The project, what is allowed and where results go are those of the command that runs the
  // others, and changes are recorded as its.
  explicit Batch(const Invocation& invocation) : invocation_(invocation) {
    invocation_.recorded = &recorded_;
  }

  // Runs a command and prints its result; answers its exit status. One that fails after it has
  // changed something takes back what is not saved yet.
  int Run(const std::vector<std::string>& words);
  // Saves what the commands changed, and lets others work on the project. Failure kRefused.
  void Save();
  // Takes back what the commands changed, saved or not, as 'kvdm undo' does. Failure kConflict for
  // what others have changed since.
  void PutBack();

  // How many of the last commands were taken back by one that failed.
  [[nodiscard]] int TakenBack() const { return taken_back_; }

 private:
  int RunAlone(const CommandLine& line, const std::vector<std::string>& words);
  int RunShared(ProjectCommand& command, const std::string& path);
  // The session, with that access or more.
  Session& Open(Access access);
  void Close();
  [[nodiscard]] bool IsShared(const CommandLine& line) const;

  Invocation invocation_;
  std::filesystem::path file_;
  std::optional<ChangeLock> lock_;
  std::optional<Session> session_;
  Access access_ = Access::kRead;
  std::vector<int> recorded_;
  int unsaved_ = 0;
  int taken_back_ = 0;
};

}  // namespace kvdm
