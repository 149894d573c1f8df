#include "safety/rebase.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kvdm/platform/portable/sidecar_metadata.h>

#include "platform/memory/memory_platform.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const char kMetadata[] =
    "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n"
    "<KVDATACOLLECTION><!--D:\\Old\\stays--><ANALYSISCOLLECTION>"
    R"(<ANALYSIS NAME="_Sales_" GUID="{1}" DIRNAME="D:\Old\KVData\Analyses\Sales\" )"
    R"(LAYERFILE="D:\Old\KVData\Analyses\Sales\Analysis.lyr">)"
    R"(<PARAM NAME="D:\Old\x" VALUE="d:/old/gis/Roads.shp"/><COMMENTS>D:\Old\y</COMMENTS>)"
    "</ANALYSIS></ANALYSISCOLLECTION><DATACOLLECTION>"
    R"(<DATAITEM NAME="Streets" GUID="{2}" FILE="Streets" PATHTYPE="RELATIVE"/>)"
    "</DATACOLLECTION></KVDATACOLLECTION>\r\n";
const char kCatalogue[] =
    "<STUDYAREACOLLECTION>"
    R"(<STUDYAREA NAME="_North_" GUID="{3}" DIRNAME="D:\Old\KVData\StudyAreas\North\"/>)"
    R"(<STUDYAREA NAME="_Other_" GUID="{4}" DIRNAME="D:\Older\StudyAreas\Other\"/>)"
    "</STUDYAREACOLLECTION>\r\n";

class RebaseTest : public testing::Test {
 protected:
  [[nodiscard]] Rebase Plan(const Holdings& holdings, const PathPrefix& prefix,
                            RebaseStage stage = RebaseStage::kMoved) const {
    return PlanRebase(world_.Bundle(), holdings, prefix, stage);
  }

  static std::vector<std::string> Afters(const std::vector<PathChange>& changes) {
    std::vector<std::string> texts;
    for (const PathChange& change : changes) texts.push_back(change.after);
    return texts;
  }

  MemoryPlatform world_;
  Holdings holdings_{kMetadata,
                     {{"VELKKVDirectory", Value(R"(D:\Old\KVData)")}, {"Number", Value(5)}},
                     {{"Study Area Name", Value("North")}},
                     kCatalogue};
  PathPrefix there_{R"(D:\Old)", R"(Z:\srv\New)", SamePlaceIn(world_.Bundle())};
};

TEST_F(RebaseTest, ReplacesThePathsOfElementsAndSettings) {
  world_.files->AddFolder(R"(Z:\srv\New\KVData\Analyses\Sales)");
  const Rebase rebase = Plan(holdings_, there_);
  EXPECT_THAT(Afters(rebase.changes),
              ElementsAre(R"(Z:\srv\New\KVData)", R"(Z:\srv\New\KVData\Analyses\Sales\)",
                          R"(Z:\srv\New\KVData\Analyses\Sales\Analysis.lyr)",
                          "Z:/srv/New/gis/Roads.shp", R"(Z:\srv\New\KVData\StudyAreas\North\)"));
  EXPECT_EQ(rebase.changes[3].item, "Sales");
  EXPECT_EQ(rebase.changes[3].field, R"(PARAM D:\Old\x)");
  EXPECT_THAT(rebase.staying, IsEmpty());
  EXPECT_THAT(Afters(rebase.MissingFolders()),
              ElementsAre(R"(Z:\srv\New\KVData\StudyAreas\North\)"));
}

TEST_F(RebaseTest, ThereAndBackGivesEveryTextToTheByte) {
  holdings_.metadata.replace(holdings_.metadata.find("d:/old"), 6, "D:/Old");
  const Rebase rebase = Plan(holdings_, there_);
  EXPECT_NE(rebase.result, holdings_);
  EXPECT_EQ(Plan(rebase.result, there_.Reversed()).result, holdings_);
}

TEST_F(RebaseTest, StudyAreasWhoseFolderIsStillThereAreAnotherProjects) {
  world_.files->AddFolder(R"(D:\Old\KVData\StudyAreas\North)");
  const Rebase copied = Plan(holdings_, there_);
  EXPECT_THAT(copied.staying, SizeIs(1));
  EXPECT_EQ(copied.result.catalogue, kCatalogue);
  const Rebase moving = Plan(holdings_, there_, RebaseStage::kBefore);
  EXPECT_THAT(moving.staying, IsEmpty());
  EXPECT_NE(moving.result.catalogue, kCatalogue);
}

TEST_F(RebaseTest, AnotherFolderThatDiffersInLetterCaseIsNotTheOne) {
  world_.files->AddFolder(R"(D:\Old)");
  PathPrefix lower(R"(D:\OLD)", R"(E:\New)", [](auto, auto) { return false; });
  EXPECT_EQ(Plan(holdings_, lower).result, holdings_);
}

TEST_F(RebaseTest, ADocumentThatIsNotWellFormedIsRefused) {
  holdings_.catalogue = "<STUDYAREACOLLECTION>";
  EXPECT_THROW(static_cast<void>(Plan(holdings_, there_)), Failure);
}

TEST_F(RebaseTest, SidecarsFollow) {
  world_.files->AddFolder(R"(Z:\srv\New\KVData\Analyses\Sales)");
  const Rebase rebase = Plan(holdings_, there_);
  const std::string layer = R"(Z:\srv\New\KVData\Analyses\Sales\Analysis.lyr)";
  const auto values = world_.gis_core->CreateNamedValueSet();
  values->PutValue("Velk/Kelvaro8/AnalysisParams/Roads", R"(D:\Old\gis\Roads.shp)");
  values->PutValue("Velk/Kelvaro8/Name", "Sales");
  MakeSidecarMetadata(world_.Bundle(), layer)->WriteDocument(values);
  const auto before = world_.files->ReadFile(layer + ".xml");

  EXPECT_THAT(RebaseSidecars(world_.Bundle(), rebase.result.metadata, there_, false), SizeIs(1));
  EXPECT_EQ(world_.files->ReadFile(layer + ".xml"), before);
  EXPECT_THAT(RebaseSidecars(world_.Bundle(), rebase.result.metadata, there_, true), SizeIs(1));
  EXPECT_EQ(ToText(MakeSidecarMetadata(world_.Bundle(), layer)
                       ->ReadDocument()
                       ->GetValues("Velk/Kelvaro8/AnalysisParams/Roads")
                       .front()),
            R"(Z:\srv\New\gis\Roads.shp)");
  EXPECT_THAT(RebaseSidecars(world_.Bundle(), rebase.result.metadata, there_.Reversed(), true),
              SizeIs(1));
  EXPECT_EQ(world_.files->ReadFile(layer + ".xml"), before);
}

}  // namespace
}  // namespace kvdm
