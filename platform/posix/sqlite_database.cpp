#include "platform/posix/sqlite_database.h"

namespace kvdm {
namespace {

[[noreturn]] void Fail(sqlite3* database) {
  constexpr int kPrimaryCode = 0xFF;
  throw SqliteError(sqlite3_errcode(database) & kPrimaryCode,
                    {sqlite3_system_errno(database), std::generic_category()},
                    sqlite3_errmsg(database));
}

// SQLite takes a null pointer for NULL, even where the size is 0.
const char* PointerOf(std::string_view bytes) { return bytes.empty() ? "" : bytes.data(); }

}  // namespace

SqliteStatement::SqliteStatement(sqlite3* database, std::string_view sql) : database_(database) {
  sqlite3_stmt* statement = nullptr;
  const int result =
      sqlite3_prepare_v2(database, sql.data(), static_cast<int>(sql.size()), &statement, nullptr);
  statement_.reset(statement);
  Check(result);
}

void SqliteStatement::BindNumber(int position, std::int64_t number) {
  Check(sqlite3_bind_int64(statement_.get(), position, number));
}

void SqliteStatement::BindText(int position, std::string_view text) {
  Check(sqlite3_bind_text64(statement_.get(), position, PointerOf(text), text.size(),
                            SQLITE_TRANSIENT, SQLITE_UTF8));
}

void SqliteStatement::BindBytes(int position, std::string_view bytes) {
  Check(sqlite3_bind_blob64(statement_.get(), position, PointerOf(bytes), bytes.size(),
                            SQLITE_TRANSIENT));
}

bool SqliteStatement::Step() {
  const int result = sqlite3_step(statement_.get());
  if (result == SQLITE_ROW) return true;
  if (result != SQLITE_DONE) Fail(database_);
  return false;
}

std::int64_t SqliteStatement::Number(int column) const {
  return sqlite3_column_int64(statement_.get(), column);
}

void SqliteStatement::Run() {
  Step();
  Check(sqlite3_reset(statement_.get()));
}

std::string_view SqliteStatement::View(int column) const {
  // The pointer is asked for first: it decides in which form the size is counted.
  const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement_.get(), column));
  const int size = sqlite3_column_bytes(statement_.get(), column);
  return bytes == nullptr ? std::string_view()
                          : std::string_view(bytes, static_cast<std::size_t>(size));
}

void SqliteStatement::Check(int result) const {
  if (result != SQLITE_OK) Fail(database_);
}

SqliteDatabase::SqliteDatabase(const std::string& path, Access access,
                               std::chrono::milliseconds busy_timeout) {
  const int flags = SQLITE_OPEN_READWRITE | (access == Access::kCreate ? SQLITE_OPEN_CREATE : 0);
  sqlite3* database = nullptr;
  const int result = sqlite3_open_v2(path.c_str(), &database, flags, nullptr);
  database_.reset(database);
  if (result != SQLITE_OK) Fail(database);
  sqlite3_busy_timeout(database, static_cast<int>(busy_timeout.count()));
}

SqliteStatement SqliteDatabase::Prepare(std::string_view sql) const {
  return {database_.get(), sql};
}

void SqliteDatabase::Run(std::string_view sql) const { Prepare(sql).Step(); }

std::int64_t SqliteDatabase::Number(std::string_view query) const {
  SqliteStatement statement = Prepare(query);
  return statement.Step() ? statement.Number(0) : 0;
}

bool SqliteDatabase::IsReadOnly() const {
  return sqlite3_db_readonly(database_.get(), "main") == 1;
}

bool SqliteDatabase::HasMoved() const {
  int moved = 0;
  sqlite3_file_control(database_.get(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
  return moved != 0;
}

}  // namespace kvdm
