// Links and drives, which only some systems have.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "platform/memory/memory_platform.h"
#include "safety/deletion_plan.h"
#include "tests/safety/work_place.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

DeletionPlan PlanFor(const WorkingDirectory& directory, const std::string& folder) {
  const MemoryPlatform platform;
  return PlanDeletion(*platform.xml_parser, {}, directory, {"study area", "North", "{N}", folder});
}

TEST(LinksTest, FolderThroughALinkIsRefused) {
  const WorkPlace place;
  place.Write("Victim/North/text.txt", "canary");
  place.Write("KVData/StudyAreas/South/North/text.txt", "the south");
  fs::create_directory_symlink(place.top / "Victim", place.top / "KVData/StudyAreas/Out");
  fs::create_directory_symlink(place.top / "KVData/StudyAreas/South",
                               place.top / "KVData/StudyAreas/In");
  for (const char* folder : {"KVData/StudyAreas/Out", "KVData/StudyAreas/Out/North",
                             "KVData/StudyAreas/In", "KVData/StudyAreas/In/North"}) {
    const std::string objection = PlanFor(place.Directory(), place.Folder(folder)).objection;
    EXPECT_NE(objection.find("is reached through a link"), std::string::npos)
        << folder << ": " << objection;
  }
}

TEST(LinksTest, LinkAboveTheWorkingDirectoryDoesNotMatter) {
  const WorkPlace place;
  place.Write("KVData/StudyAreas/North/text.txt", "the north");
  fs::create_directory_symlink(place.top, place.top / "Home");
  const WorkingDirectory directory({}, place.Folder("Home/KVData"));
  for (const char* folder : {"KVData/StudyAreas/North", "Home/KVData/StudyAreas/North"}) {
    EXPECT_TRUE(directory.Holds(place.Folder(folder))) << folder;
    EXPECT_EQ(PlanFor(directory, place.Folder(folder)).objection, "") << folder;
  }
}

TEST(LinksTest, LinkInAStudyAreaLeadsOutOfTheWorkingDirectory) {
  const WorkPlace place;
  place.Write("Other/StudyAreas/North/text.txt", "theirs");
  fs::create_directories(place.top / "KVData/StudyAreas");
  fs::create_directory_symlink(place.top / "Other/StudyAreas/North",
                               place.top / "KVData/StudyAreas/North");
  EXPECT_FALSE(place.Directory().Holds(place.Folder("KVData/StudyAreas/North")));
}

TEST(LinksTest, LinksAreCountedAndNotFollowed) {
  const WorkPlace place;
  place.Write("Victim/text.txt", "canary");
  place.Write("KVData/StudyAreas/North/.hidden/map.txt", "map");
  fs::create_directory_symlink(place.top / "Victim", place.top / "KVData/StudyAreas/North/link");
  EXPECT_EQ(os::SizeOfTree(place.top / "KVData/StudyAreas/North").files, 2);
}

TEST(LinksTest, FolderWithoutPermissionIsSaidToBeLeftOut) {
  const WorkPlace place;
  place.Write("Tree/closed/map.txt", "map");
  const fs::path closed = place.top / "Tree/closed";
  fs::permissions(closed, fs::perms::none);
  const os::TreeSize size = os::SizeOfTree(place.top / "Tree");
  fs::permissions(closed, fs::perms::owner_all);
  // The system's own user may look everywhere.
  EXPECT_EQ(size.files, size.is_whole ? 1 : 0);
}

TEST(DrivesTest, FoldersAreComparedAfterDrivesAreReplaced) {
  const WorkPlace place;
  place.Write("KVData/StudyAreas/North/text.txt", "the north");
  const WorkingDirectory directory({{'D', place.top.string()}}, R"(D:\KVData\)");
  EXPECT_EQ(directory.Place(), place.top / "KVData");
  EXPECT_TRUE(directory.Holds(place.Folder("KVData/StudyAreas/North")));
  EXPECT_TRUE(place.Directory().Holds(place.Folder("KVData/StudyAreas/North")));
  EXPECT_EQ(os::NativePlace({}, R"(D:\KVData\)"), std::nullopt);
}

}  // namespace
}  // namespace kvdm
