// Study areas without an element, without a data manager, or without both; and their table paths.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/failing_services.h"
#include "platform/xml/limits.h"
#include "studyarea/kv_study_area.h"
#include "tests/platform/xml/parsed.h"
#include "tests/saves.h"
#include "tests/test_world.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char kNorth[] =
    R"(<STUDYAREA NAME="_North_" GUID="1" DIRNAME="D:\North\" LAYERFILE="a.lyr" DATASET="_d_">)"
    R"(<SAPROPERTIES/></STUDYAREA>)";

class HalfBoundStudyAreaTest : public ::testing::Test {
 protected:
  TestWorld world_;
  std::shared_ptr<KVStudyArea> study_area_ =
      std::make_shared<KVStudyArea>(world_.platform.gis_core);
};

void SetEverything(KVStudyArea& study_area) {
  study_area.SetName("West");
  study_area.SetDataset("x");
  study_area.SetStudyAreaDir("x");
  const auto edit = Query<IKVLayerEdit>(study_area.shared_from_this());
  edit->SetLayerFile("x");
  edit->SetGUID("x");
}

void ExpectNothingReadable(KVStudyArea& study_area) {
  EXPECT_EQ(study_area.Name(), "");
  EXPECT_EQ(study_area.LayerFile(), "");
  EXPECT_EQ(study_area.StudyAreaDir(), "");
  EXPECT_EQ(study_area.Comments(), "");
  EXPECT_EQ(study_area.Dataset(), "");
  EXPECT_EQ(study_area.GUID(), "");
  EXPECT_EQ(study_area.GetProperty("TYPE"), Value(""));
  EXPECT_FALSE(study_area.SetProperty("TYPE", "1"));
  EXPECT_EQ(study_area.TablesDir(), "");
}

TEST_F(HalfBoundStudyAreaTest, AnUnboundStudyAreaAnswersNeutrallyWithoutAnError) {
  ExpectNothingReadable(*study_area_);
  SetEverything(*study_area_);
  study_area_->SetComments("x");
  EXPECT_EQ(study_area_->FreeTablePath(), "");
  ExpectNothingReadable(*study_area_);
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(HalfBoundStudyAreaTest, WithoutAnElementItAnswersNeutrallyAndSavesNothing) {
  study_area_->SetDataManager(world_.manager->Reference());
  EXPECT_FALSE(Saves(world_, [&] {
    SetEverything(*study_area_);
    study_area_->SetComments("x");
    ExpectNothingReadable(*study_area_);
  }));
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(HalfBoundStudyAreaTest, WithoutADataManagerItReadsButForTheLayerFile) {
  study_area_->SetNode(xml::Parsed(kNorth));
  EXPECT_EQ(study_area_->Name(), "North");
  EXPECT_EQ(study_area_->GUID(), "1");
  EXPECT_EQ(study_area_->StudyAreaDir(), R"(D:\North\)");
  EXPECT_EQ(study_area_->Dataset(), "d");
  EXPECT_EQ(study_area_->LayerFile(), "");
}

TEST_F(HalfBoundStudyAreaTest, WithoutADataManagerOnlyCommentsAndPropertiesChange) {
  const auto node = xml::Parsed(kNorth);
  study_area_->SetNode(node);
  SetEverything(*study_area_);
  EXPECT_EQ(node.Xml(), kNorth);
  study_area_->SetComments("text");
  EXPECT_TRUE(study_area_->SetProperty("TYPE", "1"));
  EXPECT_EQ(study_area_->Comments(), "text");
  EXPECT_EQ(study_area_->GetProperty("TYPE"), Value("1"));
}

TEST_F(HalfBoundStudyAreaTest, WithoutADataManagerFailuresGoUnreported) {
  study_area_->SetNode(xml::Parsed("<STUDYAREA/>"));
  EXPECT_RUNTIME_ERROR(study_area_->Name(), kInvalidUseOfNull);
  EXPECT_EQ(study_area_->GUID(), "");
  EXPECT_EQ(study_area_->Dataset(), "");
  EXPECT_EQ(study_area_->GetProperty("TYPE"), Value(""));
  EXPECT_FALSE(study_area_->SetProperty("TYPE", "1"));
  study_area_->SetComments(std::string(xml::kMaxValueBytes + 1, 'x'));
  EXPECT_EQ(study_area_->FreeTablePath(), "");
  EXPECT_THAT(world_.Messages(), IsEmpty());
}

TEST_F(HalfBoundStudyAreaTest, TheTablesFolderIsInTheStudyAreasFolderAndNotCreated) {
  study_area_->SetNode(xml::Parsed(kNorth));
  EXPECT_EQ(study_area_->TablesDir(), R"(D:\North\Tables\)");
  EXPECT_FALSE(world_.platform.files->FolderExists(R"(D:\North)"));
}

TEST_F(HalfBoundStudyAreaTest, AFreeTablePathIsTheFirstThatNoFileTakes) {
  study_area_->SetNode(xml::Parsed(kNorth));
  study_area_->SetDataManager(world_.manager->Reference());
  EXPECT_EQ(study_area_->FreeTablePath(), R"(D:\North\Tables\Table)");
  world_.platform.files->AddFile(R"(D:\North\Tables\Table.dbf)");
  world_.platform.files->AddFile(R"(D:\North\Tables\Table1)");
  world_.platform.files->AddFolder(R"(D:\North\Tables\Table2)");
  EXPECT_EQ(study_area_->FreeTablePath(), R"(D:\North\Tables\Table2)");
}

// Finds a file for every pattern.
class AllFilesExist : public FailingFileSystem {
 public:
  using FailingFileSystem::FailingFileSystem;
  std::vector<std::string> FindFiles(std::string_view) override { return {"taken"}; }
};

TEST_F(HalfBoundStudyAreaTest, WhenTableNamesRunOutAMessageIsShown) {
  auto services = world_.platform.Bundle();
  services.files =
      std::make_shared<AllFilesExist>(services.files, std::make_shared<FailureCounter>());
  study_area_->SetNode(xml::Parsed(kNorth));
  study_area_->SetDataManager(std::make_shared<KVDataManager>(services)->Reference());
  EXPECT_EQ(study_area_->FreeTablePath(), "");
  EXPECT_THAT(world_.Messages(), ElementsAre("Failed to get free table path for the Study Area"));
}

}  // namespace
}  // namespace kvdm
