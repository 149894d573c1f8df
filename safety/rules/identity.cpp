// Rules of identity: identifiers, names, and the other attributes that every item has.
#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <map>

#include "safety/paths.h"
#include "safety/rules/rules.h"

namespace kvdm {
namespace {

bool IsAttributeMissing(const SurveyItem& item, std::string_view attribute) {
  return std::ranges::none_of(item.element->attributes,
                              [&](const auto& present) { return present.first == attribute; });
}

std::vector<std::string> Needed(const StoredKind& kind) {
  std::vector<std::string> attributes = {"NAME", "GUID", std::string(kind.file_attribute)};
  if (kind.HasFolder()) attributes.emplace_back("DIRNAME");
  return attributes;
}

void FindMissingAttributes(const Survey& survey, Findings& findings) {
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    if (!item.is_own) continue;
    for (const std::string& attribute : Needed(*item.kind)) {
      if (IsAttributeMissing(item, attribute)) {
        findings.Add(survey, i, fmt::format("has no {}.", attribute)).At(attribute);
      }
    }
  }
}

bool IsGuidTaken(const Survey& survey, std::string_view guid) {
  return std::ranges::any_of(survey.Items(), [&](const SurveyItem& item) {
    return item.element->Attribute("GUID") == guid;
  });
}

std::string DefaultFolder(const Survey& survey, const SurveyItem& item) {
  if (!item.file.empty() && paths::IsFull(item.file)) return paths::Parent(item.file);
  return fmt::format("{}\\{}\\{}", survey.WorkingDirectory(), item.kind->folder, item.name);
}

std::string NameFor(const Survey& survey, const SurveyItem& item) {
  std::string name = survey.DescriptionOf(item).name;
  if (name.empty()) name = paths::LastName(item.folder);
  if (name.empty()) name = paths::WithoutExtension(paths::LastName(item.file));
  if (name.empty()) name = "Unnamed";
  return item.kind->is_wrapped ? "_" + name + "_" : name;
}

std::string FileFor(const Survey& survey, const SurveyItem& item) {
  const std::string folder = survey.WorkingDirectory() + "\\" + std::string(item.kind->folder);
  if (item.kind->tag == "DATAITEM") return fmt::format("{}\\{}", folder, item.name);
  if (!item.kind->HasFolder()) return fmt::format("{}\\{}.lyr", folder, item.name);
  return fmt::format("{}\\{}", paths::Plain(item.folder), item.kind->layer_file);
}

std::string ValueFor(const Survey& survey, const SurveyItem& item, std::string_view attribute) {
  if (attribute == "NAME") return NameFor(survey, item);
  if (attribute == "DIRNAME") return DefaultFolder(survey, item) + "\\";
  if (attribute != "GUID") return FileFor(survey, item);
  const std::string guid = survey.DescriptionOf(item).guid;
  return guid.empty() || IsGuidTaken(survey, guid) ? NewIdentifier(survey.About().platform) : guid;
}

void AddAttribute(Survey& survey, const Finding& finding, Repair& repair) {
  const SurveyItem& item = survey.Items()[finding.index];
  SetAttributeOf(item, finding.path, ValueFor(survey, item, finding.path), repair);
}

void FindDuplicateGuids(const Survey& survey, Findings& findings) {
  std::map<std::string_view, std::size_t> first;
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    if (item.guid.empty()) continue;
    const auto [other, is_new] = first.try_emplace(item.guid, i);
    if (is_new) continue;
    const bool is_younger = IsYounger(survey, i, other->second);
    const std::size_t younger = is_younger ? i : other->second;
    const std::size_t older = is_younger ? other->second : i;
    if (!is_younger) other->second = i;
    if (!survey.Items()[younger].is_own) continue;
    findings.Add(survey, younger,
                 fmt::format("has the identifier {} of the {}: only one of them is found by it.",
                             item.guid, survey.Items()[older].Label()));
  }
}

void GiveNewGuid(Survey& survey, const Finding& finding, Repair& repair) {
  const SurveyItem& item = survey.Items()[finding.index];
  const std::string guid = NewIdentifier(survey.About().platform);
  SetAttributeOf(item, "GUID", guid, repair);
  if (survey.DescriptionOf(item).guid.empty()) return;
  repair.steps.push_back(fmt::format("the metadata of {}: get that identifier", item.file));
  repair.identities.emplace_back(item.file, guid);
}

bool IsGuid(std::string_view text) {
  constexpr std::string_view kForm = "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}";
  return std::ranges::equal(kForm, text, [](char expected, char character) {
    return expected == 'x' ? std::isxdigit(static_cast<unsigned char>(character)) != 0
                           : expected == character;
  });
}

void FindMalformedGuids(const Survey& survey, Findings& findings) {
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    if (item.guid.empty() || !item.is_own || IsGuid(item.guid)) continue;
    findings.Add(survey, i, fmt::format("has the identifier {}, which is none.", item.guid));
  }
}

// Items whose names are the same to `key`, and the same or not to the letter.
void FindNamesakes(const Survey& survey, Findings& findings, std::string (*key)(std::string_view),
                   bool are_equal, const char* sentence) {
  std::map<std::pair<std::string_view, std::string>, std::size_t> first;
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    if (!item.is_own || item.name.empty()) continue;
    const auto [other, is_new] = first.try_emplace({item.kind->tag, key(item.name)}, i);
    const SurveyItem& same = survey.Items()[other->second];
    if (is_new || (item.name == same.name) != are_equal) continue;
    findings.Add(survey, i, fmt::format(fmt::runtime(sentence), same.Label()))
        .By(fmt::format("{} rename {} NEW", item.kind->command, item.Selector()));
  }
}

void FindDuplicateNames(const Survey& survey, Findings& findings) {
  FindNamesakes(
      survey, findings, [](std::string_view name) { return std::string(name); }, true,
      "has the name of the other {}: only the first is found by it.");
}

void FindCaseOnlyNames(const Survey& survey, Findings& findings) {
  FindNamesakes(survey, findings, &paths::Key, false,
                "differs from the {} in letter case only: that is one folder on Windows.");
}

// The stored name as a look-up composes it.
std::string StoredName(const SurveyItem& item, const std::string& name) {
  return item.kind->is_wrapped ? "_" + name + "_" : name;
}

void FindUnfindableNames(const Survey& survey, Findings& findings) {
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    const std::string stored = item.element->Attribute("NAME");
    if (stored.empty() || !item.is_own) continue;
    if (stored.find('"') != stored.npos) {
      findings.Add(survey, i, "has a double quote in its name, so that nothing finds it by that.");
    } else if (stored != StoredName(item, item.name)) {
      findings
          .Add(survey, i,
               "is stored without the underscores around its name, so that nothing finds it by "
               "that.")
          .Safely();
    }
  }
}

bool IsNameTaken(const Survey& survey, const SurveyItem& item, const std::string& name) {
  return std::ranges::any_of(survey.Items(), [&](const SurveyItem& other) {
    return other.kind == item.kind && other.element != item.element &&
           other.element->Attribute("NAME") == StoredName(item, name);
  });
}

void RenameFindable(Survey& survey, const Finding& finding, Repair& repair) {
  const SurveyItem& item = survey.Items()[finding.index];
  std::string name = item.name;
  std::ranges::replace(name, '"', '\'');
  if (name != item.name) {
    name = FreeName(name, [&](const std::string& free) { return IsNameTaken(survey, item, free); });
  }
  SetAttributeOf(item, "NAME", StoredName(item, name), repair);
  const bool is_open =
      item.kind->tag == "STUDYAREA" && survey.State(kOpenAreaProperty) == item.name;
  if (is_open) repair.wanted.state[kOpenAreaProperty] = name;
}

void FindReservedNames(const Survey& survey, Findings& findings) {
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    const bool is_reserved = item.kind->tag == "STUDYAREA" && item.is_own && item.name == "Default";
    if (is_reserved) findings.Add(survey, i, "is left out of the list of names.");
  }
}

using enum Severity;

constexpr Rule kIdentityRules[] = {
    {"attribute.missing", kError, "an item lacks its name, identifier, folder or file",
     "Without a name lists fail; without an identifier, folder or file the item is not found or "
     "not deleted.",
     "takes it from the layer's metadata or the folder, or makes a new one", false,
     &FindMissingAttributes, &AddAttribute},
    {"guid.duplicate", kError, "two items have one identifier",
     "A look-up by identifier finds only one of them, and a change or deletion may meet the wrong "
     "one.",
     "gives the younger a new one, in its layer's metadata too", false, &FindDuplicateGuids,
     &GiveNewGuid},
    {"guid.malformed", kWarning, "an identifier of another form",
     "Other programs may refuse it, and look-ups in other letter case fail.", "gives a new one",
     false, &FindMalformedGuids, &GiveNewGuid},
    {"name.duplicate", kWarning, "two items of a kind have one name",
     "By its name only the first is ever reached. Rename one of them by its identifier.", "", false,
     &FindDuplicateNames},
    {"name.unfindable", kError, "a name by which nothing is found",
     "The item is listed, but no command and no program finds it by that name.",
     "puts an apostrophe for a double quote, or the underscores that are missing (safe)", false,
     &FindUnfindableNames, &RenameFindable},
    {"name.case-only", kWarning, "names that differ in letter case only",
     "On Windows both have one folder, and what is made for one overwrites the other.", "", false,
     &FindCaseOnlyNames},
    {"name.reserved", kInformation, "the study area that the list of names leaves out",
     "Programs do not list it, though it can be opened by name.", "", false, &FindReservedNames}};

}  // namespace

std::span<const Rule> IdentityRules() { return kIdentityRules; }

}  // namespace kvdm
