// Several data managers, as of several programs, on one registry.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/test_world.h"
#include "util/registry_strings.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

using AreaRef = std::shared_ptr<IKVStudyArea>;

std::vector<KeptValue> Kept(const MemoryPlatform& platform) {
  return platform.registry->Kept(RegistryRoot::kLocalMachine, kRegistryKey,
                                 kStudyAreaCollectionValue);
}

// Two programs with the study area "North".
struct SharedListTest : testing::Test {
  SharedListTest() {
    Require(Areas(*first.manager)->CreateStudyArea("North"));
    second = Another();
  }

  // Another program; it reads the list now.
  std::shared_ptr<KVDataManager> Another() {
    auto manager = std::make_shared<KVDataManager>(first.platform.Bundle());
    manager->DMInitialize(first.host);
    return manager;
  }

  static void Require(bool done) { ASSERT_TRUE(done); }
  static std::shared_ptr<IKVStudyAreaCollection> Areas(KVDataManager& manager) {
    return manager.StudyAreaCollection();
  }
  static AreaRef North(KVDataManager& manager) { return Areas(manager)->GetStudyArea("North"); }
  std::vector<std::string> Listed() { return Texts(Areas(*Another())->StudyAreasList()); }

  TestWorld first;
  std::shared_ptr<KVDataManager> second;
};

TEST_F(SharedListTest, BothAddAndBothStand) {
  EXPECT_TRUE(Areas(*first.manager)->CreateStudyArea("East"));
  EXPECT_TRUE(Areas(*second)->CreateStudyArea("West"));
  EXPECT_TRUE(Areas(*first.manager)->CreateStudyArea("South"));
  EXPECT_THAT(Listed(), ElementsAre("North", "East", "West", "South"));
  EXPECT_THAT(Texts(Areas(*second)->StudyAreasList()), ElementsAre("North", "West"));
  EXPECT_THAT(first.platform.log->Lines(), IsEmpty());
}

TEST_F(SharedListTest, OneNameTwiceIsTwoFoldersAndTold) {
  EXPECT_TRUE(Areas(*first.manager)->CreateStudyArea("East"));
  EXPECT_TRUE(Areas(*second)->CreateStudyArea("East"));
  EXPECT_THAT(Listed(), ElementsAre("North", "East", "East"));
  EXPECT_THAT(first.platform.log->Lines(),
              ElementsAre(HasSubstr("has the name of one that was added elsewhere.")));
}

TEST_F(SharedListTest, ARenamedOneAndItsCommentsMeet) {
  North(*first.manager)->SetName("Top");
  North(*second)->SetComments("seen");
  first.manager->Flush();
  second->Flush();
  const auto top = Areas(*Another())->GetStudyArea("Top");
  ASSERT_TRUE(top);
  EXPECT_EQ(top->Comments(), "seen");
  EXPECT_THAT(Kept(first.platform), IsEmpty());
}

TEST_F(SharedListTest, OfTwoNamesTheLaterStandsAndTheOtherIsKept) {
  North(*first.manager)->SetName("Top");
  North(*second)->SetName("Peak");
  first.manager->Flush();
  second->Flush();
  EXPECT_THAT(Listed(), ElementsAre("Peak"));
  ASSERT_THAT(Kept(first.platform), SizeIs(1));
  EXPECT_THAT(Kept(first.platform)[0].value.data, HasSubstr("NAME=\"_Top_\""));
  EXPECT_THAT(first.platform.log->Lines(), ElementsAre(HasSubstr("The study area Peak {")));
}

TEST_F(SharedListTest, AnIdentifierThatWasImportedMeetsAComment) {
  const std::string guid = "{11111111-2222-4333-8444-555555555555}";
  Query<IKVLayerEdit>(North(*first.manager))->SetGUID(guid);
  Query<IKVPropertySet>(North(*first.manager))->SetProperty("TYPE", "rings");
  North(*second)->SetComments("seen");
  second->Flush();
  first.manager->Flush();
  EXPECT_THAT(Texts(Areas(*Another())->StudyAreasGUIDsList()), ElementsAre(guid));
  EXPECT_EQ(North(*Another())->Comments(), "seen");
}

TEST_F(SharedListTest, ADeletedOneThatWasChangedElsewhereStays) {
  North(*second)->SetComments("seen");
  second->Flush();
  EXPECT_TRUE(Areas(*first.manager)->DeleteStudyArea("North"));
  EXPECT_THAT(Listed(), ElementsAre("North"));
  EXPECT_THAT(first.platform.log->Lines(),
              ElementsAre(HasSubstr("was changed elsewhere while it was deleted here; it stays.")));
}

TEST_F(SharedListTest, AChangedOneThatWasDeletedElsewhereStays) {
  EXPECT_TRUE(Areas(*first.manager)->DeleteStudyArea("North"));
  EXPECT_THAT(Listed(), IsEmpty());
  North(*second)->SetComments("seen");
  second->Flush();
  EXPECT_THAT(Listed(), ElementsAre("North"));
}

TEST_F(SharedListTest, ARegistryThatWasHeldAtTheStartLosesNothing) {
  first.platform.registry->SetReadable(false);
  const auto late = Another();
  first.platform.registry->SetReadable(true);
  EXPECT_THAT(Texts(Areas(*late)->StudyAreasList()), IsEmpty());
  late->Flush();
  EXPECT_THAT(Listed(), ElementsAre("North"));
  EXPECT_TRUE(Areas(*late)->CreateStudyArea("East"));
  EXPECT_THAT(Listed(), ElementsAre("North", "East"));
}

TEST_F(SharedListTest, ARefusedWriteIsMadeUpForByTheNext) {
  first.platform.registry->SetWritable(false);
  EXPECT_TRUE(Areas(*second)->CreateStudyArea("West"));
  first.platform.registry->SetWritable(true);
  EXPECT_THAT(Listed(), ElementsAre("North"));
  EXPECT_TRUE(Areas(*first.manager)->CreateStudyArea("East"));
  second->Flush();
  EXPECT_THAT(Listed(), ElementsAre("North", "East", "West"));
}

}  // namespace
}  // namespace kvdm
