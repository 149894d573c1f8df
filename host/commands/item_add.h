// The command that makes items of files that people have: store add, customer add and data add.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/additions.h"
#include "host/commands/item_commands.h"
#include "host/os.h"

namespace kvdm {

// A kind has `Create` and `UseFile(session, item, path)`.
template <class Kind>
class ItemAdd : public ProjectCommand {
 public:
  explicit ItemAdd(Arguments arguments) {
    arguments.List("FILE", files_, "Files, or folders whose layer files are meant");
    arguments.Optional("--list", list_, "A CSV list with the columns file and name");
    arguments.Flag("--number", numbers_, "Number names that are taken");
    arguments.Flag("--dry-run", dry_run_, "Show what would be added, and add nothing");
  }

 private:
  [[nodiscard]] bool Changes() const override { return !dry_run_; }

  void Run(Session& session, Output& out) override {
    auto additions = Asked();
    Judge(additions, FilesOf(session), NamesOf(session), numbers_);
    auto rows = RowsOf(additions);
    if (dry_run_) return out.Items(std::move(rows), "There are no layer files.");
    RequireFree(additions, rows);
    std::int64_t count = 0;
    for (const Addition& addition : additions) {
      if (addition.state != "new") continue;
      Kind::UseFile(session, Kind::Create(session, addition.name, out), addition.file);
      ++count;
    }
    out.Done({{"added", count}}, Sentence(count));
    out.Section("items", std::move(rows));
  }

  [[nodiscard]] std::vector<Addition> Asked() const {
    if (files_.empty() && !list_) {
      throw Failure(ExitCode::kUsage, "Name files or folders, or give a --list.");
    }
    auto additions = AdditionsOf(files_);
    const auto listed = list_ ? AdditionsInList(os::ToPath(*list_)) : std::vector<Addition>();
    additions.insert(additions.end(), listed.begin(), listed.end());
    return additions;
  }

  static std::vector<std::string> FilesOf(Session& session) {
    std::vector<std::string> files;
    for (const auto& item : Kind::All(session)) files.push_back(Kind::FileOf(item));
    return files;
  }

  static TakenNames NamesOf(Session& session) {
    TakenNames names;
    for (const auto& item : Kind::All(session)) names.push_back(Kind::NameOf(item));
    return names;
  }

  static std::vector<Record> RowsOf(const std::vector<Addition>& additions) {
    std::vector<Record> rows;
    for (const Addition& addition : additions) {
      rows.push_back(
          {{"name", addition.name}, {"layer_file", addition.file}, {"state", addition.state}});
    }
    return rows;
  }

  static void RequireFree(const std::vector<Addition>& additions, const std::vector<Record>& rows) {
    const auto taken = std::ranges::find(additions, "taken", &Addition::state);
    if (taken == additions.end()) return;
    throw Failure(ExitCode::kConflict,
                  fmt::format("Another {} is named {}. Nothing was added: name the files otherwise "
                              "in a --list, or add --number.",
                              Kind::kWord, taken->name),
                  rows);
  }

  static std::string Sentence(std::int64_t count) {
    if (count == 0) return "All of these files are items already.";
    return count == 1 ? fmt::format("Added 1 {}.", Kind::kWord)
                      : fmt::format("Added {} {}s.", count, Kind::kWord);
  }

  std::vector<std::string> files_;
  std::optional<std::string> list_;
  bool numbers_ = false;
  bool dry_run_ = false;
};

template <class Kind>
void AddAddCommand(const CommandGroup& group) {
  group.Add<ItemAdd<Kind>>("add", fmt::format("Make {}s of files that are there", Kind::kWord),
                           fmt::format("kvdm {0} add gis/Shops.gpkg\nkvdm {0} add gis --dry-run\n"
                                       "kvdm {0} add --list layers.csv",
                                       Kind::kCommand));
}

}  // namespace kvdm
