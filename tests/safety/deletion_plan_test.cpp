#include "safety/deletion_plan.h"

#include <gtest/gtest.h>

#include <kvdm/platform/platform.h>

#include "platform/memory/memory_platform.h"
#include "tests/safety/work_place.h"

namespace kvdm {
namespace {

class DeletionPlanTest : public testing::Test {
 protected:
  DeletionPlanTest() {
    place_.Write("KVData/StudyAreas/North/map.txt", "the north");
    place_.Write("KVData/StudyAreas/North/Analyses/Sales/maps/deep.txt", "deep");
    place_.Write("KVData/StudyAreas/South/map.txt", "the south");
    place_.Write("KVData/Analyses/Rent/result.txt", "rents");
    place_.Write("Victim/thesis/text.txt", "canary");
    List("STUDYAREA", "_North_", "{N}", "KVData/StudyAreas/North", catalogue_);
    List("STUDYAREA", "_South_", "{S}", "KVData/StudyAreas/South", catalogue_);
    List("ANALYSIS", "_Sales_", "{A}", "KVData/StudyAreas/North/Analyses/Sales", metadata_);
    List("ANALYSIS", "_Rent_", "{R}", "KVData/Analyses/Rent", metadata_);
  }

  void List(const std::string& tag, const std::string& name, const std::string& guid,
            const std::string& folder, std::string& document) const {
    document += "<" + tag + " NAME=\"" + name + "\" GUID=\"" + guid + "\" DIRNAME=\"" +
                place_.Folder(folder) + "\"/>";
  }

  // The plan for a study area with a folder in the component's form.
  [[nodiscard]] DeletionPlan PlanFor(const std::string& folder,
                                     const std::string& guid = "{N}") const {
    const MemoryPlatform platform;
    Documents documents;
    documents[kProjectDocument] = "<KVDATACOLLECTION><ANALYSISCOLLECTION>" + metadata_ +
                                  "</ANALYSISCOLLECTION></KVDATACOLLECTION>";
    documents[kCatalogueDocument] = "<STUDYAREACOLLECTION>" + catalogue_ + "</STUDYAREACOLLECTION>";
    return PlanDeletion(*platform.xml_parser, documents, place_.Directory(),
                        {"study area", "North", guid, folder});
  }

  WorkPlace place_;
  std::string metadata_;
  std::string catalogue_;
};

TEST_F(DeletionPlanTest, CountsWhatGoesAndNamesWhatDangles) {
  const DeletionPlan plan = PlanFor(place_.Folder("KVData/StudyAreas/North"));
  EXPECT_EQ(plan.objection, "");
  EXPECT_TRUE(plan.folder_is_there);
  EXPECT_EQ(plan.size.files, 2);
  EXPECT_EQ(plan.size.bytes, 13);
  ASSERT_EQ(plan.dangling.size(), 1U);
  EXPECT_EQ(plan.dangling.front().name, "Sales");
  EXPECT_EQ(QuestionOf(plan), "Delete study area North with 1 analysis, 2 files, 13 bytes?");
}

TEST_F(DeletionPlanTest, MissingFolderIsNotCountedAndNotObjectedTo) {
  const DeletionPlan plan = PlanFor(place_.Folder("Elsewhere/North"));
  EXPECT_EQ(plan.objection, "");
  EXPECT_FALSE(plan.folder_is_there);
  EXPECT_EQ(QuestionOf(plan), "Delete study area North?");
}

TEST_F(DeletionPlanTest, ItemWithoutAFolderTakesNothing) {
  const DeletionPlan plan = PlanFor("");
  EXPECT_EQ(plan.objection, "");
  EXPECT_FALSE(plan.folder_is_there);
  EXPECT_TRUE(plan.dangling.empty());
}

TEST_F(DeletionPlanTest, RefusesFoldersThatAreNotAnItems) {
  const struct {
    std::string folder;
    const char* why;
  } cases[] = {{place_.Folder("Victim"), "is not in the folder StudyAreas or Analyses"},
               {place_.Folder("KVData/StudyAreas"), "is not in the folder"},
               {place_.Folder("KVData/Analyses"), "is not in the folder"},
               {place_.Folder("KVData/StudyAreas/../../Victim"), "is not in the folder"},
               {place_.Folder("KVData"), "holds the working directory"},
               {place_.Folder(""), "holds the working directory"},
               {os::ComponentPath(place_.top.root_path()), "is the root of a drive"},
               {os::ComponentPath(os::HomeFolder()) + "\\", "home folder"},
               {R"(StudyAreas\North\)", "is no full path"},
               {R"(?:\North\)", "is no full path"},
               {" ", "is no full path"}};
  for (const auto& [folder, why] : cases) {
    const std::string objection = PlanFor(folder).objection;
    EXPECT_NE(objection.find(why), std::string::npos) << folder << ": " << objection;
  }
}

TEST_F(DeletionPlanTest, AllowsWhatIsInStudyAreasAndAnalysesInAnyLetterCase) {
  for (const char* folder : {"KVData/StudyAreas/South", "KVData/Analyses/Rent",
                             "kvdata/studyareas/SOUTH", "KVData/StudyAreas/North/Analyses/Sales"}) {
    const std::string objection = PlanFor(place_.Folder(folder), "{other}").objection;
    EXPECT_EQ(objection.find("is not in"), std::string::npos) << objection;
  }
}

TEST_F(DeletionPlanTest, RefusesAFolderOfTwoItems) {
  List("STUDYAREA", "_Twin_", "{T}", "KVData/studyareas/North", catalogue_);
  EXPECT_NE(PlanFor(place_.Folder("KVData/StudyAreas/North"))
                .objection.find("belongs to the study area Twin too"),
            std::string::npos);
}

TEST_F(DeletionPlanTest, RowsNameTheItemAndWhatDangles) {
  const auto rows = RowsOf(PlanFor(place_.Folder("KVData/StudyAreas/North")));
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0].front().second, Field("deleted"));
  EXPECT_EQ(rows[1].front().second, Field("dangling"));
  EXPECT_EQ(rows[1][2].second, Field("Sales"));
}

TEST(SizeTextTest, HasOneDecimalAndTheUnitThatFits) {
  const std::pair<std::int64_t, const char*> cases[] = {{0, "0 bytes"},
                                                        {1, "1 byte"},
                                                        {999, "999 bytes"},
                                                        {1000, "1.0 kB"},
                                                        {12'400'000, "12.4 MB"},
                                                        {5'000'000'000, "5.0 GB"},
                                                        {1'500'000'000'000'000, "1500.0 TB"}};
  for (const auto& [bytes, text] : cases) EXPECT_EQ(SizeText(bytes), text);
}

}  // namespace
}  // namespace kvdm
