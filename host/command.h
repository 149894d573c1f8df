// The commands of `kvdm`.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/output.h"
#include "host/session.h"
#include "safety/result.h"

namespace kvdm {

class Arguments;

// Global options of a command line.
struct Invocation {
  std::string project;  // as given with -p; "" for the one around
  Allowed allowed;
  Output& out;
  std::vector<std::string> words;        // the command line
  std::vector<int>* recorded = nullptr;  // gets the numbers of the changes that it makes
};

// One command. One that takes arguments declares them in its constructor, of an Arguments
// (host/arguments.h).
class Command {
 public:
  Command() = default;
  virtual ~Command() = default;
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;

  // Does the work. Throws Failure, or an error of the component.
  virtual void Execute(const Invocation& invocation) = 0;
};

// Confirmation: the question before something is done, and the items that it is about.
struct Question {
  std::string consequence;
  Record about;

  bool operator==(const Question&) const = default;
};

// A command on a project with the component started. It fails with kRefused, too, when the
// component showed a message while it ran.
class ProjectCommand : public Command {
 public:
  void Execute(const Invocation& invocation) final;

  // Whether the command, as it was called, changes anything. If so, it holds the ChangeLock, and
  // the project is saved when it succeeds, unless it saved it itself.
  [[nodiscard]] virtual bool Changes() const = 0;
  [[nodiscard]] Access Wanted() const;

  // Whether it needs nothing but the component, and so can run in a session that others have
  // changed.
  [[nodiscard]] virtual bool SharesSession() const { return false; }
  // Whether it leaves the names and identifiers of all items as they are.
  [[nodiscard]] virtual bool KeepsNames() const { return !Changes(); }
  // Does the work in a session of that access.
  void RunIn(Session& session, Output& out);

 private:
  // Whether a person is asked first, before the lock is taken. The work is done only if the
  // question is still the same under the lock.
  [[nodiscard]] virtual bool Asks() const { return false; }
  [[nodiscard]] virtual Question ToAsk(Session&) { return {}; }
  // Whether its changes are, or may be, to what all projects share: study areas and words.
  [[nodiscard]] virtual bool ChangesRegistry() const { return false; }
  // Whether folders that are deleted go to the trash.
  [[nodiscard]] virtual bool UsesTrash() const { return true; }
  // Whether it needs a working directory that the project may change.
  [[nodiscard]] virtual bool NeedsTenure() const { return true; }
  virtual void Run(Session& session, Output& out) = 0;

  // The question that was agreed to; nothing when none is asked.
  [[nodiscard]] std::optional<Question> Agreed(const std::filesystem::path& file,
                                               const Invocation& invocation);
};

// Opens a project and records what is changed, once what others left half done is settled.
// `needs_tenure` as ProjectCommand has it.
void StartChange(std::optional<Session>& session, const std::filesystem::path& file, Access access,
                 bool needs_tenure, const Invocation& invocation);

// Failure kRefused or kUnreadable for a project that can't be changed.
void RequireChangeable(const std::filesystem::path& file);

class ReadingCommand : public ProjectCommand {
  [[nodiscard]] bool Changes() const final { return false; }
};

class ChangingCommand : public ProjectCommand {
  [[nodiscard]] bool Changes() const final { return true; }
};

// A change that asks first, unless --yes is given.
class AskingCommand : public ProjectCommand {
 protected:
  explicit AskingCommand(Arguments arguments);

  [[nodiscard]] bool Asks() const override { return !yes_; }

 private:
  [[nodiscard]] bool Changes() const override { return true; }
  [[nodiscard]] Question ToAsk(Session& session) override = 0;

  bool yes_ = false;
};

// A deletion. The folders that go with it go to the trash, unless --no-trash is given. With
// --dry-run it changes nothing and shows what it would do.
class DeletingCommand : public AskingCommand {
 protected:
  explicit DeletingCommand(Arguments arguments);

  [[nodiscard]] bool IsDryRun() const { return dry_run_; }
  [[nodiscard]] bool Asks() const final { return !dry_run_ && AskingCommand::Asks(); }

 private:
  [[nodiscard]] bool Changes() const final { return !dry_run_; }
  [[nodiscard]] bool UsesTrash() const final { return !no_trash_; }

  bool dry_run_ = false;
  bool no_trash_ = false;
};

// Runs the command line `words`, the program's own name left out. Answers the exit status.
// Where memory runs out, here or before, the program ends at once with a sentence and status 1.
int RunCommandLine(const std::vector<std::string>& words);

}  // namespace kvdm
