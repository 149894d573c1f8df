// kvdm project: the project file itself.
#include <fmt/format.h>

#include "host/commands/groups.h"
#include "host/os.h"
#include "host/project_file.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

class ProjectSave : public ChangingCommand {
 public:
  explicit ProjectSave(Arguments) {}

 private:
  void Run(Session& session, Output& out) override {
    const bool written = session.Save();
    const std::string file = os::ToText(session.File());
    out.Done(
        {{"project", file}, {"written", written}},
        written ? fmt::format("Saved {}.", file) : fmt::format("Nothing had changed in {}.", file));
  }
};

class ProjectInfo : public Command {
 public:
  explicit ProjectInfo(Arguments) {}

  void Execute(const Invocation& invocation) override {
    const fs::path file = FindProjectFile(invocation.project);
    const Project project = ReadProjectFile(file);
    std::int64_t metadata_bytes = 0;
    for (const Value& value : project.values) {
      if (value.IsText()) metadata_bytes += static_cast<std::int64_t>(ToText(value).size());
    }
    const fs::path previous = Beside(file, ".bak");
    const bool kept = fs::exists(previous);
    invocation.out.Fields({{"project", os::ToText(file)},
                           {"version", kProjectVersion},
                           {"checksum", project.checksum},
                           {"bytes", static_cast<std::int64_t>(project.source.size())},
                           {"metadata_bytes", metadata_bytes},
                           {"settings", static_cast<std::int64_t>(project.settings.size())},
                           {"drives", static_cast<std::int64_t>(project.drives.size())},
                           {"previous", kept ? Field(os::ToText(previous)) : Field()}});
  }
};

}  // namespace

void AddProjectCommands(const CommandGroup& root) {
  const CommandGroup project = root.Group("project", "The project file");
  project.Add<ProjectSave>("save", "Save the component's present state", "kvdm project save");
  project.Add<ProjectInfo>("info", "Show what the project file holds",
                           "kvdm project info -p North.kvdm");
}

}  // namespace kvdm
