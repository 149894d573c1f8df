// kvdm undo, kvdm trash, kvdm log: what changes did, and taking it back.
#include "host/undo.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <ctime>

#include "host/commands/backup_rows.h"
#include "host/commands/groups.h"
#include "host/items.h"
#include "host/os.h"

namespace kvdm {
namespace {

std::string CommandOf(const ChangeRecord& record) {
  return fmt::format("{}", fmt::join(record.command, " "));
}

std::vector<ChangeRecord> Records(const History& history, const std::vector<int>& numbers) {
  std::vector<ChangeRecord> records;
  for (const int number : numbers) records.push_back(history.Read(number));
  return records;
}

void Report(const Undone& undone, Output& out) {
  out.Done({{"number", std::int64_t{undone.record.number}}, {"command", CommandOf(undone.record)}},
           fmt::format("{} is undone{}", NameOf(undone.record),
                       undone.left.empty() ? "." : ", but for what was changed since:"));
  out.Section("left", undone.left);
}

class UndoCommand : public ChangingCommand {
 public:
  explicit UndoCommand(Arguments arguments) {
    arguments.Optional("NUMBER", number_, "The change; without it the last one of yours");
  }

 private:
  void Run(Session& session, Output& out) override {
    const int number = number_ ? NumberIn(*number_) : LastChange(session);
    Report(Undo(session, number), out);
  }
  [[nodiscard]] bool ChangesRegistry() const override { return true; }

  std::optional<std::string> number_;
};

class HistoryLog : public ReadingCommand {
 public:
  explicit HistoryLog(Arguments) {}

 private:
  void Run(Session& session, Output& out) override {
    const FolderHistory history = session.GetPlace().GetHistory();
    const auto ended = Records(history, history.Ended());
    const auto undone = UndoneIn(ended);
    std::vector<Record> rows;
    for (const ChangeRecord& record : ended) {
      const bool is_undone = std::ranges::find(undone, record.number) != undone.end();
      rows.push_back(RowOf(record, is_undone ? "undone" : "done"));
    }
    for (const ChangeRecord& record : Records(history, history.Begun())) {
      rows.push_back(RowOf(record, "unfinished"));
    }
    out.Items(std::move(rows), "Nothing was changed yet.");
  }

  static Record RowOf(const ChangeRecord& record, const char* state) {
    return {{"number", std::int64_t{record.number}},
            {"when", record.when},
            {"person", record.person},
            {"machine", record.machine},
            {"state", std::string(state)},
            {"command", CommandOf(record)}};
  }
};

// What the trash has, by the change that moved it there.
std::vector<ChangeRecord> Trashed(const Place& place) {
  std::vector<ChangeRecord> records;
  const FolderHistory history = place.GetHistory();
  const auto ended = history.Ended();
  for (const int number : place.GetTrash().Numbers()) {
    const bool is_known = std::ranges::find(ended, number) != ended.end();
    if (is_known) records.push_back(history.Read(number));
  }
  return records;
}

class TrashList : public ReadingCommand {
 public:
  explicit TrashList(Arguments) {}

 private:
  void Run(Session& session, Output& out) override {
    const Trash trash = session.GetPlace().GetTrash();
    std::vector<Record> rows;
    for (const ChangeRecord& record : Trashed(session.GetPlace())) {
      for (const Move& move : record.moves) {
        if (move.back || !trash.Has(move)) continue;
        rows.push_back({{"id", std::int64_t{record.number}},
                        {"deleted", record.when},
                        {"person", record.person},
                        {"folder", move.folder},
                        {"command", CommandOf(record)}});
      }
    }
    out.Items(std::move(rows), "The trash is empty.");
  }
};

class TrashRestore : public ChangingCommand {
 public:
  explicit TrashRestore(Arguments arguments) {
    arguments.Required("ID", id_, "What 'kvdm trash list' shows");
  }

 private:
  void Run(Session& session, Output& out) override {
    const int number = NumberIn(id_);
    const auto trashed = Trashed(session.GetPlace());
    if (std::ranges::find(trashed, number, &ChangeRecord::number) == trashed.end()) {
      throw Failure(ExitCode::kNotFound,
                    fmt::format("The trash has nothing of a change {}. 'kvdm trash list' shows "
                                "what it has.",
                                number));
    }
    Report(Undo(session, number), out);
  }
  [[nodiscard]] bool ChangesRegistry() const override { return true; }

  std::string id_;
};

// The age "30d" in days. Failure kUsage for another text.
int DaysIn(const std::string& text) {
  if (text.ends_with('d') && text.size() < 7) {
    const std::string digits = text.substr(0, text.size() - 1);
    const bool is_number =
        !digits.empty() && digits.find_first_not_of("0123456789") == std::string::npos;
    if (is_number) return std::stoi(digits);
  }
  throw Failure(ExitCode::kUsage,
                fmt::format("{} is no number of days. One looks like 30d.", text));
}

// The time so many days ago.
std::string TimeBefore(int days) {
  const auto then = std::chrono::system_clock::now() - std::chrono::hours(24) * days;
  return UtcText(std::chrono::system_clock::to_time_t(then));
}

class TrashEmpty : public AskingCommand {
 public:
  explicit TrashEmpty(Arguments arguments) : AskingCommand(arguments) {
    arguments.Optional("--older-than", older_than_, "Only what is as old: 30d is 30 days");
  }

 private:
  Question ToAsk(Session& session) override {
    const auto due = Due(session);
    Record about;
    for (const ChangeRecord& record : due) about.emplace_back("change", CommandOf(record));
    return {fmt::format("This deletes for ever what is in the trash. Changes that can't be undone "
                        "then: {}.",
                        due.size()),
            about};
  }

  void Run(Session& session, Output& out) override {
    const Trash trash = session.GetPlace().GetTrash();
    const auto due = Due(session);
    for (const ChangeRecord& record : due) trash.Empty(record.number);
    out.Done(
        {{"deleted", static_cast<std::int64_t>(due.size())}},
        fmt::format("Emptied the trash. Changes that can't be undone any more: {}.", due.size()));
  }

  [[nodiscard]] std::vector<ChangeRecord> Due(Session& session) const {
    auto due = Trashed(session.GetPlace());
    if (!older_than_) return due;
    const std::string limit = TimeBefore(DaysIn(*older_than_));
    std::erase_if(due, [&](const ChangeRecord& record) { return record.when > limit; });
    return due;
  }

  std::optional<std::string> older_than_;
};

}  // namespace

void AddHistoryCommands(const CommandGroup& root) {
  root.Add<UndoCommand>("undo", "Take back the last change of yours, or the one of a number",
                        "kvdm undo\nkvdm undo 12");
  root.Add<HistoryLog>("log", "List what was changed, when, by whom and where from",
                       "kvdm log\nkvdm log --json");
  const CommandGroup trash = root.Group("trash", "Folders of what was deleted");
  trash.Add<TrashList>("list", "List what the trash has", "kvdm trash list");
  trash.Add<TrashRestore>("restore", "Bring back what a change deleted", "kvdm trash restore 12");
  trash.Add<TrashEmpty>("empty", "Delete for ever what the trash has",
                        "kvdm trash empty\nkvdm trash empty --older-than 30d --yes");
}

}  // namespace kvdm
