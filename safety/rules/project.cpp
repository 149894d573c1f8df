// Rules of what a project keeps of its own: its working directory and its open study area.
#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "safety/paths.h"
#include "safety/rules/rules.h"

namespace kvdm {
namespace {

// A folder beside the project that has the name of the working directory and is another one; ""
// for none.
std::string Beside(const Survey& survey) {
  const std::string& place = survey.About().place;
  if (place.empty() || survey.WorkingDirectory().empty()) return "";
  const std::string folder =
      paths::Plain(place) + "\\" + paths::LastName(survey.WorkingDirectory());
  const bool is_other = paths::Key(folder) != paths::Key(survey.WorkingDirectory());
  return is_other && survey.Disk().HasFolder(folder + "\\") ? folder : "";
}

std::string RebaseTo(const Survey& survey, const std::string& folder) {
  if (folder.empty()) return "";
  return fmt::format("project rebase {} {}", paths::Quoted(survey.WorkingDirectory()),
                     paths::Quoted(folder));
}

// A path of a server, which the component knows without the second of its backslashes.
bool IsOfServer(const Survey& survey) { return survey.WorkingDirectory().starts_with('\\'); }

bool IsDirectoryLost(const Survey& survey) {
  return survey.About().problem.empty() && !survey.HasWorkingDirectory();
}

void FindLostDirectory(const Survey& survey, Findings& findings) {
  if (!IsDirectoryLost(survey) || IsOfServer(survey)) return;
  const std::string beside = Beside(survey);
  findings
      .Add(fmt::format("The working directory {} is not there. {}", survey.WorkingDirectory(),
                       beside.empty()
                           ? "Was it moved, or is its disk missing? 'kvdm project rebase OLD NEW' "
                             "follows it, 'kvdm project drive set' names a drive's folder."
                           : fmt::format("{} stands beside the project.", beside)))
      .At(survey.WorkingDirectory())
      .By(RebaseTo(survey, beside));
}

void FindLostBackslash(const Survey& survey, Findings& findings) {
  if (!IsDirectoryLost(survey) || !IsOfServer(survey)) return;
  findings
      .Add(fmt::format("The working directory {} is not there. A path of a server loses one of its "
                       "backslashes: give the share a drive letter, and use that.",
                       survey.WorkingDirectory()))
      .At(survey.WorkingDirectory())
      .By(RebaseTo(survey, Beside(survey)));
}

bool LooksLikeDirectory(const Survey& survey, const std::string& folder) {
  const auto folders = survey.Disk().FoldersIn(folder);
  return std::ranges::any_of(folders, [](const std::string& name) {
    return name == "StudyAreas" || name == "StoreLayers" || name == "CustLayers";
  });
}

void FindDirectoryElsewhere(const Survey& survey, Findings& findings) {
  const std::string beside = Beside(survey);
  if (!survey.HasWorkingDirectory() || beside.empty() || !LooksLikeDirectory(survey, beside))
    return;
  findings
      .Add(fmt::format("The project works in {}, but {} stands beside it: is this a copy?",
                       survey.WorkingDirectory(), beside))
      .At(survey.WorkingDirectory())
      .By(RebaseTo(survey, beside));
}

void FindSharedDirectory(const Survey& survey, Findings& findings) {
  const std::string& owner = survey.About().other_owner;
  if (owner.empty()) return;
  findings
      .Add(fmt::format("The working directory {} belongs to the project {}.",
                       survey.WorkingDirectory(), owner))
      .At(survey.WorkingDirectory())
      .By(fmt::format("project share -p {}", paths::Quoted(owner)));
}

void FindUnreadableOwner(const Survey& survey, Findings& findings) {
  const std::string& problem = survey.About().owner_problem;
  if (problem.empty()) return;
  findings
      .Add(fmt::format("Whose the working directory {} is can't be told: {}",
                       survey.WorkingDirectory(), problem))
      .At(survey.WorkingDirectory());
}

void FindMissingParts(const Survey& survey, Findings& findings) {
  if (!survey.HasWorkingDirectory()) return;
  for (const char* name : {"CustLayers", "StoreLayers", "KelvaroTemp"}) {
    const std::string folder = survey.WorkingDirectory() + "\\" + name;
    if (survey.Disk().HasFolder(folder + "\\")) continue;
    findings.Add(fmt::format("The working directory has no folder {}.", name)).At(folder);
  }
}

void MakePart(Survey& /*survey*/, const Finding& finding, Repair& repair) {
  repair.steps.push_back(fmt::format("the folder {}: is made", finding.path));
  repair.folders.push_back(finding.path);
  if (finding.path.ends_with("Temp")) repair.hidden.push_back(finding.path);
}

// The study area that the project works in, by the identifier that it kept; null for none.
const SurveyItem* AreaWith(const Survey& survey, std::string_view name, std::string_view guid) {
  for (const SurveyItem& item : survey.Items()) {
    const bool fits = (name.empty() || item.name == name) && (guid.empty() || item.guid == guid);
    if (item.kind->tag == "STUDYAREA" && fits) return &item;
  }
  return nullptr;
}

void FindDanglingArea(const Survey& survey, Findings& findings) {
  const Subject& subject = survey.About();
  const bool is_readable =
      subject.has_catalogue && (subject.stored.catalogue.empty() || survey.Catalogue() != nullptr);
  const std::string name = survey.State(kOpenAreaProperty);
  const std::string guid = survey.State(kOpenAreaGuidProperty);
  if (!is_readable || name.empty() || AreaWith(survey, name, guid) != nullptr) return;
  const bool is_other = AreaWith(survey, name, "") != nullptr;
  findings.Add(fmt::format("The project works in the study area {}, {}.", name,
                           is_other ? "but the one of that name is another one"
                                    : "which is not in the list of study areas"));
}

void OpenKeptArea(Survey& survey, const Finding& /*finding*/, Repair& repair) {
  const std::string guid = survey.State(kOpenAreaGuidProperty);
  const SurveyItem* area = guid.empty() ? nullptr : AreaWith(survey, "", guid);
  const std::string name = area != nullptr ? area->name : "";
  repair.steps.push_back(
      fmt::format("the open study area: {}", name.empty() ? "none" : name + ", by its identifier"));
  repair.wanted.state[kOpenAreaProperty] = name;
  const bool has_guid = repair.wanted.state.contains(kOpenAreaGuidProperty);
  if (name.empty() && has_guid) repair.wanted.state[kOpenAreaGuidProperty] = std::string();
}

void FindDanglingAreas(const Survey& survey, Findings& findings) {
  if (survey.Catalogue() == nullptr) return;
  std::set<std::string_view> names;
  for (const SurveyItem& item : survey.Items()) {
    if (item.kind->tag == "STUDYAREA") names.insert(item.name);
  }
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    const std::string name = item.element->Attribute("STUDYAREANAME");
    if (name.empty() || names.contains(name)) continue;
    findings.Add(survey, i, fmt::format("names the study area {}, which there is not.", name))
        .By(fmt::format("{} set {} --study-area NAME", item.kind->command, item.Selector()));
  }
}

using enum Severity;

constexpr Rule kProjectRules[] = {
    {"workdir.not-found", kError, "the working directory is not there",
     "Nothing can be done with the project until its working directory is there again.", "", false,
     &FindLostDirectory},
    {"workdir.backslash-lost", kError, "the working directory is on a server, by its share",
     "The component keeps one of the two backslashes that a share begins with, and so looks on the "
     "wrong drive.",
     "", false, &FindLostBackslash},
    {"workdir.elsewhere", kError, "the project works elsewhere, as the original of a copy does",
     "What is changed here would change the original, not the copy.", "", false,
     &FindDirectoryElsewhere},
    {"workdir.shared", kError, "the working directory belongs to another project",
     "Two projects that do not know of each other delete each other's work. One of them is to have "
     "its own, or both declare it shared.",
     "", false, &FindSharedDirectory},
    {"workdir.owner-unreadable", kError,
     "the record of the working directory's owner can't be read",
     "Nothing is changed while nobody can tell whose the directory is.", "", false,
     &FindUnreadableOwner},
    {"workdir.missing-folders", kWarning, "the working directory lacks folders",
     "What is made there next fails.", "makes them", true, &FindMissingParts, &MakePart},
    {"current-area.dangling", kError, "the open study area is not in the list",
     "New analyses would go to another place than you think.",
     "opens the one of the kept identifier, or none", false, &FindDanglingArea, &OpenKeptArea},
    {"layer.area-dangling", kWarning, "a layer names a study area that there is not",
     "The layer is shown in no study area.", "", false, &FindDanglingAreas}};

}  // namespace

std::span<const Rule> ProjectRules() { return kProjectRules; }

}  // namespace kvdm
