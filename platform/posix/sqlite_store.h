// Tables of a registry in a database: values in pieces, a row each, and what was kept of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/registry.h>

#include "platform/posix/sqlite_database.h"

namespace kvdm {

struct ValueAddress {
  RegistryRoot root;
  std::string_view key;
  std::string_view name;
};

// A part of a value.
struct StoredPiece {
  std::int64_t place;  // in the order of the pieces; the numbers have gaps
  std::size_t size;
};
using StoredPieces = std::vector<StoredPiece>;

// A value as it is stored: its bytes are those of its pieces, one after the other.
struct StoredValue {
  RegistryType type = RegistryType::kText;
  std::string bytes;
  StoredPieces pieces;
};

// The bytes of a stored text, wherever they are, and its pieces.
struct StoredText {
  std::string_view bytes;
  const StoredPieces& pieces;
};

// A store of version 1 keeps each value in one row. It is read as it is, and becomes one of
// version 2 in the first transaction that changes it.
class SqliteStore {
 public:
  explicit SqliteStore(const SqliteDatabase& database);

  // 0 for the database of another program.
  [[nodiscard]] std::int64_t Version() const { return version_; }
  static constexpr std::int64_t kVersion = 2;

  // Makes the tables of a new store.
  static void Create(const SqliteDatabase& database);

  [[nodiscard]] std::optional<StoredValue> Read(const ValueAddress& address) const;

  // The pieces of a value that is a text of these very bytes; nothing for any other.
  [[nodiscard]] std::optional<StoredPieces> PiecesOf(const ValueAddress& address,
                                                     std::string_view bytes) const;

  // What was kept of a value, as stored.
  [[nodiscard]] std::vector<KeptValue> Kept(const ValueAddress& address) const;

  // In a transaction: puts a text in the place of `old`, which is what is stored. Only pieces that
  // differ are written; what is new begins a piece wherever `update` begins one, if there is one.
  void Write(const ValueAddress& address, const StoredText& old, std::string_view bytes,
             const TextUpdate* update);

  // In a transaction: keeps something that gave way, and forgets the oldest where there is too
  // much.
  void Keep(const ValueAddress& address, RegistryType type, std::string_view bytes);
  void ForgetOldest(const ValueAddress& address);

 private:
  void Convert();
  // Writes those of `pieces` that differ from the old ones, as many, from `first` on.
  void Overwrite(std::int64_t entry, const StoredText& old, std::size_t first, std::size_t offset,
                 const std::vector<std::string_view>& pieces);
  [[nodiscard]] std::int64_t EntryFor(const ValueAddress& address);
  [[nodiscard]] SqliteStatement Prepare(std::string_view sql, const ValueAddress& address) const;

  const SqliteDatabase& database_;
  std::int64_t version_ = 0;
};

}  // namespace kvdm
