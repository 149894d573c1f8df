// kvdm check: what is wrong with a project, its working directory and the catalogue.
#include <fmt/format.h>

#include <algorithm>

#include "host/checked_project.h"
#include "host/commands/groups.h"
#include "host/project_file.h"

namespace kvdm {
namespace {

Severity SeverityNamed(const std::string& name) {
  for (const Severity severity : {Severity::kInformation, Severity::kWarning, Severity::kError}) {
    if (name == NameOf(severity) || (name == "info" && severity == Severity::kInformation)) {
      return severity;
    }
  }
  throw Failure(ExitCode::kUsage, "--fail-on takes info, warning or error.");
}

std::int64_t CountOf(const std::vector<Finding>& findings, Severity severity) {
  return std::ranges::count(findings, severity, &Finding::severity);
}

// "1 error, 0 warnings, 2 notes"
std::string Summary(const std::vector<Finding>& findings) {
  std::string summary;
  for (const Severity severity : {Severity::kError, Severity::kWarning, Severity::kInformation}) {
    const std::int64_t count = CountOf(findings, severity);
    summary += fmt::format("{}{} {}{}", summary.empty() ? "" : ", ", count, NameOf(severity),
                           count == 1 ? "" : "s");
  }
  return summary;
}

std::string LineOf(const Finding& finding) {
  return fmt::format("{}: {}: {}{}", NameOf(finding.severity), finding.rule->name, finding.sentence,
                     finding.command.empty() ? "" : fmt::format(" [kvdm {}]", finding.command));
}

class CheckCommand : public Command {
 public:
  explicit CheckCommand(Arguments arguments) {
    arguments.List("--only", only_, "Only these rules, or groups of rules");
    arguments.List("--skip", skip_, "All but these");
    arguments.Optional("--fail-on", fail_on_,
                       "From which severity on it ends with 6: info, warning or error, as without");
    arguments.Flag("--rules", lists_rules_, "List the rules");
  }

  void Execute(const Invocation& invocation) override {
    if (lists_rules_) return ListRules(invocation.out);
    const Severity limit = SeverityNamed(fail_on_.value_or("error"));
    const auto rules = Chosen();
    const CheckedProject project(FindProjectFile(invocation.project), Access::kRead,
                                 invocation.out);
    const auto findings = Check(project.About(), rules);
    Show(findings, invocation.out);
    const bool fails = std::ranges::any_of(
        findings, [&](const Finding& finding) { return finding.severity >= limit; });
    if (fails) invocation.out.EndWith(ExitCode::kFindings);
  }

 private:
  static void ListRules(Output& out) {
    std::vector<Record> rows;
    for (const Rule* rule : Rules()) {
      rows.push_back({{"rule", std::string(rule->name)},
                      {"severity", std::string(NameOf(rule->severity))},
                      {"detects", std::string(rule->detects)},
                      {"repair", rule->repair.empty() ? Field() : std::string(rule->repair)},
                      {"safe", rule->is_safe}});
    }
    out.Items(std::move(rows), "There are no rules.");
  }

  [[nodiscard]] std::vector<const Rule*> Chosen() const {
    auto rules = RulesNamed(only_);
    if (skip_.empty()) return rules;
    const auto skipped = RulesNamed(skip_);
    std::erase_if(
        rules, [&](const Rule* rule) { return std::ranges::find(skipped, rule) != skipped.end(); });
    return rules;
  }

  static void Show(const std::vector<Finding>& findings, Output& out) {
    std::string lines;
    std::vector<Record> rows;
    for (const Finding& finding : findings) {
      lines += LineOf(finding) + "\n";
      rows.push_back(ToRecord(finding));
    }
    out.Lines({{"errors", CountOf(findings, Severity::kError)},
               {"warnings", CountOf(findings, Severity::kWarning)},
               {"notes", CountOf(findings, Severity::kInformation)}},
              "items", std::move(rows), lines + Summary(findings));
  }

  std::vector<std::string> only_;
  std::vector<std::string> skip_;
  std::optional<std::string> fail_on_;
  bool lists_rules_ = false;
};

}  // namespace

void AddCheckCommand(const CommandGroup& root) {
  root.Add<CheckCommand>("check", "Look for what is wrong with a project; changes nothing",
                         "kvdm check\nkvdm check --only registry catalogue --json\n"
                         "kvdm check --skip metadata.missing --fail-on warning");
}

}  // namespace kvdm
