#include "platform/posix/sqlite_registry.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <system_error>
#include <utility>

#include <kvdm/platform/error.h>

#include "platform/posix/files.h"
#include "platform/posix/posix_file_system.h"
#include "platform/posix/sqlite_database.h"
#include "platform/system_error.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

// Kept in the database's user_version.
constexpr std::int64_t kStoreVersion = 1;

constexpr std::string_view kCreateValues =
    "CREATE TABLE registry_value(root TEXT NOT NULL, key TEXT NOT NULL COLLATE NOCASE,"
    " name TEXT NOT NULL COLLATE NOCASE, type INTEGER NOT NULL, data BLOB NOT NULL,"
    " PRIMARY KEY(root, key, name))";
constexpr std::string_view kCreateHistory =
    "CREATE TABLE registry_history(root TEXT NOT NULL, key TEXT NOT NULL COLLATE NOCASE,"
    " name TEXT NOT NULL COLLATE NOCASE, type INTEGER NOT NULL, data BLOB NOT NULL,"
    " preserved_at TEXT NOT NULL, PRIMARY KEY(root, key, name, type, data))";
constexpr std::string_view kSetVersion = "PRAGMA user_version = 1";

constexpr std::string_view kRead =
    "SELECT type, data FROM registry_value WHERE root = ?1 AND key = ?2 AND name = ?3";
constexpr std::string_view kWrite =
    "INSERT INTO registry_value(root, key, name, type, data) VALUES(?1, ?2, ?3, ?4, ?5)"
    " ON CONFLICT(root, key, name) DO UPDATE SET type = excluded.type, data = excluded.data";
constexpr std::string_view kKeep =
    "INSERT OR REPLACE INTO registry_history(root, key, name, type, data, preserved_at)"
    " VALUES(?1, ?2, ?3, 1, ?4, strftime('%Y-%m-%dT%H:%M:%SZ', 'now'))";
constexpr std::string_view kKeepStored =
    "INSERT OR REPLACE INTO registry_history(root, key, name, type, data, preserved_at)"
    " SELECT root, key, name, type, data, strftime('%Y-%m-%dT%H:%M:%SZ', 'now')"
    " FROM registry_value WHERE root = ?1 AND key = ?2 AND name = ?3";
// Counted from the newest on.
constexpr std::string_view kForgetOldest =
    "DELETE FROM registry_history WHERE rowid IN (SELECT id FROM (SELECT rowid AS id,"
    " row_number() OVER newest AS number, sum(length(data)) OVER newest AS bytes"
    " FROM registry_history WHERE root = ?1 AND key = ?2 AND name = ?3"
    " WINDOW newest AS (ORDER BY rowid DESC)) WHERE number > 1 AND (number > ?4 OR bytes > ?5))";
constexpr std::string_view kReadKept =
    "SELECT type, data, preserved_at FROM registry_history"
    " WHERE root = ?1 AND key = ?2 AND name = ?3 ORDER BY rowid";

// A file that is not what it should be.
class UnusableFile : public RuntimeError {
 public:
  UnusableFile(RegistryState state, const std::string& cause)
      : RuntimeError(kPermissionDenied, {}, cause), state_(state) {}

  [[nodiscard]] RegistryState State() const { return state_; }

 private:
  RegistryState state_;
};

std::string_view NameOf(RegistryRoot root) {
  return root == RegistryRoot::kLocalMachine ? "HKEY_LOCAL_MACHINE" : "HKEY_CURRENT_USER";
}

// `sql` with the address of a value as its first three parameters.
SqliteStatement Prepare(const SqliteDatabase& database, std::string_view sql, RegistryRoot root,
                        std::string_view key, std::string_view name) {
  SqliteStatement statement = database.Prepare(sql);
  statement.BindText(1, NameOf(root));
  statement.BindText(2, key);
  statement.BindText(3, name);
  return statement;
}

// Fails unless the database is a registry of a version that this program knows.
void RequireStore(const SqliteDatabase& database) {
  const std::int64_t version = database.Number("PRAGMA user_version");
  if (version == 0) {
    throw UnusableFile(RegistryState::kForeign, "the database belongs to another program");
  }
  if (version > kStoreVersion) {
    throw UnusableFile(RegistryState::kNewer, "the database was written by a newer version");
  }
}

// Whether there is a file. Fails for anything else, and for an empty file, which was truncated: a
// store is complete before it gets its name.
bool IsThere(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) {
    if (errno != ENOENT) ThrowLastError();
    // A link may lead to a disk that is missing for now.
    if (::lstat(path.c_str(), &status) != 0) return false;
    throw UnusableFile(RegistryState::kFailing, "a link in its place leads nowhere");
  }
  if (!S_ISREG(status.st_mode)) {
    throw UnusableFile(RegistryState::kNotADatabase, "there is something else than a file");
  }
  if (status.st_size == 0) throw UnusableFile(RegistryState::kDamaged, "the file is empty");
  return true;
}

void RequireFileName(const std::string& path) {
  if (NamesRegistryFile(path)) return;
  throw UnusableFile(RegistryState::kForbidden,
                     path + " names no file; write a folder in front of it");
}

bool IsRefusal(const std::error_code& error) {
  return error == std::errc::permission_denied || error == std::errc::operation_not_permitted ||
         error == std::errc::read_only_file_system;
}

RegistryState StateOf(const SqliteError& error) {
  switch (error.Code()) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return RegistryState::kBusy;
    case SQLITE_CORRUPT:
      return RegistryState::kDamaged;
    case SQLITE_NOTADB:
      return RegistryState::kNotADatabase;
    case SQLITE_CANTOPEN:
      return IsRefusal(error.SystemError()) ? RegistryState::kForbidden : RegistryState::kFailing;
    case SQLITE_READONLY:
      return RegistryState::kReadOnly;
    case SQLITE_PERM:
    case SQLITE_AUTH:
      return RegistryState::kForbidden;
    case SQLITE_ERROR:
    case SQLITE_SCHEMA:
      return RegistryState::kForeign;
    default:
      return RegistryState::kFailing;
  }
}

RegistryCondition ConditionOf(const std::exception& error) {
  RegistryState state = RegistryState::kFailing;
  if (const auto* unusable = dynamic_cast<const UnusableFile*>(&error)) state = unusable->State();
  if (const auto* refused = dynamic_cast<const RuntimeError*>(&error)) {
    if (refused->number() == kOutOfMemory) state = RegistryState::kTooLarge;
  }
  if (const auto* sqlite = dynamic_cast<const SqliteError*>(&error)) state = StateOf(*sqlite);
  if (const auto* system = dynamic_cast<const std::system_error*>(&error)) {
    if (IsRefusal(system->code())) state = RegistryState::kForbidden;
  }
  return {state, error.what()};
}

// Why a database that can be read can't be written; "" when it can. Its journal needs the folder.
std::string ObstacleToWriting(const SqliteDatabase& database, const std::string& path) {
  if (database.IsReadOnly()) return "the file can't be written";
  const fs::path folder = fs::absolute(path).parent_path();
  const bool is_refused =
      ::access(folder.c_str(), W_OK | X_OK) != 0 && IsRefusal({errno, std::generic_category()});
  return is_refused ? "its folder can't be written" : "";
}

// The folders that are missing, for their user alone.
void CreateFolders(const fs::path& folder) {
  if (folder.empty() || fs::is_directory(folder)) return;
  CreateFolders(folder.parent_path());
  constexpr mode_t kOwnerOnly = 0700;
  if (::mkdir(folder.c_str(), kOwnerOnly) != 0 && errno != EEXIST) ThrowLastError();
}

// A file of its own name beside `path`, which goes again unless it was renamed.
class NewFile {
 public:
  explicit NewFile(const std::string& path) : path_(path + ".new-XXXXXX") {
    descriptor_ = FileDescriptor(::mkostemp(path_.data(), O_CLOEXEC));
    if (descriptor_.get() < 0) ThrowLastError();
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  ~NewFile() { ::unlink(path_.c_str()); }

  [[nodiscard]] const std::string& Path() const { return path_; }

 private:
  std::string path_;
  FileDescriptor descriptor_{-1};
};

// Gives `from` the name `to`. False when that is taken by now.
bool RenameUnlessTaken(const std::string& from, const std::string& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
    return true;
  }
  // Not every file system can do that in one step.
  if (errno == EINVAL && ::link(from.c_str(), to.c_str()) == 0) return true;
  if (errno == EEXIST) return false;
  ThrowLastError();
}

void SyncFolderOf(const std::string& path) {
  const fs::path folder = fs::path(path).parent_path();
  const FileDescriptor open(
      ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // Some file systems can't sync a folder; they say so with EINVAL.
  if (open.get() < 0 || (::fsync(open.get()) != 0 && errno != EINVAL)) ThrowLastError();
}

std::string UtcStamp() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  ::gmtime_r(&now, &parts);
  char text[32];
  return {text, std::strftime(text, sizeof text, "%Y-%m-%dT%H%M%SZ", &parts)};
}

std::string JournalOf(const std::string& path) { return path + "-journal"; }

// Takes the journal of the database at `from` to the one at `to`: a database that comes to stand
// beside the journal of another one would be changed by it.
void MoveJournal(const std::string& from, const std::string& to) {
  if (::rename(JournalOf(from).c_str(), JournalOf(to).c_str()) != 0 && errno != ENOENT) {
    ThrowLastError();
  }
}

RegistryType TypeIn(const SqliteStatement& row) { return static_cast<RegistryType>(row.Number(0)); }

}  // namespace

bool NamesRegistryFile(std::string_view path) {
  return !path.starts_with(':') && !path.starts_with("file:");
}

std::string DefaultRegistryPath() {
  const char* chosen = std::getenv("KVDM_REGISTRY");
  if (chosen != nullptr && *chosen != '\0') return chosen;
  return UserDataFolder() + "/kvdm/registry.db";
}

SqliteRegistry::SqliteRegistry(SqliteRegistryOptions options, std::shared_ptr<Log> log)
    : options_(std::move(options)), log_(std::move(log)) {
  if (options_.path.empty()) options_.path = DefaultRegistryPath();
}

std::optional<RegistryValue> SqliteRegistry::Read(RegistryRoot root, std::string_view key,
                                                  std::string_view name) {
  std::optional<RegistryValue> value;
  const bool done = Done([&] {
    const auto database = OpenForReading();
    if (!database) return;
    value = ValueIn(*database, root, key, name);
    const std::string obstacle = ObstacleToWriting(*database, options_.path);
    if (!obstacle.empty()) condition_ = {RegistryState::kReadOnly, obstacle};
  });
  if (!done) ThrowUnreadable(condition_);
  return value;
}

bool SqliteRegistry::WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                               std::string_view text) {
  return Done([&] {
    const auto database = BeginWriting();
    Put(*database, root, key, name, text);
    database->Run("COMMIT");
  });
}

bool SqliteRegistry::Update(RegistryRoot root, std::string_view key, std::string_view name,
                            const TextUpdate& update) {
  return Done([&] {
    const auto database = BeginWriting();
    const auto stored = ValueIn(*database, root, key, name);
    const auto outcome = update.On(stored);
    if (stored == RegistryValue{RegistryType::kText, outcome.text}) return;
    Keep(*database, root, key, name, outcome);
    Put(*database, root, key, name, outcome.text);
    database->Run("COMMIT");
  });
}

std::vector<KeptValue> SqliteRegistry::Kept(RegistryRoot root, std::string_view key,
                                            std::string_view name) {
  std::vector<KeptValue> values;
  const bool done = Done([&] {
    const auto database = OpenForReading();
    if (!database) return;
    SqliteStatement row = Prepare(*database, kReadKept, root, key, name);
    while (row.Step()) values.push_back({row.Bytes(2), Decoded(TypeIn(row), row.Bytes(1))});
  });
  if (!done) ThrowUnreadable(condition_);
  return values;
}

bool SqliteRegistry::Holds(char32_t character) const {
  return kvdm::Holds(options_.code_page, character);
}

std::optional<std::string> SqliteRegistry::SetAside() {
  Done([&] { static_cast<void>(OpenForReading()); });
  const RegistryState state = condition_.state;
  if (state != RegistryState::kDamaged && state != RegistryState::kNotADatabase) return {};
  const std::string aside = options_.path + ".damaged-" + UtcStamp();
  const bool done = Done([&] {
    MoveJournal(options_.path, aside);
    if (!RenameUnlessTaken(options_.path, aside)) ThrowSystemError(EEXIST);
    SyncFolderOf(options_.path);
  });
  return done ? std::optional(aside) : std::nullopt;
}

template <class Operation>
bool SqliteRegistry::Done(Operation operation) {
  try {
    condition_ = {};
    operation();
    return true;
  } catch (const std::exception& error) {
    condition_ = ConditionOf(error);
    log_->Note("Registry " + options_.path + ": " + error.what());
    return false;
  }
}

std::unique_ptr<SqliteDatabase> SqliteRegistry::OpenForReading() const {
  RequireFileName(options_.path);
  if (!IsThere(options_.path)) return nullptr;
  auto database = std::make_unique<SqliteDatabase>(options_.path, SqliteDatabase::Access::kExisting,
                                                   options_.busy_timeout);
  RequireStore(*database);
  return database;
}

std::unique_ptr<SqliteDatabase> SqliteRegistry::BeginWriting() const {
  RequireFileName(options_.path);
  // Asked for first: later it may be that of a process that creates the file meanwhile.
  const bool has_journal = fs::exists(JournalOf(options_.path));
  if (!IsThere(options_.path)) {
    if (has_journal) MoveJournal(options_.path, options_.path + ".left-" + UtcStamp());
    Create();
  }
  auto database = std::make_unique<SqliteDatabase>(options_.path, SqliteDatabase::Access::kExisting,
                                                   options_.busy_timeout);
  const std::string obstacle = ObstacleToWriting(*database, options_.path);
  if (!obstacle.empty()) throw UnusableFile(RegistryState::kReadOnly, obstacle);
  // What was answered survives a loss of power, the end of the journal included.
  database->Run("PRAGMA synchronous = EXTRA");
  database->Run("BEGIN IMMEDIATE");
  RequireStore(*database);
  if (database->HasMoved()) {
    throw UnusableFile(RegistryState::kBusy, "the file was replaced while it was opened");
  }
  return database;
}

// The store is made under another name, so that no process sees it without its tables.
void SqliteRegistry::Create() const {
  CreateFolders(fs::path(options_.path).parent_path());
  const NewFile file(options_.path);
  {
    const SqliteDatabase database(file.Path(), SqliteDatabase::Access::kExisting,
                                  options_.busy_timeout);
    database.Run("PRAGMA synchronous = EXTRA");
    database.Run("BEGIN IMMEDIATE");
    database.Run(kCreateValues);
    database.Run(kCreateHistory);
    database.Run(kSetVersion);
    database.Run("COMMIT");
  }
  if (RenameUnlessTaken(file.Path(), options_.path)) SyncFolderOf(options_.path);
}

void SqliteRegistry::Put(const SqliteDatabase& database, RegistryRoot root, std::string_view key,
                         std::string_view name, std::string_view text) const {
  SqliteStatement statement = Prepare(database, kWrite, root, key, name);
  statement.BindNumber(4, static_cast<int>(RegistryType::kText));
  statement.BindBytes(5, Encode(text, options_.code_page));
  statement.Step();
}

void SqliteRegistry::Keep(const SqliteDatabase& database, RegistryRoot root, std::string_view key,
                          std::string_view name, const TextUpdate::Outcome& outcome) const {
  if (outcome.keeps_stored) Prepare(database, kKeepStored, root, key, name).Step();
  for (const std::string& text : outcome.kept) {
    SqliteStatement statement = Prepare(database, kKeep, root, key, name);
    statement.BindBytes(4, Encode(text, options_.code_page));
    statement.Step();
  }
  SqliteStatement forget = Prepare(database, kForgetOldest, root, key, name);
  forget.BindNumber(4, std::int64_t{kMostKeptValues});
  forget.BindNumber(5, std::int64_t{kMostKeptBytes});
  forget.Step();
}

std::optional<RegistryValue> SqliteRegistry::ValueIn(const SqliteDatabase& database,
                                                     RegistryRoot root, std::string_view key,
                                                     std::string_view name) const {
  SqliteStatement row = Prepare(database, kRead, root, key, name);
  if (!row.Step()) return std::nullopt;
  return Decoded(TypeIn(row), row.Bytes(1));
}

RegistryValue SqliteRegistry::Decoded(RegistryType type, std::string bytes) const {
  if (type == RegistryType::kText) return {type, Decode(bytes, options_.code_page)};
  return {type, std::move(bytes)};
}

}  // namespace kvdm
