// kvdm undo, kvdm trash, kvdm log: what changes did, and taking it back.
#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <map>
#include <set>

#include "host/checks.h"
#include "host/commands/groups.h"
#include "host/items.h"
#include "host/os.h"
#include "safety/rebase.h"
#include "util/kvdm_utils.h"

namespace kvdm {
namespace {

struct Undone {
  ChangeRecord record;       // what was taken back
  std::vector<Record> left;  // what is not as it left it, and so was not touched
};

using Refused = Changes;

bool HasGuid(const Refused& refused, const std::string& guid) {
  return !guid.empty() && std::ranges::find(refused, guid, &Change::guid) != refused.end();
}

// The folders that return, and those of what it made, which go.
std::vector<Move> MovesBack(const ChangeRecord& record, const Refused& refused,
                            const Trash& trash) {
  std::vector<Move> moves;
  for (Move move : record.moves) {
    if (HasGuid(refused, move.guid)) continue;
    move.back = !move.back;
    if (move.back && !trash.Has(move)) {
      throw Failure(ExitCode::kNotFound,
                    fmt::format("{} can't be undone: its folder {} is no longer in the trash.",
                                NameOf(record), move.folder));
    }
    moves.push_back(std::move(move));
  }
  for (const Move& made : record.made) {
    if (HasGuid(refused, made.guid)) continue;
    std::ranges::move(trash.Plan(made.folder, made.guid), std::back_inserter(moves));
  }
  return moves;
}

// The last change after `record` that changed the same; nothing when it is not known.
std::optional<ChangeRecord> LastThatChanged(const Change& change, const ChangeRecord& record,
                                            const History& history) {
  auto numbers = history.Ended();
  std::ranges::reverse(numbers);
  for (const int number : numbers) {
    if (number <= record.number) break;
    auto later = TryRead(history, number);
    const bool did = later && std::ranges::any_of(later->changes, [&](const Change& other) {
                       return other.document == change.document && other.guid == change.guid &&
                              (!change.guid.empty() || other.name == change.name);
                     });
    if (did) return later;
  }
  return std::nullopt;
}

std::vector<Record> Rows(const Refused& refused, const ChangeRecord& record,
                         const History& history) {
  std::vector<Record> rows;
  for (const Change& change : refused) {
    const auto later = LastThatChanged(change, record, history);
    rows.push_back({{"document", change.document},
                    {"name", UnwrapName(change.name)},
                    {"guid", change.guid},
                    {"changed_by", later ? Field(later->person) : Field()},
                    {"change", later ? Field(std::int64_t{later->number}) : Field()}});
  }
  return rows;
}

ChangeRecord Rebased(const Place& place, ChangeRecord record) {
  return RebasedRecord(*place.services->platform.xml_parser, std::move(record),
                       place.working_directory);
}

bool IsOfThisProject(const ChangeRecord& record, const std::filesystem::path& file) {
  const auto project = os::ToPath(record.project);
  return project == file || !os::Exists(project);
}

ChangeRecord ToUndo(Session& session, int number, const History& history) {
  const auto ended = history.Ended();
  if (std::ranges::find(ended, number) == ended.end()) {
    throw Failure(
        ExitCode::kNotFound,
        fmt::format("There is no change {}. 'kvdm log' shows those that there are.", number));
  }
  ChangeRecord record = Rebased(session.GetPlace(), history.Read(number));
  if (!IsOfThisProject(record, session.File())) {
    throw Failure(ExitCode::kUnsafe, fmt::format("{} is one of the project {}. Undo it there.",
                                                 NameOf(record), record.project));
  }
  for (const int later : ended) {
    const auto other = later > number ? TryRead(history, later) : std::nullopt;
    if (!other || other->undoes != number) continue;
    throw Failure(ExitCode::kConflict,
                  fmt::format("{} is undone already, by change {}.", NameOf(record), later));
  }
  return record;
}

// The number of the last change of this person in this project that is not undone. Failure
// kNotFound when there is none.
int LastChange(Session& session) {
  const FolderHistory history = session.GetPlace().GetHistory();
  const std::string person = os::Person();
  auto numbers = history.Ended();
  std::ranges::reverse(numbers);
  std::set<int> undone;
  for (const int number : numbers) {
    const auto record = TryRead(history, number);
    if (!record) continue;
    undone.insert(record->undoes);
    const bool counts = record->undoes == 0 && record->person == person && !undone.contains(number);
    if (counts && IsOfThisProject(*record, session.File())) return number;
  }
  throw Failure(ExitCode::kNotFound, "There is no change of yours left to undo.");
}

// Takes back a change, as a change of its own. Elements that are no longer as it left them stay as
// they are, and so do their folders. Failure kNotFound for a number that there is not, kConflict
// when nothing could be taken back or something is in the place of a folder.
Undone Undo(Session& session, int number) {
  const FolderHistory history = session.GetPlace().GetHistory();
  const Trash trash = session.GetPlace().GetTrash();
  const ChangeRecord record = ToUndo(session, number, history);
  const Platform& platform = session.Component().GetServices().platform;
  const Documents stored =
      StoredDocuments(session.File(), *platform.registry, AreInRegistry(record.changes));
  const auto applied = Apply(*platform.xml_parser, stored, Inverse(record.changes));
  auto left = Rows(applied.refused, record, history);
  const bool leaves_all = left.size() == record.changes.size();
  if (!left.empty() && (leaves_all || ChangesSettings(record))) {
    throw Failure(ExitCode::kConflict,
                  fmt::format("{} can't be undone: what it changed was changed again since. Undo "
                              "the later change first, or change it by hand.",
                              NameOf(record)),
                  std::move(left));
  }
  const auto moves = MovesBack(record, applied.refused, trash);
  if (!session.GetAllowed().outside) trash.RequireInside(moves);
  session.Store(stored, applied.documents, moves, number);
  return {record, std::move(left)};
}

std::string CommandOf(const ChangeRecord& record) {
  return fmt::format("{}", fmt::join(record.command, " "));
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
    const int number = number_ ? ListNumber(*number_) : LastChange(session);
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
    std::map<int, std::string> states;
    for (const int number : history.Ended()) states[number] = "done";
    for (const int number : history.Begun()) states[number] = "unfinished";
    std::map<int, std::optional<ChangeRecord>> records;
    for (auto& [number, state] : states) {
      const auto& record = records[number] = TryRead(history, number);
      if (!record) state = "unreadable";
      if (record && record->undoes != 0) states[record->undoes] = "undone";
    }
    std::vector<Record> rows;
    for (const auto& [number, record] : records) {
      rows.push_back(RowOf(number, record.value_or(ChangeRecord()), states[number]));
    }
    out.Items(std::move(rows), "Nothing was changed yet.");
  }

  static Record RowOf(int number, const ChangeRecord& record, const std::string& state) {
    return {
        {"number", std::int64_t{number}}, {"when", record.when}, {"person", record.person},
        {"machine", record.machine},      {"state", state},      {"command", CommandOf(record)}};
  }
};

// What the trash has, by the change that moved it there.
std::vector<ChangeRecord> Trashed(const Place& place) {
  std::vector<ChangeRecord> records;
  const FolderHistory history = place.GetHistory();
  const auto ended = history.Ended();
  for (const int number : place.GetTrash().Numbers()) {
    const bool has_ended = std::ranges::find(ended, number) != ended.end();
    auto record = has_ended ? TryRead(history, number) : std::nullopt;
    if (record) records.push_back(Rebased(place, *std::move(record)));
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
    const int number = ListNumber(id_);
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
    if (const auto days = NumberIn(std::string_view(text).substr(0, text.size() - 1))) return *days;
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
