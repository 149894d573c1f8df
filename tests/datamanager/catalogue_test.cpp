// A catalogue that is read again after others have changed it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/test_world.h"
#include "util/messages.h"
#include "util/registry_strings.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

std::shared_ptr<IKVStudyAreaCollection> AreasOf(KVDataManager& manager) {
  return manager.StudyAreaCollection();
}

std::shared_ptr<IKVStudyArea> AreaOf(KVDataManager& manager, std::string_view name) {
  return AreasOf(manager)->GetStudyArea(name);
}

std::string PropertyOf(const std::shared_ptr<IKVStudyArea>& area, std::string_view name) {
  return ToText(Query<IKVPropertySet>(area)->GetProperty(name));
}

void SetProperty(const std::shared_ptr<IKVStudyArea>& area, std::string_view name,
                 std::string_view value) {
  ASSERT_TRUE(Query<IKVPropertySet>(area)->SetProperty(name, value));
}

// Two programs that have both read the study areas "North" and "South".
struct CatalogueTest : testing::Test {
  CatalogueTest() {
    for (const char* name : {"North", "South"}) Create(*world.manager, name);
    SetProperty(AreaOf(*world.manager, "North"), "TYPE", "old");
    other = std::make_shared<KVDataManager>(world.platform.Bundle());
    other->DMInitialize(world.host);
  }

  static void Create(KVDataManager& manager, std::string_view name) {
    ASSERT_TRUE(AreasOf(manager)->CreateStudyArea(name));
  }

  std::vector<KeptValue> History() {
    return world.platform.registry->Kept(RegistryRoot::kLocalMachine, kRegistryKey,
                                         kStudyAreaCollectionValue);
  }

  void Store(std::string_view text) {
    ASSERT_TRUE(world.platform.registry->WriteText(RegistryRoot::kLocalMachine, kRegistryKey,
                                                   kStudyAreaCollectionValue, text));
  }

  TestWorld world;
  KVDataManager& here = *world.manager;
  std::shared_ptr<KVDataManager> other;
};

TEST_F(CatalogueTest, ReloadShowsWhatOthersDid) {
  Create(*other, "East");
  ASSERT_TRUE(AreasOf(*other)->DeleteStudyArea("South"));
  AreaOf(*other, "North")->SetComments("theirs");
  EXPECT_THAT(Texts(AreasOf(here)->StudyAreasList()), ElementsAre("North", "South"));
  EXPECT_TRUE(here.Reload());
  EXPECT_THAT(Texts(AreasOf(here)->StudyAreasList()), ElementsAre("North", "East"));
  EXPECT_EQ(AreaOf(here, "North")->Comments(), "theirs");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST_F(CatalogueTest, ViewsFollowTheirStudyArea) {
  const auto areas = AreasOf(here);
  const auto north = AreaOf(here, "North");
  const auto edit = Query<IKVLayerEdit>(north);
  AreaOf(*other, "North")->SetName("Top");
  EXPECT_TRUE(here.Reload());
  EXPECT_EQ(north->Name(), "Top");
  EXPECT_THAT(Texts(areas->StudyAreasList()), ElementsAre("Top", "South"));
  north->SetComments("through the old view");
  edit->SetGUID("{mine}");
  EXPECT_EQ(AreaOf(here, "Top")->Comments(), "through the old view");
  EXPECT_THAT(world.StoredCatalogue(), HasSubstr("{mine}"));
  EXPECT_THAT(world.StoredCatalogue(), HasSubstr("through the old view"));
}

TEST_F(CatalogueTest, AViewOfOneThatOthersDeletedIsAsOfOneDeletedHere) {
  const auto south = AreaOf(here, "South");
  ASSERT_TRUE(AreasOf(*other)->DeleteStudyArea("South"));
  EXPECT_TRUE(here.Reload());
  EXPECT_EQ(south->Name(), "South");
  south->SetComments("nobody sees this");
  EXPECT_EQ(south->Comments(), "nobody sees this");
  EXPECT_THAT(Texts(AreasOf(here)->StudyAreasList()), ElementsAre("North"));
  EXPECT_THAT(world.StoredCatalogue(), testing::Not(HasSubstr("nobody sees this")));
}

// The new one has the old one's name, folder and time.
TEST_F(CatalogueTest, AnotherOneInItsPlaceIsNotTheSame) {
  const auto south = AreaOf(here, "South");
  ASSERT_TRUE(AreasOf(*other)->DeleteStudyArea("South"));
  Create(*other, "South");
  EXPECT_TRUE(here.Reload());
  AreaOf(here, "South")->SetComments("of the new one");
  EXPECT_EQ(south->Comments(), "");
}

TEST_F(CatalogueTest, TwinsWithoutAnIdentifierStayApart) {
  constexpr char kTwins[] =
      "<STUDYAREACOLLECTION><STUDYAREA NAME=\"_T_\" DIRNAME=\"a\"/>"
      "<STUDYAREA NAME=\"_T_\" DIRNAME=\"b\"/></STUDYAREACOLLECTION>";
  world.LoadCatalogue(kTwins);
  const auto first = AreaOf(*world.manager, "T");
  Store(
      "<STUDYAREACOLLECTION><STUDYAREA NAME=\"_T_\" DIRNAME=\"c\"/>"
      "<STUDYAREA NAME=\"_T_\" DIRNAME=\"d\"/></STUDYAREACOLLECTION>");
  EXPECT_TRUE(world.manager->Reload());
  EXPECT_EQ(first->StudyAreaDir(), "c");
}

// A changed property is saved by whatever saves next, so Reload has to keep it.
TEST_F(CatalogueTest, WhatIsNotSavedStays) {
  const auto north = AreaOf(here, "North");
  SetProperty(north, "TYPE", "mine");
  AreaOf(*other, "North")->SetName("Top");
  EXPECT_TRUE(here.Reload());
  EXPECT_EQ(PropertyOf(north, "TYPE"), "mine");
  EXPECT_EQ(north->Name(), "Top");
  EXPECT_THAT(world.StoredCatalogue(), testing::Not(HasSubstr("mine")));
  here.Flush();
  EXPECT_THAT(world.StoredCatalogue(), HasSubstr("mine"));
  EXPECT_THAT(History(), IsEmpty());
}

TEST_F(CatalogueTest, WhatBothChangedIsOursAndTheirsIsKeptWhenItIsSaved) {
  const auto north = AreaOf(here, "North");
  SetProperty(north, "TYPE", "mine");
  SetProperty(AreaOf(*other, "North"), "TYPE", "theirs");
  other->Flush();
  EXPECT_TRUE(here.Reload());
  EXPECT_TRUE(here.Reload());
  EXPECT_EQ(PropertyOf(north, "TYPE"), "mine");
  EXPECT_THAT(world.StoredCatalogue(), HasSubstr("theirs"));
  EXPECT_FALSE(here.ChangedByOthers());
  here.Flush();
  EXPECT_THAT(world.StoredCatalogue(), HasSubstr("mine"));
  ASSERT_THAT(History(), SizeIs(1));
  EXPECT_THAT(History().front().value.data, HasSubstr("theirs"));
}

TEST_F(CatalogueTest, ADeletionThatWasNotSavedStays) {
  world.platform.registry->SetWritable(false);
  ASSERT_TRUE(AreasOf(here)->DeleteStudyArea("South"));
  world.platform.registry->SetWritable(true);
  Create(*other, "East");
  EXPECT_TRUE(here.Reload());
  EXPECT_THAT(Texts(AreasOf(here)->StudyAreasList()), ElementsAre("North", "East"));
}

TEST_F(CatalogueTest, WhatWasTakenOverIsNotOurs) {
  Create(*other, "East");
  EXPECT_TRUE(here.Reload());
  ASSERT_TRUE(AreasOf(*other)->DeleteStudyArea("East"));
  AreaOf(here, "North")->SetComments("saved");
  EXPECT_THAT(world.StoredCatalogue(), testing::Not(HasSubstr("_East_")));
}

TEST_F(CatalogueTest, NothingStoredLeavesAll) {
  Store("");
  EXPECT_TRUE(here.ChangedByOthers());
  EXPECT_TRUE(here.Reload());
  EXPECT_FALSE(here.ChangedByOthers());
  EXPECT_THAT(Texts(AreasOf(here)->StudyAreasList()), ElementsAre("North", "South"));
}

TEST_F(CatalogueTest, WhatCanNotBeReadLeavesAllAndIsShown) {
  const auto north = AreaOf(here, "North");
  world.platform.registry->SetReadable(false);
  EXPECT_FALSE(here.ChangedByOthers());
  EXPECT_FALSE(here.Reload());
  world.platform.registry->SetReadable(true);
  Store("<STUDYAREACOLLECTION>");
  EXPECT_TRUE(here.ChangedByOthers());
  EXPECT_FALSE(here.Reload());
  EXPECT_THAT(world.Messages(), ElementsAre(messages::kReload, messages::kReload));
  EXPECT_EQ(north->Name(), "North");
  EXPECT_THAT(Texts(AreasOf(here)->StudyAreasList()), ElementsAre("North", "South"));
}

// Who starts while the stored text is damaged gets to the study areas once somebody mended it.
TEST_F(CatalogueTest, ReloadBindsWhatHadNoCatalogue) {
  const std::string sound = world.StoredCatalogue();
  world.LoadCatalogue("<STUDYAREACOLLECTION>");
  const auto areas = AreasOf(*world.manager);
  EXPECT_EQ(areas->StudyAreasList(), nullptr);
  Store(sound);
  EXPECT_TRUE(world.manager->Reload());
  EXPECT_THAT(Texts(areas->StudyAreasList()), ElementsAre("North", "South"));
}

TEST_F(CatalogueTest, ChangesOfOthersAreSeenUntilTheyAreRead) {
  EXPECT_FALSE(here.ChangedByOthers());
  AreaOf(*other, "North")->SetComments("theirs");
  EXPECT_TRUE(here.ChangedByOthers());
  AreaOf(here, "South")->SetComments("ours");
  EXPECT_TRUE(here.ChangedByOthers()) << "a save goes on showing what was read";
  EXPECT_TRUE(here.Reload());
  EXPECT_FALSE(here.ChangedByOthers());
  AreaOf(here, "South")->SetComments("ours again");
  EXPECT_FALSE(here.ChangedByOthers());
}

struct Listener final : CatalogueListener {
  void CatalogueChanged() override {
    ++calls;
    if (act) act();
  }
  int calls = 0;
  std::function<void()> act;
};

TEST_F(CatalogueTest, TheListenerIsToldOnceAndAgainAfterAReload) {
  const auto listener = std::make_shared<Listener>();
  here.Notify(listener);
  AreaOf(here, "South")->SetComments("ours");
  EXPECT_EQ(listener->calls, 0);
  AreaOf(*other, "North")->SetComments("theirs");
  AreaOf(here, "South")->SetComments("ours, too");
  EXPECT_EQ(listener->calls, 1) << "by an operation that saves";
  EXPECT_TRUE(here.ChangedByOthers());
  EXPECT_EQ(listener->calls, 1);
  EXPECT_TRUE(here.Reload());
  AreaOf(*other, "North")->SetComments("theirs again");
  EXPECT_TRUE(here.ChangedByOthers());
  EXPECT_EQ(listener->calls, 2);
  here.Notify(nullptr);
  EXPECT_TRUE(here.Reload());
  AreaOf(*other, "North")->SetComments("unheard");
  EXPECT_TRUE(here.ChangedByOthers());
  EXPECT_EQ(listener->calls, 2);
}

TEST_F(CatalogueTest, TheListenerMayReloadAtOnce) {
  const auto listener = std::make_shared<Listener>();
  listener->act = [&] { EXPECT_TRUE(here.Reload()); };
  here.Notify(listener);
  const auto south = AreaOf(here, "South");
  AreaOf(*other, "North")->SetComments("theirs");
  south->SetComments("ours");
  EXPECT_EQ(south->Comments(), "ours");
  EXPECT_EQ(AreaOf(here, "North")->Comments(), "theirs");
}

TEST_F(CatalogueTest, AListenerThatFailsIsNoted) {
  const auto listener = std::make_shared<Listener>();
  listener->act = [] { throw RuntimeError(kPermissionDenied); };
  here.Notify(listener);
  AreaOf(*other, "North")->SetComments("theirs");
  EXPECT_TRUE(here.ChangedByOthers());
  EXPECT_THAT(world.platform.log->Lines(), ElementsAre(HasSubstr("(70)")));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST_F(CatalogueTest, ManyViewsComeAndGo) {
  const auto north = AreaOf(here, "North");
  std::vector<std::shared_ptr<IKVStudyArea>> kept;
  for (int i = 0; i < 300; ++i) {
    kept.push_back(AreaOf(here, "South"));
    static_cast<void>(AreaOf(here, "North"));
  }
  AreaOf(*other, "North")->SetName("Top");
  AreaOf(*other, "South")->SetName("Bottom");
  EXPECT_TRUE(here.Reload());
  EXPECT_EQ(north->Name(), "Top");
  for (const auto& south : kept) EXPECT_EQ(south->Name(), "Bottom");
}

}  // namespace
}  // namespace kvdm
