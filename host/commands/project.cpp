// kvdm project: the project file itself.
#include <fmt/format.h>

#include "host/checks.h"
#include "host/commands/groups.h"
#include "host/os.h"
#include "host/project_file.h"
#include "util/registry_strings.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

class ProjectSave : public ChangingCommand {
  [[nodiscard]] bool ChangesRegistry() const override { return true; }
  void Run(Session& session, Output& out) override {
    const bool starts_new_list = !session.Component().CatalogueProblem().empty();
    const bool written = session.Save();
    if (starts_new_list && session.Component().CatalogueProblem().empty()) {
      Output::Tell(
          "kvdm: Started a new list of study areas. The damaged one is in the history of "
          "the registry.");
    }
    const std::string file = os::ToText(session.File());
    out.Done(
        {{"project", file}, {"written", written}},
        written ? fmt::format("Saved {}.", file) : fmt::format("Nothing had changed in {}.", file));
  }
};

class ProjectInfo : public Command {
 public:
  void Execute(const Invocation& invocation) override {
    const fs::path file = FindProjectFile(invocation.project);
    const Project project = ReadProjectFile(file);
    std::int64_t metadata_bytes = 0;
    for (const Value& value : project.values) {
      if (value.IsText()) metadata_bytes += static_cast<std::int64_t>(ToText(value).size());
    }
    const fs::path previous = WithSuffix(file, ".bak");
    const bool kept = os::Exists(previous);
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

class ProjectBackups : public Command {
 public:
  void Execute(const Invocation& invocation) override {
    const fs::path file = FindProjectFile(invocation.project);
    invocation.out.Items(RowsOf(Backups(file)), "Nothing was kept yet.");
  }
};

class ProjectRestore : public AskingCommand {
 public:
  explicit ProjectRestore(Arguments arguments) : AskingCommand(arguments) {
    arguments.Required("NUMBER", number_, "The state, as 'kvdm project backups' lists it");
  }

 private:
  Question ToAsk(Session& session) override {
    const std::string text = Kept(session);
    return {fmt::format("This brings the project back to its state {} ({} bytes). All that was "
                        "changed in it since is undone.",
                        number_, text.size()),
            {{"text", text}}};
  }

  void Run(Session& session, Output& out) override {
    const Documents stored = DocumentsOf(session.GetProject());
    const Documents wanted = DocumentsOf(ParseProject(Kept(session)));
    session.Store(stored, wanted);
    out.Done(
        {{"project", os::ToText(session.File())}, {"number", number_}},
        fmt::format("The project is in its state {} again. 'kvdm undo' takes that back.", number_));
  }

  [[nodiscard]] std::string Kept(Session& session) const {
    return Backups(session.File()).Read(ListNumber(number_));
  }

  std::string number_;
};

// A document with one element a line, for people.
std::string Readable(std::string_view title, std::string_view xml) {
  std::string text(title);
  for (std::string line : XmlLines(xml)) {
    line.erase(line.find_last_not_of("\r\n") + 1);
    if (!line.empty()) text += "\n" + line;
  }
  return text;
}

class ProjectShow : public ReadingCommand {
  void Run(Session& session, Output& out) override {
    std::string metadata;
    for (const Value& value : session.GetProject().values) {
      if (value.IsText()) metadata += ToText(value);
    }
    auto& registry = *session.Component().GetServices().platform.registry;
    const std::string catalogue = ToText(ReadRegistryString(
        registry, RegistryRoot::kLocalMachine, kRegistryKey, kStudyAreaCollectionValue));
    session.Component().RequireRegistry();
    out.Text({{"metadata", metadata}, {"catalogue", catalogue}},
             Readable("The metadata document, in the project file:", metadata) + "\n\n" +
                 Readable("The study area catalogue, in the registry:", catalogue));
  }
};

}  // namespace

void AddProjectCommands(const CommandGroup& root) {
  const CommandGroup project = root.Group("project", "The project file");
  project.Add<ProjectSave>("save", "Save the component's present state", "kvdm project save");
  project.Add<ProjectInfo>("info", "Show what the project file holds",
                           "kvdm project info -p North.kvdm");
  project.Add<ProjectBackups>("backups", "List the last states of the project",
                              "kvdm project backups");
  project.Add<ProjectRestore>("restore", "Bring back one of the last states of the project",
                              "kvdm project restore 12");
  project.Add<ProjectShow>("show", "Show the metadata document and the study area catalogue",
                           "kvdm project show");
  AddProjectShare(project);
  AddProjectPlaces(project);
  AddProjectDrives(project);
  AddProjectArchives(project);
}

}  // namespace kvdm
