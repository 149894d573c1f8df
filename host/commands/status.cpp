// kvdm status: what the project and the component look like.
#include <fmt/format.h>

#include "host/commands/groups.h"
#include "host/os.h"
#include "host/sources.h"
#include "util/registry_strings.h"

namespace kvdm {
namespace {

// How many names a list has; nothing when there is no list.
Field CountOf(const NameListRef& names) {
  return names ? Field(std::int64_t{names->Count()}) : Field();
}

bool IsCatalogueDamaged(const Platform& platform) {
  const std::string text = ToText(ReadRegistryString(
      *platform.registry, RegistryRoot::kLocalMachine, kRegistryKey, kStudyAreaCollectionValue));
  return !text.empty() && !IsWellFormed(*platform.xml_parser, text);
}

std::vector<Record> PreservedRecords(const Services& services) {
  std::vector<Record> records;
  for (const PreservedCatalogue& copy : services.preserved_catalogues()) {
    records.push_back(
        {{"kept_at", copy.when}, {"bytes", static_cast<std::int64_t>(copy.text.size())}});
  }
  return records;
}

class Status : public ReadingCommand {
 public:
  explicit Status(Arguments) {}

 private:
  void Run(Session& session, Output& out) override {
    HostedComponent& component = session.Component();
    const bool damaged = IsCatalogueDamaged(component.GetServices().platform);
    out.Fields({{"project", os::ToText(session.File())},
                {"working_directory", session.Manager().WorkingDirectory()},
                {"working_directory_found", component.WorkingDirectoryWasThere()},
                {"current_study_area", component.CurrentStudyArea()},
                {"study_areas", CountOf(StudyAreaCollection(session)->StudyAreasGUIDsList())},
                {"analyses", CountOf(AnalysisCollection(session)->AnalysesGUIDsList())},
                {"registry", RegistryPlace()},
                {"catalogue_damaged", damaged}});
    out.Section("damaged_catalogues", PreservedRecords(component.GetServices()));
    if (damaged) {
      Output::Tell(
          "kvdm: the catalogue of study areas in the registry is damaged and counts as empty. The "
          "next change keeps its text aside in the history of the registry and starts a new one: "
          "'kvdm project save' does that.");
    }
  }
};

}  // namespace

void AddStatusCommand(const CommandGroup& root) {
  root.Add<Status>("status", "Show the project, its folders and the state of the catalogue",
                   "kvdm status\nkvdm status --json");
}

}  // namespace kvdm
