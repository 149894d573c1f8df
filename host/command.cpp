#include "host/command.h"

#include <fmt/format.h>

#include <tuple>

#include "host/arguments.h"
#include "host/items.h"
#include "host/os.h"
#include "host/ownership.h"
#include "host/project_file.h"
#include "host/waiting_folders.h"

namespace kvdm {
namespace {

// Runs `body`; a message shown meanwhile means that the component did not do what was asked.
template <class Body>
void RefusedByMessage(const Output& out, Body&& body) {
  const std::size_t shown = out.Messages().size();
  body();
  if (out.Messages().size() == shown) return;
  throw Failure(ExitCode::kRefused,
                fmt::format("The component reported: {}", out.Messages().back()));
}

}  // namespace

Access ProjectCommand::Wanted() const {
  if (!Changes()) return Access::kRead;
  return ChangesRegistry() ? Access::kChangeRegistry : Access::kChange;
}

std::optional<Question> ProjectCommand::Agreed(const std::filesystem::path& file,
                                               const Invocation& invocation) {
  if (!Asks()) return std::nullopt;
  Session session(file, Access::kRead, invocation.allowed, invocation.out);
  session.Component().RequireWorkingDirectory();
  if (NeedsTenure()) RequireTenure(session);
  Question question = ToAsk(session);
  RequireConsent(question.consequence);
  return question;
}

// The files that a change makes are made beside nothing but a project that can be changed.
void RequireChangeable(const std::filesystem::path& file) {
  std::ignore = ReadProjectFile(file);
  if (!os::IsReadOnly(file)) return;
  throw Failure(
      ExitCode::kRefused,
      fmt::format("The project {} is marked read-only. Make it writable before you change "
                  "anything.",
                  os::ToText(file)));
}

void StartChange(std::optional<Session>& session, const std::filesystem::path& file, Access access,
                 bool needs_tenure, const Invocation& invocation) {
  const auto open = [&] {
    session.reset();
    session.emplace(file, access, invocation.allowed, invocation.out);
    session->Component().RequireWorkingDirectory();
    if (needs_tenure) RequireTenure(*session);
    session->Record(invocation.words, invocation.recorded);
  };
  open();
  if (session->GetRecording().Recover(invocation.allowed.outside)) open();
  if (needs_tenure) RecordTenure(*session);
  BringBackWaitingFolders(*session);
  invocation.out.UseDrives(session->GetProject().drives);
}

void ProjectCommand::RunIn(Session& session, Output& out) {
  RefusedByMessage(out, [&] { Run(session, out); });
  if (!KeepsNames()) session.ForgetNames();
}

void ProjectCommand::Execute(const Invocation& invocation) {
  const auto file = FindProjectFile(invocation.project);
  if (Changes()) RequireChangeable(file);
  const auto agreed = Agreed(file, invocation);
  std::optional<ChangeLock> lock;
  if (Changes()) lock.emplace(file, Wanted());
  std::optional<Session> opened;
  if (Changes()) {
    StartChange(opened, file, Wanted(), NeedsTenure(), invocation);
    if (!UsesTrash()) opened->GetRecording().LeaveTrash();
  } else {
    opened.emplace(file, Wanted(), invocation.allowed, invocation.out);
    invocation.out.UseDrives(opened->GetProject().drives);
    if (opened->Component().WorkingDirectoryWasThere() != false) TellOfTenure(*opened);
    TellOfUnfinished(opened->GetPlace());
  }
  Session& session = *opened;
  if (agreed && ToAsk(session) != *agreed) {
    throw Failure(ExitCode::kConflict,
                  "What was asked about has changed meanwhile. Nothing was done; run the command "
                  "again to be asked about what is there now.");
  }
  RefusedByMessage(invocation.out, [&] {
    Run(session, invocation.out);
    if (Changes() && !session.IsSaved()) session.Save();
  });
  if (session.Component().WorkingDirectoryWasThere() == false) {
    Output::Tell("kvdm: " + session.Component().WorkingDirectoryProblem());
  }
}

AskingCommand::AskingCommand(Arguments arguments) { arguments.Flag("--yes", yes_, "Do not ask"); }

DeletingCommand::DeletingCommand(Arguments arguments) : AskingCommand(arguments) {
  arguments.Flag("--dry-run", dry_run_, "Show what would go, and change nothing");
  arguments.Flag("--no-trash", no_trash_, "Delete files for ever, which can't be undone");
}

}  // namespace kvdm
