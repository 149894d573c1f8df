// What analyses, store layers and customer layers have in common, and how they differ.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/conformance/families.h"

namespace kvdm::conformance {
namespace {

using testing::IsEmpty;

template <class Family>
class LayerItemConformance : public testing::Test {};

TYPED_TEST_SUITE(LayerItemConformance, ItemFamilies);

TYPED_TEST(LayerItemConformance, ReadsItsAttributes) {
  ItemWorld<TypeParam> world(R"( GUID="{1}" LAYERFILE="D:\a.lyr" CREATIONTIME="then")");
  EXPECT_EQ(world.item->Name(), "A");
  EXPECT_EQ(TypeParam::GuidOf(*world.item), "{1}");
  EXPECT_EQ(world.item->LayerFile(), R"(D:\a.lyr)");
  EXPECT_EQ(world.item->CreationTime(), "then");
}

TYPED_TEST(LayerItemConformance, ReadsMissingAttributesAsEmpty) {
  ItemWorld<TypeParam> world("");
  EXPECT_EQ(TypeParam::GuidOf(*world.item), "");
  EXPECT_EQ(world.item->LayerFile(), "");
  EXPECT_EQ(world.item->CreationTime(), "");
  EXPECT_EQ(world.item->Comments(), "");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TYPED_TEST(LayerItemConformance, UnwrapsItsNameOnlyBetweenUnderscores) {
  struct Row {
    const char* stored;
    const char* read;
  };
  for (const Row& row : {Row{"_a_", "a"}, Row{"__", ""}, Row{"_", "_"}, Row{"a_", "a_"},
                         Row{"_a", "_a"}, Row{"", ""}, Row{"__a__", "_a_"}}) {
    const std::string tag = TypeParam::kTag;
    FamilyWorld<TypeParam> world("<" + tag + " GUID='{1}' NAME='" + row.stored + "'/>");
    EXPECT_EQ(TypeParam::GetByGuid(*TypeParam::Of(world), "{1}")->Name(), row.read) << row.stored;
  }
}

TYPED_TEST(LayerItemConformance, SetsItsCreationTimeWithoutSaving) {
  ItemWorld<TypeParam> world("");
  EXPECT_FALSE(Saves(world, [&] { world.item->SetCreationTime("any text"); }));
  EXPECT_EQ(world.Metadata(), world.With(R"( CREATIONTIME="any text")"));
}

TYPED_TEST(LayerItemConformance, IgnoresACreationTimeThatCannotBeStored) {
  ItemWorld<TypeParam> world("");
  world.item->SetCreationTime(TooLong());
  EXPECT_EQ(world.item->CreationTime(), "");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TYPED_TEST(LayerItemConformance, WritesCommentsAsTheLastChildAndSaves) {
  ItemWorld<TypeParam> world("", R"(<PARAM NAME="a"/>)");
  EXPECT_TRUE(Saves(world, [&] { world.item->SetComments(" c "); }));
  EXPECT_EQ(world.Metadata(), world.With("", R"(<PARAM NAME="a"/><COMMENTS> c </COMMENTS>)"));
  EXPECT_EQ(world.item->Comments(), " c ");
}

TYPED_TEST(LayerItemConformance, OverwritesItsComments) {
  ItemWorld<TypeParam> world("", R"(<COMMENTS>old</COMMENTS><PARAM NAME="a"/>)");
  world.item->SetComments("new");
  EXPECT_EQ(world.Metadata(), world.With("", R"(<COMMENTS>new</COMMENTS><PARAM NAME="a"/>)"));
}

TYPED_TEST(LayerItemConformance, WidensEveryLineFeedOfItsComments) {
  struct Row {
    const char* set;
    const char* read;
    const char* read_after_reload;
  };
  for (const Row& row :
       {Row{"a\nb", "a\r\nb", "a\r\nb"}, Row{"a\r\nb", "a\r\r\nb", "a\r\nb"},
        Row{"\n\n", "\r\n\r\n", "\r\n\r\n"}, Row{" ", " ", " "}, Row{"", "", ""}}) {
    ItemWorld<TypeParam> world("");
    world.item->SetComments(row.set);
    EXPECT_EQ(world.item->Comments(), row.read);
    world.LoadText(world.SavedText());
    EXPECT_EQ(TypeParam::Get(*TypeParam::Of(world), "A")->Comments(), row.read_after_reload);
  }
}

TYPED_TEST(LayerItemConformance, PassesOnWhatItCannotStore) {
  ItemWorld<TypeParam> world("");
  EXPECT_FALSE(Saves(world, [&] {
    EXPECT_EQ(OutcomeOf([&] { world.item->SetComments(TooLong()); }), Fails(7));
    EXPECT_EQ(OutcomeOf([&] { world.item->SetLayerFile(TooLong()); }), Fails(7));
  }));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TYPED_TEST(LayerItemConformance, KeepsItsNameWhenTheNewOneIsTaken) {
  const std::string other = std::string("<") + TypeParam::kTag + " NAME=\"_B_\"/>";
  FamilyWorld<TypeParam> world(ItemWorld<TypeParam>::Element("") + other);
  const auto item = TypeParam::Get(*TypeParam::Of(world), "A");
  for (const char* name : {"A", "B"}) {
    EXPECT_FALSE(Saves(world, [&] { item->SetName(name); })) << name;
    EXPECT_EQ(item->Name(), "A");
  }
  item->SetName("b");
  EXPECT_EQ(item->Name(), "b");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TYPED_TEST(LayerItemConformance, RenamesToTheNameOfAnotherKind) {
  ItemWorld<TypeParam> world(" GUID=\"{1}\"");
  world.Manager()->AnalysisCollection()->CreateAnalysis("Analysis");
  world.Manager()->StoreLayerCollection()->CreateStoreLayer("Store");
  world.Manager()->CustLayerCollection()->CreateCustLayer("Cust");
  const std::string own = TypeParam::kTag;
  const std::string taken = own == "ANALYSIS" ? "Analysis" : own == "STORELAYER" ? "Store" : "Cust";
  for (const char* name : {"Analysis", "Store", "Cust"}) {
    world.item->SetName("A");
    world.item->SetName(name);
    EXPECT_EQ(world.item->Name(), name == taken ? "A" : name);
  }
}

TYPED_TEST(LayerItemConformance, IsEditedAsGivenAndSaved) {
  ItemWorld<TypeParam> world("");
  const auto edit = Query<IKVLayerEdit>(world.item);
  EXPECT_TRUE(Saves(world, [&] { edit->SetLayerFile("new.lyr"); }));
  EXPECT_TRUE(Saves(world, [&] { edit->SetGUID("no guid"); }));
  EXPECT_EQ(world.Metadata(), world.With(R"( LAYERFILE="new.lyr" GUID="no guid")"));
  EXPECT_EQ(TypeParam::GuidOf(*world.item), "no guid");
}

TYPED_TEST(LayerItemConformance, ReportsALayerFileThatCannotBeStored) {
  ItemWorld<TypeParam> world("");
  ExpectReport<TypeParam>(world, TypeParam::kSetLayerFileFailed,
                          [&] { Query<IKVLayerEdit>(world.item)->SetLayerFile(TooLong()); });
}

TYPED_TEST(LayerItemConformance, ReportsAnIdentifierThatCannotBeStored) {
  ItemWorld<TypeParam> world("");
  ExpectReport<TypeParam>(world, TypeParam::kSetGuidFailed,
                          [&] { Query<IKVLayerEdit>(world.item)->SetGUID(TooLong()); });
}

TYPED_TEST(LayerItemConformance, UnboundAnswersNeutrally) {
  World world;
  const auto item = world.New<typename TypeParam::Item>(TypeParam::kClass);
  item->SetName("A");
  item->SetLayerFile("A");
  item->SetComments("A");
  item->SetCreationTime("A");
  Query<IKVLayerEdit>(item)->SetLayerFile("A");
  Query<IKVLayerEdit>(item)->SetGUID("A");
  EXPECT_EQ(item->Name(), "");
  EXPECT_EQ(item->LayerFile(), "");
  EXPECT_EQ(item->Comments(), "");
  EXPECT_EQ(item->CreationTime(), "");
  EXPECT_EQ(TypeParam::GuidOf(*item), "");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

template <class Family>
class LayerConformance : public testing::Test {};

TYPED_TEST_SUITE(LayerConformance, LayerFamilies);

TYPED_TEST(LayerConformance, RenamesAndSaves) {
  ItemWorld<TypeParam> world("");
  EXPECT_TRUE(Saves(world, [&] { world.item->SetName("B"); }));
  EXPECT_EQ(world.Metadata(), world.Inside(std::string("<") + TypeParam::kTag + " NAME=\"_B_\"/>"));
}

TYPED_TEST(LayerConformance, PassesOnThatANameCannotBeChecked) {
  ItemWorld<TypeParam> world("");
  EXPECT_EQ(OutcomeOf([&] { world.item->SetName("a\"b"); }), Fails(-2147467259));
  EXPECT_EQ(world.item->Name(), "A");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TYPED_TEST(LayerConformance, ReadsAMissingNameAsEmpty) {
  FamilyWorld<TypeParam> world(std::string("<") + TypeParam::kTag + " GUID='{1}'/>");
  EXPECT_EQ(TypeParam::GetByGuid(*TypeParam::Of(world), "{1}")->Name(), "");
}

TYPED_TEST(LayerConformance, OnlyAStoreLayersFileIsMarkedAbsolute) {
  ItemWorld<TypeParam> world("");
  EXPECT_TRUE(Saves(world, [&] { world.item->SetLayerFile("new.lyr"); }));
  EXPECT_EQ(world.Metadata(),
            world.With(std::string(R"( LAYERFILE="new.lyr")") + TypeParam::kPathType));
}

TYPED_TEST(LayerConformance, SetsFieldsAndSaves) {
  ItemWorld<TypeParam> world("");
  EXPECT_TRUE(Saves(world, [&] { world.item->SetNameField("N"); }));
  EXPECT_TRUE(Saves(world, [&] { world.item->SetIDField("I"); }));
  EXPECT_EQ(world.Metadata(), world.With(R"( NAMEFIELD="N" IDFIELD="I")"));
  EXPECT_EQ(world.item->NameField(), "N");
  EXPECT_EQ(world.item->IDField(), "I");
}

TYPED_TEST(LayerConformance, PassesOnFieldsThatCannotBeStored) {
  ItemWorld<TypeParam> world("");
  EXPECT_EQ(OutcomeOf([&] { world.item->SetNameField(TooLong()); }), Fails(7));
  EXPECT_EQ(OutcomeOf([&] { world.item->SetIDField(TooLong()); }), Fails(7));
}

TYPED_TEST(LayerConformance, SetsStudyAreaAndInternalDataWithoutSaving) {
  ItemWorld<TypeParam> world("");
  EXPECT_FALSE(Saves(world, [&] {
    world.item->SetStudyAreaName("North");
    world.item->SetIsInternalData(true);
  }));
  EXPECT_EQ(world.Metadata(), world.With(R"( STUDYAREANAME="North" ISINTERNALDATA="TRUE")"));
  EXPECT_EQ(world.item->StudyAreaName(), "North");
  world.item->SetIsInternalData(false);
  EXPECT_EQ(world.Metadata(), world.With(R"( STUDYAREANAME="North" ISINTERNALDATA="FALSE")"));
}

TYPED_TEST(LayerConformance, IgnoresAStudyAreaNameThatCannotBeStored) {
  ItemWorld<TypeParam> world("");
  world.item->SetStudyAreaName(TooLong());
  EXPECT_EQ(world.item->StudyAreaName(), "");
}

TYPED_TEST(LayerConformance, IsInternalOnlyForTrueInUpperCase) {
  struct Row {
    const char* attributes;
    bool internal;
  };
  for (const Row& row :
       {Row{R"( ISINTERNALDATA="TRUE")", true}, Row{R"( ISINTERNALDATA="true")", false},
        Row{R"( ISINTERNALDATA="True")", false}, Row{R"( ISINTERNALDATA="-1")", false},
        Row{R"( ISINTERNALDATA="TRUE ")", false}, Row{R"( ISINTERNALDATA="")", false},
        Row{R"( ISINTERNAL="TRUE")", false}, Row{R"( ISINTERNALDATA="FALSE")", false},
        Row{"", false}}) {
    ItemWorld<TypeParam> world(row.attributes);
    EXPECT_EQ(world.item->IsInternalData(), row.internal) << row.attributes;
  }
}

TYPED_TEST(LayerConformance, ReadsMissingFieldsAsEmpty) {
  ItemWorld<TypeParam> bound("");
  const auto unbound = bound.template New<typename TypeParam::Item>(TypeParam::kClass);
  unbound->SetNameField("A");
  unbound->SetIDField("A");
  unbound->SetStudyAreaName("A");
  unbound->SetIsInternalData(true);
  for (const auto& item : {bound.item, unbound}) {
    EXPECT_EQ(item->NameField(), "");
    EXPECT_EQ(item->IDField(), "");
    EXPECT_EQ(item->StudyAreaName(), "");
    EXPECT_FALSE(item->IsInternalData());
  }
}

TEST(CustLayerConformance, SetsItsLinkFieldWithoutSaving) {
  ItemWorld<CustLayerFamily> world("");
  EXPECT_EQ(world.item->LinkField(), "");
  EXPECT_FALSE(Saves(world, [&] { world.item->SetLinkField("L"); }));
  EXPECT_EQ(world.Metadata(), world.With(R"( LINKFIELD="L")"));
  EXPECT_EQ(world.item->LinkField(), "L");
  world.item->SetLinkField(TooLong());
  EXPECT_EQ(world.item->LinkField(), "L");
}

TEST(CustLayerConformance, UnboundHasNoLinkField) {
  World world;
  const auto layer = world.New<IKVCustLayer>("KVCustLayer");
  layer->SetLinkField("L");
  EXPECT_EQ(layer->LinkField(), "");
}

TEST(CustLayerConformance, LeavesItsPathTypeWhenTheLayerFileIsSet) {
  ItemWorld<CustLayerFamily> world(R"( PATHTYPE="RELATIVE")");
  world.item->SetLayerFile("new.lyr");
  EXPECT_EQ(world.Metadata(), world.With(R"( PATHTYPE="RELATIVE" LAYERFILE="new.lyr")"));
}

TEST(StoreLayerConformance, OverwritesItsPathTypeWhenTheLayerFileIsSet) {
  ItemWorld<StoreLayerFamily> world(R"( PATHTYPE="RELATIVE")");
  world.item->SetLayerFile("new.lyr");
  EXPECT_EQ(world.Metadata(), world.With(R"( PATHTYPE="ABSOLUTE" LAYERFILE="new.lyr")"));
}

}  // namespace
}  // namespace kvdm::conformance
