#include "platform/posix/sqlite_store.h"

#include <algorithm>
#include <utility>

namespace kvdm {
namespace {

constexpr std::string_view kCreateHistory =
    "CREATE TABLE registry_history(root TEXT NOT NULL, key TEXT NOT NULL COLLATE NOCASE,"
    " name TEXT NOT NULL COLLATE NOCASE, type INTEGER NOT NULL, data BLOB NOT NULL,"
    " preserved_at TEXT NOT NULL, PRIMARY KEY(root, key, name, type, data))";

// `registry_value` shows the values as one row each, and changes them so: for people and tools.
constexpr std::string_view kCreateValues[] = {
    R"(CREATE TABLE registry_entry(id INTEGER PRIMARY KEY, root TEXT NOT NULL,
       key TEXT NOT NULL COLLATE NOCASE, name TEXT NOT NULL COLLATE NOCASE, type INTEGER NOT NULL,
       UNIQUE(root, key, name)))",
    R"(CREATE TABLE registry_piece(entry INTEGER NOT NULL, place INTEGER NOT NULL,
       data BLOB NOT NULL, PRIMARY KEY(entry, place)) WITHOUT ROWID)",
    R"(CREATE VIEW registry_value(root, key, name, type, data) AS SELECT root, key, name, type,
       (SELECT CASE count(*) WHEN 1 THEN max(data) ELSE
       CAST(coalesce(group_concat(part, ''), '') AS BLOB) END FROM
       (SELECT data, CAST(data AS TEXT) AS part FROM registry_piece WHERE entry = id
       ORDER BY place)) FROM registry_entry)",
    R"(CREATE TRIGGER registry_value_delete INSTEAD OF DELETE ON registry_value BEGIN
       DELETE FROM registry_piece WHERE entry = (SELECT id FROM registry_entry
       WHERE root = old.root AND key = old.key AND name = old.name);
       DELETE FROM registry_entry WHERE root = old.root AND key = old.key AND name = old.name;
       END)",
    R"(CREATE TRIGGER registry_value_insert INSTEAD OF INSERT ON registry_value BEGIN
       DELETE FROM registry_value WHERE root = new.root AND key = new.key AND name = new.name;
       INSERT INTO registry_entry(root, key, name, type)
       VALUES(new.root, new.key, new.name, new.type);
       INSERT INTO registry_piece SELECT id, 0, new.data FROM registry_entry
       WHERE root = new.root AND key = new.key AND name = new.name; END)",
    R"(CREATE TRIGGER registry_value_update INSTEAD OF UPDATE ON registry_value BEGIN
       DELETE FROM registry_value WHERE root = old.root AND key = old.key AND name = old.name;
       INSERT INTO registry_value VALUES(new.root, new.key, new.name, new.type, new.data); END)",
    R"(PRAGMA user_version = 2)"};

constexpr std::string_view kReadWhole =
    "SELECT type, data FROM registry_value WHERE root = ?1 AND key = ?2 AND name = ?3";
constexpr std::string_view kReadEntry =
    "SELECT type, id FROM registry_entry WHERE root = ?1 AND key = ?2 AND name = ?3";
constexpr std::string_view kReadPieces =
    "SELECT place, data FROM registry_piece WHERE entry = ?1 ORDER BY place";
constexpr std::string_view kWriteEntry =
    "INSERT INTO registry_entry(root, key, name, type) VALUES(?1, ?2, ?3, 1)"
    " ON CONFLICT(root, key, name) DO UPDATE SET type = 1 WHERE type <> 1";
constexpr std::string_view kWritePiece =
    "INSERT OR REPLACE INTO registry_piece(entry, place, data) VALUES(?1, ?2, ?3)";
constexpr std::string_view kDeletePieces =
    "DELETE FROM registry_piece WHERE entry = ?1 AND place BETWEEN ?2 AND ?3";

constexpr std::string_view kKeep =
    "INSERT OR REPLACE INTO registry_history(root, key, name, type, data, preserved_at)"
    " VALUES(?1, ?2, ?3, ?4, ?5, strftime('%Y-%m-%dT%H:%M:%SZ', 'now'))";
// Counted from the newest on.
constexpr std::string_view kForgetOldest =
    "DELETE FROM registry_history WHERE rowid IN (SELECT id FROM (SELECT rowid AS id,"
    " row_number() OVER newest AS number, sum(length(data)) OVER newest AS bytes"
    " FROM registry_history WHERE root = ?1 AND key = ?2 AND name = ?3"
    " WINDOW newest AS (ORDER BY rowid DESC)) WHERE number > 1 AND (number > ?4 OR bytes > ?5))";
constexpr std::string_view kReadKept =
    "SELECT type, data, preserved_at FROM registry_history"
    " WHERE root = ?1 AND key = ?2 AND name = ?3 ORDER BY rowid";

// Between the places of pieces that are written together, for those that come between them later.
constexpr std::int64_t kGap = std::int64_t{1} << 20U;

void WritePiece(SqliteStatement& statement, std::int64_t entry, std::int64_t place,
                std::string_view bytes) {
  statement.BindNumber(1, entry);
  statement.BindNumber(2, place);
  statement.BindBytes(3, bytes);
  statement.Run();
}

std::string_view NameOf(RegistryRoot root) {
  return root == RegistryRoot::kLocalMachine ? "HKEY_LOCAL_MACHINE" : "HKEY_CURRENT_USER";
}

RegistryType TypeIn(const SqliteStatement& row) { return static_cast<RegistryType>(row.Number(0)); }

// The part of a new text that takes the place of the pieces from `first` to before `end`, whose
// bytes begin at `offset`.
struct Difference {
  std::size_t first = 0;
  std::size_t end = 0;
  std::size_t offset = 0;
  std::string_view text;
};

// Leaves out the pieces that the new text begins and ends with.
Difference DifferenceOf(const StoredText& old, std::string_view text) {
  Difference difference{0, old.pieces.size(), 0, text};
  const std::string_view bytes = old.bytes;
  for (; difference.first < difference.end; ++difference.first) {
    const auto piece = bytes.substr(difference.offset, old.pieces[difference.first].size);
    if (!difference.text.starts_with(piece)) break;
    difference.text.remove_prefix(piece.size());
    difference.offset += piece.size();
  }
  for (std::size_t end = bytes.size(); difference.end > difference.first; --difference.end) {
    end -= old.pieces[difference.end - 1].size;
    const auto piece = bytes.substr(end, old.pieces[difference.end - 1].size);
    if (!difference.text.ends_with(piece)) break;
    difference.text.remove_suffix(piece.size());
  }
  return difference;
}

std::vector<std::string_view> CutUp(std::string_view text, const TextUpdate* update) {
  std::vector<std::string_view> pieces;
  std::size_t begin = 0;
  const auto add = [&](std::size_t end) {
    if (end <= begin || end > text.size()) return;
    pieces.push_back(text.substr(begin, end - begin));
    begin = end;
  };
  if (update != nullptr) std::ranges::for_each(update->Cuts(text), add);
  add(text.size());
  return pieces;
}

// Places for new pieces: `before` and a step for each; a step of 0 where there is no room.
struct Room {
  std::int64_t before = -kGap;
  std::int64_t step = kGap;
};

Room RoomFor(std::size_t count, const Difference& difference, const StoredPieces& pieces) {
  const auto steps = static_cast<std::int64_t>(count) + 1;
  const bool has_before = difference.first > 0;
  const std::int64_t before = has_before ? pieces[difference.first - 1].place : -kGap;
  if (difference.end == pieces.size()) return {before, kGap};
  const std::int64_t after = pieces[difference.end].place;
  if (!has_before) return {after - kGap * steps, kGap};
  return {before, std::min(kGap, (after - before) / steps)};
}

}  // namespace

SqliteStore::SqliteStore(const SqliteDatabase& database)
    : database_(database), version_(database.Number("PRAGMA user_version")) {}

void SqliteStore::Create(const SqliteDatabase& database) {
  for (const std::string_view sql : kCreateValues) database.Run(sql);
  database.Run(kCreateHistory);
}

std::optional<StoredValue> SqliteStore::Read(const ValueAddress& address) const {
  SqliteStatement row = Prepare(version_ == 1 ? kReadWhole : kReadEntry, address);
  if (!row.Step()) return std::nullopt;
  StoredValue value{TypeIn(row), {}, {}};
  if (version_ == 1) {
    value.bytes = row.Bytes(1);
    value.pieces = {{0, value.bytes.size()}};
    return value;
  }
  SqliteStatement piece = database_.Prepare(kReadPieces);
  piece.BindNumber(1, row.Number(1));
  while (piece.Step()) {
    const std::string_view bytes = piece.View(1);
    value.pieces.push_back({piece.Number(0), bytes.size()});
    value.bytes += bytes;
  }
  return value;
}

std::optional<StoredPieces> SqliteStore::PiecesOf(const ValueAddress& address,
                                                  std::string_view bytes) const {
  if (version_ == 1) return std::nullopt;
  SqliteStatement row = Prepare(kReadEntry, address);
  if (!row.Step() || TypeIn(row) != RegistryType::kText) return std::nullopt;
  SqliteStatement piece = database_.Prepare(kReadPieces);
  piece.BindNumber(1, row.Number(1));
  StoredPieces pieces;
  while (piece.Step()) {
    const std::string_view part = piece.View(1);
    if (!bytes.starts_with(part)) return std::nullopt;
    bytes.remove_prefix(part.size());
    pieces.push_back({piece.Number(0), part.size()});
  }
  return bytes.empty() ? std::optional(std::move(pieces)) : std::nullopt;
}

std::vector<KeptValue> SqliteStore::Kept(const ValueAddress& address) const {
  std::vector<KeptValue> values;
  SqliteStatement row = Prepare(kReadKept, address);
  while (row.Step()) values.push_back({row.Bytes(2), {TypeIn(row), row.Bytes(1)}});
  return values;
}

void SqliteStore::Write(const ValueAddress& address, const StoredText& old, std::string_view bytes,
                        const TextUpdate* update) {
  Convert();
  const std::int64_t entry = EntryFor(address);
  Difference difference = DifferenceOf(old, bytes);
  auto pieces = CutUp(difference.text, update);
  if (pieces.size() == difference.end - difference.first) {
    return Overwrite(entry, old, difference.first, difference.offset, pieces);
  }
  Room room = RoomFor(pieces.size(), difference, old.pieces);
  if (room.step == 0) {
    difference = {0, old.pieces.size(), 0, bytes};
    pieces = CutUp(bytes, update);
    room = {};
  }
  if (difference.first < difference.end) {
    SqliteStatement remove = database_.Prepare(kDeletePieces);
    remove.BindNumber(1, entry);
    remove.BindNumber(2, old.pieces[difference.first].place);
    remove.BindNumber(3, old.pieces[difference.end - 1].place);
    remove.Run();
  }
  SqliteStatement write = database_.Prepare(kWritePiece);
  for (const std::string_view piece : pieces) {
    room.before += room.step;
    WritePiece(write, entry, room.before, piece);
  }
}

void SqliteStore::Overwrite(std::int64_t entry, const StoredText& old, std::size_t first,
                            std::size_t offset, const std::vector<std::string_view>& pieces) {
  SqliteStatement write = database_.Prepare(kWritePiece);
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    const StoredPiece& piece = old.pieces[first + i];
    if (old.bytes.substr(offset, piece.size) != pieces[i]) {
      WritePiece(write, entry, piece.place, pieces[i]);
    }
    offset += piece.size;
  }
}

void SqliteStore::Keep(const ValueAddress& address, RegistryType type, std::string_view bytes) {
  SqliteStatement statement = Prepare(kKeep, address);
  statement.BindNumber(4, static_cast<int>(type));
  statement.BindBytes(5, bytes);
  statement.Run();
}

void SqliteStore::ForgetOldest(const ValueAddress& address) {
  SqliteStatement statement = Prepare(kForgetOldest, address);
  statement.BindNumber(4, std::int64_t{kMostKeptValues});
  statement.BindNumber(5, std::int64_t{kMostKeptBytes});
  statement.Run();
}

void SqliteStore::Convert() {
  if (version_ != 1) return;
  database_.Run("ALTER TABLE registry_value RENAME TO registry_old");
  for (const std::string_view sql : kCreateValues) database_.Run(sql);
  database_.Run(
      "INSERT INTO registry_entry(root, key, name, type)"
      " SELECT root, key, name, type FROM registry_old");
  database_.Run(
      "INSERT INTO registry_piece SELECT id, 0, data"
      " FROM registry_entry JOIN registry_old USING(root, key, name)");
  database_.Run("DROP TABLE registry_old");
  version_ = kVersion;
}

std::int64_t SqliteStore::EntryFor(const ValueAddress& address) {
  Prepare(kWriteEntry, address).Run();
  SqliteStatement row = Prepare(kReadEntry, address);
  row.Step();
  return row.Number(1);
}

SqliteStatement SqliteStore::Prepare(std::string_view sql, const ValueAddress& address) const {
  SqliteStatement statement = database_.Prepare(sql);
  statement.BindText(1, NameOf(address.root));
  statement.BindText(2, address.key);
  statement.BindText(3, address.name);
  return statement;
}

}  // namespace kvdm
