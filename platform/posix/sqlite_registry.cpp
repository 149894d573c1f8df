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
#include "platform/posix/sqlite_store.h"
#include "platform/system_error.h"
#include "platform/utf8.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

// A file that is not what it should be.
class UnusableFile : public RuntimeError {
 public:
  UnusableFile(RegistryState state, const std::string& cause)
      : RuntimeError(kPermissionDenied, {}, cause), state_(state) {}

  [[nodiscard]] RegistryState State() const { return state_; }

 private:
  RegistryState state_;
};

// Fails unless the database is a registry of a version that this program knows.
void RequireStore(const SqliteDatabase& database) {
  const std::int64_t version = SqliteStore(database).Version();
  if (version == 0) {
    throw UnusableFile(RegistryState::kForeign, "the database belongs to another program");
  }
  if (version > SqliteStore::kVersion) {
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
    value = Decoded(SqliteStore(*database).Read({root, key, name}));
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
    SqliteStore store(*database);
    const ValueAddress address{root, key, name};
    const auto old = store.Read(address).value_or(StoredValue{});
    store.Write(address, {old.bytes, old.pieces}, Encode(text, options_.code_page), nullptr);
    database->Run("COMMIT");
  });
}

bool SqliteRegistry::Update(RegistryRoot root, std::string_view key, std::string_view name,
                            const TextUpdate& update) {
  return Done([&] {
    const auto database = BeginWriting();
    SqliteStore store(*database);
    const ValueAddress address{root, key, name};
    if (WriteUnopposed(store, address, update) || WriteMerged(store, address, update)) {
      database->Run("COMMIT");
    }
  });
}

bool SqliteRegistry::WriteUnopposed(SqliteStore& store, const ValueAddress& address,
                                    const TextUpdate& update) const {
  const auto texts = update.IfUnopposed();
  const bool is_stored_so = texts && options_.code_page == CodePage::kUtf8 &&
                            texts->base != texts->wanted && IsValidUtf8(texts->base) &&
                            IsValidUtf8(texts->wanted);
  const auto pieces = is_stored_so ? store.PiecesOf(address, texts->base) : std::nullopt;
  if (pieces) store.Write(address, {texts->base, *pieces}, texts->wanted, &update);
  return pieces.has_value();
}

bool SqliteRegistry::WriteMerged(SqliteStore& store, const ValueAddress& address,
                                 const TextUpdate& update) const {
  const auto stored = store.Read(address);
  const auto value = Decoded(stored);
  const auto outcome = update.On(value);
  if (value && value->type == RegistryType::kText && value->data == outcome.text) return false;
  if (outcome.keeps_stored && stored) store.Keep(address, stored->type, stored->bytes);
  for (const std::string& text : outcome.kept) {
    store.Keep(address, RegistryType::kText, Encode(text, options_.code_page));
  }
  if (outcome.keeps_stored || !outcome.kept.empty()) store.ForgetOldest(address);
  const StoredValue old = stored.value_or(StoredValue{});
  store.Write(address, {old.bytes, old.pieces}, Encode(outcome.text, options_.code_page), &update);
  return true;
}

std::vector<KeptValue> SqliteRegistry::Kept(RegistryRoot root, std::string_view key,
                                            std::string_view name) {
  std::vector<KeptValue> values;
  const bool done = Done([&] {
    const auto database = OpenForReading();
    if (!database) return;
    values = SqliteStore(*database).Kept({root, key, name});
    for (KeptValue& kept : values) kept.value = Decoded(std::move(kept.value));
  });
  if (!done) ThrowUnreadable(condition_);
  return values;
}

std::string SqliteRegistry::Stamp() const {
  struct stat file {};
  struct stat open_change {};
  const bool is_at_rest = ::stat(options_.path.c_str(), &file) == 0 &&
                          ::stat(JournalOf(options_.path).c_str(), &open_change) != 0 &&
                          ::stat((options_.path + "-wal").c_str(), &open_change) != 0;
  if (!is_at_rest) return {};
  std::string stamp;
  for (const auto part :
       {std::int64_t(file.st_dev), std::int64_t(file.st_ino), file.st_size, file.st_mtim.tv_sec,
        file.st_mtim.tv_nsec, file.st_ctim.tv_sec, file.st_ctim.tv_nsec}) {
    stamp += std::to_string(part) + ' ';
  }
  return stamp;
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
    SqliteStore::Create(database);
    database.Run("COMMIT");
  }
  if (RenameUnlessTaken(file.Path(), options_.path)) SyncFolderOf(options_.path);
}

RegistryValue SqliteRegistry::Decoded(RegistryValue value) const {
  if (value.type == RegistryType::kText) value.data = Decode(value.data, options_.code_page);
  return value;
}

std::optional<RegistryValue> SqliteRegistry::Decoded(
    const std::optional<StoredValue>& stored) const {
  if (!stored) return std::nullopt;
  if (stored->type != RegistryType::kText) return RegistryValue{stored->type, stored->bytes};
  return RegistryValue{stored->type, Decode(stored->bytes, options_.code_page)};
}

}  // namespace kvdm
