#include "host/batch.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "host/ownership.h"
#include "host/project_file.h"

namespace kvdm {

int Batch::Run(const std::vector<std::string>& words) {
  taken_back_ = 0;
  const OutputOptions& options = invocation_.out.Options();
  try {
    const CommandLine line(words);
    if (!IsShared(line)) return RunAlone(line, words);
    return RunShared(static_cast<ProjectCommand&>(line.GetCommand()), line.Path());
  } catch (const HelpText& help) {
    invocation_.out.Text({{"text", help.text}}, help.text);
    invocation_.out.Print("kvdm help");
    invocation_.out.Clear();
    return 0;
  } catch (const UsageFailure& failure) {
    return Output(options).PrintFailure(failure.Path(), failure);
  }
}

bool Batch::IsShared(const CommandLine& line) const {
  const auto* command = dynamic_cast<const ProjectCommand*>(&line.GetCommand());
  const GlobalOptions& options = line.Options();
  return command != nullptr && command->SharesSession() && options.project.empty() &&
         options.folder.empty() && !options.output.json && !options.allowed.foreign &&
         !options.allowed.outside;
}

// What it stores itself, or asks for, is about what is saved.
int Batch::RunAlone(const CommandLine& line, const std::vector<std::string>& words) {
  if (!line.Options().folder.empty()) {
    throw Failure(ExitCode::kUsage,
                  "A command that is run works where the others do: leave -C out.");
  }
  Save();
  const GlobalOptions& own = line.Options();
  Invocation invocation = invocation_;
  invocation.allowed.foreign |= own.allowed.foreign;
  invocation.allowed.outside |= own.allowed.outside;
  if (!own.project.empty()) invocation.project = own.project;
  invocation.words = words;
  OutputOptions options = invocation_.out.Options();
  options.json |= own.output.json;
  Output out(options);
  return Reported(line.Path(), out, [&] {
    line.GetCommand().Execute({invocation.project, invocation.allowed, out, words, &recorded_});
  });
}

int Batch::RunShared(ProjectCommand& command, const std::string& path) {
  Output& out = invocation_.out;
  std::uint64_t changes = 0;
  bool is_open = false;
  const int status = Reported(path, out, [&] {
    Session& session = Open(command.Wanted());
    changes = session.Component().Changes();
    is_open = true;
    command.RunIn(session, out);
  });
  out.Clear();
  if (status == 0) {
    if (command.Changes()) ++unsaved_;
    return status;
  }
  if (!is_open || session_->Component().Changes() != changes) {
    taken_back_ = unsaved_;
    Close();
  }
  return status;
}

Session& Batch::Open(Access access) {
  if (session_ && access <= access_) return *session_;
  Save();
  if (file_.empty()) file_ = FindProjectFile(invocation_.project);
  if (access == Access::kRead) {
    session_.emplace(file_, access, invocation_.allowed, invocation_.out);
    invocation_.out.UseDrives(session_->GetProject().drives);
    if (session_->Component().WorkingDirectoryWasThere() != false) TellOfTenure(*session_);
    TellOfUnfinished(session_->GetPlace());
  } else {
    RequireChangeable(file_);
    lock_.emplace(file_, access);
    StartChange(session_, file_, access, true, invocation_);
  }
  access_ = access;
  return *session_;
}

void Batch::Save() {
  if (unsaved_ > 0) session_->Save();
  unsaved_ = 0;
  Close();
}

void Batch::Close() {
  session_.reset();
  lock_.reset();
  unsaved_ = 0;
}

void Batch::PutBack() {
  Close();
  auto numbers = std::exchange(recorded_, {});
  std::ranges::reverse(numbers);
  for (const int number : numbers) {
    const CommandLine undo({"undo", fmt::format("{}", number)});
    Output out({});
    undo.GetCommand().Execute({invocation_.project, invocation_.allowed, out, {"undo"}});
  }
}

}  // namespace kvdm
