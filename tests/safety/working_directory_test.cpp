#include "safety/working_directory.h"

#include <gtest/gtest.h>

#include "safety/ownership.h"
#include "tests/safety/work_place.h"

namespace kvdm {
namespace {

TEST(WorkingDirectoryTest, HoldsWhatIsStrictlyBelowIt) {
  const WorkPlace place;
  place.Write("KVData/StudyAreas/North/map.txt", "map");
  place.Write("Other/StudyAreas/North/map.txt", "map");
  const WorkingDirectory directory = place.Directory();
  const struct {
    const char* folder;
    bool held;
  } cases[] = {{"KVData/StudyAreas/North", true},
               {"KVData/StudyAreas/Missing", true},
               {"KVData/maps", true},
               {"KVData", false},
               {"KVData/../Other/StudyAreas/North", false},
               {"KVData2", false},
               {"Other/StudyAreas/North", false},
               {"", false}};
  for (const auto& [folder, held] : cases) {
    EXPECT_EQ(directory.Holds(place.Folder(folder)), held) << folder;
  }
  EXPECT_FALSE(directory.Holds(""));
  EXPECT_FALSE(directory.Holds(R"(StudyAreas\North\)"));
}

TEST(WorkingDirectoryTest, FindsFoldersInAnyLetterCase) {
  const WorkPlace place;
  place.Write("KVData/StudyAreas/North/map.txt", "map");
  EXPECT_TRUE(place.Directory().Holds(place.Folder("kvdata/STUDYAREAS/north")));
}

TEST(WorkingDirectoryTest, DoesNotHoldWhatAWorkingDirectoryInItHolds) {
  const WorkPlace place;
  place.Write("KVData/Inner/KVData/StudyAreas/North/map.txt", "map");
  const std::string area = place.Folder("KVData/Inner/KVData/StudyAreas/North");
  EXPECT_TRUE(place.Directory().Holds(area));
  WriteOwner(place.top / "KVData/Inner/KVData", {"../Inner.kvdm", "", "", "", false});
  EXPECT_FALSE(place.Directory().Holds(area));
}

TEST(WorkingDirectoryTest, HoldsNothingOnADriveThatIsNotThere) {
  const WorkingDirectory directory({}, R"(Q:\KVData\)");
  EXPECT_TRUE(directory.Place().empty() || directory.Place().has_root_path());
  EXPECT_FALSE(directory.Holds(R"(Q:\Other\StudyAreas\North\)"));
}

TEST(WorkingDirectoryOfTest, IsWhatStandsBeforeStudyAreas) {
  EXPECT_EQ(WorkingDirectoryOf(R"(D:\Data\StudyAreas\North\)"), R"(D:\Data\)");
  EXPECT_EQ(WorkingDirectoryOf(R"(D:/Data/studyareas/North/)"), "D:/Data/");
  EXPECT_EQ(WorkingDirectoryOf(R"(D:\StudyAreas\Data\StudyAreas\North\)"),
            R"(D:\StudyAreas\Data\)");
  EXPECT_EQ(WorkingDirectoryOf(R"(D:\Maps\North\)"), "");
  EXPECT_EQ(WorkingDirectoryOf(""), "");
}

}  // namespace
}  // namespace kvdm
