// The pieces in which the registry's file keeps a text: a row a study area, the same text to the
// byte; stores of version 1, and the way back to it.
#include "platform/posix/sqlite_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sstream>

#include "platform/memory/memory_platform.h"
#include "platform/portable/catalogue_update.h"
#include "platform/posix/sqlite_registry.h"
#include "tests/replacing_update.h"
#include "tests/temp_folder.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::SizeIs;

constexpr std::string_view kSoftwareKey = "Software\\Velk\\Kelvaro";
constexpr std::string_view kListName = "StudyAreaCollection";

// Puts a text in the place of what is stored, in the pieces of a catalogue.
class Cutting final : public TextUpdate {
 public:
  explicit Cutting(std::string text) : text_(std::move(text)) {}

  [[nodiscard]] std::vector<Piece> Base() const override { return {}; }
  [[nodiscard]] std::vector<Piece> Wanted() const override { return {}; }
  [[nodiscard]] std::vector<std::size_t> Cuts(std::string_view text) const override {
    return CatalogueUpdate(*platform_.xml_parser, "", "", {}).Cuts(text);
  }
  [[nodiscard]] Outcome On(const std::optional<RegistryValue>&) const override { return {text_}; }

 private:
  MemoryPlatform platform_;
  std::string text_;
};

class SqliteStoreTest : public testing::Test {
 protected:
  using Rows = std::map<std::int64_t, std::string>;

  void Store(const std::string& text) {
    ASSERT_TRUE(registry_.Update(kMachine, kSoftwareKey, kListName, Cutting(text)));
  }
  std::string Stored() { return registry_.Read(kMachine, kSoftwareKey, kListName)->data; }

  [[nodiscard]] SqliteDatabase Open() const {
    return {path_, SqliteDatabase::Access::kExisting, std::chrono::seconds(0)};
  }
  // The text in the first row of a query; "" without one.
  [[nodiscard]] std::string Text(std::string_view query) const {
    const SqliteDatabase database = Open();
    SqliteStatement row = database.Prepare(query);
    return row.Step() ? row.Bytes(0) : "";
  }
  // The pieces by their places.
  [[nodiscard]] Rows Pieces() const {
    const SqliteDatabase database = Open();
    SqliteStatement row = database.Prepare("SELECT place, data FROM registry_piece");
    Rows rows;
    while (row.Step()) rows[row.Number(0)] = row.Bytes(1);
    return rows;
  }
  // How many rows are other ones, or not in both.
  static int Differences(const Rows& a, const Rows& b) {
    int differences = 0;
    for (const auto& [place, data] : a) differences += !b.contains(place) || b.at(place) != data;
    for (const auto& [place, data] : b) differences += !a.contains(place);
    return differences;
  }

  TempFolder folder_;
  std::string path_ = folder_.Path("registry.db");
  std::shared_ptr<RecordingLog> log_ = std::make_shared<RecordingLog>();
  SqliteRegistry registry_{{path_}, log_};
};

std::string AreaOf(const std::string& name) { return "<STUDYAREA NAME=\"" + name + "\"/>"; }

std::string ListOf(const std::vector<std::string>& areas) {
  std::string text = "<LIST>";
  for (const std::string& area : areas) text += area;
  return text + "</LIST>\r\n";
}

TEST_F(SqliteStoreTest, AStudyAreaHasARow) {
  Store(ListOf({AreaOf("a"), AreaOf("b"), "<STUDYAREA/>", "<STUDYAREAS/>"}));
  std::vector<std::string> rows;
  for (const auto& [place, data] : Pieces()) rows.push_back(data);
  EXPECT_THAT(rows, ElementsAre("<LIST>", AreaOf("a"), AreaOf("b"),
                                "<STUDYAREA/><STUDYAREAS/></LIST>\r\n"));
}

TEST_F(SqliteStoreTest, AChangeWritesOneRow) {
  std::vector<std::string> areas;
  for (int i = 0; i < 50; ++i) areas.push_back(AreaOf(std::to_string(i)));
  Store(ListOf(areas));
  const Rows before = Pieces();
  areas[20] = AreaOf("something longer");
  Store(ListOf(areas));
  EXPECT_EQ(Differences(before, Pieces()), 1);
  const Rows changed = Pieces();
  areas.erase(areas.begin() + 10);
  Store(ListOf(areas));
  EXPECT_EQ(Differences(changed, Pieces()), 1);
  const Rows removed = Pieces();
  areas.push_back(AreaOf("new"));
  Store(ListOf(areas));
  EXPECT_LE(Differences(removed, Pieces()), 3);  // the last one's, which ends the list, and its own
}

TEST_F(SqliteStoreTest, TwoChangesFarApartWriteTwoRows) {
  std::vector<std::string> areas;
  for (int i = 0; i < 50; ++i) areas.push_back(AreaOf(std::to_string(i)));
  Store(ListOf(areas));
  const Rows before = Pieces();
  areas[2] = AreaOf("two");
  areas[40] = AreaOf("forty");
  Store(ListOf(areas));
  EXPECT_EQ(Differences(before, Pieces()), 2);
}

TEST_F(SqliteStoreTest, AnyTextIsReadAgainToTheByte) {
  std::mt19937 chance(3);
  std::vector<std::string> areas;
  for (int step = 0; step < 400; ++step) {
    const std::size_t at = chance() % (areas.size() + 1);
    const std::string area = AreaOf(std::string(chance() % 9 == 0 ? chance() % 20'000 : 3, 'x'));
    const auto kind = chance() % 5;
    if (kind == 0 && at < areas.size())
      areas.erase(areas.begin() + static_cast<std::ptrdiff_t>(at));
    if (kind == 1 && at < areas.size()) areas[at] = area;
    if (kind == 2) areas.insert(areas.begin() + static_cast<std::ptrdiff_t>(at), area);
    if (kind == 3)
      areas.insert(areas.begin() + static_cast<std::ptrdiff_t>(areas.size() / 2), area);
    if (kind == 4 && step % 10 == 0) std::ranges::shuffle(areas, chance);
    const std::string text =
        step % 50 == 49 ? std::string("\0<STUDYAREA \xFF", step % 14) : ListOf(areas);
    Store(text);
    std::string bytes;
    for (const auto& [place, data] : Pieces()) bytes += data;
    ASSERT_EQ(Stored(), Decode(text, CodePage::kUtf8)) << step;
    ASSERT_EQ(Text("SELECT data FROM registry_value"), bytes) << step;
  }
}

TEST_F(SqliteStoreTest, OnlyWhereNobodyElseWroteIsTheNewTextTakenAsItIs) {
  const MemoryPlatform platform;
  const auto area = [](const char* name) {
    return "<STUDYAREA NAME=\"_" + std::string(name) + "_\" GUID=\"{" + name + "}\"/>";
  };
  const auto update = [&](const std::string& base, const std::string& wanted) {
    return registry_.Update(
        kMachine, kSoftwareKey, kListName,
        CatalogueUpdate(*platform.xml_parser, base, wanted, [](char32_t) { return true; }));
  };
  const std::string base = ListOf({area("a"), area("b")});
  const std::string wanted = ListOf({area("a"), area("b"), area("here")});
  Store(base);
  EXPECT_TRUE(update(base, wanted));
  EXPECT_EQ(Stored(), wanted);
  for (const std::string& theirs :
       {ListOf({area("a"), area("b"), area("there")}), ListOf({area("a"), area("b")}) + "\n",
        ListOf({area("a"), area("there"), area("b")})}) {
    Store(theirs);
    EXPECT_TRUE(update(base, wanted));
    EXPECT_THAT(Stored(), testing::HasSubstr(area("here")));
    EXPECT_EQ(Stored().find(area("there")) == std::string::npos,
              theirs.find(area("there")) == std::string::npos);
  }
  Store(ListOf({area("a"), area("c")}));  // as long as the base
  EXPECT_TRUE(update(base, wanted));
  EXPECT_EQ(Stored(), ListOf({area("a"), area("c"), area("here")}));
}

// Between two places there is room for twenty or so; then the places are given out anew.
TEST_F(SqliteStoreTest, ThereIsAlwaysRoomInTheMiddle) {
  std::vector<std::string> areas = {AreaOf("first"), AreaOf("last")};
  Store(ListOf(areas));
  for (int i = 0; i < 60; ++i) {
    areas.insert(areas.begin() + 1, AreaOf(std::to_string(i)));
    Store(ListOf(areas));
    ASSERT_EQ(Stored(), ListOf(areas)) << i;
  }
  EXPECT_THAT(Pieces(), SizeIs(63));
}

TEST_F(SqliteStoreTest, ToolsReadAndChangeValuesAsRows) {
  Store(ListOf({AreaOf("a"), AreaOf("b")}));
  Open().Run(
      "INSERT OR REPLACE INTO registry_value VALUES('HKEY_LOCAL_MACHINE',"
      " 'Software\\Velk\\Kelvaro', 'Alias', 1, x'4142')");
  EXPECT_EQ(registry_.Read(kMachine, kSoftwareKey, "Alias")->data, "AB");
  Open().Run("UPDATE registry_value SET data = x'43' WHERE name = 'STUDYAREACOLLECTION'");
  EXPECT_EQ(Stored(), "C");
  Open().Run("DELETE FROM registry_value WHERE name = 'Alias'");
  EXPECT_EQ(registry_.Read(kMachine, kSoftwareKey, "Alias"), std::nullopt);
  EXPECT_THAT(Pieces(), SizeIs(1));
}

// A file that version 1 of the store wrote, with three study areas, an alias and a kept one.
class OldStoreTest : public SqliteStoreTest {
 protected:
  OldStoreTest() { fs::copy_file(fs::path(KVDM_TEST_DATA) / "registry-1.db", path_); }

  [[nodiscard]] std::string Bytes() const {
    std::ostringstream bytes;
    bytes << std::ifstream(path_, std::ios::binary).rdbuf();
    return bytes.str();
  }

  // Name, type and bytes of the values, and what was kept.
  [[nodiscard]] std::vector<std::string> Content() const {
    std::vector<std::string> content;
    const SqliteDatabase database = Open();
    SqliteStatement row = database.Prepare(
        "SELECT root || key || name || type || hex(data) FROM registry_value UNION ALL"
        " SELECT root || key || name || type || hex(data) || preserved_at FROM registry_history"
        " ORDER BY 1");
    while (row.Step()) content.push_back(row.Bytes(0));
    return content;
  }

  void RunScript(const std::string& script) const {
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(path_.c_str(), &database), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(database, script.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(database);
    sqlite3_close(database);
  }

  // The statements that docs/formats/registry.md gives for the way back.
  static std::string WayBack() {
    std::ostringstream page;
    page << std::ifstream(fs::path(KVDM_SOURCE) / "docs/formats/registry.md").rdbuf();
    const std::string text = page.str();
    const auto begin = text.find("BEGIN IMMEDIATE;");
    return text.substr(begin, text.find("```", begin) - begin);
  }
};

TEST_F(OldStoreTest, IsReadAndNotChangedByThat) {
  const std::string before = Bytes();
  EXPECT_THAT(Stored(), testing::HasSubstr("_S\u00fcd &amp; Ost_"));
  EXPECT_EQ(registry_.Read(kMachine, kSoftwareKey, "customer alias")->data, "Kunden");
  EXPECT_THAT(registry_.Kept(kMachine, kSoftwareKey, kListName), SizeIs(1));
  Store(Stored());
  EXPECT_TRUE(Bytes() == before);
}

TEST_F(OldStoreTest, IsConvertedByTheFirstChangeAndKeepsEverything) {
  const auto before = Content();
  ASSERT_TRUE(registry_.WriteText(kMachine, kSoftwareKey, "Store Alias", "Shops"));
  EXPECT_EQ(Open().Number("PRAGMA user_version"), 2);
  Open().Run("DELETE FROM registry_value WHERE name = 'Store Alias'");
  EXPECT_EQ(Content(), before);
  const std::string list = Stored();
  Store(list.substr(0, list.find("</STUDY")) + AreaOf("new") + "</STUDYAREACOLLECTION>");
  Store(list);
  EXPECT_EQ(Content(), before);
  EXPECT_THAT(Text("PRAGMA integrity_check"), "ok");
}

TEST_F(OldStoreTest, CanBecomeOneOfVersionOneAgain) {
  const auto before = Content();
  const std::string list = Stored();
  Store("");
  Store(list);
  RunScript(WayBack());
  EXPECT_EQ(Open().Number("PRAGMA user_version"), 1);
  EXPECT_EQ(Content(), before);
  EXPECT_EQ(Text("SELECT group_concat(name) FROM (SELECT name FROM sqlite_schema"
                 " WHERE type <> 'index' ORDER BY 1)"),
            "registry_history,registry_value");
  EXPECT_EQ(Stored(), list);
}

}  // namespace
}  // namespace kvdm
