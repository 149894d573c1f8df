// Rules of the disk: what the documents name and is not there, and the other way round.
#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>

#include "safety/paths.h"
#include "safety/rules/rules.h"

namespace kvdm {
namespace {

// A layer file is the application's to write, for so long.
constexpr std::int64_t kPatience = 24 * 60 * 60;

bool IsNew(const Survey& survey, const SurveyItem& item) {
  const auto created = SecondsOf(item.element->Attribute("CREATIONTIME"));
  const auto now = SecondsOf(DateText(survey.About().platform.clock->Now()));
  return created && now && *now - *created < kPatience;
}

std::set<std::string> FoldersOfItems(const Survey& survey) {
  std::set<std::string> folders;
  for (const SurveyItem& item : survey.Items()) {
    if (!item.kind->HasFolder()) continue;
    folders.insert(paths::Key(MovedPath(survey, item.folder).value_or(item.folder)));
  }
  return folders;
}

// The folder of the study area that an analysis was made in, when that is gone from the disk and
// from the list; "" when it is not, or was made in none.
std::string DeletedArea(const Survey& survey, const SurveyItem& item,
                        const std::set<std::string>& folders) {
  if (item.kind->tag != "ANALYSIS") return "";
  const std::string area = paths::Parent(paths::Parent(item.folder));
  const bool is_area = paths::LastName(paths::Parent(area)) == "StudyAreas";
  const bool is_gone = !survey.Disk().HasFolder(area + "\\") && !folders.contains(paths::Key(area));
  return is_area && is_gone ? area : "";
}

bool IsFolderMissing(const Survey& survey, const SurveyItem& item) {
  return item.kind->HasFolder() && item.is_own && paths::IsFull(item.folder) &&
         !survey.Disk().HasFolder(paths::Plain(item.folder) + "\\") &&
         !MovedPath(survey, item.folder);
}

void FindMissingFolders(const Survey& survey, Findings& findings) {
  if (!survey.HasWorkingDirectory()) return;
  const auto folders = FoldersOfItems(survey);
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    if (!IsFolderMissing(survey, item) || !DeletedArea(survey, item, folders).empty()) continue;
    findings.Add(survey, i, fmt::format("has no folder: {} is not there.", item.folder))
        .At(item.folder);
  }
}

// A folder beside the missing one that no item has and whose layer's metadata have the identifier.
std::string FolderWithGuid(const Survey& survey, const SurveyItem& item) {
  const auto folders = FoldersOfItems(survey);
  const std::string parent = paths::Parent(item.folder);
  for (const std::string& name : survey.Disk().FoldersIn(parent)) {
    const std::string folder = parent + "\\" + name;
    const auto& description =
        survey.DescriptionOf(fmt::format("{}\\{}", folder, item.kind->layer_file));
    const bool is_it = !description.guid.empty() && description.guid == item.guid;
    if (is_it && !folders.contains(paths::Key(folder))) return folder;
  }
  return "";
}

void FindOrMakeFolder(Survey& survey, const Finding& finding, Repair& repair) {
  const SurveyItem& item = survey.Items()[finding.index];
  const std::string folder = FolderWithGuid(survey, item);
  if (folder.empty()) {
    repair.steps.push_back(fmt::format("the folder {}: is made", item.folder));
    repair.folders.push_back(paths::Plain(item.folder));
    return;
  }
  SetAttributeOf(item, "DIRNAME", folder + "\\", repair);
  if (!paths::IsBelow(item.file, item.folder)) return;
  SetAttributeOf(item, item.kind->file_attribute,
                 folder + paths::Plain(item.file).substr(paths::Plain(item.folder).size()), repair);
}

void FindOrphansIn(const Survey& survey, const std::string& folder, const char* command,
                   Findings& findings) {
  const auto known = FoldersOfItems(survey);
  for (const std::string& name : survey.Disk().FoldersIn(folder)) {
    const std::string path = folder + "\\" + name;
    if (known.contains(paths::Key(path)) || name.starts_with('.')) continue;
    findings.Add(fmt::format("The folder {} belongs to no item.", path)).At(path).By(command);
  }
}

// Where the catalogue has no study area of the working directory, that is another rule's.
void FindOrphans(const Survey& survey, Findings& findings) {
  const bool is_known = survey.Metadata() != nullptr && survey.Catalogue() != nullptr;
  if (!is_known || !survey.HasWorkingDirectory()) return;
  FindOrphansIn(survey, survey.WorkingDirectory() + "\\Analyses", "adopt", findings);
  bool has_areas = false;
  for (const SurveyItem& item : survey.Items()) {
    if (item.kind->tag != "STUDYAREA" || !item.is_own || item.folder.empty()) continue;
    has_areas = true;
    FindOrphansIn(survey, paths::Plain(item.folder) + "\\Analyses", "adopt", findings);
  }
  if (has_areas) {
    FindOrphansIn(survey, survey.WorkingDirectory() + "\\StudyAreas", "adopt", findings);
  }
}

void TrashFolder(Survey& /*survey*/, const Finding& finding, Repair& repair) {
  repair.steps.push_back(fmt::format("the folder {}: goes to the trash", finding.path));
  repair.trashed.push_back(finding.path);
}

void FindLostAnalyses(const Survey& survey, Findings& findings) {
  if (!survey.HasWorkingDirectory()) return;
  const auto folders = FoldersOfItems(survey);
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    if (!IsFolderMissing(survey, item)) continue;
    const std::string area = DeletedArea(survey, item, folders);
    if (area.empty()) continue;
    findings.Add(survey, i, fmt::format("lost its folder with that of its study area, {}.", area))
        .At(item.folder);
  }
}

void RemoveItem(Survey& survey, const Finding& finding, Repair& repair) {
  const SurveyItem& item = survey.Items()[finding.index];
  repair.steps.push_back(fmt::format("the {}: is no longer listed", item.Label()));
  Survey::Remove(item);
}

// Whether the layer file can be missed: it has a full path, and the folder that it is in is there.
bool CanMissFile(const Survey& survey, const SurveyItem& item) {
  if (item.file.empty() || !item.is_own || !paths::IsFull(item.file)) return false;
  const bool went_with_folder = item.kind->HasFolder() && paths::IsBelow(item.file, item.folder) &&
                                !survey.Disk().HasFolder(paths::Plain(item.folder) + "\\");
  return !went_with_folder && !MovedPath(survey, item.file);
}

bool HasReservedFile(const Survey& survey, const SurveyItem& item) {
  return survey.Disk().HasFileNamed(paths::Parent(item.file), paths::LastName(item.file));
}

void FindMissingFiles(const Survey& survey, Findings& findings) {
  if (!survey.HasWorkingDirectory()) return;
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    if (!CanMissFile(survey, item) || survey.Disk().HasFile(item.file)) continue;
    if (item.is_reserved && HasReservedFile(survey, item)) continue;
    const bool is_early = item.is_reserved || IsNew(survey, item);
    findings
        .Add(
            survey, i,
            fmt::format("has no layer file{}: {} is not there.", is_early ? " yet" : "", item.file))
        .At(item.file)
        .As(is_early ? Severity::kInformation : Severity::kError);
  }
}

// A layer file in the folder of the missing one whose metadata have the identifier.
std::string FileWithGuid(const Survey& survey, const SurveyItem& item) {
  const std::string folder = paths::Parent(item.file);
  for (const std::string& name : survey.Disk().FilesIn(folder)) {
    if (name.ends_with(".xml")) continue;
    const std::string file = folder + "\\" + name;
    const auto& description = survey.DescriptionOf(file);
    if (!description.guid.empty() && description.guid == item.guid) return file;
  }
  return "";
}

void FindFile(Survey& survey, const Finding& finding, Repair& repair) {
  const SurveyItem& item = survey.Items()[finding.index];
  const std::string file = FileWithGuid(survey, item);
  if (!file.empty()) SetAttributeOf(item, item.kind->file_attribute, file, repair);
}

void FindSharedFiles(const Survey& survey, Findings& findings) {
  std::map<std::string, std::size_t> first;
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    if (item.file.empty()) continue;
    const auto [other, is_new] = first.try_emplace(paths::Key(item.file), i);
    if (is_new) continue;
    const bool is_younger = IsYounger(survey, i, other->second);
    const std::size_t younger = is_younger ? i : other->second;
    const std::size_t older = is_younger ? other->second : i;
    other->second = older;
    if (!survey.Items()[younger].is_own) continue;
    findings
        .Add(survey, younger,
             fmt::format("has the layer file of the {}: {}.", survey.Items()[older].Label(),
                         item.file))
        .At(item.file);
  }
}

bool IsFileTaken(const Survey& survey, const std::string& file) {
  return survey.Disk().HasFile(file) ||
         std::ranges::any_of(survey.Items(), [&](const SurveyItem& item) {
           return paths::Key(item.file) == paths::Key(file) ||
                  paths::Key(item.element->Attribute(item.kind->file_attribute)) ==
                      paths::Key(file);
         });
}

void GiveOwnFile(Survey& survey, const Finding& finding, Repair& repair) {
  SurveyItem& item = survey.Items()[finding.index];
  const std::string name = paths::LastName(item.file);
  const std::string base(paths::WithoutExtension(name));
  const std::string extension = name.substr(base.size());
  const std::string folder = paths::Parent(item.file) + "\\";
  const std::string free = FreeName(base, [&](const std::string& other) {
    return IsFileTaken(survey, folder + other + extension);
  });
  item.file = folder + free + extension;
  SetAttributeOf(item, item.kind->file_attribute, item.is_reserved ? free : item.file, repair);
}

using enum Severity;

constexpr Rule kDiskRules[] = {
    {"folder.missing", kError, "the folder of a study area or analysis is not there",
     "Everything that works with the item fails. It was deleted or renamed by hand, or its "
     "creation failed.",
     "finds it beside its place by the identifier in its layer's metadata, else makes it", false,
     &FindMissingFolders, &FindOrMakeFolder},
    {"folder.orphan", kWarning, "a folder of no study area or analysis",
     "A deletion failed half way, or the list was lost. Nothing is deleted unless you ask for "
     "that.",
     "moves it to the trash, for those that are not adopted", false, &FindOrphans, &TrashFolder},
    {"layerfile.missing", kError, "a layer file is not there; a note in the first day",
     "The map has nothing to show. In the first day the application may still be going to write "
     "it.",
     "finds it in its folder by the identifier in its metadata", false, &FindMissingFiles,
     &FindFile},
    {"layerfile.shared", kError, "two items have one layer file",
     "What changes or deletes the layer of one of them does so to the other.",
     "gives the younger a path of its own", false, &FindSharedFiles, &GiveOwnFile},
    {"analysis.in-deleted-area", kError, "an analysis whose folder went with its study area",
     "The study area was deleted with the folders in it, while the analysis stayed in its list.",
     "removes it from the list", false, &FindLostAnalyses, &RemoveItem}};

}  // namespace

std::span<const Rule> DiskRules() { return kDiskRules; }

}  // namespace kvdm
