#include "platform/posix/sqlite_registry.h"

#include <cstdlib>
#include <filesystem>
#include <utility>

#include "platform/error.h"
#include "platform/posix/sqlite_database.h"
#include "platform/posix/user_folders.h"

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
constexpr std::string_view kPreserve =
    "INSERT OR IGNORE INTO registry_history(root, key, name, type, data, preserved_at)"
    " SELECT root, key, name, type, data, strftime('%Y-%m-%dT%H:%M:%SZ', 'now')"
    " FROM registry_value WHERE root = ?1 AND key = ?2 AND name = ?3";
constexpr std::string_view kReadPreserved =
    "SELECT type, data, preserved_at FROM registry_history"
    " WHERE root = ?1 AND key = ?2 AND name = ?3 ORDER BY rowid";

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

// The version of the store; 0 for an empty database. Fails for another program's.
std::int64_t StoreVersion(const SqliteDatabase& database) {
  const std::int64_t version = database.Number("PRAGMA user_version");
  if (version == 0 && database.Number("SELECT count(*) FROM sqlite_master") != 0) {
    throw RuntimeError(kAutomationFailure, {}, "the database belongs to another program");
  }
  return version;
}

void EnsureStore(const SqliteDatabase& database) {
  const std::int64_t version = StoreVersion(database);
  if (version > kStoreVersion) {
    throw RuntimeError(kPermissionDenied, {}, "the database was written by a newer version");
  }
  if (version == kStoreVersion) return;
  database.Run(kCreateValues);
  database.Run(kCreateHistory);
  database.Run(kSetVersion);
}

RegistryType TypeIn(const SqliteStatement& row) { return static_cast<RegistryType>(row.Number(0)); }

}  // namespace

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
  return Noting(std::optional<RegistryValue>(), [&]() -> std::optional<RegistryValue> {
    const auto database = OpenForReading();
    if (!database) return std::nullopt;
    SqliteStatement row = Prepare(*database, kRead, root, key, name);
    if (!row.Step()) return std::nullopt;
    return Decoded(TypeIn(row), row.Bytes(1));
  });
}

bool SqliteRegistry::WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                               std::string_view text) {
  return Noting(false, [&] {
    const auto database = BeginWriting();
    SqliteStatement statement = Prepare(*database, kWrite, root, key, name);
    statement.BindNumber(4, static_cast<int>(RegistryType::kText));
    statement.BindBytes(5, Encode(text, options_.code_page));
    statement.Step();
    database->Run("COMMIT");
    return true;
  });
}

void SqliteRegistry::Preserve(RegistryRoot root, std::string_view key, std::string_view name) {
  if (!Read(root, key, name)) return;
  Noting(false, [&] {
    const auto database = BeginWriting();
    Prepare(*database, kPreserve, root, key, name).Step();
    database->Run("COMMIT");
    return true;
  });
}

bool SqliteRegistry::Holds(char32_t character) const {
  return kvdm::Holds(options_.code_page, character);
}

std::vector<PreservedValue> SqliteRegistry::Preserved(RegistryRoot root, std::string_view key,
                                                      std::string_view name) {
  return Noting(std::vector<PreservedValue>(), [&] {
    std::vector<PreservedValue> values;
    const auto database = OpenForReading();
    if (!database) return values;
    SqliteStatement row = Prepare(*database, kReadPreserved, root, key, name);
    while (row.Step()) values.push_back({row.Bytes(2), Decoded(TypeIn(row), row.Bytes(1))});
    return values;
  });
}

template <class Result, class Operation>
Result SqliteRegistry::Noting(Result neutral, Operation operation) const {
  try {
    return operation();
  } catch (const std::exception& error) {
    log_->Note("Registry " + options_.path + ": " + error.what());
    return neutral;
  }
}

std::unique_ptr<SqliteDatabase> SqliteRegistry::OpenForReading() const {
  if (!fs::exists(options_.path)) return nullptr;
  auto database = std::make_unique<SqliteDatabase>(options_.path, SqliteDatabase::Access::kExisting,
                                                   options_.busy_timeout);
  if (StoreVersion(*database) == 0) return nullptr;
  return database;
}

std::unique_ptr<SqliteDatabase> SqliteRegistry::BeginWriting() const {
  const fs::path folder = fs::path(options_.path).parent_path();
  if (!folder.empty()) fs::create_directories(folder);
  auto database = std::make_unique<SqliteDatabase>(options_.path, SqliteDatabase::Access::kCreate,
                                                   options_.busy_timeout);
  database->Run("BEGIN IMMEDIATE");
  EnsureStore(*database);
  return database;
}

RegistryValue SqliteRegistry::Decoded(RegistryType type, std::string bytes) const {
  if (type == RegistryType::kText) return {type, Decode(bytes, options_.code_page)};
  return {type, std::move(bytes)};
}

}  // namespace kvdm
