#include <gtest/gtest.h>

#include <kvdm/platform/document_tree.h>
#include <kvdm/platform/error.h>

#include "platform/xml/document.h"
#include "platform/xml_parser.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

class DocumentTreeTest : public testing::Test {
 protected:
  [[nodiscard]] std::string Again(const std::string& text) const {
    const auto tree = ReadDocumentTree(*parser_, text);
    return tree ? DocumentTreeText(*parser_, *tree) : "not read";
  }
  [[nodiscard]] std::string AsWritten(const std::string& text) const {
    xml::Document document;
    EXPECT_TRUE(document.LoadXml(*parser_, text));
    return document.Xml();
  }

  std::shared_ptr<XmlParser> parser_ = MakeXmlParser();
};

TEST_F(DocumentTreeTest, TextOfATreeIsWhatTheComponentWrites) {
  const std::string texts[] = {
      R"(<?xml version="1.0"?><!--a--><R A="1&#10;&quot;&lt;" B="&#9;"><C>x &amp; y</C><?p q r?><D/></R>)",
      "<R xmlns:p=\"urn:x\"><p:C p:D='1'/> text\nmore <!--c--></R>",
      "<STUDYAREACOLLECTION/>",
  };
  for (const std::string& text : texts) EXPECT_EQ(Again(text), AsWritten(text)) << text;
}

TEST_F(DocumentTreeTest, TellsWhatStandsInADocument) {
  const auto tree = ReadDocumentTree(*parser_, R"(<R><!--c--><A N="x"/><B/><A N="y">t</A></R>)");
  ASSERT_TRUE(tree);
  ASSERT_NE(tree->Root(), nullptr);
  EXPECT_EQ(tree->Root()->children.size(), 4U);
  EXPECT_EQ(tree->Root()->Child("A")->Attribute("N"), "x");
  EXPECT_EQ(tree->Root()->Child("A")->Attribute("M"), "");
  EXPECT_EQ(tree->Root()->Child("C"), nullptr);
  EXPECT_EQ(tree->Root()->children[3].children[0].text, "t");
}

TEST_F(DocumentTreeTest, AttributesAreSetInTheirPlace) {
  DocumentNode element{DocumentNode::Kind::kElement, "A", "", {{"N", "1"}, {"M", "2"}}};
  element.SetAttribute("N", "3");
  element.SetAttribute("O", "4");
  EXPECT_EQ(ElementText(*parser_, element), R"(<A N="3" M="2" O="4"/>)");
}

TEST_F(DocumentTreeTest, WhatIsNoDocumentIsNotRead) {
  EXPECT_FALSE(ReadDocumentTree(*parser_, ""));
  EXPECT_FALSE(ReadDocumentTree(*parser_, "<R>"));
  EXPECT_EQ(DocumentTreeText(*parser_, {}), "");
}

TEST_F(DocumentTreeTest, ATreeThatIsNoDocumentIsRefused) {
  const DocumentNode root{DocumentNode::Kind::kElement, "R"};
  const DocumentTree tree{false, {root, root}};
  EXPECT_EQ(ErrorOf([&] { static_cast<void>(DocumentTreeText(*parser_, tree)); }), kInvalidCall);
}

}  // namespace
}  // namespace kvdm
