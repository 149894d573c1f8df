// Rules about the disk, paths, the working directory and layers' metadata.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "checked_world.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

struct CheckDiskTest : testing::Test, CheckedWorld {
  void ExpectMended(const std::string& rule, const std::string& found) {
    EXPECT_THAT(Found({rule}), ElementsAre(found));
    EXPECT_THAT(Mend(rule), Not(IsEmpty()));
    EXPECT_THAT(Found({rule}), IsEmpty());
  }
};

TEST_F(CheckDiskTest, FolderThatIsGoneIsMadeAgain) {
  memory.files->RemoveTree(R"(D:\Work\Analyses\Rent)");
  EXPECT_THAT(Found(), ElementsAre("error folder.missing analysis Rent"));
  ExpectMended("folder.missing", "error folder.missing analysis Rent");
  EXPECT_TRUE(memory.files->FolderExists(R"(D:\Work\Analyses\Rent)"));
}

TEST_F(CheckDiskTest, FolderThatWasRenamedIsFoundByTheIdentifier) {
  memory.files->MoveFolder(R"(D:\Work\Analyses\Rent)", R"(D:\Work\Analyses\Rents)");
  EXPECT_THAT(Mend("folder.missing"), SizeIs(2));
  EXPECT_THAT(Found(), IsEmpty());
  EXPECT_THAT(subject.stored.metadata, HasSubstr(R"(D:\Work\Analyses\Rents\Analysis.lyr)"));
}

TEST_F(CheckDiskTest, FolderOfNoItem) {
  memory.files->AddFolder(R"(D:\Work\StudyAreas\South)");
  memory.files->AddFolder(R"(D:\Work\StudyAreas\North\Analyses\Old)");
  memory.files->AddFolder(R"(D:\Work\Analyses\.kvdm-deleted)");
  EXPECT_THAT(Found(), ElementsAre("warning folder.orphan", "warning folder.orphan"));
}

TEST_F(CheckDiskTest, LayerFileThatIsGone) {
  memory.files->RemoveTree(R"(D:\Work\StoreLayers\Stores.lyr)");
  EXPECT_THAT(Found(), ElementsAre("error layerfile.missing store layer Stores"));
  EXPECT_THAT(Mend("layerfile.missing"), IsEmpty());
}

TEST_F(CheckDiskTest, LayerFileThatWasRenamedIsFoundByTheIdentifier) {
  const auto described = *memory.files->ReadFile(R"(D:\Work\StoreLayers\Stores.lyr.xml)");
  memory.files->RemoveTree(R"(D:\Work\StoreLayers\Stores.lyr)");
  memory.files->AddFile(R"(D:\Work\StoreLayers\Shops.lyr)");
  memory.files->AddFile(R"(D:\Work\StoreLayers\Shops.lyr.xml)", described);
  ExpectMended("layerfile.missing", "error layerfile.missing store layer Stores");
}

TEST_F(CheckDiskTest, LayerFileOfANewItemIsNotThereYet) {
  memory.files->RemoveTree(R"(D:\Work\StoreLayers\Stores.lyr)");
  memory.clock->Set({2026, 11, 1, 23, 0, 0});
  EXPECT_THAT(Found(), ElementsAre("note layerfile.missing store layer Stores"));
  memory.clock->Set({2026, 11, 2, 10, 0, 0});
  EXPECT_THAT(Found(), ElementsAre("error layerfile.missing store layer Stores"));
}

TEST_F(CheckDiskTest, LayerFileInOtherCaseIsThere) {
  InMetadata(R"(D:\Work\StoreLayers\Stores.lyr)", R"(d:\work\StoreLayers\STORES.LYR)");
  EXPECT_THAT(Found({"layerfile"}), IsEmpty());
}

TEST_F(CheckDiskTest, ReservedDataFileHasAnyExtensionOrIsNotThereYet) {
  EXPECT_THAT(Found(), IsEmpty());
  memory.files->RemoveTree(R"(D:\Work\Data\Streets.shp)");
  EXPECT_THAT(Found(), ElementsAre("note layerfile.missing data item Streets"));
}

TEST_F(CheckDiskTest, TwoItemsWithOneFile) {
  InMetadata(R"(D:\Work\CustLayers\Members.lyr)", R"(D:\Work\StoreLayers\Stores.lyr)");
  ExpectMended("layerfile.shared", "error layerfile.shared store layer Stores");
  EXPECT_THAT(subject.stored.metadata, HasSubstr(R"("D:\Work\StoreLayers\Stores1.lyr")"));
}

TEST_F(CheckDiskTest, AnalysisThatWentWithItsStudyArea) {
  subject.stored.catalogue = "<STUDYAREACOLLECTION/>";
  memory.files->RemoveTree(R"(D:\Work\StudyAreas\North)");
  EXPECT_THAT(Found({"folder", "analysis", "catalogue"}),
              ElementsAre("error analysis.in-deleted-area analysis Sales"));
  ExpectMended("analysis.in-deleted-area", "error analysis.in-deleted-area analysis Sales");
  EXPECT_THAT(subject.stored.metadata, Not(HasSubstr("_Sales_")));
  EXPECT_THAT(subject.stored.metadata, HasSubstr("_Rent_"));
}

TEST_F(CheckDiskTest, FolderWhoseDeletionWouldTakeMore) {
  for (const char* folder : {"", "Rent", "D:\\", R"(D:\Work\)", R"(D:\Work\Analyses\..\)", "\\",
                             R"(D:\WORK\studyareas\north\analyses\sales)"}) {
    const Holdings before = subject.stored;
    InMetadata(R"(DIRNAME="D:\Work\Analyses\Rent\")", std::string("DIRNAME=\"") + folder + "\"");
    ExpectMended("path.delete-hazard", "error path.delete-hazard analysis Rent");
    EXPECT_THAT(subject.stored.metadata, HasSubstr(R"(DIRNAME="D:\Work\Analyses\Rent\")"));
    subject.stored = before;
  }
}

TEST_F(CheckDiskTest, FolderWhoseDeletionWouldTakeMoreAndNoOtherIsKnown) {
  InMetadata(R"(DIRNAME="D:\Work\Analyses\Rent\" LAYERFILE="D:\Work\Analyses\Rent\Analysis.lyr")",
             R"(DIRNAME="D:\Work\")");
  ExpectMended("path.delete-hazard", "error path.delete-hazard analysis Rent");
  EXPECT_THAT(subject.stored.metadata, HasSubstr(R"(DIRNAME="D:\Work\Analyses\Rent1\")"));
  EXPECT_TRUE(memory.files->FolderExists(R"(D:\Work\Analyses\Rent1)"));
}

TEST_F(CheckDiskTest, WorkingDirectoryThatWasMoved) {
  const Holdings before = subject.stored;
  memory.files->MoveFolder(R"(D:\Work)", R"(D:\Moved)");
  subject.stored.settings[kDirectorySetting] = R"(D:\Moved)";
  EXPECT_THAT(Found({"path", "folder", "layerfile", "analysis"}),
              ElementsAre("error path.moved-workdir"));
  EXPECT_THAT(Mend("path.moved-workdir", true), Not(IsEmpty()));
  EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(CheckDiskTest, WorkingDirectoryOfWhichOnlyAPartMovedIsNotSafeToMend) {
  memory.files->MoveFolder(R"(D:\Work)", R"(D:\Moved)");
  memory.files->RemoveTree(R"(D:\Moved\Analyses\Rent)");
  subject.stored.settings[kDirectorySetting] = R"(D:\Moved)";
  EXPECT_THAT(Mend("path.moved-workdir", true), IsEmpty());
  EXPECT_THAT(Mend("path.moved-workdir"), Not(IsEmpty()));
}

TEST_F(CheckDiskTest, LayerFileWithoutAFullPath) {
  InMetadata(R"(D:\Work\StoreLayers\Stores.lyr)", R"(gis\Stores.lyr)");
  EXPECT_THAT(Found(), ElementsAre("warning layerfile.relative store layer Stores"));
}

TEST_F(CheckDiskTest, WorkingDirectoryThatIsGone) {
  memory.files->MoveFolder(R"(D:\Work)", R"(Z:\Work)");
  EXPECT_THAT(Found(), ElementsAre("error workdir.not-found"));
  EXPECT_EQ(Findings("workdir").front().command, "");
  subject.place = "Z:";
  EXPECT_EQ(Findings("workdir").front().command, R"(project rebase 'D:\Work' 'Z:\Work')");
}

TEST_F(CheckDiskTest, WorkingDirectoryOnAServer) {
  subject.stored.settings[kDirectorySetting] = R"(\\server\share)";
  EXPECT_THAT(Found({"workdir"}), ElementsAre("error workdir.backslash-lost"));
}

TEST_F(CheckDiskTest, WorkingDirectoryOfTheOriginalOfACopy) {
  memory.files->AddFolder(R"(D:\Projects\Work)");
  EXPECT_THAT(Found(), IsEmpty());  // It is no working directory.
  memory.files->AddFolder(R"(D:\Projects\Work\StoreLayers)");
  EXPECT_THAT(Found(), ElementsAre("error workdir.elsewhere"));
  EXPECT_EQ(Findings("workdir").front().command, R"(project rebase 'D:\Work' 'D:\Projects\Work')");
}

TEST_F(CheckDiskTest, WorkingDirectoryOfAnotherProject) {
  subject.other_owner = "/home/ann/Shops.kvdm";
  EXPECT_THAT(Found(), ElementsAre("error workdir.shared"));
}

TEST_F(CheckDiskTest, WorkingDirectoryThatLacksFolders) {
  memory.files->RemoveTree(R"(D:\Work\KelvaroTemp)");
  EXPECT_THAT(Found(), ElementsAre("warning workdir.missing-folders"));
  EXPECT_THAT(Mend("workdir.missing-folders", true), SizeIs(1));
  EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(CheckDiskTest, OpenStudyAreaThatIsGone) {
  subject.stored.state[kOpenAreaProperty] = "West";
  ExpectMended("current-area.dangling", "error current-area.dangling");
  EXPECT_EQ(ToText(subject.stored.state[kOpenAreaProperty]), "");
}

TEST_F(CheckDiskTest, OpenStudyAreaThatWasRenamed) {
  subject.stored.state[kOpenAreaProperty] = "West";
  subject.stored.state[kOpenAreaGuidProperty] = "{00000000-0000-4000-8000-00000000000F}";
  ExpectMended("current-area.dangling", "error current-area.dangling");
  EXPECT_EQ(ToText(subject.stored.state[kOpenAreaProperty]), "North");
}

TEST_F(CheckDiskTest, OpenStudyAreaOfWhichAnotherOneHasTheName) {
  subject.stored.state[kOpenAreaProperty] = "North";
  EXPECT_THAT(Found(), IsEmpty());
  subject.stored.state[kOpenAreaGuidProperty] = "{00000000-0000-4000-8000-0000000000FF}";
  EXPECT_THAT(Found(), ElementsAre("error current-area.dangling"));
}

TEST_F(CheckDiskTest, LayerOfAStudyAreaThatThereIsNot) {
  InMetadata("STUDYAREANAME=\"North\"", "STUDYAREANAME=\"West\"");
  EXPECT_THAT(Found(), ElementsAre("warning layer.area-dangling customer layer Members"));
}

TEST_F(CheckDiskTest, LayerWithoutMetadata) {
  memory.files->RemoveTree(R"(D:\Work\StoreLayers\Stores.lyr.xml)");
  EXPECT_THAT(Found(), ElementsAre("warning metadata.missing store layer Stores"));
  EXPECT_EQ(Findings("metadata").front().command,
            "metadata export {00000000-0000-4000-8000-00000000000B} --store");
}

TEST_F(CheckDiskTest, LayerWithMetadataThatCantBeRead) {
  memory.files->AddFile(R"(D:\Work\StoreLayers\Stores.lyr.xml)", "<LAYERMETADATA>");
  EXPECT_THAT(Found(), ElementsAre("error metadata.unreadable store layer Stores"));
}

TEST_F(CheckDiskTest, LayerWithMetadataOfAnotherOne) {
  const auto described = *memory.files->ReadFile(R"(D:\Work\Analyses\Rent\Analysis.lyr.xml)");
  memory.files->AddFile(R"(D:\Work\StoreLayers\Stores.lyr.xml)", described);
  EXPECT_THAT(Found(), ElementsAre("error metadata.type-mismatch store layer Stores",
                                   "error metadata.guid-mismatch store layer Stores",
                                   "note metadata.name-differs store layer Stores"));
}

TEST_F(CheckDiskTest, NothingIsWritten) {
  memory.files->RemoveTree(R"(D:\Work\Analyses)");
  memory.files->RemoveTree(R"(D:\Work\KelvaroTemp)");
  const auto before = memory.files->Tree("D:\\");
  EXPECT_THAT(Found(), Not(IsEmpty()));
  for (const Rule* rule : Rules()) static_cast<void>(PlanRepair(subject, *rule, false));
  EXPECT_EQ(memory.files->Tree("D:\\"), before);
}

}  // namespace
}  // namespace kvdm
