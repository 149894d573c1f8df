// kvdm project share: says once that several projects work in one working directory. No change of
// the history: --end takes it back.
#include <fmt/format.h>

#include "host/commands/groups.h"
#include "host/os.h"
#include "host/ownership.h"

namespace kvdm {
namespace {

class ProjectShare : public ChangingCommand {
 public:
  explicit ProjectShare(Arguments arguments) {
    arguments.Flag("--end", end_, "Let it be this project's alone again");
  }

 private:
  // It decides itself whose the working directory is to be.
  [[nodiscard]] bool NeedsTenure() const override { return false; }

  void Run(Session& session, Output& out) override {
    const WorkingDirectory directory = DirectoryOf(session);
    const Holder holder = HolderOf(session);
    RequireOwner(session, directory, holder);
    RecordOwner(directory.Place(),
                holder.id.empty() ? NewHolder(session.Component(), holder.file) : holder, !end_);
    session.LeaveStateUnrecorded();
    out.Done({{"project", os::ToText(holder.file)},
              {"working_directory", session.Manager().WorkingDirectory()},
              {"shared", !end_}},
             end_ ? fmt::format("The working directory {} is that of {} alone now.",
                                WithSeparator(directory.Path()), os::ToText(holder.file))
                  : fmt::format("All projects that work in {} may change it now.",
                                WithSeparator(directory.Path())));
  }

  // Failure kUnsafe when it is another project's, which is still there.
  static void RequireOwner(Session& session, const WorkingDirectory& directory,
                           const Holder& holder) {
    const auto owner = ReadOwner(directory.Place());
    const bool is_anothers = TenureOf(directory.Place(), owner, holder) == Tenure::kForeign &&
                             !IsGone(directory.Place(), *owner);
    if (!is_anothers || session.GetAllowed().outside) return;
    const std::string project = os::ToText(ProjectOf(directory.Place(), *owner));
    throw Failure(ExitCode::kUnsafe,
                  fmt::format("The working directory {0} belongs to the project {1}, which has to "
                              "say so: 'kvdm project share -p \"{1}\"'. --outside shares it all "
                              "the same.",
                              WithSeparator(directory.Path()), project));
  }

  bool end_ = false;
};

}  // namespace

void AddProjectShare(const CommandGroup& project) {
  project.Add<ProjectShare>("share", "Let other projects change the working directory too",
                            "kvdm project share\nkvdm project share --end");
}

}  // namespace kvdm
