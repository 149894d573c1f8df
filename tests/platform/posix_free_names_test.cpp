// Free names and missing names on one listing: the same answers as by asking for one at a time, and
// without what an object remembers.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <random>
#include <string>
#include <vector>

#include "tests/platform/temporary_drive.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

class Chance {
 public:
  explicit Chance(unsigned seed) : engine_(seed) {}
  std::size_t Below(std::size_t end) { return engine_() % end; }
  template <class Range>
  auto Of(const Range& range) {
    return range[Below(std::size(range))];
  }

 private:
  std::mt19937 engine_;
};

const std::vector<std::string> kBases = {"tmp", "Tmp",    "TMP.a", "t",  "läden", "LÄDEN",
                                         "x ",  "x",      ".x",    "a*", "a?b",   "",
                                         "..",  "sub\\t", ".",     " ",  "\xff",  "tmp1"};
const std::vector<std::string> kNumbers = {"",   "1",  "2",     "3",     "4",
                                           "01", "-1", "32767", "99999", "1 2"};
const std::vector<std::string> kEnds = {"", ".shp", ".dbf", ".", " ", "..", ". .", ".1", " .x"};

// Puts something with a name that is close to a candidate into the folder.
void PutSomething(const TemporaryDrive& drive, const std::string& folder, Chance& chance) {
  std::string name = chance.Of(kBases) + chance.Of(kNumbers) + chance.Of(kEnds);
  const fs::path path = drive.At(folder + "\\" + name);
  std::error_code ignored;
  if (fs::exists(fs::symlink_status(path, ignored)) || path.filename().empty()) return;
  switch (chance.Below(6)) {
    case 0:
    case 1:
      fs::create_directory(path, ignored);
      break;
    case 2:
      fs::create_symlink(chance.Of(std::vector<std::string>{"sub", "nowhere", "tmp"}), path,
                         ignored);
      return;
    default:
      std::ofstream(path) << "x";
  }
  if (chance.Below(5) == 0 && fs::exists(path, ignored)) {
    drive.SetDosAttribute(path.string(), "0x2");
  }
  if (chance.Below(8) == 0) ::chmod(path.c_str(), 0444);
}

// What `ask` answers, or the number of its error.
template <class Ask>
std::string AnswerOf(Ask ask) {
  try {
    return ask();
  } catch (const RuntimeError& error) {
    return "error " + std::to_string(error.number());
  }
}

TEST(PosixFreeNamesTest, AreThoseFoundByAskingOneByOne) {
  constexpr int kFolders = 150;
  Chance chance(1);
  int numbered = 0;
  for (int round = 0; round < kFolders; ++round) {
    const TemporaryDrive drive;
    fs::create_directories(drive.At("Data/sub"));
    const std::size_t entries = chance.Below(40);
    for (std::size_t i = 0; i < entries; ++i) {
      PutSomething(drive, chance.Below(5) == 0 ? "Data\\sub" : "Data", chance);
    }
    const auto files = MakePosixFileSystem(drive.Options());
    for (const std::string& base : kBases) {
      for (const char* folder : {R"(D:\Data)", R"(D:\data\)", R"(D:\missing)", ""}) {
        const auto file = AnswerOf([&] { return files->FreeFileName(folder, base); });
        EXPECT_EQ(file, AnswerOf([&] { return files->FileSystem::FreeFileName(folder, base); }))
            << "file " << base << " in " << folder << ", round " << round;
        const std::string parent = std::string(folder) + "\\";
        const auto inside = AnswerOf([&] { return files->FreeFolderName(parent, base); });
        EXPECT_EQ(inside, AnswerOf([&] { return files->FileSystem::FreeFolderName(parent, base); }))
            << "folder " << base << " in " << parent << ", round " << round;
        numbered += static_cast<int>(file != base) + static_cast<int>(inside != base);
      }
    }
  }
  EXPECT_GT(numbered, kFolders);
}

// Others and this object make, remove and rename entries by turns; what it remembers of the folders
// never shows.
class RememberedNamesTest : public ::testing::Test {
 protected:
  // Does something to a random entry: as another process where `files` is null.
  void Change(FileSystem* files) {
    const std::string folder = chance_.Of(kFolders);
    const std::string name = chance_.Of(kNames);
    const fs::path path = drive_.At(folder + "\\" + name);
    std::error_code ignored;
    if (files != nullptr) {
      AnswerOf([&] { return files->CreateFolder("D:\\" + folder + "\\" + name), ""; });
      return;
    }
    switch (chance_.Below(5)) {
      case 0:
        fs::remove_all(path, ignored);
        break;
      case 1:
        fs::create_directory(path, ignored);
        break;
      case 2:
        if (fs::exists(path.parent_path())) std::ofstream(path) << "x";
        break;
      case 3:
        fs::rename(path, drive_.At(std::string(chance_.Of(kFolders)) + "\\" + chance_.Of(kNames)),
                   ignored);
        break;
      default:
        if (chance_.Below(20) != 0) return;
        fs::remove_all(path.parent_path(), ignored);
        fs::create_directory(path.parent_path(), ignored);
    }
  }

  void ExpectNothingStale(FileSystem& files) {
    const auto fresh = MakePosixFileSystem(drive_.Options());
    for (const char* folder : kFolders) {
      for (const char* name : kNames) {
        const std::string path = std::string("D:\\") + folder + "\\" + name;
        const auto full = [&](FileSystem& asked) {
          return AnswerOf([&] { return asked.FullPath(path); });
        };
        ASSERT_EQ(full(files), full(*fresh)) << path;
        ASSERT_EQ(files.FindFiles(path), fresh->FindFiles(path)) << path;
      }
    }
  }

  static constexpr const char* kFolders[] = {"One", "Two", "Two\\Three"};
  static constexpr const char* kNames[] = {"a", "A", "b.", "B", "b", "three", "Three"};

  TemporaryDrive drive_;
  Chance chance_{7};
};

TEST_F(RememberedNamesTest, AreThoseThatAreThere) {
  for (const char* folder : kFolders) fs::create_directories(drive_.At(folder));
  const auto files = MakePosixFileSystem(drive_.Options());
  for (int step = 0; step < 600; ++step) {
    Change(chance_.Below(3) == 0 ? files.get() : nullptr);
    ExpectNothingStale(*files);
    if (HasFatalFailure()) return;
  }
}

// A forked process shares what the system tells: neither may take it from the other.
TEST_F(RememberedNamesTest, AForkedProcessTakesNothingAway) {
  fs::create_directories(drive_.At("One"));
  const auto files = MakePosixFileSystem(drive_.Options());
  for (const char* name : {R"(D:\One\x)", R"(D:\One\y)", R"(D:\One\z)"}) files->CreateFolder(name);
  EXPECT_FALSE(files->FolderExists(R"(D:\One\NEW)"));
  fs::create_directory(drive_.At("One/new"));
  const pid_t child = fork();
  if (child == 0) _exit(files->FolderExists(R"(D:\One\NEW)") ? 0 : 1);
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(files->FolderExists(R"(D:\One\NEW)"));
}

}  // namespace
}  // namespace kvdm
