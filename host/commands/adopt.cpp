// kvdm adopt: items on the disk that the project, or the list of study areas, no longer has.
#include "safety/adopt.h"

#include <fmt/format.h>

#include "host/commands/groups.h"
#include "host/project_file.h"
#include "host/stored_project.h"

namespace kvdm {
namespace {

class Adopt : public ProjectCommand {
 public:
  explicit Adopt(Arguments arguments) {
    arguments.Optional("DIR", folder_, "Where to look; without it in the working directory");
    arguments.Flag("--dry-run", dry_run_, "Show what was found, and change nothing");
  }

 private:
  [[nodiscard]] bool Changes() const override { return !dry_run_; }
  [[nodiscard]] bool ChangesRegistry() const override { return true; }

  void Run(Session& session, Output& out) override {
    const Platform& platform = session.Component().GetServices().platform;
    const Documents stored = StoredDocuments(session.File(), *platform.registry);
    const Holdings holdings = HoldingsIn(stored);
    const std::string folder =
        ComponentFolder(folder_.value_or(WorkingDirectoryIn(holdings.settings)));
    if (!platform.files->FolderExists(folder + "\\")) {
      throw Failure(ExitCode::kNotFound, fmt::format("There is no folder {}.", folder));
    }
    const Adoption adoption = PlanAdoption(platform, holdings, folder);
    std::vector<Record> rows;
    for (const Found& found : adoption.found) rows.push_back(ToRecord(found));
    if (dry_run_) {
      return out.Items(std::move(rows), fmt::format("There are no items in {}.", folder));
    }
    if (adoption.Count() != 0) session.Store(stored, With(stored, adoption.result));
    out.Done({{"folder", folder}, {"adopted", static_cast<std::int64_t>(adoption.Count())}},
             Sentence(adoption, folder));
    out.Section("found", std::move(rows));
  }

  static std::string Sentence(const Adoption& adoption, const std::string& folder) {
    const auto count = adoption.Count();
    if (count == 0) return fmt::format("There is nothing new in {}.", folder);
    return fmt::format("Took up {} of {}.", count == 1 ? "1 item" : fmt::format("{} items", count),
                       folder);
  }

  std::optional<std::string> folder_;
  bool dry_run_ = false;
};

}  // namespace

void AddAdoptCommand(const CommandGroup& root) {
  root.Add<Adopt>("adopt", "Bring back study areas, analyses and layers that are on the disk",
                  "kvdm adopt --dry-run\nkvdm adopt\nkvdm adopt KVData/StudyAreas/North");
}

}  // namespace kvdm
