// A study area collection without a data manager, and the causes of failed reports.
#include <gtest/gtest.h>

#include <kvdm/platform/error.h>

#include "studyarea/kv_study_area_collection.h"
#include "tests/platform/xml/parsed.h"
#include "tests/test_world.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

// The cause of the report in which `act` ends.
template <class Act>
int CauseOf(Act act) {
  try {
    static_cast<void>(act());
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.number(), kMemberNotSupported);
    return ErrorChain(error).back().number();
  }
  ADD_FAILURE() << "no error";
  return 0;
}

TEST(HalfBoundStudyAreaCollectionTest, WithoutADataManagerItReadsAndFailsToChange) {
  TestWorld world;
  KVStudyAreaCollection study_areas(world.platform.gis_core);
  study_areas.SetNode(
      xml::Parsed(R"(<STUDYAREACOLLECTION><STUDYAREA NAME="_North_" GUID="1" DIRNAME=""/>)"
                  R"(</STUDYAREACOLLECTION>)"));
  EXPECT_EQ(study_areas.StudyAreasList()->Count(), 1);
  EXPECT_EQ(study_areas.GetStudyArea("North")->GUID(), "1");
  EXPECT_FALSE(study_areas.CreateStudyArea("North"));
  EXPECT_RUNTIME_ERROR(study_areas.CreateStudyArea("South"), kObjectNotSet);
  EXPECT_RUNTIME_ERROR(study_areas.DeleteStudyArea("North"), kObjectNotSet);
  EXPECT_EQ(study_areas.StudyAreasList()->Count(), 1);
  EXPECT_RUNTIME_ERROR(study_areas.DeleteStudyAreaByGUID("1"), kObjectNotSet);
}

TEST(FailedReportTest, CarriesItsCause) {
  TestWorld world;
  EXPECT_EQ(CauseOf([&] { return world.manager->StudyAreaCollection()->GetStudyArea("\""); }),
            kAutomationFailure);
  world.manager = std::make_shared<KVDataManager>(world.platform.Bundle());
  EXPECT_EQ(CauseOf([&] { return world.manager->TablesManager()->FreeTablePath(); }),
            kObjectNotSet);
}

}  // namespace
}  // namespace kvdm
