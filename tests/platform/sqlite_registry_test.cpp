// What only the registry in a file has: the file, its state, and other processes.
#include "platform/posix/sqlite_registry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/memory/memory_platform.h"
#include "platform/posix/sqlite_database.h"
#include "tests/replacing_update.h"
#include "tests/temp_folder.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;
using testing::UnorderedElementsAre;

constexpr std::string_view kVelkKey = "Software\\Velk\\Kelvaro";

class SqliteRegistryTest : public testing::Test {
 protected:
  SqliteRegistry Make(std::chrono::milliseconds busy_timeout = std::chrono::seconds(30)) {
    return {{path_, CodePage::kUtf8, busy_timeout}, log_};
  }

  void WriteRaw(std::string_view bytes) {
    std::ofstream(path_, std::ios::binary).write(bytes.data(), std::ssize(bytes));
  }

  [[nodiscard]] std::string ReadRaw() const {
    std::ostringstream bytes;
    bytes << std::ifstream(path_, std::ios::binary).rdbuf();
    return bytes.str();
  }

  [[nodiscard]] SqliteDatabase OpenDatabase() const {
    return {path_, SqliteDatabase::Access::kCreate, std::chrono::seconds(0)};
  }

  // The file refuses a write, a read and an update in the same state, and is the same afterwards.
  void ExpectRefused(RegistryState state) {
    const std::string before = ReadRaw();
    SqliteRegistry registry = Make();
    EXPECT_FALSE(registry.WriteText(kMachine, kVelkKey, "Alias", "Shops"));
    EXPECT_EQ(registry.Condition().state, state);
    EXPECT_EQ(ReadError(registry), kDeviceUnavailable);
    EXPECT_EQ(registry.Condition().state, state);
    EXPECT_FALSE(registry.Update(kMachine, kVelkKey, "Alias", Replacing("Shops")));
    EXPECT_EQ(registry.Condition().state, state);
    EXPECT_THAT(log_->Lines(), SizeIs(3));
    EXPECT_TRUE(ReadRaw() == before);
  }

  // The number of the error with which a read ends; 0 when it does not.
  static std::int32_t ReadError(SqliteRegistry& registry) {
    try {
      static_cast<void>(registry.Read(kMachine, kVelkKey, "Alias"));
      return 0;
    } catch (const RuntimeError& error) {
      return error.number();
    }
  }

  TempFolder folder_;
  std::string path_ = folder_.Path("registry.db");
  std::shared_ptr<RecordingLog> log_ = std::make_shared<RecordingLog>();
};

TEST_F(SqliteRegistryTest, ReadingCreatesNothing) {
  path_ = folder_.Path("not/there/registry.db");
  SqliteRegistry registry = Make();
  EXPECT_EQ(registry.Read(kMachine, kVelkKey, "Alias"), std::nullopt);
  EXPECT_THAT(registry.Kept(kMachine, kVelkKey, "Alias"), IsEmpty());
  EXPECT_TRUE(fs::is_empty(folder_.Path()));
  EXPECT_THAT(log_->Lines(), IsEmpty());
}

TEST_F(SqliteRegistryTest, TheFirstWriteCreatesTheFolder) {
  path_ = folder_.Path("not/there/registry.db");
  EXPECT_TRUE(Make().WriteText(kMachine, kVelkKey, "Alias", "Shops"));
  EXPECT_TRUE(fs::exists(path_));
}

TEST_F(SqliteRegistryTest, ValuesOutliveTheObject) {
  ASSERT_TRUE(Make().WriteText(kMachine, kVelkKey, "Alias", "Shops"));
  EXPECT_EQ(Make().Read(kMachine, kVelkKey, "Alias")->data, "Shops");
}

TEST_F(SqliteRegistryTest, BytesAreThoseOfTheCodePageWithoutAnEnd) {
  SqliteRegistry registry({path_, CodePage::kWindows1252}, log_);
  ASSERT_TRUE(registry.WriteText(kMachine, kVelkKey, "Alias", "\u20AC\u00FC"));
  SqliteStatement row = OpenDatabase().Prepare("SELECT data FROM registry_value");
  ASSERT_TRUE(row.Step());
  EXPECT_EQ(row.Bytes(0), "\x80\xFC");
}

TEST_F(SqliteRegistryTest, AFileThatWasCutToNothingIsDamaged) {
  WriteRaw("");
  ExpectRefused(RegistryState::kDamaged);
}

TEST_F(SqliteRegistryTest, TheFileIsItsUsersAlone) {
  path_ = folder_.Path("new/registry.db");
  ASSERT_TRUE(Make().WriteText(kMachine, kVelkKey, "Alias", "Shops"));
  EXPECT_EQ(fs::status(path_).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(fs::status(folder_.Path("new")).permissions(), fs::perms::owner_all);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_.Path("new")), {}), 1);
}

TEST_F(SqliteRegistryTest, NamesThatSqliteKeepsInMemoryAreRefused) {
  for (const auto* name : {":memory:", "file:x?mode=memory"}) {
    path_ = name;
    EXPECT_FALSE(Make().WriteText(kMachine, kVelkKey, "Alias", "Shops"));
    SqliteRegistry registry = Make();
    EXPECT_EQ(ReadError(registry), kDeviceUnavailable);
    EXPECT_EQ(registry.Condition().state, RegistryState::kForbidden);
  }
}

TEST_F(SqliteRegistryTest, AnUpdateThatFindsTooMuchSaysSo) {
  class TooMuch final : public TextUpdate {
   public:
    [[nodiscard]] std::vector<Piece> Base() const override { return {}; }
    [[nodiscard]] std::vector<Piece> Wanted() const override { return {}; }
    [[nodiscard]] Outcome On(const std::optional<RegistryValue>&) const override {
      throw RuntimeError(kOutOfMemory, "", "more than 64 bytes");
    }
  };
  SqliteRegistry registry = Make();
  EXPECT_FALSE(registry.Update(kMachine, kVelkKey, "Alias", TooMuch()));
  EXPECT_EQ(registry.Condition().state, RegistryState::kTooLarge);
  EXPECT_THAT(registry.Condition().cause, HasSubstr("64 bytes"));
}

TEST_F(SqliteRegistryTest, ValuesOfOtherTypesAreRead) {
  ASSERT_TRUE(Make().WriteText(kMachine, kVelkKey, "Alias", "Shops"));
  OpenDatabase().Run("UPDATE registry_value SET type = 4, data = x'05FF'");
  EXPECT_EQ(Make().Read(kMachine, kVelkKey, "Alias"),
            (RegistryValue{RegistryType::kNumber, "\x05\xFF"}));
}

TEST_F(SqliteRegistryTest, AShortFileThatIsNoDatabaseIsLeftAlone) {
  WriteRaw("my notes");
  ExpectRefused(RegistryState::kNotADatabase);
}

TEST_F(SqliteRegistryTest, ALongFileThatIsNoDatabaseIsLeftAlone) {
  WriteRaw(std::string(100'000, 'x'));
  ExpectRefused(RegistryState::kNotADatabase);
}

TEST_F(SqliteRegistryTest, ADamagedDatabaseIsLeftAlone) {
  ASSERT_TRUE(Make().WriteText(kMachine, kVelkKey, "Alias", std::string(50'000, 'x')));
  constexpr std::size_t kHeaderBytes = 100;
  const std::size_t size = ReadRaw().size();
  WriteRaw(ReadRaw().substr(0, kHeaderBytes) + std::string(size - kHeaderBytes, '\xEE'));
  ExpectRefused(RegistryState::kDamaged);
}

TEST_F(SqliteRegistryTest, AnotherProgramsDatabaseIsLeftAlone) {
  OpenDatabase().Run("CREATE TABLE songs(title TEXT)");
  ExpectRefused(RegistryState::kForeign);
  EXPECT_THAT(log_->Lines()[0], HasSubstr("another program"));
}

TEST_F(SqliteRegistryTest, AFolderInItsPlaceIsRefused) {
  fs::create_directory(path_);
  SqliteRegistry registry = Make();
  EXPECT_FALSE(registry.WriteText(kMachine, kVelkKey, "Alias", "Shops"));
  EXPECT_EQ(ReadError(registry), kDeviceUnavailable);
  EXPECT_EQ(registry.Condition().state, RegistryState::kNotADatabase);
}

TEST_F(SqliteRegistryTest, AFileWhereAFolderIsNeededIsRefused) {
  WriteRaw("");
  path_ += "/registry.db";
  EXPECT_FALSE(Make().WriteText(kMachine, kVelkKey, "Alias", "Shops"));
  EXPECT_THAT(log_->Lines(), SizeIs(1));
}

TEST_F(SqliteRegistryTest, ANewerStoreIsLeftAlone) {
  ASSERT_TRUE(Make().WriteText(kMachine, kVelkKey, "Alias", "Shops"));
  OpenDatabase().Run("PRAGMA user_version = 3");
  ExpectRefused(RegistryState::kNewer);
}

TEST_F(SqliteRegistryTest, ABusyStoreIsRefusedAfterTheTimeOut) {
  ASSERT_TRUE(Make().WriteText(kMachine, kVelkKey, "Alias", "Shops"));
  const SqliteDatabase other = OpenDatabase();
  other.Run("BEGIN EXCLUSIVE");
  SqliteRegistry registry = Make(std::chrono::milliseconds(1));
  EXPECT_FALSE(registry.WriteText(kMachine, kVelkKey, "Alias", "Outlets"));
  EXPECT_EQ(ReadError(registry), kDeviceUnavailable);
  EXPECT_EQ(registry.Condition().state, RegistryState::kBusy);
  EXPECT_THAT(log_->Lines(), ElementsAre(HasSubstr("locked"), HasSubstr("locked")));
  other.Run("COMMIT");
  EXPECT_EQ(registry.Read(kMachine, kVelkKey, "Alias")->data, "Shops");
  EXPECT_EQ(registry.Condition().state, RegistryState::kReady);
}

TEST_F(SqliteRegistryTest, ADamagedFileIsSetAsideAndANewOneIsMade) {
  WriteRaw("my notes");
  SqliteRegistry registry = Make();
  const auto aside = registry.SetAside();
  ASSERT_TRUE(aside.has_value());
  EXPECT_THAT(*aside, MatchesRegex(".*registry.db.damaged-[0-9-]+T[0-9]+Z"));
  EXPECT_TRUE(registry.WriteText(kMachine, kVelkKey, "Alias", "Shops"));
  path_ = *aside;
  EXPECT_EQ(ReadRaw(), "my notes");
}

// A transaction that was never ended leaves its journal, and the user may delete the database.
// SQLite would play it back into the next one.
TEST_F(SqliteRegistryTest, AJournalThatWasLeftBehindIsSetAsideForANewFile) {
  std::ofstream(path_ + "-journal") << "left behind";
  ASSERT_TRUE(Make().WriteText(kMachine, kVelkKey, "Alias", "Shops"));
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder_.Path())) {
    names.push_back(entry.path().filename());
  }
  EXPECT_THAT(names, UnorderedElementsAre("registry.db",
                                          MatchesRegex("registry.db.left-[0-9TZ-]+-journal")));
}

TEST_F(SqliteRegistryTest, AFileThatIsNotDamagedIsNotSetAside) {
  EXPECT_EQ(Make().SetAside(), std::nullopt);
  ASSERT_TRUE(Make().WriteText(kMachine, kVelkKey, "Alias", "Shops"));
  EXPECT_EQ(Make().SetAside(), std::nullopt);
  OpenDatabase().Run("PRAGMA user_version = 3");
  EXPECT_EQ(Make().SetAside(), std::nullopt);
  EXPECT_TRUE(fs::exists(path_));
}

TEST_F(SqliteRegistryTest, BytesThatAreNoTextAreKeptAsTheyAre) {
  ASSERT_TRUE(Make().WriteText(kMachine, kVelkKey, "Alias", "Shops"));
  OpenDatabase().Run("UPDATE registry_value SET data = x'3CFF'");
  ASSERT_TRUE(Make().Update(kMachine, kVelkKey, "Alias", Replacing("Outlets")));
  SqliteStatement row = OpenDatabase().Prepare("SELECT data FROM registry_history");
  ASSERT_TRUE(row.Step());
  EXPECT_EQ(row.Bytes(0), "<\xFF");
}

TEST_F(SqliteRegistryTest, WhatIsKeptIsBounded) {
  SqliteRegistry registry = Make();
  Replacing update("new");
  for (std::size_t i = 0; i < kMostKeptValues + 5; ++i) update.kept.push_back(std::to_string(i));
  ASSERT_TRUE(registry.Update(kMachine, kVelkKey, "Alias", update));
  const auto kept = registry.Kept(kMachine, kVelkKey, "Alias");
  ASSERT_THAT(kept, SizeIs(kMostKeptValues));
  EXPECT_EQ(kept.front().value.data, "5");
}

TEST_F(SqliteRegistryTest, NothingIsWrittenWhenNothingCanBeKept) {
  ASSERT_TRUE(Make().WriteText(kMachine, kVelkKey, "Alias", "Shops"));
  OpenDatabase().Run("DROP TABLE registry_history");
  EXPECT_FALSE(Make().Update(kMachine, kVelkKey, "Alias", Replacing("Outlets")));
  EXPECT_EQ(Make().Read(kMachine, kVelkKey, "Alias")->data, "Shops");
}

TEST_F(SqliteRegistryTest, KeptValuesHaveTheirTime) {
  SqliteRegistry registry = Make();
  for (const auto* text : {"one", "two", "three"}) {
    ASSERT_TRUE(registry.Update(kMachine, kVelkKey, "Alias", Replacing(text)));
  }
  const auto kept = registry.Kept(kMachine, kVelkKey, "ALIAS");
  ASSERT_THAT(kept, SizeIs(2));
  EXPECT_EQ(kept[0].value.data, "one");
  EXPECT_EQ(kept[1].value.data, "two");
  EXPECT_THAT(kept[0].when, MatchesRegex("[0-9]+-[0-9]+-[0-9]+T[0-9]+:[0-9]+:[0-9]+Z"));
}

// Runs `work` in a process of its own and answers its id.
template <class Work>
pid_t Fork(Work work) {
  const pid_t child = fork();
  if (child == 0) _exit(work() ? 0 : 1);
  return child;
}

bool Succeeded(pid_t child) {
  int status = 0;
  return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST_F(SqliteRegistryTest, SeveralProcessesLoseNoWrite) {
  constexpr int kProcesses = 4;
  constexpr int kWrites = 10;
  std::vector<pid_t> children;
  for (int process = 0; process < kProcesses; ++process) {
    children.push_back(Fork([&] {
      bool all = true;
      for (int i = 0; i < kWrites; ++i) {
        const std::string name = std::to_string(process) + "-" + std::to_string(i);
        all = Make().WriteText(kMachine, kVelkKey, name, name) && all;
      }
      return all;
    }));
  }
  for (const pid_t child : children) EXPECT_TRUE(Succeeded(child));
  for (int process = 0; process < kProcesses; ++process) {
    for (int i = 0; i < kWrites; ++i) {
      const std::string name = std::to_string(process) + "-" + std::to_string(i);
      EXPECT_EQ(Make().Read(kMachine, kVelkKey, name).value_or(RegistryValue{}).data, name);
    }
  }
}

TEST_F(SqliteRegistryTest, AnotherProcessSeesOldOrNewValuesNeverHalves) {
  const std::string old_text(200'000, 'a');
  const std::string new_text(200'000, 'b');
  ASSERT_TRUE(Make().WriteText(kMachine, kVelkKey, "Alias", old_text));
  const pid_t child = Fork([&] {
    bool all = true;
    for (int i = 0; i < 10; ++i) {
      all = Make().WriteText(kMachine, kVelkKey, "Alias", i % 2 == 0 ? new_text : old_text) && all;
    }
    return all;
  });
  for (int i = 0; i < 50; ++i) {
    const auto value = Make().Read(kMachine, kVelkKey, "Alias");
    ASSERT_TRUE(value.has_value());
    EXPECT_TRUE(value->data == old_text || value->data == new_text);
  }
  EXPECT_TRUE(Succeeded(child));
}

TEST_F(SqliteRegistryTest, AWriterThatDiesLeavesTheOldValue) {
  ASSERT_TRUE(Make().WriteText(kMachine, kVelkKey, "Alias", "Shops"));
  const pid_t child = Fork([&] {
    const SqliteDatabase database = OpenDatabase();
    database.Run("PRAGMA cache_size = 1");
    database.Run("BEGIN IMMEDIATE");
    database.Run("UPDATE registry_piece SET data = zeroblob(1000000)");
    _exit(0);
    return true;
  });
  ASSERT_TRUE(Succeeded(child));
  EXPECT_EQ(Make().Read(kMachine, kVelkKey, "Alias")->data, "Shops");
  EXPECT_TRUE(Make().WriteText(kMachine, kVelkKey, "Alias", "Outlets"));
}

// Sets an environment variable for one test.
class Environment {
 public:
  Environment(const char* name, const char* value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    Set(value);
  }
  ~Environment() { Set(old_ ? old_->c_str() : nullptr); }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  void Set(const char* value) const {
    value == nullptr ? unsetenv(name_) : setenv(name_, value, 1);
  }

  const char* name_;
  std::optional<std::string> old_;
};

struct PathCase {
  const char* registry;
  const char* data_home;
  std::string_view path;
};

TEST(DefaultRegistryPathTest, FollowsTheEnvironment) {
  constexpr PathCase kCases[] = {
      {"/chosen.db", "/data", "/chosen.db"},
      {nullptr, "/data", "/data/kvdm/registry.db"},
      {"", "/data", "/data/kvdm/registry.db"},
      {nullptr, nullptr, "/home/ann/.local/share/kvdm/registry.db"},
      {nullptr, "", "/home/ann/.local/share/kvdm/registry.db"},
      {nullptr, "relative", "/home/ann/.local/share/kvdm/registry.db"},
  };
  const Environment home("HOME", "/home/ann");
  for (const PathCase& row : kCases) {
    const Environment registry("KVDM_REGISTRY", row.registry);
    const Environment data_home("XDG_DATA_HOME", row.data_home);
    EXPECT_EQ(DefaultRegistryPath(), row.path);
  }
}

}  // namespace
}  // namespace kvdm
