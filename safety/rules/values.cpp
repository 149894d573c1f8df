// Rules of what items have beside identity and paths: parameters, comments, times, kinds of paths.
#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "safety/paths.h"
#include "safety/rules/rules.h"

namespace kvdm {
namespace {

// The capital form of a kind of path that is written in other case; "" for any other text.
std::string PathTypeMeant(const std::string& stored) {
  for (const char* type : {"RELATIVE", "ABSOLUTE"}) {
    if (stored != type && paths::Key(stored) == paths::Key(type)) return type;
  }
  return "";
}

void FindOddPathTypes(const Survey& survey, Findings& findings) {
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    const std::string stored = item.element->Attribute("PATHTYPE");
    if (!item.is_own || PathTypeMeant(stored).empty()) continue;
    findings.Add(survey, i,
                 fmt::format("has the kind of path '{}', which counts as ABSOLUTE.", stored));
  }
}

void PutPathType(Survey& survey, const Finding& finding, Repair& repair) {
  const SurveyItem& item = survey.Items()[finding.index];
  SetAttributeOf(item, "PATHTYPE", PathTypeMeant(item.element->Attribute("PATHTYPE")), repair);
}

bool IsParameter(const DocumentNode& node) {
  return node.kind == DocumentNode::Kind::kElement && node.name == "PARAM";
}

// The parameters of an item that `is_odd` holds for, given those before it by name.
template <class IsOdd>
std::vector<DocumentNode*> OddParameters(const SurveyItem& item, IsOdd is_odd) {
  std::vector<DocumentNode*> odd;
  std::set<std::string> names;
  for (DocumentNode& child : item.element->children) {
    if (!IsParameter(child)) continue;
    const std::string name = child.Attribute("NAME");
    const bool is_new = names.insert(name).second;
    if (is_odd(name, is_new)) odd.push_back(&child);
  }
  return odd;
}

std::vector<DocumentNode*> Duplicates(const SurveyItem& item) {
  return OddParameters(
      item, [](const std::string& name, bool is_new) { return !is_new && !name.empty(); });
}

std::vector<DocumentNode*> Nameless(const SurveyItem& item) {
  return OddParameters(item, [](const std::string& name, bool) { return name.empty(); });
}

using Parameters = std::vector<DocumentNode*> (*)(const SurveyItem&);

void FindParameters(const Survey& survey, Findings& findings, Parameters odd,
                    const char* sentence) {
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    if (!item.is_own) continue;
    const auto parameters = odd(item);
    if (parameters.empty()) continue;
    findings.Add(survey, i,
                 fmt::format(fmt::runtime(sentence), parameters.front()->Attribute("NAME")));
  }
}

void RemoveParameters(Survey& survey, const Finding& finding, Repair& repair, Parameters odd) {
  const SurveyItem& item = survey.Items()[finding.index];
  for (DocumentNode* parameter : odd(item)) {
    repair.steps.push_back(
        fmt::format("the parameter '{}' of the {}: the one with the value '{}' goes",
                    parameter->Attribute("NAME"), item.Label(), parameter->Attribute("VALUE")));
    parameter->name.clear();
  }
}

void FindDuplicateParameters(const Survey& survey, Findings& findings) {
  FindParameters(survey, findings, &Duplicates,
                 "has the parameter {} more than once; only the first is ever read.");
}

void MergeParameters(Survey& survey, const Finding& finding, Repair& repair) {
  RemoveParameters(survey, finding, repair, &Duplicates);
}

void FindNamelessParameters(const Survey& survey, Findings& findings) {
  FindParameters(survey, findings, &Nameless, "has a parameter without a name{}.");
}

void RemoveNamelessParameters(Survey& survey, const Finding& finding, Repair& repair) {
  RemoveParameters(survey, finding, repair, &Nameless);
}

// The texts of an item's comments in which a line ends with one carriage return too many.
std::vector<DocumentNode*> DoubledComments(const SurveyItem& item) {
  std::vector<DocumentNode*> doubled;
  for (DocumentNode& child : item.element->children) {
    if (child.name != "COMMENTS") continue;
    for (DocumentNode& text : child.children) {
      if (text.text.find("\r\r\n") != std::string::npos) doubled.push_back(&text);
    }
  }
  return doubled;
}

void FindDoubledReturns(const Survey& survey, Findings& findings) {
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    if (!item.is_own || DoubledComments(item).empty()) continue;
    findings.Add(survey, i, "has comments whose lines end with carriage returns too many.");
  }
}

void PutSingleReturns(Survey& survey, const Finding& finding, Repair& repair) {
  const SurveyItem& item = survey.Items()[finding.index];
  for (DocumentNode* text : DoubledComments(item)) {
    for (std::size_t at = 0; (at = text->text.find("\r\r\n")) != std::string::npos;) {
      text->text.erase(at, 1);
    }
    repair.steps.push_back(
        fmt::format("the comments of the {}: their lines end as usual", item.Label()));
  }
}

void FindUnreadableTimes(const Survey& survey, Findings& findings) {
  for (std::size_t i = 0; i < survey.Items().size(); ++i) {
    const SurveyItem& item = survey.Items()[i];
    const std::string time = item.element->Attribute("CREATIONTIME");
    if (!item.is_own || time.empty() || SecondsOf(time)) continue;
    findings.Add(survey, i,
                 fmt::format("has a time of creation of another form than ours: '{}'.", time));
  }
}

using enum Severity;

constexpr Rule kValueRules[] = {
    {"pathtype.odd", kWarning, "a kind of path in other letter case",
     "The component takes it for a full path, and looks for the file in the wrong place.",
     "corrects it", true, &FindOddPathTypes, &PutPathType},
    {"param.duplicate", kWarning, "two parameters of an item have one name",
     "A later one of that name is never read, and never changed.",
     "removes those that are never read", false, &FindDuplicateParameters, &MergeParameters},
    {"param.empty-name", kWarning, "a parameter without a name",
     "Programs show a line without a name, and can't remove it.", "removes it", false,
     &FindNamelessParameters, &RemoveNamelessParameters},
    {"comments.cr-doubling", kWarning, "comments whose lines end with carriage returns too many",
     "Each reading and writing adds another empty line.", "removes those", true,
     &FindDoubledReturns, &PutSingleReturns},
    {"creation-time.unreadable", kInformation, "a time of creation of another form",
     "It can't be told which of two items is the younger.", "", false, &FindUnreadableTimes}};

}  // namespace

std::span<const Rule> ValueRules() { return kValueRules; }

}  // namespace kvdm
