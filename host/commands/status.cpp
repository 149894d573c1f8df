// kvdm status: what the project and the component look like.
#include <fmt/format.h>

#include <algorithm>

#include "host/commands/groups.h"
#include "host/os.h"
#include "host/ownership.h"
#include "host/waiting_folders.h"
#include "platform/xml/document.h"
#include "safety/adopt.h"
#include "util/registry_strings.h"

namespace kvdm {
namespace {

// How many names a list has; nothing when there is no list.
Field CountOf(const NameListRef& names) {
  return names ? Field(std::int64_t{names->Count()}) : Field();
}

// The catalogues that were kept as a whole.
std::vector<Record> KeptCatalogues(const HostedComponent& component) {
  XmlParser& parser = *component.GetServices().platform.xml_parser;
  std::vector<Record> records;
  for (const KeptValue& kept : component.KeptStudyAreas()) {
    const std::string& text = kept.value.data;
    if (kept.value.type == RegistryType::kText && xml::IsWellFormed(parser, text)) continue;
    records.push_back({{"kept_at", kept.when}, {"bytes", static_cast<std::int64_t>(text.size())}});
  }
  return records;
}

// The project's own ones; nothing when there is no list.
Field StudyAreaCount(Session& session) {
  const auto areas = session.Manager().StudyAreaCollection();
  if (!areas || !areas->StudyAreasGUIDsList()) return {};
  const WorkingDirectory directory = DirectoryOf(session);
  const auto all = StudyAreaKind::All(session);
  return static_cast<std::int64_t>(std::ranges::count_if(
      all, [&](const auto& area) { return directory.Holds(area->StudyAreaDir()); }));
}

// Folders of study areas that the list does not name: it was lost, or is another computer's.
void TellOfUnlistedAreas(Session& session) {
  const Services& services = session.Component().GetServices();
  const std::string catalogue = ToText(ReadRegistryString(
      *services.registry, RegistryRoot::kLocalMachine, kRegistryKey, kStudyAreaCollectionValue));
  const auto folders =
      UnlistedAreaFolders(services.platform, session.Manager().WorkingDirectory(), catalogue);
  if (folders.empty()) return;
  Output::Tell(
      fmt::format("kvdm: {} of the folders of study areas {} not in the list, such as {}. "
                  "'kvdm adopt --dry-run' shows what can be brought back.",
                  folders.size(), folders.size() == 1 ? "is" : "are", folders.front()));
}

class Status : public ReadingCommand {
  void Run(Session& session, Output& out) override {
    HostedComponent& component = session.Component();
    const Services& services = component.GetServices();
    const auto kept = KeptCatalogues(component);
    const std::string problem = component.CatalogueProblem();
    const bool damaged = !problem.empty();
    const auto unread = services.registry->Unread();
    const auto& found = component.WorkingDirectoryWasThere();
    const auto condition = unread.value_or(services.registry->Condition());
    out.Fields({{"project", os::ToText(session.File())},
                {"working_directory", session.Manager().WorkingDirectory()},
                {"working_directory_found", found ? Field(*found) : Field()},
                {"current_study_area", component.CurrentStudyArea()},
                {"study_areas", unread ? Field() : StudyAreaCount(session)},
                {"analyses", CountOf(session.Manager().AnalysisCollection()->AnalysesGUIDsList())},
                {"registry", RegistryPlace()},
                {"registry_state", std::string(condition.Name())},
                {"catalogue_damaged", unread ? Field() : Field(damaged)}});
    if (!found) {
      Output::Tell("kvdm: The working directory can't be looked at now: is its disk reachable?");
    }
    if (condition.state != RegistryState::kReady) {
      Output::Tell("kvdm: " + RegistrySentence(condition));
    }
    if (unread) return;
    out.Section("damaged_catalogues", kept);
    if (damaged) return Output::Tell("kvdm: " + problem);
    TellOfWaitingFolders(session);
    TellOfUnlistedAreas(session);
    TellOfCurrentArea(session);
  }
};

}  // namespace

void AddStatusCommand(const CommandGroup& root) {
  root.Add<Status>("status", "Show the project, its folders and the state of the catalogue",
                   "kvdm status\nkvdm status --json");
}

}  // namespace kvdm
