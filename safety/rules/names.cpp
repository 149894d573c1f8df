// Rules of names that a system, a code page or another program takes for others.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <set>

#include "safety/paths.h"
#include "safety/rules/rules.h"

namespace kvdm {
namespace {

constexpr std::size_t kLongestName = 255;

// The paths that an item is stored with, by attribute.
std::vector<std::pair<std::string, std::string>> PathsOf(const SurveyItem& item) {
  std::vector<std::pair<std::string, std::string>> stored;
  if (item.kind->HasFolder()) stored.emplace_back("DIRNAME", item.folder);
  stored.emplace_back(item.kind->file_attribute,
                      item.element->Attribute(item.kind->file_attribute));
  std::erase_if(stored, [](const auto& path) { return path.second.empty(); });
  return stored;
}

// Calls `look` for each name in the paths of the project's own items, once for each item.
template <class Look>
void ForEachName(const Survey& survey, Look look) {
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    if (!item.is_own) continue;
    std::set<std::string> seen;
    for (const auto& [attribute, path] : PathsOf(item)) {
      const std::string name = paths::LastName(path);
      if (seen.insert(name).second) look(i, name, path);
    }
  }
}

bool IsDevice(std::string_view name) {
  constexpr std::array kDevices = {"con", "prn", "aux", "nul"};
  const std::string base = paths::Key(name.substr(0, name.find('.')));
  const bool is_port = base.size() == 4 && (base.starts_with("com") || base.starts_with("lpt")) &&
                       base[3] >= '1' && base[3] <= '9';
  return is_port || std::ranges::find(kDevices, base) != kDevices.end();
}

// What Windows takes amiss in a name; "" for nothing.
std::string Trouble(std::string_view name) {
  if (name == "..") return "leads upwards";
  if (IsDevice(name)) return "is that of a device";
  const bool has_control =
      std::ranges::any_of(name, [](char c) { return static_cast<unsigned char>(c) < 0x20; });
  if (has_control) return "has a control character";
  const std::size_t place = name.find_first_of(R"(:*?"<>|)");
  return place == name.npos ? "" : fmt::format("has the character {}", name[place]);
}

void FindUnportableNames(const Survey& survey, Findings& findings) {
  ForEachName(survey, [&](std::size_t i, const std::string& name, const std::string& path) {
    const std::string trouble = Trouble(name);
    if (trouble.empty()) return;
    findings
        .Add(survey, i,
             fmt::format("can't be kept on Windows: the name of {} {}. Give it another name on the "
                         "disk; 'kvdm doctor --fix folder.missing layerfile.missing' then finds "
                         "it by its identifier.",
                         path, trouble))
        .At(path);
  });
}

void FindLongNames(const Survey& survey, Findings& findings) {
  ForEachName(survey, [&](std::size_t i, const std::string& name, const std::string& path) {
    if (name.size() <= kLongestName) return;
    findings
        .Add(survey, i,
             fmt::format("has a folder or file whose name has {} bytes; file systems "
                         "take {}.",
                         name.size(), kLongestName))
        .At(path);
  });
}

// A path without the blanks and dots that Windows drops at the ends of names.
std::string Trimmed(const std::string& path) {
  std::string trimmed;
  for (std::size_t i = 0; i <= path.size(); ++i) {
    if (i == path.size() || path[i] == '\\') {
      const std::size_t name = trimmed.rfind('\\') + 1;
      const std::string_view last = std::string_view(trimmed).substr(name);
      const bool is_step = last == "." || last == "..";
      if (!is_step) trimmed.erase(std::max(name, trimmed.find_last_not_of(". ") + 1));
    }
    if (i < path.size()) trimmed += path[i];
  }
  return trimmed;
}

void FindTrailing(const Survey& survey, Findings& findings) {
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    if (!item.is_own) continue;
    for (const auto& [attribute, path] : PathsOf(item)) {
      if (Trimmed(path) == path) continue;
      findings
          .Add(survey, i,
               fmt::format("has a name in its {} that ends in a blank or dot, which Windows drops: "
                           "'{}'.",
                           attribute, path))
          .At(attribute);
    }
  }
}

// Where the disk has the name without them, that is what the path means.
void FollowTrailing(Survey& survey, const Finding& finding, Repair& repair) {
  const SurveyItem& item = survey.Items()[finding.index];
  const std::string trimmed = Trimmed(item.element->Attribute(finding.path));
  const std::string name = paths::LastName(trimmed);
  const std::string parent = paths::Parent(trimmed);
  const auto folders = survey.Disk().FoldersIn(parent);
  const auto files = survey.Disk().FilesIn(parent);
  const bool is_there = std::ranges::find(folders, name) != folders.end() ||
                        std::ranges::find(files, name) != files.end();
  if (is_there) SetAttributeOf(item, finding.path, trimmed, repair);
}

// The first character of a text that the registry would store replaced; nothing for none.
std::optional<std::string> Unheld(const Survey& survey, std::string_view text) {
  const Registry& registry = *survey.About().platform.registry;
  for (std::size_t i = 0; i < text.size();) {
    const auto first = static_cast<unsigned char>(text[i]);
    const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    auto character = static_cast<char32_t>(length == 1 ? first : first & (0xFFU >> (length + 1)));
    for (std::size_t k = 1; k < length && i + k < text.size(); ++k) {
      character = character << 6U | (static_cast<unsigned char>(text[i + k]) & 0x3FU);
    }
    if (!registry.Holds(character)) return std::string(text.substr(i, length));
    i += length;
  }
  return std::nullopt;
}

// The registry holds the study areas.
void FindUnheldNames(const Survey& survey, Findings& findings) {
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    if (item.kind->tag != "STUDYAREA" || !item.is_own) continue;
    const auto character = Unheld(survey, item.name + item.folder + item.file);
    if (!character) continue;
    findings
        .Add(survey, i,
             fmt::format("has the character {} in its name or paths, which the registry would "
                         "store as '?'.",
                         *character))
        .By(fmt::format("area rename {} NEW", item.Selector()));
  }
}

using enum Severity;

constexpr Rule kNameRules[] = {
    {"name.not-portable", kWarning, "a folder or file with a name that Windows does not take",
     "On Windows such a file or folder can be neither made nor opened; a packed project does not "
     "unpack there.",
     "", false, &FindUnportableNames},
    {"name.trailing-blank-or-dot", kWarning, "a name that ends in what Windows drops",
     "Windows drops the end of the name, so that the stored path is another one than the folder.",
     "rewrites the path to the folder or file that there is", false, &FindTrailing,
     &FollowTrailing},
    {"name.too-long", kWarning, "a folder or file with a name of over 255 bytes",
     "File systems take no longer names; a copy or a pack of the project fails.", "", false,
     &FindLongNames},
    {"name.not-in-codepage", kWarning, "a study area with a character that the registry replaces",
     "The registry stores ? in its place, and by then the name and the folder are not found.", "",
     false, &FindUnheldNames}};

}  // namespace

std::span<const Rule> NameRules() { return kNameRules; }

}  // namespace kvdm
