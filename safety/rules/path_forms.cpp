// Rules of how paths are stored: their form, their length, and where they lead.
#include <fmt/format.h>

#include <algorithm>

#include "safety/paths.h"
#include "safety/rules/rules.h"

namespace kvdm {
namespace {

// What Windows takes without more ado, in its own characters.
constexpr std::size_t kLongestPath = 259;

std::size_t WindowsLength(std::string_view path) {
  std::size_t length = 0;
  for (const char byte : path) {
    const auto bits = static_cast<unsigned char>(byte);
    length += (bits & 0xC0U) == 0x80U ? 0 : bits >= 0xF0U ? 2 : 1;
  }
  return length;
}

// Calls `look` for each full path of the project's own items, with the attribute that has it.
template <class Look>
void ForEachPath(const Survey& survey, Look look) {
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    if (!item.is_own) continue;
    for (const std::string_view attribute :
         {std::string_view("DIRNAME"), item.kind->file_attribute}) {
      const std::string path = item.element->Attribute(attribute);
      if (paths::IsFull(path)) look(i, std::string(attribute), path);
    }
  }
}

void FindLongPaths(const Survey& survey, Findings& findings) {
  ForEachPath(survey, [&](std::size_t i, const std::string& attribute, const std::string& path) {
    if (WindowsLength(path) <= kLongestPath) return;
    findings
        .Add(survey, i,
             fmt::format("has a {} of {} characters; Windows takes {}. A working "
                         "directory with a shorter path helps: 'kvdm project move'.",
                         attribute, WindowsLength(path), kLongestPath))
        .At(path);
  });
}

// With one "\" between names, and with the end as it is.
std::string WithOneSeparator(const std::string& path) {
  std::string plain = path.starts_with("\\\\") ? "\\" + paths::Plain(path) : paths::Plain(path);
  if (path.ends_with('\\') || path.ends_with('/')) plain += '\\';
  return plain;
}

void FindMixedSeparators(const Survey& survey, Findings& findings) {
  ForEachPath(survey, [&](std::size_t i, const std::string& attribute, const std::string& path) {
    if (path.find('/') == path.npos) return;
    findings.Add(survey, i, fmt::format("has a / in its {}: {}.", attribute, path)).At(attribute);
  });
}

void PutOneSeparator(Survey& survey, const Finding& finding, Repair& repair) {
  const SurveyItem& item = survey.Items()[finding.index];
  SetAttributeOf(item, finding.path, WithOneSeparator(item.element->Attribute(finding.path)),
                 repair);
}

// The name that a folder has of `name`, but for the case of its letters; "" when it has none, or
// that very one.
std::string OtherCase(const Survey& survey, const std::string& folder, const std::string& name) {
  std::string found;
  for (const auto& names : {survey.Disk().FoldersIn(folder), survey.Disk().FilesIn(folder)}) {
    for (const std::string& there : names) {
      if (there == name) return "";
      if (paths::Key(there) == paths::Key(name)) found = there;
    }
  }
  return found;
}

// A path below the working directory with the names that the disk has.
std::string AsOnDisk(const Survey& survey, const std::string& path) {
  if (!paths::IsBelow(path, survey.WorkingDirectory())) return path;
  const std::string plain = paths::Plain(path);
  std::string real = plain.substr(0, survey.WorkingDirectory().size());
  for (std::size_t begin = real.size() + 1; begin < plain.size();) {
    const std::size_t end = std::min(plain.find('\\', begin), plain.size());
    const std::string name = plain.substr(begin, end - begin);
    const std::string other = OtherCase(survey, real, name);
    real += "\\" + (other.empty() ? name : other);
    begin = end + 1;
  }
  return plain == real ? path : real + (path.ends_with('\\') ? "\\" : "");
}

void FindOtherCase(const Survey& survey, Findings& findings) {
  if (!survey.HasWorkingDirectory()) return;
  ForEachPath(survey, [&](std::size_t i, const std::string& attribute, const std::string& path) {
    const std::string real = AsOnDisk(survey, path);
    if (real == path) return;
    findings
        .Add(survey, i,
             fmt::format("has a {} in other letter case than the disk: {}, where {} is.", attribute,
                         path, real))
        .At(attribute);
  });
}

void FollowCase(Survey& survey, const Finding& finding, Repair& repair) {
  const SurveyItem& item = survey.Items()[finding.index];
  SetAttributeOf(item, finding.path, AsOnDisk(survey, item.element->Attribute(finding.path)),
                 repair);
}

void FindOutside(const Survey& survey, Findings& findings) {
  if (!survey.HasWorkingDirectory()) return;
  ForEachPath(survey, [&](std::size_t i, const std::string& attribute, const std::string& path) {
    const bool is_inside = paths::IsBelow(path, survey.WorkingDirectory()) ||
                           paths::Key(path) == paths::Key(survey.WorkingDirectory());
    if (is_inside || MovedPath(survey, path)) return;
    findings
        .Add(survey, i,
             fmt::format("has a {} outside of the working directory: {}. What moves or packs the "
                         "project leaves that where it is.",
                         attribute, path))
        .At(path);
  });
}

void FindForeignAreas(const Survey& survey, Findings& findings) {
  std::vector<std::string> names;
  if (survey.WorkingDirectory().empty()) return;
  for (const SurveyItem& item : survey.Items()) {
    const bool is_foreign = !item.is_own && !MovedPath(survey, item.folder);
    if (is_foreign) names.push_back(item.name);
  }
  if (names.empty()) return;
  findings
      .Add(fmt::format("The list of study areas has some of other working directories: {}.",
                       fmt::join(names, ", ")))
      .By("area list --all");
}

using enum Severity;

constexpr Rule kFormRules[] = {
    {"path.outside-workdir", kWarning, "a folder or layer file outside of the working directory",
     "What moves, copies or packs the working directory leaves it behind.", "", false,
     &FindOutside},
    {"path.too-long", kWarning, "a path of over 259 characters",
     "Windows programs may fail to open it.", "", false, &FindLongPaths},
    {"path.case-differs", kWarning, "a path in other letter case than the disk",
     "It works on this system, and fails on one that tells letter cases apart.",
     "rewrites it as on the disk", false, &FindOtherCase, &FollowCase},
    {"path.mixed-separators", kWarning, "a path with /",
     "Programs that compare paths as texts take it for another folder.", "puts \\ in its place",
     false, &FindMixedSeparators, &PutOneSeparator},
    {"area.foreign", kInformation, "study areas of other working directories in the list",
     "The list serves all projects of a user. These are left alone unless --foreign is given.", "",
     false, &FindForeignAreas}};

}  // namespace

std::span<const Rule> PathFormRules() { return kFormRules; }

}  // namespace kvdm
