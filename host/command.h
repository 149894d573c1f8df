// The commands of `kvdm`.
#pragma once

#include <string>

#include "host/output.h"
#include "host/session.h"

namespace kvdm {

// What a command is called with, apart from its own arguments.
struct Invocation {
  std::string project;  // as given with -p; "" for the one around
  Output& out;
};

// One command. Its constructor takes an Arguments (host/arguments.h) and declares what it takes.
class Command {
 public:
  Command() = default;
  virtual ~Command() = default;
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;

  // Does the work. Throws Failure, or an error of the component.
  virtual void Execute(const Invocation& invocation) = 0;
};

// A command on a project with the component started. It fails with kRefused, too, when the
// component showed a message while it ran.
class ProjectCommand : public Command {
 public:
  void Execute(const Invocation& invocation) final;

 private:
  // Whether the command, as it was called, changes anything. If so, other processes are held off,
  // and the project is saved when it succeeds.
  [[nodiscard]] virtual bool Changes() const = 0;
  virtual void Run(Session& session, Output& out) = 0;
};

class ReadingCommand : public ProjectCommand {
  [[nodiscard]] bool Changes() const final { return false; }
};

class ChangingCommand : public ProjectCommand {
  [[nodiscard]] bool Changes() const final { return true; }
};

}  // namespace kvdm
