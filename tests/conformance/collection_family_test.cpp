// What the collections of analyses, store layers and customer layers have in common.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/conformance/families.h"

namespace kvdm::conformance {
namespace {

using testing::IsEmpty;

template <class Family>
class CollectionFamilyConformance : public testing::Test {
 protected:
  // An element of the family with these attributes.
  static std::string Element(const std::string& attributes) {
    return std::string("<") + Family::kTag + " " + attributes + "/>";
  }
};

TYPED_TEST_SUITE(CollectionFamilyConformance, ItemFamilies);

TYPED_TEST(CollectionFamilyConformance, UnboundAnswersNeutrally) {
  World world;
  const auto all = world.New<typename TypeParam::Collection>(TypeParam::kCollectionClass);
  EXPECT_EQ(TypeParam::List(*all), nullptr);
  EXPECT_EQ(TypeParam::Guids(*all), nullptr);
  EXPECT_FALSE(TypeParam::Create(*all, "A"));
  EXPECT_FALSE(TypeParam::Delete(*all, "a\"b"));
  EXPECT_FALSE(TypeParam::DeleteByGuid(*all, "a\"b"));
  EXPECT_EQ(TypeParam::Get(*all, "a\"b"), nullptr);
  EXPECT_EQ(TypeParam::GetByGuid(*all, "a\"b"), nullptr);
  EXPECT_FALSE(TypeParam::Exists(*all, "a\"b"));
  EXPECT_FALSE(TypeParam::ExistsByGuid(*all, "a\"b"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TYPED_TEST(CollectionFamilyConformance, ListsNamesUnwrappedInDocumentOrder) {
  FamilyWorld<TypeParam> world(this->Element("NAME='_B_'") + "<!--x--><OTHER NAME='_C_'/>text" +
                               this->Element("NAME='_A_'") + this->Element("NAME='_'") +
                               this->Element("NAME='__'") + this->Element("NAME='_D'") +
                               this->Element("NAME='D_'") + this->Element("NAME='__G__'") +
                               this->Element("NAME='_Default_'") + this->Element("NAME='_A_'"));
  EXPECT_EQ(TextsOf(TypeParam::List(*TypeParam::Of(world))),
            (Texts{"B", "A", "_", "", "_D", "D_", "_G_", "Default", "A"}));
}

TYPED_TEST(CollectionFamilyConformance, UnwrapsIdentifiersToo) {
  FamilyWorld<TypeParam> world(this->Element("GUID='{1}'") + this->Element("GUID='_x_'"));
  EXPECT_EQ(TextsOf(TypeParam::Guids(*TypeParam::Of(world))), (Texts{"{1}", "x"}));
}

TYPED_TEST(CollectionFamilyConformance, ListsNothingOfAnEmptyCollection) {
  FamilyWorld<TypeParam> world("<ITEM NAME='_A_'/>");
  EXPECT_THAT(TextsOf(TypeParam::List(*TypeParam::Of(world))), IsEmpty());
  EXPECT_THAT(TextsOf(TypeParam::Guids(*TypeParam::Of(world))), IsEmpty());
}

TYPED_TEST(CollectionFamilyConformance, CannotListWhenAnAttributeIsMissing) {
  FamilyWorld<TypeParam> world(this->Element("NAME='_A_'") + this->Element("GUID='{2}'"));
  const auto all = TypeParam::Of(world);
  EXPECT_EQ(OutcomeOf([&] { TypeParam::List(*all); }), FailsToReport(TypeParam::kListFailed));
  EXPECT_EQ(OutcomeOf([&] { TypeParam::Guids(*all); }), FailsToReport(TypeParam::kListFailed));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TYPED_TEST(CollectionFamilyConformance, FindsExactly) {
  FamilyWorld<TypeParam> world("<G>" + this->Element("NAME='_Deep_'") + "</G>" +
                               this->Element("NAME='_North_' GUID='{1}'"));
  const auto all = TypeParam::Of(world);
  EXPECT_TRUE(TypeParam::Exists(*all, "North"));
  EXPECT_TRUE(TypeParam::ExistsByGuid(*all, "{1}"));
  EXPECT_EQ(TypeParam::GuidOf(*TypeParam::Get(*all, "North")), "{1}");
  EXPECT_EQ(TypeParam::GetByGuid(*all, "{1}")->Name(), "North");
  for (const char* key : {"north", "_North_", "North ", "", "1", "Deep", "' or ''='", "\\"}) {
    EXPECT_FALSE(TypeParam::Exists(*all, key)) << key;
    EXPECT_EQ(TypeParam::Get(*all, key), nullptr) << key;
    EXPECT_FALSE(TypeParam::ExistsByGuid(*all, key)) << key;
    EXPECT_EQ(TypeParam::GetByGuid(*all, key), nullptr) << key;
  }
}

TYPED_TEST(CollectionFamilyConformance, TakesTheFirstOfSeveral) {
  FamilyWorld<TypeParam> world(this->Element("NAME='_A_' GUID='{1}'") +
                               this->Element("NAME='_A_' GUID='{2}'") +
                               this->Element("NAME='_B_' GUID='{2}'"));
  const auto all = TypeParam::Of(world);
  EXPECT_EQ(TypeParam::GuidOf(*TypeParam::Get(*all, "A")), "{1}");
  EXPECT_EQ(TypeParam::GetByGuid(*all, "{2}")->Name(), "A");
}

TYPED_TEST(CollectionFamilyConformance, FailsOnADoubleQuote) {
  FamilyWorld<TypeParam> world(this->Element("NAME='_A_' GUID='{1}'"));
  const auto all = TypeParam::Of(world);
  const char* key = "x\" or \"1\"=\"1";
  EXPECT_EQ(OutcomeOf([&] { TypeParam::Exists(*all, key); }), Fails(-2147467259));
  EXPECT_EQ(OutcomeOf([&] { TypeParam::ExistsByGuid(*all, key); }), Fails(-2147467259));
  EXPECT_EQ(OutcomeOf([&] { TypeParam::Get(*all, key); }), FailsToReport(TypeParam::kGetFailed));
  EXPECT_EQ(OutcomeOf([&] { TypeParam::GetByGuid(*all, key); }),
            FailsToReport(TypeParam::kGetFailed));
  EXPECT_EQ(OutcomeOf([&] { TypeParam::Create(*all, key); }),
            FailsToReport(TypeParam::kCreateFailed));
  EXPECT_EQ(OutcomeOf([&] { TypeParam::Delete(*all, key); }),
            FailsToReport(TypeParam::kDeleteFailed));
  EXPECT_EQ(OutcomeOf([&] { TypeParam::DeleteByGuid(*all, key); }),
            FailsToReport(TypeParam::kDeleteFailed));
  EXPECT_THAT(world.Messages(), IsEmpty());
  EXPECT_EQ(TextsOf(TypeParam::List(*all)), Texts{"A"});
}

TYPED_TEST(CollectionFamilyConformance, GivesANewViewOfOneElementEachTime) {
  FamilyWorld<TypeParam> world(this->Element("NAME='_A_' GUID='{1}'"));
  const auto all = TypeParam::Of(world);
  const auto one = TypeParam::Get(*all, "A");
  const auto other = TypeParam::GetByGuid(*all, "{1}");
  EXPECT_NE(one, other);
  one->SetCreationTime("now");
  EXPECT_EQ(other->CreationTime(), "now");
}

TYPED_TEST(CollectionFamilyConformance, DeletesNothingForAnUnknownKey) {
  FamilyWorld<TypeParam> world(this->Element("NAME='_A_' GUID='{1}'"));
  const auto all = TypeParam::Of(world);
  const auto files = world.Tree(R"(D:\)");
  for (const char* key : {"a", "_A_", "", "B", "1"}) {
    EXPECT_FALSE(TypeParam::Delete(*all, key)) << key;
    EXPECT_FALSE(TypeParam::DeleteByGuid(*all, key)) << key;
  }
  EXPECT_EQ(TextsOf(TypeParam::List(*all)), Texts{"A"});
  EXPECT_EQ(world.Tree(R"(D:\)"), files);
}

TYPED_TEST(CollectionFamilyConformance, DeletesTheFirstOfSeveral) {
  FamilyWorld<TypeParam> world(this->Element("NAME='_A_' GUID='{1}' DIRNAME='x\\'") +
                               this->Element("NAME='_A_' GUID='{2}' DIRNAME='x\\'"));
  EXPECT_TRUE(TypeParam::Delete(*TypeParam::Of(world), "A"));
  EXPECT_EQ(TextsOf(TypeParam::Guids(*TypeParam::Of(world))), Texts{"{2}"});
}

TYPED_TEST(CollectionFamilyConformance, SavesNothingItself) {
  OpenWorld world;
  const auto all = TypeParam::Of(world);
  EXPECT_FALSE(Saves(world, [&] {
    EXPECT_TRUE(TypeParam::Create(*all, "A"));
    EXPECT_TRUE(TypeParam::Create(*all, "B"));
    EXPECT_TRUE(TypeParam::Delete(*all, "A"));
    EXPECT_TRUE(TypeParam::DeleteByGuid(*all, Guid(2)));
  }));
}

TYPED_TEST(CollectionFamilyConformance, KeepsNamesThatDifferInCaseApart) {
  OpenWorld world;
  const auto all = TypeParam::Of(world);
  EXPECT_TRUE(TypeParam::Create(*all, "North"));
  EXPECT_TRUE(TypeParam::Create(*all, "north"));
  EXPECT_EQ(TextsOf(TypeParam::List(*all)), (Texts{"North", "north"}));
  EXPECT_EQ(TypeParam::GuidOf(*TypeParam::Get(*all, "north")), Guid(2));
}

TYPED_TEST(CollectionFamilyConformance, FindsWhatItCreated) {
  OpenWorld world;
  const auto all = TypeParam::Of(world);
  for (const char* name :
       {"", "North", "_x_", "a & 'b'", "\xE4\xB8\xAD\xC3\xA9", " ", "it's", "_", "__"}) {
    EXPECT_TRUE(TypeParam::Create(*all, name)) << name;
    EXPECT_TRUE(TypeParam::Exists(*all, name)) << name;
    EXPECT_EQ(TypeParam::Get(*all, name)->Name(), name);
    EXPECT_EQ(TypeParam::Get(*all, name)->CreationTime(), kNow);
  }
}

TYPED_TEST(CollectionFamilyConformance, KeepsAnyNameEvenWhenRestored) {
  const std::vector<std::string> names = {"a & <b>", "..", "two  blanks", "a]b = \t",
                                          std::string(300, 'x')};
  for (const auto& name : names) {
    OpenWorld world;
    // Not each of them is the name of a folder.
    static_cast<void>(TypeParam::Create(*TypeParam::Of(world), name));
    world.LoadText(world.SavedText());
    EXPECT_EQ(TextsOf(TypeParam::List(*TypeParam::Of(world))), Texts{name});
    ASSERT_NE(TypeParam::Get(*TypeParam::Of(world), name), nullptr) << name;
    EXPECT_EQ(TypeParam::Get(*TypeParam::Of(world), name)->Name(), name);
  }
}

TYPED_TEST(CollectionFamilyConformance, GivesListsThatAreNotLive) {
  OpenWorld world;
  const auto all = TypeParam::Of(world);
  TypeParam::Create(*all, "A");
  const auto list = TypeParam::List(*all);
  TypeParam::Create(*all, "B");
  EXPECT_EQ(TextsOf(list), Texts{"A"});
}

TYPED_TEST(CollectionFamilyConformance, AViewKeepsItsElementAfterDeletion) {
  OpenWorld world;
  const auto all = TypeParam::Of(world);
  TypeParam::Create(*all, "A");
  const auto item = TypeParam::Get(*all, "A");
  TypeParam::Delete(*all, "A");
  EXPECT_EQ(item->Name(), "A");
  item->SetName("B");
  EXPECT_EQ(item->Name(), "B");
  item->SetComments("gone");
  EXPECT_EQ(item->Comments(), "gone");
  EXPECT_EQ(TextsOf(TypeParam::List(*all)), Texts{});
}

}  // namespace
}  // namespace kvdm::conformance
