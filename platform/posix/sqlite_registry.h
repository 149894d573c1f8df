// The registry in a database file of the user's.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/log.h>
#include <kvdm/platform/registry.h>

#include "platform/code_page.h"

namespace kvdm {

class SqliteDatabase;
class SqliteStore;
struct StoredValue;
struct ValueAddress;

// How long an operation waits for other processes.
inline constexpr std::chrono::seconds kRegistryPatience{10};

struct SqliteRegistryOptions {
  // The database file; "" for DefaultRegistryPath().
  std::string path;
  CodePage code_page = CodePage::kUtf8;
  std::chrono::milliseconds busy_timeout = kRegistryPatience;
};

// Whether a path is that of a file. SQLite takes some names for databases that are gone with the
// process.
[[nodiscard]] bool NamesRegistryFile(std::string_view path);

// $KVDM_REGISTRY, else kvdm/registry.db in the user's data folder.
[[nodiscard]] std::string DefaultRegistryPath();

// The file is opened for each operation and created, with its folder, by the first write; only its
// user may read it. Several processes may use it at once; a write is there as a whole or not at
// all, and on the disk when it was answered.
//
// A file that is damaged, empty, belongs to another program or was written by a newer version is
// never written to.
class SqliteRegistry : public Registry {
 public:
  SqliteRegistry(SqliteRegistryOptions options, std::shared_ptr<Log> log);

  std::optional<RegistryValue> Read(RegistryRoot root, std::string_view key,
                                    std::string_view name) override;
  bool WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                 std::string_view text) override;
  bool Update(RegistryRoot root, std::string_view key, std::string_view name,
              const TextUpdate& update) override;
  std::vector<KeptValue> Kept(RegistryRoot root, std::string_view key,
                              std::string_view name) override;
  // The file's status: a look into it would take away the locks that SQLite has.
  [[nodiscard]] std::string Stamp() const override;
  [[nodiscard]] RegistryCondition Condition() const override { return condition_; }
  [[nodiscard]] bool Holds(char32_t character) const override;

  // Renames a file that is damaged or no database, so that the next write makes a new one, and
  // answers its new path: the old one, ".damaged-" and the date and time. Nothing, and the file
  // stays, in any other state.
  std::optional<std::string> SetAside();

 private:
  // Whether `operation` ended without an error, which otherwise is noted.
  template <class Operation>
  bool Done(Operation operation);

  // The database, when it is there.
  [[nodiscard]] std::unique_ptr<SqliteDatabase> OpenForReading() const;
  // The database with an open transaction.
  [[nodiscard]] std::unique_ptr<SqliteDatabase> BeginWriting() const;
  void Create() const;
  // Whether nobody else wrote since the update's base; then its text is written.
  bool WriteUnopposed(SqliteStore& store, const ValueAddress& address,
                      const TextUpdate& update) const;
  // Writes what the update makes of what is stored. False when that changes nothing.
  bool WriteMerged(SqliteStore& store, const ValueAddress& address, const TextUpdate& update) const;
  [[nodiscard]] RegistryValue Decoded(RegistryValue value) const;
  [[nodiscard]] std::optional<RegistryValue> Decoded(
      const std::optional<StoredValue>& stored) const;

  SqliteRegistryOptions options_;
  std::shared_ptr<Log> log_;
  RegistryCondition condition_;
};

}  // namespace kvdm
