// SQLite's handles, owned. Whatever fails is a SqliteError with SQLite's own message.
#pragma once

#include <sqlite3.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

#include <kvdm/platform/error.h>

namespace kvdm {

// A failure of SQLite, as an automation failure.
class SqliteError : public RuntimeError {
 public:
  SqliteError(int code, std::error_code system_error, const std::string& message)
      : RuntimeError(kAutomationFailure, "SQLite", message),
        code_(code),
        system_error_(system_error) {}

  // SQLite's result code without its extension, such as SQLITE_BUSY.
  [[nodiscard]] int Code() const { return code_; }
  // What the system answered last.
  [[nodiscard]] std::error_code SystemError() const { return system_error_; }

 private:
  int code_;
  std::error_code system_error_;
};

class SqliteStatement {
 public:
  SqliteStatement(sqlite3* database, std::string_view sql);

  // Set the parameter `position`, counted from 1.
  void BindNumber(int position, std::int64_t number);
  void BindText(int position, std::string_view text);
  void BindBytes(int position, std::string_view bytes);

  // Goes on to the next row; false when there is none left.
  bool Step();

  // Runs a statement without results; then its parameters can be set for the next time.
  void Run();

  // The value in `column`, counted from 0, of the row that Step found.
  [[nodiscard]] std::int64_t Number(int column) const;
  [[nodiscard]] std::string Bytes(int column) const { return std::string(View(column)); }
  // The same, until the next step.
  [[nodiscard]] std::string_view View(int column) const;

 private:
  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };

  void Check(int result) const;

  sqlite3* database_;
  std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
};

// Closing undoes a transaction that was begun and not committed.
class SqliteDatabase {
 public:
  enum class Access { kExisting, kCreate };

  // Opens the file; waits up to `busy_timeout` for other processes, here and later.
  SqliteDatabase(const std::string& path, Access access, std::chrono::milliseconds busy_timeout);

  [[nodiscard]] SqliteStatement Prepare(std::string_view sql) const;
  // Runs one statement that has neither parameters nor results.
  void Run(std::string_view sql) const;
  // The number in the first row of `query`.
  [[nodiscard]] std::int64_t Number(std::string_view query) const;
  // Whether the open file is no longer the one that its path leads to.
  [[nodiscard]] bool HasMoved() const;
  // Whether the file itself can't be written.
  [[nodiscard]] bool IsReadOnly() const;

 private:
  struct Closer {
    void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
  };

  std::unique_ptr<sqlite3, Closer> database_;
};

}  // namespace kvdm
