// Two hosts on one catalogue, as two programs have them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/conformance/results.h"
#include "tests/conformance/world.h"

namespace kvdm::conformance {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kNorthAndSouth[] =
    "<STUDYAREA NAME=\"_North_\" GUID=\"{N}\" DIRNAME=\"\"><SAPROPERTIES/></STUDYAREA>"
    "<STUDYAREA NAME=\"_South_\" GUID=\"{S}\" DIRNAME=\"\"><SAPROPERTIES/></STUDYAREA>";

// The world's data manager and another one, both of which have read "North" and "South".
class CatalogueConformance : public testing::Test {
 protected:
  CatalogueConformance() : world_(kNorthAndSouth) {
    others_ = world_.New<IKVDataManager>("KVDataManager");
    Query<IKVDMInitialize>(others_)->DMInitialize(world_.GetHost());
  }
  ~CatalogueConformance() override { Query<IKVDMInitialize>(others_)->DMInitialize(nullptr); }

  std::shared_ptr<IKVStudyAreaCollection> Here() { return world_.Manager()->StudyAreaCollection(); }
  std::shared_ptr<IKVStudyAreaCollection> There() { return others_->StudyAreaCollection(); }
  std::shared_ptr<IKVCatalogue> Catalogue() { return Query<IKVCatalogue>(world_.Manager()); }

  OpenWorld world_;
  std::shared_ptr<IKVDataManager> others_;
};

class CountingListener final : public CatalogueListener {
 public:
  void CatalogueChanged() override { ++calls; }
  int calls = 0;
};

class FailingListener final : public CatalogueListener {
 public:
  void CatalogueChanged() override { throw RuntimeError(kPermissionDenied); }
};

TEST_F(CatalogueConformance, OnlyTheDataManagerHasIt) {
  EXPECT_NE(Catalogue(), nullptr);
  EXPECT_EQ(world_.New<IKVCatalogue>("KVStudyAreaCollection"), nullptr);
  EXPECT_EQ(world_.New<IKVCatalogue>("KVStudyArea"), nullptr);
}

TEST_F(CatalogueConformance, ReloadShowsWhatOthersDidThroughTheSameViews) {
  const auto areas = Here();
  const auto north = areas->GetStudyArea("North");
  There()->GetStudyArea("North")->SetName("Top");
  There()->CreateStudyArea("East");
  There()->DeleteStudyAreaByGUID("{S}");
  EXPECT_THAT(TextsOf(areas->StudyAreasList()), ElementsAre("North", "South"));
  EXPECT_TRUE(Catalogue()->Reload());
  EXPECT_THAT(TextsOf(areas->StudyAreasList()), ElementsAre("Top", "East"));
  EXPECT_EQ(north->Name(), "Top");
  north->SetComments("seen");
  EXPECT_EQ(areas->GetStudyArea("Top")->Comments(), "seen");
  EXPECT_THAT(world_.Texts(), IsEmpty());
}

TEST_F(CatalogueConformance, AViewOfOneThatOthersDeletedGoesOnAlone) {
  const auto south = Here()->GetStudyArea("South");
  There()->DeleteStudyAreaByGUID("{S}");
  EXPECT_TRUE(Catalogue()->Reload());
  EXPECT_EQ(south->Name(), "South");
  south->SetComments("unseen");
  EXPECT_EQ(south->Comments(), "unseen");
  EXPECT_THAT(*world_.RegistryText("StudyAreaCollection"), testing::Not(HasSubstr("unseen")));
}

TEST_F(CatalogueConformance, ReloadKeepsWhatIsNotSavedAndSavesNothing) {
  const auto north = Here()->GetStudyArea("North");
  const auto properties = Query<IKVPropertySet>(north);
  properties->SetProperty("TYPE", "first");
  properties->SetProperty("TYPE", "mine");
  There()->GetStudyArea("North")->SetName("Top");
  EXPECT_TRUE(Catalogue()->Reload());
  EXPECT_EQ(properties->GetProperty("TYPE"), Value("mine"));
  EXPECT_EQ(north->Name(), "Top");
  EXPECT_THAT(*world_.RegistryText("StudyAreaCollection"), testing::Not(HasSubstr("mine")));
  world_.Manager()->Flush();
  EXPECT_THAT(*world_.RegistryText("StudyAreaCollection"), HasSubstr("mine"));
  EXPECT_THAT(*world_.RegistryText("StudyAreaCollection"), HasSubstr("_Top_"));
}

TEST_F(CatalogueConformance, ReloadOfADamagedCatalogueLeavesAllAndIsShown) {
  world_.PutRegistryText("StudyAreaCollection", "<STUDYAREACOLLECTION>");
  EXPECT_FALSE(Catalogue()->Reload());
  EXPECT_THAT(world_.Texts(), ElementsAre("Couldn't read the study areas again"));
  EXPECT_THAT(TextsOf(Here()->StudyAreasList()), ElementsAre("North", "South"));
}

TEST_F(CatalogueConformance, ChangesOfOthersAreTold) {
  const auto listener = std::make_shared<CountingListener>();
  Catalogue()->Notify(listener);
  EXPECT_FALSE(Catalogue()->ChangedByOthers());
  EXPECT_EQ(listener->calls, 0);
  There()->GetStudyArea("North")->SetComments("theirs");
  EXPECT_TRUE(Catalogue()->ChangedByOthers());
  EXPECT_TRUE(Catalogue()->ChangedByOthers());
  EXPECT_EQ(listener->calls, 1);
  EXPECT_TRUE(Catalogue()->Reload());
  EXPECT_FALSE(Catalogue()->ChangedByOthers());
  There()->GetStudyArea("North")->SetComments("theirs again");
  Here()->GetStudyArea("South")->SetComments("a save looks, too");
  EXPECT_EQ(listener->calls, 2);
  Catalogue()->Notify(nullptr);
  EXPECT_TRUE(Catalogue()->Reload());
  There()->GetStudyArea("North")->SetComments("unheard");
  EXPECT_TRUE(Catalogue()->ChangedByOthers());
  EXPECT_EQ(listener->calls, 2);
}

TEST_F(CatalogueConformance, AListenerThatFailsIsNobodysError) {
  Catalogue()->Notify(std::make_shared<FailingListener>());
  There()->GetStudyArea("North")->SetComments("theirs");
  EXPECT_EQ(OutcomeOf([&] { EXPECT_TRUE(Catalogue()->ChangedByOthers()); }), Succeeds());
  EXPECT_THAT(world_.Texts(), IsEmpty());
}

}  // namespace
}  // namespace kvdm::conformance
