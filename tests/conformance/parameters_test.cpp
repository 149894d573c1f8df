// The named parameters of analyses, store layers, customer layers and data items.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/conformance/families.h"

namespace kvdm::conformance {
namespace {

using testing::IsEmpty;

template <class Family>
class ParametersConformance : public testing::Test {};

using FamiliesWithParameters =
    testing::Types<AnalysisFamily, StoreLayerFamily, CustLayerFamily, DataItemFamily>;
TYPED_TEST_SUITE(ParametersConformance, FamiliesWithParameters);

TYPED_TEST(ParametersConformance, ANewOneIsAppendedAndSaved) {
  ItemWorld<TypeParam> world("", R"(<PARAM NAME="a" VALUE="1"/><COMMENTS>c</COMMENTS>)");
  EXPECT_TRUE(Saves(world, [&] { EXPECT_TRUE(world.item->SetParameter("b", "2")); }));
  EXPECT_EQ(world.Metadata(), world.With("", R"(<PARAM NAME="a" VALUE="1"/><COMMENTS>c</COMMENTS>)"
                                             R"(<PARAM NAME="b" VALUE="2"/>)"));
}

TYPED_TEST(ParametersConformance, SettingAgainOverwritesAndSaves) {
  ItemWorld<TypeParam> world("");
  EXPECT_TRUE(world.item->SetParameter("a", "1"));
  EXPECT_TRUE(Saves(world, [&] { EXPECT_TRUE(world.item->SetParameter("a", "2")); }));
  EXPECT_EQ(world.Metadata(), world.With("", R"(<PARAM NAME="a" VALUE="2"/>)"));
  EXPECT_EQ(TextsOf(world.item->ParametersList()), Texts{"a"});
}

TYPED_TEST(ParametersConformance, OfTwoOfOneNameTheFirstCounts) {
  ItemWorld<TypeParam> world("", R"(<PARAM NAME="a" VALUE="1"/><PARAM NAME="a" VALUE="2"/>)");
  EXPECT_EQ(world.item->GetParameter("a"), "1");
  EXPECT_TRUE(world.item->SetParameter("a", "3"));
  EXPECT_EQ(world.Metadata(),
            world.With("", R"(<PARAM NAME="a" VALUE="3"/><PARAM NAME="a" VALUE="2"/>)"));
  EXPECT_EQ(TextsOf(world.item->ParametersList()), (Texts{"a", "a"}));
}

TYPED_TEST(ParametersConformance, AreMatchedExactly) {
  ItemWorld<TypeParam> world("",
                             R"(<G><PARAM NAME="deep" VALUE="1"/></G><PARAM NAME="a" VALUE="1"/>)"
                             R"(<param NAME="b" VALUE="1"/><PARAM NAME="no value"/>)");
  for (const char* name : {"A", "_a_", "", "deep", "b", "no value", "a ", "a\"b"}) {
    EXPECT_EQ(world.item->GetParameter(name), "") << name;
  }
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TYPED_TEST(ParametersConformance, KeepAnyTextEvenWhenRestored) {
  for (const char* text : {"", " ", "a\r\n\tb", "<&'>", "\xE4\xB8\xAD\xC3\xA9", "a\\b", "_a_"}) {
    ItemWorld<TypeParam> world("");
    EXPECT_TRUE(world.item->SetParameter(text, text));
    EXPECT_EQ(world.item->GetParameter(text), text);
    world.LoadText(world.SavedText());
    EXPECT_EQ(TypeParam::Get(*TypeParam::Of(world), "A")->GetParameter(text), text);
  }
}

TYPED_TEST(ParametersConformance, MayHaveADoubleQuoteInTheValue) {
  ItemWorld<TypeParam> world("");
  EXPECT_TRUE(world.item->SetParameter("a", "\"x\""));
  EXPECT_EQ(world.item->GetParameter("a"), "\"x\"");
}

TYPED_TEST(ParametersConformance, ReportADoubleQuoteInAName) {
  ItemWorld<TypeParam> world("");
  EXPECT_FALSE(Saves(world, [&] {
    ExpectReport<TypeParam>(world, TypeParam::kSetParameterFailed,
                            [&] { EXPECT_FALSE(world.item->SetParameter("a\"b", "1")); });
  }));
  EXPECT_EQ(world.Metadata(), world.With(""));
}

TYPED_TEST(ParametersConformance, ReportAValueThatCannotBeStored) {
  ItemWorld<TypeParam> world("");
  ExpectReport<TypeParam>(world, TypeParam::kSetParameterFailed,
                          [&] { EXPECT_FALSE(world.item->SetParameter("a", TooLong())); });
}

TYPED_TEST(ParametersConformance, AreListedInDocumentOrder) {
  ItemWorld<TypeParam> world("", R"(<PARAM NAME="_b_"/><!--c--><OTHER NAME="x"/><PARAM/>)"
                                 R"(<COMMENTS/><param NAME="y"/><PARAM NAME="a" VALUE="1"/>)");
  EXPECT_EQ(TextsOf(world.item->ParametersList()), (Texts{"_b_", "(null)", "a"}));
}

TYPED_TEST(ParametersConformance, AreListedEmptyWhenThereIsNone) {
  ItemWorld<TypeParam> world("");
  ASSERT_NE(world.item->ParametersList(), nullptr);
  EXPECT_EQ(world.item->ParametersList()->Count(), 0);
  EXPECT_EQ(OutcomeOf([&] { (void)world.item->ParametersList()->Item(1); }), Fails(9));
}

TYPED_TEST(ParametersConformance, AreClearedWithoutTouchingTheRestAndSaved) {
  ItemWorld<TypeParam> world("",
                             R"(<PARAM NAME="a"/><PARAM NAME="b"/><COMMENTS>c</COMMENTS>)"
                             R"(<G><PARAM NAME="deep"/></G><PARAM NAME="c"/><PARAM NAME="d"/>)");
  EXPECT_TRUE(Saves(world, [&] { EXPECT_TRUE(world.item->ClearParametersList()); }));
  EXPECT_EQ(world.Metadata(),
            world.With("", R"(<COMMENTS>c</COMMENTS><G><PARAM NAME="deep"/></G>)"));
}

TYPED_TEST(ParametersConformance, AreClearedAndSavedWhenThereIsNone) {
  ItemWorld<TypeParam> world("");
  EXPECT_TRUE(Saves(world, [&] { EXPECT_TRUE(world.item->ClearParametersList()); }));
}

TYPED_TEST(ParametersConformance, OfAnUnboundItemAreNothing) {
  World world;
  const auto item = world.New<typename TypeParam::Item>(TypeParam::kClass);
  EXPECT_FALSE(item->SetParameter("a\"b", "1"));
  EXPECT_EQ(item->GetParameter("a"), "");
  EXPECT_EQ(item->ParametersList(), nullptr);
  EXPECT_FALSE(item->ClearParametersList());
  EXPECT_THAT(world.Messages(), IsEmpty());
}

}  // namespace
}  // namespace kvdm::conformance
