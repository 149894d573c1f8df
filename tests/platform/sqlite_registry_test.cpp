// What only the registry in a file has: the file, its state, and other processes.
#include "platform/posix/sqlite_registry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/memory/recording_sinks.h"
#include "platform/posix/sqlite_database.h"
#include "tests/temp_folder.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;

constexpr auto kMachine = RegistryRoot::kLocalMachine;
constexpr std::string_view kKey = "Software\\Velk\\Kelvaro";

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

  // The file refuses a write and then answers a read with nothing, and is the same afterwards.
  void ExpectRefused() {
    const std::string before = ReadRaw();
    SqliteRegistry registry = Make();
    EXPECT_FALSE(registry.WriteText(kMachine, kKey, "Alias", "Shops"));
    EXPECT_EQ(registry.Read(kMachine, kKey, "Alias"), std::nullopt);
    EXPECT_THAT(log_->Lines(), SizeIs(2));
    EXPECT_TRUE(ReadRaw() == before);
  }

  TempFolder folder_;
  std::string path_ = folder_.Path("registry.db");
  std::shared_ptr<RecordingLog> log_ = std::make_shared<RecordingLog>();
};

TEST_F(SqliteRegistryTest, ReadingCreatesNothing) {
  path_ = folder_.Path("not/there/registry.db");
  SqliteRegistry registry = Make();
  EXPECT_EQ(registry.Read(kMachine, kKey, "Alias"), std::nullopt);
  registry.Preserve(kMachine, kKey, "Alias");
  EXPECT_THAT(registry.Preserved(kMachine, kKey, "Alias"), IsEmpty());
  EXPECT_TRUE(fs::is_empty(folder_.Path()));
  EXPECT_THAT(log_->Lines(), IsEmpty());
}

TEST_F(SqliteRegistryTest, TheFirstWriteCreatesTheFolder) {
  path_ = folder_.Path("not/there/registry.db");
  EXPECT_TRUE(Make().WriteText(kMachine, kKey, "Alias", "Shops"));
  EXPECT_TRUE(fs::exists(path_));
}

TEST_F(SqliteRegistryTest, ValuesOutliveTheObject) {
  ASSERT_TRUE(Make().WriteText(kMachine, kKey, "Alias", "Shops"));
  EXPECT_EQ(Make().Read(kMachine, kKey, "Alias")->data, "Shops");
}

TEST_F(SqliteRegistryTest, BytesAreThoseOfTheCodePageWithoutAnEnd) {
  SqliteRegistry registry({path_, CodePage::kWindows1252}, log_);
  ASSERT_TRUE(registry.WriteText(kMachine, kKey, "Alias", "\u20AC\u00FC"));
  SqliteStatement row = OpenDatabase().Prepare("SELECT data FROM registry_value");
  ASSERT_TRUE(row.Step());
  EXPECT_EQ(row.Bytes(0), "\x80\xFC");
}

TEST_F(SqliteRegistryTest, AnEmptyFileIsAnEmptyRegistry) {
  WriteRaw("");
  EXPECT_EQ(Make().Read(kMachine, kKey, "Alias"), std::nullopt);
  EXPECT_TRUE(Make().WriteText(kMachine, kKey, "Alias", "Shops"));
  EXPECT_THAT(log_->Lines(), IsEmpty());
}

TEST_F(SqliteRegistryTest, ValuesOfOtherTypesAreRead) {
  ASSERT_TRUE(Make().WriteText(kMachine, kKey, "Alias", "Shops"));
  OpenDatabase().Run("UPDATE registry_value SET type = 4, data = x'05FF'");
  EXPECT_EQ(Make().Read(kMachine, kKey, "Alias"),
            (RegistryValue{RegistryType::kNumber, "\x05\xFF"}));
}

TEST_F(SqliteRegistryTest, AShortFileThatIsNoDatabaseIsLeftAlone) {
  WriteRaw("my notes");
  ExpectRefused();
}

TEST_F(SqliteRegistryTest, ALongFileThatIsNoDatabaseIsLeftAlone) {
  WriteRaw(std::string(100'000, 'x'));
  ExpectRefused();
}

TEST_F(SqliteRegistryTest, ADamagedDatabaseIsLeftAlone) {
  ASSERT_TRUE(Make().WriteText(kMachine, kKey, "Alias", std::string(50'000, 'x')));
  constexpr std::size_t kHeaderBytes = 100;
  const std::size_t size = ReadRaw().size();
  WriteRaw(ReadRaw().substr(0, kHeaderBytes) + std::string(size - kHeaderBytes, '\xEE'));
  ExpectRefused();
}

TEST_F(SqliteRegistryTest, AnotherProgramsDatabaseIsLeftAlone) {
  OpenDatabase().Run("CREATE TABLE songs(title TEXT)");
  ExpectRefused();
  EXPECT_THAT(log_->Lines()[0], HasSubstr("another program"));
}

TEST_F(SqliteRegistryTest, AFolderInItsPlaceIsRefused) {
  fs::create_directory(path_);
  EXPECT_FALSE(Make().WriteText(kMachine, kKey, "Alias", "Shops"));
  EXPECT_EQ(Make().Read(kMachine, kKey, "Alias"), std::nullopt);
  EXPECT_THAT(log_->Lines(), SizeIs(2));
}

TEST_F(SqliteRegistryTest, AFileWhereAFolderIsNeededIsRefused) {
  WriteRaw("");
  path_ += "/registry.db";
  EXPECT_FALSE(Make().WriteText(kMachine, kKey, "Alias", "Shops"));
  EXPECT_THAT(log_->Lines(), SizeIs(1));
}

TEST_F(SqliteRegistryTest, ANewerStoreIsReadButNotWritten) {
  ASSERT_TRUE(Make().WriteText(kMachine, kKey, "Alias", "Shops"));
  OpenDatabase().Run("PRAGMA user_version = 2");
  EXPECT_FALSE(Make().WriteText(kMachine, kKey, "Alias", "Outlets"));
  EXPECT_EQ(Make().Read(kMachine, kKey, "Alias")->data, "Shops");
  EXPECT_THAT(log_->Lines(), ElementsAre(HasSubstr("newer version")));
}

TEST_F(SqliteRegistryTest, ABusyStoreIsRefusedAfterTheTimeOut) {
  ASSERT_TRUE(Make().WriteText(kMachine, kKey, "Alias", "Shops"));
  const SqliteDatabase other = OpenDatabase();
  other.Run("BEGIN EXCLUSIVE");
  SqliteRegistry registry = Make(std::chrono::milliseconds(1));
  EXPECT_FALSE(registry.WriteText(kMachine, kKey, "Alias", "Outlets"));
  EXPECT_EQ(registry.Read(kMachine, kKey, "Alias"), std::nullopt);
  EXPECT_THAT(log_->Lines(), ElementsAre(HasSubstr("locked"), HasSubstr("locked")));
  other.Run("COMMIT");
  EXPECT_EQ(registry.Read(kMachine, kKey, "Alias")->data, "Shops");
}

TEST_F(SqliteRegistryTest, PreservedValuesHaveTheirTime) {
  SqliteRegistry registry = Make();
  for (const auto* text : {"one", "one", "two"}) {
    ASSERT_TRUE(registry.WriteText(kMachine, kKey, "Alias", text));
    registry.Preserve(kMachine, kKey, "Alias");
  }
  const auto preserved = registry.Preserved(kMachine, kKey, "ALIAS");
  ASSERT_THAT(preserved, SizeIs(2));
  EXPECT_EQ(preserved[0].value.data, "one");
  EXPECT_EQ(preserved[1].value.data, "two");
  EXPECT_THAT(preserved[0].when, MatchesRegex("[0-9]+-[0-9]+-[0-9]+T[0-9]+:[0-9]+:[0-9]+Z"));
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
        all = Make().WriteText(kMachine, kKey, name, name) && all;
      }
      return all;
    }));
  }
  for (const pid_t child : children) EXPECT_TRUE(Succeeded(child));
  for (int process = 0; process < kProcesses; ++process) {
    for (int i = 0; i < kWrites; ++i) {
      const std::string name = std::to_string(process) + "-" + std::to_string(i);
      EXPECT_EQ(Make().Read(kMachine, kKey, name).value_or(RegistryValue{}).data, name);
    }
  }
}

TEST_F(SqliteRegistryTest, AnotherProcessSeesOldOrNewValuesNeverHalves) {
  const std::string old_text(200'000, 'a');
  const std::string new_text(200'000, 'b');
  ASSERT_TRUE(Make().WriteText(kMachine, kKey, "Alias", old_text));
  const pid_t child = Fork([&] {
    bool all = true;
    for (int i = 0; i < 10; ++i) {
      all = Make().WriteText(kMachine, kKey, "Alias", i % 2 == 0 ? new_text : old_text) && all;
    }
    return all;
  });
  for (int i = 0; i < 50; ++i) {
    const auto value = Make().Read(kMachine, kKey, "Alias");
    ASSERT_TRUE(value.has_value());
    EXPECT_TRUE(value->data == old_text || value->data == new_text);
  }
  EXPECT_TRUE(Succeeded(child));
}

TEST_F(SqliteRegistryTest, AWriterThatDiesLeavesTheOldValue) {
  ASSERT_TRUE(Make().WriteText(kMachine, kKey, "Alias", "Shops"));
  const pid_t child = Fork([&] {
    const SqliteDatabase database = OpenDatabase();
    database.Run("PRAGMA cache_size = 1");
    database.Run("BEGIN IMMEDIATE");
    database.Run("UPDATE registry_value SET data = zeroblob(1000000)");
    _exit(0);
    return true;
  });
  ASSERT_TRUE(Succeeded(child));
  EXPECT_EQ(Make().Read(kMachine, kKey, "Alias")->data, "Shops");
  EXPECT_TRUE(Make().WriteText(kMachine, kKey, "Alias", "Outlets"));
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
