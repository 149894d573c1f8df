#include "safety/history.h"

#include <gtest/gtest.h>

#include <fstream>

#include "safety/os.h"
#include "safety/result.h"
#include "safety/trash.h"
#include "tests/temp_folder.h"

namespace kvdm {
namespace {

ChangeRecord SampleRecord() {
  ChangeRecord record = NewRecord("kvdm 1.0", {"area", "delete", "North"});
  record.project = "/p/P.kvdm";
  record.working_directory = R"(Z:\p\KVData\)";
  record.undoes = 3;
  record.is_complete = true;
  record.changes = {{"catalogue", "AREAS", "{1}", "_North_", 0, 2, "<A/>", ""}};
  record.moves = {{R"(Z:\p\KVData\StudyAreas\North)", 4, "North", "{1}", true}};
  record.made = {{R"(Z:\p\KVData\StudyAreas\South)", 0, "", "{2}"}};
  return record;
}

class HistoryTest : public testing::Test {
 protected:
  [[nodiscard]] std::filesystem::path Folder() const { return folder_.Path(); }
  [[nodiscard]] std::string Component(const std::string& path) const {
    return os::ComponentPath(Folder()) + "\\" + path;
  }
  void Write(const std::string& path, const std::string& text) const {
    os::CreateFolders((Folder() / path).parent_path());
    std::ofstream(Folder() / path) << text;
  }
  template <class Body>
  static std::string FailureOf(ExitCode code, Body body) {
    try {
      body();
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.code(), code);
      return failure.what();
    }
    return "none";
  }

  TempFolder folder_;
};

TEST_F(HistoryTest, KeepsARecordAsItWas) {
  FolderHistory history(Folder());
  EXPECT_TRUE(history.Ended().empty());
  ChangeRecord record = SampleRecord();
  history.Begin(record);
  EXPECT_EQ(record.number, 1);
  EXPECT_EQ(history.Begun(), std::vector<int>{1});
  EXPECT_EQ(FolderHistory(Folder()).Read(1), record);
  history.End(1);
  EXPECT_TRUE(history.Begun().empty());
  EXPECT_EQ(history.Ended(), std::vector<int>{1});
  EXPECT_EQ(history.Read(1), record);
}

TEST_F(HistoryTest, NumbersGoOnAfterWhatWasForgotten) {
  FolderHistory history(Folder());
  ChangeRecord first = SampleRecord();
  history.Begin(first);
  history.Begin(first);  // with more that is known by now
  ChangeRecord second = SampleRecord();
  history.Begin(second);
  EXPECT_EQ(second.number, 2);
  history.Forget(first.number);
  EXPECT_EQ(history.Begun(), std::vector<int>{2});
}

TEST_F(HistoryTest, OnlyOneHasTheLock) {
  const FolderHistory history(Folder());
  auto lock = history.TryLock();
  EXPECT_TRUE(lock);
  EXPECT_FALSE(FolderHistory(Folder()).TryLock());
  lock.reset();
  EXPECT_TRUE(FolderHistory(Folder()).TryLock());
}

TEST_F(HistoryTest, ARecordThatCantBeUsedIsToldOf) {
  FolderHistory history(Folder());
  ChangeRecord record = SampleRecord();
  history.Begin(record);
  Json json = ToJson(record);
  json["version"] = 2;
  Write(".kvdm/history/000001.json", json.dump());
  EXPECT_NE(FailureOf(ExitCode::kUnreadable, [&] { std::ignore = history.Read(1); }).find("newer"),
            std::string::npos);
  for (const char* text : {"", "{}", R"({"format": "kvdm change", "version": 1})"}) {
    Write(".kvdm/history/000001.json", text);
    EXPECT_NE(FailureOf(ExitCode::kUnreadable, [&] { std::ignore = history.Read(1); }), "none");
  }
}

TEST_F(HistoryTest, TheOldestRecordsGoUnlessTheTrashNeedsThem) {
  FolderHistory history(Folder());
  ChangeRecord last = SampleRecord();
  last.number = static_cast<int>(kMostRecords) + 2;
  for (int number = 1; number < last.number; ++number) {
    Write(".kvdm/history/" + NumberName(number) + ".json", "{}");
  }
  Write(".kvdm-trash/000001/North/file", "");
  history.Begin(last);
  history.End(last.number);
  EXPECT_EQ(history.Ended().size(), kMostRecords + 1);
  EXPECT_EQ(history.Ended()[0], 1);
  EXPECT_EQ(history.Ended()[1], 3);
}

class TrashTest : public HistoryTest {
 protected:
  [[nodiscard]] Trash GetTrash() const { return {{}, Component("")}; }
  [[nodiscard]] Move Planned(const std::string& folder) const {
    auto moves = GetTrash().Plan(Component(folder), "{1}");
    EXPECT_EQ(moves.size(), 1U);
    moves.at(0).trash = 7;
    return moves.at(0);
  }
};

TEST_F(TrashTest, AFolderGoesThereAndBack) {
  Write("North/file", "kept");
  const Move move = Planned("north\\");
  EXPECT_EQ(move.name, "North");
  GetTrash().Perform(move);
  GetTrash().Perform(move);
  EXPECT_TRUE(GetTrash().Has(move));
  EXPECT_FALSE(GetTrash().IsThere(Component("North")));
  EXPECT_EQ(GetTrash().Numbers(), std::vector<int>{7});
  GetTrash().Revert(move);
  GetTrash().Revert(move);
  EXPECT_EQ(os::ReadBytes(Folder() / "North/file"), "kept");
  EXPECT_TRUE(GetTrash().Numbers().empty());
}

TEST_F(TrashTest, OnlyAFolderOfThatVeryNameIsTaken) {
  Write("North/file", "");
  Write("file", "");
  for (const char* name : {"North.", "North ", "Missing", "file"}) {
    EXPECT_TRUE(GetTrash().Plan(Component(name), "").empty()) << name;
  }
}

TEST_F(TrashTest, WhatStandsInThePlaceStays) {
  Write("North/file", "old");
  const Move move = Planned("North");
  GetTrash().Perform(move);
  Write("North/file", "new");
  EXPECT_NE(FailureOf(ExitCode::kConflict, [&] { GetTrash().Revert(move); }).find("North"),
            std::string::npos);
  EXPECT_EQ(os::ReadBytes(Folder() / "North/file"), "new");
  EXPECT_TRUE(GetTrash().Has(move));
}

TEST_F(TrashTest, WhatDidNotComeBackStaysWhereItIs) {
  Write("North/file", "old");
  Move move = Planned("North");
  GetTrash().Perform(move);
  os::CreateFolders(Folder() / "North");
  move.back = true;
  EXPECT_THROW(GetTrash().Perform(move), Failure);
  GetTrash().Revert(move);
  EXPECT_TRUE(GetTrash().IsThere(Component("North")));
  EXPECT_TRUE(GetTrash().Has(move));
}

TEST_F(TrashTest, WhatCantBeMovedIsRefused) {
  Write("North/file", "");
  Write(".kvdm-trash", "a file in its place");
  const Move move = Planned("North");
  EXPECT_NE(FailureOf(ExitCode::kUnsafe, [&] { GetTrash().Perform(move); }).find("--no-trash"),
            std::string::npos);
  EXPECT_TRUE(os::Exists(Folder() / "North/file"));
}

TEST_F(TrashTest, EmptyingLeavesNothing) {
  Write("North/.hidden/deep/file", "");
  Write("North/closed/file", "");
  std::filesystem::permissions(Folder() / "North/closed/file", std::filesystem::perms::owner_read);
  std::filesystem::permissions(Folder() / "North/closed", std::filesystem::perms::none);
  GetTrash().Perform(Planned("North"));
  GetTrash().Empty(7);
  EXPECT_TRUE(GetTrash().Numbers().empty());
}

#ifndef _WIN32
TEST_F(TrashTest, LinksAreNeitherFollowedNorMoved) {
  Write("outside/file", "kept");
  std::filesystem::create_directory_symlink(Folder() / "outside", Folder() / "Link");
  EXPECT_TRUE(GetTrash().Plan(Component("Link"), "").empty());
  Write("North/file", "");
  std::filesystem::create_directory_symlink(Folder() / "outside", Folder() / "North/link");
  GetTrash().Perform(Planned("North"));
  GetTrash().Empty(7);
  EXPECT_EQ(os::ReadBytes(Folder() / "outside/file"), "kept");
}
#endif

}  // namespace
}  // namespace kvdm
