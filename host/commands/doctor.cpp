// kvdm doctor: mends what 'kvdm check' finds, one rule at a time.
#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "host/checked_project.h"
#include "host/commands/groups.h"
#include "host/os.h"
#include "host/project_file.h"

namespace kvdm {
namespace {

class Doctor : public Command {
 public:
  explicit Doctor(Arguments arguments) {
    arguments.List("--fix", fix_, "The rules whose findings are mended");
    arguments.Flag("--all-safe", all_safe_, "Mend what takes nothing from anybody");
    arguments.Flag("--dry-run", dry_run_, "Only say what would be done");
  }

  void Execute(const Invocation& invocation) override {
    if (fix_.empty() == !all_safe_) {
      throw Failure(ExitCode::kUsage,
                    "Give either --fix RULE or --all-safe. 'kvdm check' says what is wrong, and "
                    "'kvdm check --rules' what can be mended.");
    }
    const auto rules = RulesNamed(fix_);
    const auto file = FindProjectFile(invocation.project);
    RequireWritable(file);
    std::optional<ChangeLock> lock;
    if (!dry_run_) {
      lock.emplace(file, Access::kChangeRegistry);
      Prepare(CheckedProject(file, Access::kChangeRegistry, invocation.out), invocation);
    }
    std::vector<Record> steps;
    for (const Rule* rule : rules) Mend(file, *rule, steps, invocation);
    Show(std::move(steps), invocation.out);
    if (!dry_run_ && !all_safe_) TellOfRest(file, rules, invocation.out);
  }

 private:
  static void RequireWritable(const std::filesystem::path& file) {
    if (!os::IsReadOnly(file)) return;
    throw Failure(ExitCode::kRefused,
                  fmt::format("The project {} is marked read-only. Make it writable before you "
                              "change anything.",
                              os::ToText(file)));
  }

  // What a change of a project begins with.
  static void Prepare(CheckedProject project, const Invocation& invocation) {
    const std::string problem = project.TenureProblem();
    if (!problem.empty() && !invocation.allowed.outside) throw Failure(ExitCode::kUnsafe, problem);
    project.Recover(invocation.words, invocation.allowed.outside);
  }

  void Mend(const std::filesystem::path& file, const Rule& rule, std::vector<Record>& steps,
            const Invocation& invocation) const {
    CheckedProject project(file, dry_run_ ? Access::kRead : Access::kChangeRegistry,
                           invocation.out);
    const Repair repair = PlanRepair(project.About(), rule, all_safe_);
    if (repair.steps.empty()) return;
    if (!dry_run_) project.Store(repair, invocation.words);
    for (const std::string& step : repair.steps) {
      steps.push_back({{"rule", std::string(rule.name)}, {"step", step}});
    }
  }

  void Show(std::vector<Record> steps, Output& out) const {
    std::string lines;
    for (const Record& step : steps) {
      lines += fmt::format("{}: {}\n", std::get<std::string>(step[0].second),
                           std::get<std::string>(step[1].second));
    }
    const auto count = static_cast<std::int64_t>(steps.size());
    lines += fmt::format("{} step{} {}", count, count == 1 ? "" : "s",
                         dry_run_ ? "would be done. Nothing was changed." : "done.");
    out.Lines({{"done", !dry_run_}}, "items", std::move(steps), lines);
  }

  // Ends with kFindings when the rules still find more than notes.
  static void TellOfRest(const std::filesystem::path& file, const std::vector<const Rule*>& rules,
                         Output& out) {
    const CheckedProject project(file, Access::kRead, out);
    auto left = Check(project.About(), rules);
    std::erase_if(
        left, [](const Finding& finding) { return finding.severity == Severity::kInformation; });
    for (const Finding& finding : left) {
      Output::Tell(
          fmt::format("kvdm doctor: still there: {}: {}", finding.rule->name, finding.sentence));
    }
    if (!left.empty()) out.EndWith(ExitCode::kFindings);
  }

  std::vector<std::string> fix_;
  bool all_safe_ = false;
  bool dry_run_ = false;
};

}  // namespace

void AddDoctorCommand(const CommandGroup& root) {
  root.Add<Doctor>("doctor", "Mend what 'kvdm check' finds, by a plan that is printed",
                   "kvdm doctor --all-safe\nkvdm doctor --fix folder.missing --dry-run\n"
                   "kvdm doctor --fix guid.duplicate name.unfindable");
}

}  // namespace kvdm
