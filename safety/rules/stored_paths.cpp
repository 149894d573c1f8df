// Rules of stored paths.
#include <fmt/format.h>

#include <algorithm>
#include <map>

#include "safety/path_prefix.h"
#include "safety/paths.h"
#include "safety/rules/rules.h"

namespace kvdm {
namespace {

// Where a path is below the present working directory: what stands in front of one of its folders
// was another one.
struct Relocation {
  std::string from;
  std::string path;
};

std::optional<Relocation> RelocationOf(const Survey& survey, const std::string& stored) {
  const std::string plain = paths::Plain(stored);
  for (const char* folder : {"StudyAreas", "Analyses", "StoreLayers", "CustLayers", "Data"}) {
    const std::size_t place = plain.find(fmt::format("\\{}\\", folder));
    if (place == plain.npos) continue;
    return Relocation{plain.substr(0, place), survey.WorkingDirectory() + plain.substr(place)};
  }
  return std::nullopt;
}

bool IsThere(const Survey& survey, const std::string& path) {
  return survey.Disk().HasFolder(path + "\\") || survey.Disk().HasFile(path);
}

// Why a deletion of this folder would take more than the item's own; "" when it would not.
std::string Hazard(const Survey& survey, const std::string& folder) {
  const std::string plain = paths::Plain(folder);
  if (plain.empty()) return "is empty";
  if (!paths::IsFull(plain + "\\")) return "is no full path";
  if (paths::LeadsUpwards(plain)) return "leads upwards";
  if (plain.find('\\') == plain.npos || plain.rfind('\\') == 0) return "is a root";
  if (paths::Key(plain) == paths::Key(survey.WorkingDirectory())) return "is the working directory";
  return paths::IsBelow(survey.WorkingDirectory(), plain) ? "holds the working directory" : "";
}

bool HasDirName(const SurveyItem& item) {
  return std::ranges::any_of(item.element->attributes,
                             [](const auto& attribute) { return attribute.first == "DIRNAME"; });
}

void FindSharedFolder(const Survey& survey, std::size_t i, std::size_t j, Findings& findings) {
  const bool is_younger = IsYounger(survey, i, j);
  const SurveyItem& younger = survey.Items()[is_younger ? i : j];
  if (!younger.is_own) return;
  findings
      .Add(survey, is_younger ? i : j,
           fmt::format("must not be deleted: its folder, {}, is that of the {} too.",
                       younger.folder, survey.Items()[is_younger ? j : i].Label()))
      .At(younger.folder);
}

void FindHazards(const Survey& survey, Findings& findings) {
  std::map<std::string, std::size_t> first;
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    if (!item.kind->HasFolder() || !HasDirName(item)) continue;
    const std::string hazard = Hazard(survey, item.folder);
    if (!hazard.empty()) {
      findings
          .Add(survey, i,
               fmt::format("must not be deleted: its folder, '{}', {}.", item.folder, hazard))
          .At(item.folder);
      continue;
    }
    const auto [other, is_new] = first.try_emplace(paths::Key(item.folder), i);
    if (!is_new) FindSharedFolder(survey, i, other->second, findings);
  }
}

bool IsFolderTaken(const Survey& survey, const std::string& folder) {
  return std::ranges::any_of(survey.Items(), [&](const SurveyItem& item) {
    return item.kind->HasFolder() &&
           paths::Key(item.element->Attribute("DIRNAME")) == paths::Key(folder);
  });
}

// A new folder in the usual place of such items.
std::string NewFolder(const Survey& survey, const SurveyItem& item) {
  const std::string usual = fmt::format("{}\\{}\\", survey.WorkingDirectory(), item.kind->folder);
  const std::string name = item.name.empty() ? std::string(item.kind->tag) : item.name;
  return usual + FreeName(name, [&](const std::string& free) {
           return IsFolderTaken(survey, usual + free) ||
                  survey.Disk().HasFolder(usual + free + "\\");
         });
}

// The folder of its layer file, or a new one.
void GiveOwnFolder(Survey& survey, const Finding& finding, Repair& repair) {
  const SurveyItem& item = survey.Items()[finding.index];
  std::string folder = paths::Parent(item.file);
  const bool is_good = paths::IsBelow(folder, survey.WorkingDirectory()) &&
                       Hazard(survey, folder).empty() && !IsFolderTaken(survey, folder);
  if (!is_good) folder = NewFolder(survey, item);
  SetAttributeOf(item, "DIRNAME", folder + "\\", repair);
  if (survey.Disk().HasFolder(folder + "\\")) return;
  repair.steps.push_back(fmt::format("the folder {}: is made", folder));
  repair.folders.push_back(folder);
}

const std::string& MainPath(const SurveyItem& item) {
  return item.kind->HasFolder() ? item.folder : item.file;
}

// Items that are not where they are stored, by the folder that they have in common.
struct Relocated {
  std::size_t found = 0;
  std::size_t lost = 0;
};

void FindMovedDirectory(const Survey& survey, Findings& findings) {
  if (!survey.HasWorkingDirectory()) return;
  std::map<std::string, Relocated> relocated;
  for (const SurveyItem& item : survey.Items()) {
    const std::string& path = MainPath(item);
    if (path.empty() || paths::IsBelow(path, survey.WorkingDirectory())) continue;
    const auto there = RelocationOf(survey, path);
    if (!there || IsThere(survey, paths::Plain(path))) continue;
    Relocated& items = relocated[there->from];
    ++(IsThere(survey, there->path) ? items.found : items.lost);
  }
  std::erase_if(relocated, [](const auto& group) { return group.second.found == 0; });
  for (const auto& [from, items] : relocated) {
    Finding& finding = findings.Add(fmt::format(
        "{} items are stored below {}, where they are not, and are in the working directory {}.",
        items.found, from, survey.WorkingDirectory()));
    finding.At(from);
    if (items.lost == 0 && relocated.size() == 1) finding.Safely();
  }
}

void Replace(const SurveyItem& item, std::string_view attribute, const PathPrefix& prefix,
             Repair& repair) {
  const auto path = prefix.Replaced(item.element->Attribute(attribute));
  if (path) SetAttributeOf(item, attribute, *path, repair);
}

void FollowDirectory(Survey& survey, const Finding& finding, Repair& repair) {
  const PathPrefix prefix(finding.path, survey.WorkingDirectory());
  for (const SurveyItem& item : survey.Items()) {
    if (!MovedPath(survey, MainPath(item))) continue;
    if (item.kind->HasFolder()) Replace(item, "DIRNAME", prefix, repair);
    Replace(item, item.kind->file_attribute, prefix, repair);
  }
}

// A data file that is known by its name is where data files are.
void FindRelativeFiles(const Survey& survey, Findings& findings) {
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    if (item.file.empty() || !item.is_own || paths::IsFull(item.file)) continue;
    findings.Add(survey, i, fmt::format("has a layer file without a full path: {}.", item.file))
        .At(item.file);
  }
}

using enum Severity;

constexpr Rule kPathRules[] = {
    {"path.delete-hazard", kError, "a deletion of the item would take more than its own folder",
     "Whoever deletes this item deletes what is not its own. Commands of kvdm refuse to; other "
     "programs do not.",
     "gives the folder of the layer file, or a new one", false, &FindHazards, &GiveOwnFolder},
    {"path.moved-workdir", kError, "items are stored in the place where the directory was before",
     "The working directory has another place now, and the items still name the old one.",
     "follows the working directory (safe when all are there)", false, &FindMovedDirectory,
     &FollowDirectory},
    {"layerfile.relative", kWarning, "a layer file without a full path",
     "Where such a path leads depends on the folder that a program was started in.", "", false,
     &FindRelativeFiles}};

}  // namespace

std::optional<std::string> MovedPath(const Survey& survey, const std::string& path) {
  if (path.empty() || paths::IsBelow(path, survey.WorkingDirectory())) return std::nullopt;
  const auto there = RelocationOf(survey, path);
  if (!there || IsThere(survey, paths::Plain(path)) || !IsThere(survey, there->path)) {
    return std::nullopt;
  }
  return there->path;
}

std::span<const Rule> PathRules() { return kPathRules; }

}  // namespace kvdm
