#include "safety/check.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <set>

#include <kvdm/platform/error.h>
#include <kvdm/platform/portable/sidecar_metadata.h>

#include "safety/rules/rules.h"

namespace kvdm {
namespace {

bool IsNamed(const Rule& rule, std::string_view name) {
  return rule.name == name || (rule.name.size() > name.size() && rule.name.starts_with(name) &&
                               rule.name[name.size()] == '.');
}

std::vector<Finding> FindingsOf(const Survey& survey, const Rule& rule) {
  std::vector<Finding> found;
  Findings findings(rule, found);
  rule.find(survey, findings);
  return found;
}

std::string WayOut(const Finding& finding) {
  const Rule& rule = *finding.rule;
  const bool is_meant = finding.severity == Severity::kInformation && !finding.is_safe;
  if (!finding.command.empty() || rule.mend == nullptr || is_meant) return finding.command;
  return fmt::format("doctor --fix {}", rule.name);
}

}  // namespace

std::string_view NameOf(Severity severity) {
  constexpr std::string_view kNames[] = {"note", "warning", "error"};
  return kNames[static_cast<int>(severity)];
}

Finding& Findings::Add(std::string sentence) {
  Finding finding;
  finding.rule = &rule_;
  finding.severity = rule_.severity;
  finding.sentence = std::move(sentence);
  finding.is_safe = rule_.is_safe;
  return found_.emplace_back(std::move(finding));
}

Finding& Findings::Add(const Survey& survey, std::size_t index, std::string_view rest_of_sentence) {
  const SurveyItem& item = survey.Items()[index];
  Finding& finding = Add(fmt::format("The {} {}", item.Label(), rest_of_sentence));
  finding.item = item.Label();
  finding.guid = item.guid;
  finding.index = index;
  return finding;
}

const std::vector<const Rule*>& Rules() {
  static const std::vector<const Rule*> rules = [] {
    std::vector<const Rule*> all;
    for (const auto group :
         {DocumentRules(), IdentityRules(), NameRules(), DiskRules(), FolderRules(), PathRules(),
          PathFormRules(), ProjectRules(), MetadataRules(), ValueRules()}) {
      for (const Rule& rule : group) all.push_back(&rule);
    }
    return all;
  }();
  return rules;
}

std::vector<const Rule*> RulesNamed(const std::vector<std::string>& names) {
  if (names.empty()) return Rules();
  std::vector<const Rule*> chosen;
  std::set<std::string_view> known;
  for (const Rule* rule : Rules()) {
    bool is_chosen = false;
    for (const std::string& name : names) {
      if (!IsNamed(*rule, name)) continue;
      known.insert(name);
      is_chosen = true;
    }
    if (is_chosen) chosen.push_back(rule);
  }
  for (const std::string& name : names) {
    if (known.contains(name)) continue;
    throw Failure(ExitCode::kUsage,
                  fmt::format("There is no rule {}. 'kvdm check --rules' lists them.", name));
  }
  return chosen;
}

std::vector<Finding> Check(const Subject& subject, const std::vector<const Rule*>& rules) {
  const Survey survey(subject);
  std::vector<Finding> all;
  for (const Rule* rule : rules) {
    std::ranges::move(FindingsOf(survey, *rule), std::back_inserter(all));
  }
  for (Finding& finding : all) finding.command = WayOut(finding);
  std::ranges::stable_sort(all, std::ranges::greater(), &Finding::severity);
  return all;
}

Repair PlanRepair(const Subject& subject, const Rule& rule, bool only_safe) {
  Survey survey(subject);
  Repair repair;
  repair.wanted = subject.stored;
  if (rule.mend == nullptr) return repair;
  for (const Finding& finding : FindingsOf(survey, rule)) {
    if (finding.is_safe || !only_safe) rule.mend(survey, finding, repair);
  }
  const Holdings changed = survey.Wanted();
  if (changed.metadata != subject.stored.metadata) repair.wanted.metadata = changed.metadata;
  if (changed.catalogue != subject.stored.catalogue) repair.wanted.catalogue = changed.catalogue;
  return repair;
}

void MakeFolders(const Platform& platform, const Repair& repair) {
  for (const std::string& folder : repair.folders) {
    std::string made;
    for (std::string_view rest = folder; !rest.empty();) {
      const std::size_t end = std::min(rest.find('\\'), rest.size());
      made += std::string(rest.substr(0, end)) + "\\";
      rest.remove_prefix(std::min(end + 1, rest.size()));
      if (!made.ends_with(":\\") && !platform.files->FolderExists(made)) {
        platform.files->CreateFolder(made);
      }
    }
  }
  for (const std::string& folder : repair.hidden) platform.files->HideFolder(folder);
}

void ChangeIdentities(const Platform& platform, const Repair& repair) {
  for (const auto& [file, guid] : repair.identities) {
    const auto metadata = MakeSidecarMetadata(platform, file);
    const auto document = metadata->ReadDocument();
    document->PrepareForUpdate();
    document->PutValue(kGuidPath, guid);
    metadata->WriteDocument(document);
  }
}

Record ToRecord(const Finding& finding) {
  const auto text = [](const std::string& value) { return value.empty() ? Field() : Field(value); };
  return {{"severity", std::string(NameOf(finding.severity))},
          {"rule", std::string(finding.rule->name)},
          {"sentence", finding.sentence},
          {"item", text(finding.item)},
          {"guid", text(finding.guid)},
          {"path", text(finding.path)},
          {"command", finding.command.empty() ? Field() : Field("kvdm " + finding.command)},
          {"safe", finding.is_safe}};
}

}  // namespace kvdm
