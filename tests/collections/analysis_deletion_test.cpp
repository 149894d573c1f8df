// Deleting analyses by name and by identifier.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/late_report.h"
#include "tests/test_world.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char kFirstGuid[] = "{00000000-0000-4000-8000-000000000001}";
constexpr char kDeleteFailed[] = "Couldn't delete Analysis";

// A world with the analyses Sales and Costs.
class AnalysisDeletionTest : public ::testing::Test {
 protected:
  AnalysisDeletionTest() {
    EXPECT_TRUE(Analyses()->CreateAnalysis("Sales"));
    EXPECT_TRUE(Analyses()->CreateAnalysis("Costs"));
  }

  [[nodiscard]] std::shared_ptr<IKVAnalysisCollection> Analyses() const {
    return world_.manager->AnalysisCollection();
  }
  void Load(const std::string& analyses) {
    world_.LoadMetadata("<KVDATACOLLECTION><ANALYSISCOLLECTION>" + analyses +
                        "</ANALYSISCOLLECTION></KVDATACOLLECTION>");
  }

  TestWorld world_;
};

TEST_F(AnalysisDeletionTest, RemovesTheAnalysisWithAllThatIsInItsFolder) {
  world_.platform.files->AddFile(R"(D:\Data\Analyses\Sales\Grid\a.dat)");
  EXPECT_TRUE(Analyses()->DeleteAnalysis("Sales"));
  EXPECT_THAT(Texts(Analyses()->AnalysesList()), ElementsAre("Costs"));
  EXPECT_THAT(world_.platform.files->Tree(R"(D:\Data\Analyses)"), ElementsAre("Costs\\"));
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(AnalysisDeletionTest, ByIdentifierItRemovesTheSame) {
  EXPECT_TRUE(Analyses()->DeleteAnalysisByGUID(kFirstGuid));
  EXPECT_THAT(Texts(Analyses()->AnalysesList()), ElementsAre("Costs"));
  EXPECT_THAT(world_.platform.files->Tree(R"(D:\Data\Analyses)"), ElementsAre("Costs\\"));
}

TEST_F(AnalysisDeletionTest, AnUnknownKeyGivesFalseAndTouchesNothing) {
  EXPECT_FALSE(Analyses()->DeleteAnalysis("sales"));
  EXPECT_FALSE(Analyses()->DeleteAnalysisByGUID("Sales"));
  EXPECT_THAT(Texts(Analyses()->AnalysesList()), ElementsAre("Sales", "Costs"));
  EXPECT_THAT(world_.platform.files->Tree(R"(D:\Data\Analyses)"),
              ElementsAre("Costs\\", "Sales\\"));
}

TEST_F(AnalysisDeletionTest, RemovesTheFirstOfOneName) {
  EXPECT_TRUE(Analyses()->CreateAnalysis("Sales"));
  EXPECT_TRUE(Analyses()->DeleteAnalysis("Sales"));
  EXPECT_EQ(Analyses()->GetAnalysis("Sales")->AnalysisDir(), R"(D:\Data\Analyses\Sales1\)");
}

TEST_F(AnalysisDeletionTest, AFolderThatCannotBeRemovedStaysAndTheResultIsTrue) {
  world_.platform.files->AddFile(R"(D:\Data\Analyses\Sales\a.lyr)");
  world_.platform.files->SetAttributes(R"(D:\Data\Analyses\Sales\a.lyr)", kReadOnlyAttribute);
  EXPECT_TRUE(Analyses()->DeleteAnalysis("Sales"));
  EXPECT_FALSE(Analyses()->AnalysisExists("Sales"));
  EXPECT_TRUE(world_.platform.files->FolderExists(R"(D:\Data\Analyses\Sales)"));
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(AnalysisDeletionTest, NeverRemovesAFolderThatIsNotItsOwn) {
  for (const std::string folder :
       {"", " ", "D:\\", "\\", "Data\\", R"(D:\Data\Analyses\\)", R"(D:\Data\..\)",
        R"(D:\Data\Analyses\Sales\..\Costs\)", R"(\\server\share\)"}) {
    SCOPED_TRACE(folder);
    Load(R"(<ANALYSIS NAME="_x_" GUID="1" DIRNAME=")" + folder + R"("/>)");
    const auto before = world_.platform.files->Tree("D:\\");
    EXPECT_TRUE(Analyses()->DeleteAnalysis("x"));
    EXPECT_EQ(world_.platform.files->Tree("D:\\"), before);
    EXPECT_FALSE(Analyses()->AnalysisExists("x"));
  }
}

TEST_F(AnalysisDeletionTest, LeavesTheHostsCurrentStudyAreaAlone) {
  world_.SetCurrentStudyArea("Sales");
  EXPECT_TRUE(Analyses()->DeleteAnalysis("Sales"));
  EXPECT_EQ(world_.CurrentStudyArea(), "Sales");
}

TEST_F(AnalysisDeletionTest, NeedsNoHost) {
  world_.manager->DMInitialize(nullptr);
  EXPECT_TRUE(Analyses()->DeleteAnalysis("Sales"));
  EXPECT_TRUE(Analyses()->DeleteAnalysisByGUID(Analyses()->GetAnalysis("Costs")->AnalysisGUID()));
}

TEST_F(AnalysisDeletionTest, WithoutADirnameTheAnalysisGoesAndTheReportFails) {
  Load(R"(<ANALYSIS NAME="_x_" GUID="1"/><ANALYSIS NAME="_y_" GUID="2"/>)");
  EXPECT_EQ(UnsentMessage([&] { return Analyses()->DeleteAnalysis("x"); }), kDeleteFailed);
  EXPECT_EQ(UnsentMessage([&] { return Analyses()->DeleteAnalysisByGUID("2"); }), kDeleteFailed);
  EXPECT_THAT(Texts(Analyses()->AnalysesList()), IsEmpty());
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

}  // namespace
}  // namespace kvdm
