#include "host/undo.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "host/os.h"
#include "util/kvdm_utils.h"

namespace kvdm {
namespace {

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
    const ChangeRecord later = history.Read(number);
    const bool did = std::ranges::any_of(later.changes, [&](const Change& other) {
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
  ChangeRecord record = history.Read(number);
  if (!IsOfThisProject(record, session.File())) {
    throw Failure(ExitCode::kUnsafe, fmt::format("{} is one of the project {}. Undo it there.",
                                                 NameOf(record), record.project));
  }
  for (const int later : ended) {
    if (later <= number || history.Read(later).undoes != number) continue;
    throw Failure(ExitCode::kConflict,
                  fmt::format("{} is undone already, by change {}.", NameOf(record), later));
  }
  return record;
}

}  // namespace

int LastChange(Session& session) {
  const FolderHistory history = session.GetPlace().GetHistory();
  const std::string person = os::Person();
  auto numbers = history.Ended();
  std::ranges::reverse(numbers);
  std::set<int> undone;
  for (const int number : numbers) {
    const ChangeRecord record = history.Read(number);
    undone.insert(record.undoes);
    const bool counts = record.undoes == 0 && record.person == person && !undone.contains(number);
    if (counts && IsOfThisProject(record, session.File())) return number;
  }
  throw Failure(ExitCode::kNotFound, "There is no change of yours left to undo.");
}

Undone Undo(Session& session, int number) {
  const FolderHistory history = session.GetPlace().GetHistory();
  const Trash trash = session.GetPlace().GetTrash();
  const ChangeRecord record = ToUndo(session, number, history);
  const Platform& platform = session.Component().GetServices().platform;
  const Documents stored =
      StoredDocuments(session.File(), *platform.registry, AreInRegistry(record.changes));
  const auto applied = Apply(*platform.xml_parser, stored, Inverse(record.changes));
  auto left = Rows(applied.refused, record, history);
  if (!left.empty() && left.size() == record.changes.size()) {
    throw Failure(ExitCode::kConflict,
                  fmt::format("{} can't be undone: what it changed was changed again since. Undo "
                              "the later change first, or change it by hand.",
                              NameOf(record)),
                  std::move(left));
  }
  const auto moves = MovesBack(record, applied.refused, trash);
  session.Store(stored, applied.documents, moves, number);
  return {record, std::move(left)};
}

}  // namespace kvdm
