// Rules of what lies in the working directory and belongs to no item, and of the preset data.
#include <fmt/format.h>

#include <algorithm>
#include <set>

#include <kvdm/platform/error.h>

#include "safety/paths.h"
#include "safety/rules/rules.h"

namespace kvdm {
namespace {

// What a file shares with those that belong to it: "roads" of "roads.shp" and "roads.shp.xml".
std::string GroupOf(const std::string& name) { return paths::Key(name.substr(0, name.find('.'))); }

void FindOrphanedFilesIn(const Survey& survey, const std::string& name, Findings& findings) {
  const std::string folder = survey.WorkingDirectory() + "\\" + name;
  std::set<std::string> known;
  for (const SurveyItem& item : survey.Items()) {
    const std::string file = MovedPath(survey, item.file).value_or(item.file);
    const bool is_unplaced = !paths::IsFull(file);
    if (is_unplaced || paths::Key(paths::Parent(file)) == paths::Key(folder)) {
      known.insert(GroupOf(paths::LastName(file)));
    }
  }
  for (const std::string& file : survey.Disk().FilesIn(folder)) {
    if (file.starts_with('.') || !known.insert(GroupOf(file)).second) continue;
    findings.Add(fmt::format("The file {}\\{} belongs to no item.", folder, file))
        .At(folder + "\\" + file)
        .By("adopt");
  }
}

void FindOrphanedFiles(const Survey& survey, Findings& findings) {
  if (survey.Metadata() == nullptr || !survey.HasWorkingDirectory()) return;
  for (const char* name : {"StoreLayers", "CustLayers", "Data"}) {
    FindOrphanedFilesIn(survey, name, findings);
  }
}

constexpr char kTemporary[] = "KelvaroTemp";

void FindLeftovers(const Survey& survey, Findings& findings) {
  const std::string folder = survey.WorkingDirectory() + "\\" + kTemporary;
  if (!survey.HasWorkingDirectory()) return;
  const auto files = survey.Disk().FilesIn(folder);
  if (files.empty()) return;
  findings
      .Add(fmt::format("The temporary folder has files, in number {}, which a job that runs may "
                       "need.",
                       files.size()))
      .At(folder)
      .By("temp clean");
}

void FindSeenTemporary(const Survey& survey, Findings& findings) {
  if (!survey.HasWorkingDirectory()) return;
  const auto seen = survey.Disk().FoldersIn(survey.WorkingDirectory());
  if (std::ranges::find(seen, kTemporary) == seen.end()) return;
  findings.Add("The temporary folder is not hidden.")
      .At(survey.WorkingDirectory() + "\\" + kTemporary);
}

void HideTemporary(Survey& /*survey*/, const Finding& finding, Repair& repair) {
  repair.steps.push_back(fmt::format("the folder {}: is hidden", finding.path));
  repair.hidden.push_back(finding.path);
}

// Files and folders that a deletion would leave, or a save could not write.
void FindReadOnlyFiles(const Survey& survey, Findings& findings) {
  const auto& is_read_only = survey.About().is_read_only;
  if (!is_read_only || !survey.HasWorkingDirectory()) return;
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    if (!item.is_own || item.file.empty()) continue;
    for (const std::string& file : {item.file, item.file + ".xml"}) {
      if (!survey.Disk().HasFile(file) || !is_read_only(file)) continue;
      findings.Add(survey, i, fmt::format("has a file that is read-only: {}.", file)).At(file);
    }
  }
}

void FindReadOnlyFolders(const Survey& survey, Findings& findings) {
  const auto& is_read_only = survey.About().is_read_only;
  if (!is_read_only || !survey.HasWorkingDirectory()) return;
  for (const char* name :
       {"", "\\StudyAreas", "\\Analyses", "\\StoreLayers", "\\CustLayers", "\\Data"}) {
    const std::string folder = survey.WorkingDirectory() + name;
    if (!survey.Disk().HasFolder(folder + "\\") || !is_read_only(folder)) continue;
    findings.Add(fmt::format("The folder {} can't be written.", folder)).At(folder);
  }
}

// The preset data: read once, when it is asked for.
struct Presets {
  std::string problem;  // why they can't be read; "" when they can, and where there are none
  std::vector<DocumentNode> items;
};

Presets PresetsOf(const Survey& survey) {
  const Subject& subject = survey.About();
  if (subject.preset_folder.empty()) return {};
  const std::string file = paths::Plain(subject.preset_folder) + "\\PresetData.xml";
  try {
    const auto text = subject.platform.files->ReadFile(file);
    if (!text) return {file + " is not there", {}};
    const auto tree = ReadDocumentTree(*subject.platform.xml_parser, *text);
    if (!tree || tree->Root() == nullptr) return {file + " is not well-formed XML", {}};
    Presets presets{"", tree->Root()->children};
    std::erase_if(presets.items, [](const auto& item) { return item.name != "DATAITEM"; });
    return presets;
  } catch (const RuntimeError& error) {
    return {error.what(), {}};
  }
}

void FindUnreadablePresets(const Survey& survey, Findings& findings) {
  const Presets presets = PresetsOf(survey);
  if (presets.problem.empty()) return;
  findings.Add(fmt::format("The preset data can't be read: {}.", presets.problem))
      .At(survey.About().preset_folder);
}

std::string FileOf(const DocumentNode& preset) {
  std::string file;
  for (const DocumentNode& child : preset.children) file += child.text;
  const std::size_t begin = file.find_first_not_of(" \t\r\n");
  if (begin == file.npos) return "";
  return file.substr(begin, file.find_last_not_of(" \t\r\n") + 1 - begin);
}

void FindMissingPresets(const Survey& survey, Findings& findings) {
  for (const DocumentNode& preset : PresetsOf(survey).items) {
    const std::string file = paths::Plain(survey.About().preset_folder) + "\\" + FileOf(preset);
    if (survey.Disk().HasFile(file)) continue;
    findings
        .Add(fmt::format("The preset {} has no file: {} is not there.", preset.Attribute("NAME"),
                         file))
        .At(file);
  }
}

void FindDuplicatePresets(const Survey& survey, Findings& findings) {
  std::set<std::string> names;
  for (const DocumentNode& preset : PresetsOf(survey).items) {
    const std::string name = preset.Attribute("NAME");
    if (names.insert(name).second) continue;
    findings.Add(fmt::format("Two presets have the name {}; only the first is found by it.", name));
  }
}

using enum Severity;

constexpr Rule kFolderRules[] = {
    {"layerfile.orphan", kWarning, "a file among layers or data that no item names",
     "Nothing lists or deletes it, and its name stays taken.", "", false, &FindOrphanedFiles},
    {"temp.leftover", kInformation, "files in the temporary folder",
     "They take space. Programs empty that folder; a job that runs may still need them.", "", false,
     &FindLeftovers},
    {"temp.not-hidden", kInformation, "the temporary folder is seen in listings",
     "People may take the folder for theirs, and put work into it that is deleted.", "hides it",
     true, &FindSeenTemporary, &HideTemporary},
    {"permission.file-read-only", kWarning, "a layer or its metadata that nobody may write",
     "A deletion of the item would leave the file, and an export of metadata fails.", "", false,
     &FindReadOnlyFiles},
    {"permission.folder-read-only", kWarning, "a folder in which nobody may write",
     "Nothing can be made, renamed or deleted there.", "", false, &FindReadOnlyFolders},
    {"preset.unreadable", kWarning, "the list of preset data can't be read",
     "Programs show no preset data, without a message.", "", false, &FindUnreadablePresets},
    {"preset.file-missing", kWarning, "a preset whose file is not there",
     "It is offered, and fails when it is used.", "", false, &FindMissingPresets},
    {"preset.duplicate", kWarning, "two presets of one name",
     "Only the first of them can be chosen by name.", "", false, &FindDuplicatePresets}};

}  // namespace

std::span<const Rule> FolderRules() { return kFolderRules; }

}  // namespace kvdm
