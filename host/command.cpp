#include "host/command.h"

#include <fmt/format.h>

#include <optional>

#include "host/project_file.h"

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

void ProjectCommand::Execute(const Invocation& invocation) {
  const auto file = FindProjectFile(invocation.project);
  std::optional<ChangeLock> lock;
  if (Changes()) lock.emplace(file);
  Session session(file, invocation.out);
  if (Changes()) session.Component().RequireWorkingDirectory();
  RefusedByMessage(invocation.out, [&] {
    Run(session, invocation.out);
    if (Changes()) session.Save();
  });
}

}  // namespace kvdm
