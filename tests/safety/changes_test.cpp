#include "safety/changes.h"

#include <gtest/gtest.h>

#include <random>

#include <kvdm/platform/document_tree.h>

#include "platform/xml_parser.h"

namespace kvdm {
namespace {

// A document with some of these collections and items, in some order.
class RandomDocument {
 public:
  explicit RandomDocument(unsigned seed) : random_(seed) {}

  std::string Text(XmlParser& parser, bool has_twins) {
    DocumentTree tree{false, {Element("R")}};
    for (const char* tag : {"A", "B", "C"}) {
      if (Chance(80)) tree.nodes.front().children.push_back(Collection(tag, has_twins));
    }
    if (Chance(50)) tree.nodes.front().children.push_back(Item("D", 1));
    return DocumentTreeText(parser, tree);
  }

 private:
  static DocumentNode Element(const std::string& tag) {
    return {DocumentNode::Kind::kElement, tag};
  }
  bool Chance(unsigned percent) { return random_() % 100 < percent; }

  DocumentNode Item(const std::string& tag, unsigned number) {
    DocumentNode item = Element(tag);
    item.SetAttribute("NAME", "n" + std::to_string(random_() % 3));
    if (!Chance(10)) item.SetAttribute("GUID", "{" + std::to_string(number) + "}");
    if (Chance(50)) item.children = {Item("PARAM", random_() % 4)};
    return item;
  }

  DocumentNode Collection(const std::string& tag, bool has_twins) {
    DocumentNode collection = Element(tag);
    std::vector<unsigned> numbers = {0, 1, 2, 3, 4, 5};
    std::shuffle(numbers.begin(), numbers.end(), random_);
    numbers.resize(random_() % numbers.size());
    for (const unsigned number : numbers) {
      collection.children.push_back(Item("I", has_twins ? number / 2 : number));
      if (has_twins && Chance(10))
        collection.children.push_back({DocumentNode::Kind::kComment, "", "c"});
    }
    if (Chance(20)) collection.children.push_back(Collection("G", has_twins));
    return collection;
  }

  std::mt19937 random_;
};

class ChangesTest : public testing::Test {
 protected:
  [[nodiscard]] Changes Between(const std::string& before, const std::string& after) const {
    return ChangesBetween(*parser_, kProjectDocument, before, after);
  }
  [[nodiscard]] std::string With(const std::string& text, const Changes& changes,
                                 std::size_t refused = 0) const {
    auto applied = Apply(*parser_, {{kProjectDocument, text}}, changes);
    EXPECT_EQ(applied.refused.size(), refused) << text;
    return applied.documents[kProjectDocument];
  }
  static bool IsWhole(const Changes& changes) {
    return changes.size() == 1 && changes.front().collection.empty();
  }

  std::shared_ptr<XmlParser> parser_ = MakeXmlParser();
};

constexpr char kArea[] = R"(<STUDYAREA NAME="_North_" GUID="{1}"/>)";

std::string Catalogue(const std::string& areas) { return "<AREAS>" + areas + "</AREAS>\r\n"; }

TEST_F(ChangesTest, LeadThereAndBackForAnyDocuments) {
  int whole = 0;
  for (unsigned seed = 0; seed < 200; ++seed) {
    RandomDocument random(seed);
    const std::string before = random.Text(*parser_, seed % 4 == 0);
    const std::string after = random.Text(*parser_, seed % 4 == 0);
    const Changes changes = Between(before, after);
    EXPECT_EQ(With(before, changes), after) << seed << before;
    EXPECT_EQ(With(after, Inverse(changes)), before) << seed << after;
    whole += IsWhole(changes) ? 1 : 0;
  }
  EXPECT_LT(whole, 50);
}

TEST_F(ChangesTest, EqualDocumentsHaveNone) { EXPECT_EQ(Between("no XML", "no XML"), Changes()); }

TEST_F(ChangesTest, NameTheElement) {
  const Changes changes = Between(Catalogue(kArea), Catalogue(""));
  ASSERT_EQ(changes.size(), 1U);
  EXPECT_EQ(changes.front(),
            (Change{kProjectDocument, "AREAS", "{1}", "_North_", 0, 0, kArea, ""}));
}

TEST_F(ChangesTest, WhatOthersChangedStays) {
  const std::string theirs = R"(<STUDYAREA NAME="_South_" GUID="{2}"/>)";
  const Changes deletion = Between(Catalogue(kArea), Catalogue(""));
  EXPECT_EQ(With(Catalogue(theirs), Inverse(deletion)), Catalogue(kArea + theirs));
  EXPECT_EQ(With(Catalogue(theirs), deletion, 1), Catalogue(theirs));
}

TEST_F(ChangesTest, AnElementThatIsNotWhatItWasIsRefused) {
  const std::string renamed = R"(<STUDYAREA NAME="_Nord_" GUID="{1}"/>)";
  const std::string again = R"(<STUDYAREA NAME="_Norden_" GUID="{1}"/>)";
  const Changes changes = Between(Catalogue(kArea), Catalogue(renamed));
  EXPECT_EQ(With(Catalogue(renamed), Inverse(changes)), Catalogue(kArea));
  EXPECT_EQ(With(Catalogue(again), Inverse(changes), 1), Catalogue(again));
  EXPECT_FALSE(Holds(*parser_, {{kProjectDocument, Catalogue(again)}}, changes));
  EXPECT_TRUE(Holds(*parser_, {{kProjectDocument, Catalogue(renamed)}}, changes));
  // An element comes back only where nothing else has its GUID.
  const Changes deletion = Between(Catalogue(kArea), Catalogue(""));
  EXPECT_EQ(With(Catalogue(again), Inverse(deletion), 1), Catalogue(again));
}

TEST_F(ChangesTest, ACollectionThatOthersUseStays) {
  const std::string mine = R"(<LAYER GUID="{1}"/>)";
  const std::string theirs = R"(<LAYER GUID="{2}"/>)";
  const Changes first = Between("<R><!--c--></R>\r\n", "<R><!--c--><S>" + mine + "</S></R>\r\n");
  EXPECT_FALSE(IsWhole(first));
  EXPECT_EQ(With("<R><!--c--><S>" + mine + theirs + "</S></R>\r\n", Inverse(first)),
            "<R><!--c--><S>" + theirs + "</S></R>\r\n");
  EXPECT_EQ(With("<R><!--c--><S>" + theirs + "</S></R>\r\n", first),
            "<R><!--c--><S>" + mine + theirs + "</S></R>\r\n");
}

TEST_F(ChangesTest, AFirstElementIsNoWholeDocument) {
  const Changes first = Between("", Catalogue(kArea));
  EXPECT_FALSE(IsWhole(first));
  EXPECT_EQ(With(Catalogue(kArea), Inverse(first)), "<AREAS/>\r\n");
}

TEST_F(ChangesTest, OtherDifferencesAreOfTheWholeDocument) {
  for (const char* after : {R"(<R X="1"><S/></R>)", "<Q/>", "no XML", ""}) {
    const Changes changes = Between("<R><S/></R>\r\n", after);
    EXPECT_TRUE(IsWhole(changes)) << after;
    EXPECT_EQ(With("<R><S/></R>\r\n", changes), after);
    EXPECT_EQ(With("<R/>\r\n", changes, 1), "<R/>\r\n");
  }
}

TEST_F(ChangesTest, ValuesOfObjectsChangeByThemselves) {
  const Changes changes =
      ChangesBetween(*parser_, {{kStateDocument, R"({"a":"1","b":2})"}, {"other", ""}},
                     {{kStateDocument, R"({"b":3,"c":null})"}});
  ASSERT_EQ(changes.size(), 3U);
  const auto back =
      Apply(*parser_, {{kStateDocument, R"({"b":4,"c":null,"d":5})"}}, Inverse(changes));
  EXPECT_EQ(back.documents.at(kStateDocument), R"({"b":4,"d":5,"a":"1"})");
  ASSERT_EQ(back.refused.size(), 1U);
  EXPECT_EQ(back.refused.front().name, "b");
}

}  // namespace
}  // namespace kvdm
