// Temporary file paths, and cleaning.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/conformance/results.h"
#include "tests/conformance/world.h"

namespace kvdm::conformance {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kTemp[] = R"(D:\Data\KelvaroTemp)";

TEST(TemporaryFilesConformance, StartWithTmp) {
  OpenWorld world;
  EXPECT_EQ(world.Manager()->TmpFilePath(), R"(D:\Data\KelvaroTemp\tmp)");
  EXPECT_THAT(world.Tree(kTemp), IsEmpty());
}

TEST(TemporaryFilesConformance, GiveTheSamePathUntilAFileIsWritten) {
  OpenWorld world;
  EXPECT_EQ(world.Manager()->TmpFilePath(), world.Manager()->TmpFilePath());
  world.AddFile(R"(D:\Data\KelvaroTemp\tmp.shp)");
  EXPECT_EQ(world.Manager()->TmpFilePath(), R"(D:\Data\KelvaroTemp\tmp1)");
  world.AddFile(R"(D:\Data\KelvaroTemp\TMP1.dbf)");
  EXPECT_EQ(world.Manager()->TmpFilePath(), R"(D:\Data\KelvaroTemp\tmp2)");
}

TEST(TemporaryFilesConformance, SkipNamesTakenWithAnyExtension) {
  OpenWorld world;
  for (const char* file : {"tmp.shp", "tmp1.dbf", "tmp3", "tmp2.tar.gz"}) {
    world.AddFile(std::string(kTemp) + "\\" + file);
  }
  EXPECT_EQ(world.Manager()->TmpFilePath(), R"(D:\Data\KelvaroTemp\tmp4)");
}

TEST(TemporaryFilesConformance, AreNotStoppedByFoldersAndHiddenFiles) {
  OpenWorld world;
  world.AddFolder(R"(D:\Data\KelvaroTemp\tmp)");
  world.AddFile(R"(D:\Data\KelvaroTemp\tmp.shp)");
  world.SetHidden(R"(D:\Data\KelvaroTemp\tmp.shp)");
  EXPECT_EQ(world.Manager()->TmpFilePath(), R"(D:\Data\KelvaroTemp\tmp)");
}

TEST(TemporaryFilesConformance, CreateAMissingFolderHidden) {
  OpenWorld world;
  world.Remove(kTemp);
  EXPECT_EQ(world.Manager()->TmpFilePath(), R"(D:\Data\KelvaroTemp\tmp)");
  EXPECT_TRUE(world.IsHidden(kTemp));
}

TEST(TemporaryFilesConformance, LeaveAnExistingFolderAsItIs) {
  World world;
  world.AddFolder(kTemp);
  world.Manager()->SetWorkingDirectory(R"(D:\Data)");
  world.Manager()->TmpFilePath();
  EXPECT_FALSE(world.IsHidden(kTemp));
}

TEST(TemporaryFilesConformance, ReportAFolderThatCannotBeMade) {
  OpenWorld world;
  world.Remove(kTemp);
  world.LockFolder(R"(D:\Data)");
  EXPECT_EQ(world.Manager()->TmpFilePath(), "");
  EXPECT_THAT(world.Messages(),
              ElementsAre(Message{"Couldn't generate new Temp file name", "Kelvaro", 48}));
}

TEST(CleanTempConformance, DeletesFilesAndFoldersButNotTheFolderItself) {
  OpenWorld world;
  world.AddFile(R"(D:\Data\KelvaroTemp\tmp.shp)");
  world.AddFile(R"(D:\Data\KelvaroTemp\A\B\tmp.dbf)");
  world.AddFile(R"(D:\Data\KelvaroTemp\A\tmp.dbf)");
  world.AddFolder(R"(D:\Data\KelvaroTemp\C)");
  world.Manager()->CleanTemp();
  EXPECT_THAT(world.Tree(R"(D:\Data)"),
              ElementsAre(R"(CustLayers\)", R"(KelvaroTemp\)", R"(StoreLayers\)"));
  EXPECT_TRUE(world.IsHidden(kTemp));
}

TEST(CleanTempConformance, LeavesReadOnlyAndHiddenFiles) {
  OpenWorld world;
  world.AddFile(R"(D:\Data\KelvaroTemp\tmp.shp)");
  world.AddFile(R"(D:\Data\KelvaroTemp\keep.shp)");
  world.AddFile(R"(D:\Data\KelvaroTemp\hidden.shp)");
  world.SetReadOnly(R"(D:\Data\KelvaroTemp\keep.shp)");
  world.SetHidden(R"(D:\Data\KelvaroTemp\hidden.shp)");
  world.Manager()->CleanTemp();
  EXPECT_THAT(world.Tree(kTemp), ElementsAre("hidden.shp", "keep.shp"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(CleanTempConformance, StopsAtAFolderThatCannotBeDeleted) {
  OpenWorld world;
  world.AddFile(R"(D:\Data\KelvaroTemp\A\keep.shp)");
  world.SetReadOnly(R"(D:\Data\KelvaroTemp\A\keep.shp)");
  world.Manager()->CleanTemp();
  EXPECT_THAT(world.Tree(kTemp), ElementsAre(R"(A\)", R"(A\keep.shp)"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(CleanTempConformance, IsSilentWithoutAFolder) {
  OpenWorld world;
  world.Remove(kTemp);
  world.Manager()->CleanTemp();
  EXPECT_FALSE(world.FolderExists(kTemp));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

}  // namespace
}  // namespace kvdm::conformance
