// The registry in a database file of the user's.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/code_page.h"
#include "platform/log.h"
#include "platform/registry.h"

namespace kvdm {

class SqliteDatabase;

struct SqliteRegistryOptions {
  // The database file; "" for DefaultRegistryPath().
  std::string path;
  CodePage code_page = CodePage::kUtf8;
  // How long an operation waits for other processes.
  std::chrono::milliseconds busy_timeout = std::chrono::seconds(10);
};

// $KVDM_REGISTRY, else kvdm/registry.db in the user's data folder.
[[nodiscard]] std::string DefaultRegistryPath();

// The file is opened for each operation and created, with its folder, by the first write. Several
// processes may use it at once; a write is there as a whole or not at all.
//
// What fails is noted in the log: a read then answers nothing and a write false. A file that is
// damaged, belongs to another program or was written by a newer version is never written to.
class SqliteRegistry : public Registry {
 public:
  SqliteRegistry(SqliteRegistryOptions options, std::shared_ptr<Log> log);

  std::optional<RegistryValue> Read(RegistryRoot root, std::string_view key,
                                    std::string_view name) override;
  bool WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                 std::string_view text) override;
  void Preserve(RegistryRoot root, std::string_view key, std::string_view name) override;
  [[nodiscard]] bool Holds(char32_t character) const override;

  // What was preserved of a value, the oldest first.
  std::vector<PreservedValue> Preserved(RegistryRoot root, std::string_view key,
                                        std::string_view name);

 private:
  // What `operation` answers; `neutral`, and a line in the log, when it fails.
  template <class Result, class Operation>
  Result Noting(Result neutral, Operation operation) const;

  // The database, when it is there and holds a store.
  [[nodiscard]] std::unique_ptr<SqliteDatabase> OpenForReading() const;
  // The database with an open transaction, and a store in it.
  [[nodiscard]] std::unique_ptr<SqliteDatabase> BeginWriting() const;
  [[nodiscard]] RegistryValue Decoded(RegistryType type, std::string bytes) const;

  SqliteRegistryOptions options_;
  std::shared_ptr<Log> log_;
};

}  // namespace kvdm
