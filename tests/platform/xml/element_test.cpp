// Attributes and texts of elements.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/xml/node.h"
#include "tests/platform/xml/parsed.h"
#include "tests/throws_number.h"

namespace kvdm::xml {
namespace {

using testing::ElementsAre;
using namespace std::string_view_literals;

struct Form {
  std::string_view set;
  std::string_view written;
  std::string_view reloaded;
};

std::vector<std::string> AttributeNames(const Element& element) {
  std::vector<std::string> names;
  for (const Attribute& attribute : element.Attributes()) names.push_back(attribute.name);
  return names;
}

TEST(ElementTest, HasItsTagAndNothingElseWhenCreated) {
  const auto element = Element::Create("ANALYSIS");

  EXPECT_EQ(element.Type(), NodeType::kElement);
  EXPECT_EQ(element.Tag(), "ANALYSIS");
  EXPECT_EQ(element.Xml(), "<ANALYSIS/>");
  EXPECT_EQ(element.Parent(), nullptr);
}

TEST(ElementTest, NamesMustBeXmlNamesWithoutPrefix) {
  for (const auto name : {"", " ", "A B", "1A", "-A", ".A", "A<", "A\"", "A=", "a:b", ":", "A\n",
                          "\xC3\x97", "A\xE2\x80\xA6"}) {
    EXPECT_RUNTIME_ERROR(Element::Create(name), kInvalidCall);
    EXPECT_RUNTIME_ERROR(Element::Create("A").SetAttribute(name, "v"), kInvalidCall);
  }
}

TEST(ElementTest, AcceptsEveryXmlName) {
  for (const auto name :
       {"A", "_", "a-1.b", "\xC3\x89tage", "\xE5\xBA\x97", "\xF0\x90\x80\x80", "xml", "XMLthing"}) {
    const auto element = Element::Create(name);
    element.SetAttribute(name, "v");
    EXPECT_EQ(Reloaded(element).Xml(), element.Xml());
  }
}

TEST(ElementTest, NamesThatAreNotUtf8AreFoundAgain) {
  const auto element = Element::Create("A\xFF");
  element.SetAttribute("N\xFE", "v");

  EXPECT_EQ(element.Tag(), "A\xEF\xBF\xBD");
  EXPECT_EQ(element.GetAttribute("N\xFE"), Value("v"));
  element.RemoveAttribute("N\xFE");
  EXPECT_TRUE(element.Attributes().empty());
}

TEST(ElementTest, MissingAttributeIsNull) {
  EXPECT_TRUE(Element::Create("A").GetAttribute("NAME").IsNull());
}

TEST(ElementTest, EmptyAttributeIsThere) {
  const auto element = Element::Create("A");
  element.SetAttribute("NAME", "");

  EXPECT_EQ(element.GetAttribute("NAME"), Value(""));
  EXPECT_EQ(element.Xml(), "<A NAME=\"\"/>");
}

TEST(ElementTest, AttributeNamesAreCaseSensitive) {
  const auto element = Parsed("<A Name='1' NAME='2'/>");

  EXPECT_EQ(element.GetAttribute("NAME"), Value("2"));
  EXPECT_TRUE(element.GetAttribute("name").IsNull());
}

TEST(ElementTest, SetAttributeStoresTheTextForm) {
  const std::pair<Value, std::string_view> rows[] = {
      {Value(true), "-1"},
      {Value(false), "0"},
      {Value(5), "5"},
      {Value(1.5), "1.5"},
      {Value(), ""},
      {Value("text"), "text"},
      {Value(DateTime{2026, 11, 15, 7, 35, 30}), "11/15/2026 7:35:30 AM"},
  };
  for (const auto& [value, text] : rows) {
    const auto element = Element::Create("A");
    element.SetAttribute("V", value);
    EXPECT_EQ(element.GetAttribute("V"), Value(text));
  }
}

TEST(ElementTest, SetAttributeRefusesNullAndKeepsTheOldValue) {
  const auto element = Parsed("<A V='old'/>");

  EXPECT_RUNTIME_ERROR(element.SetAttribute("V", Null()), kTypeMismatch);
  EXPECT_EQ(element.GetAttribute("V"), Value("old"));
}

TEST(ElementTest, ChangedAttributeKeepsItsPlaceAndNewOnesGoLast) {
  const auto element = Parsed("<A B='1' C='2' D='3'/>");
  element.SetAttribute("C", "x");
  element.SetAttribute("A", "y");
  element.RemoveAttribute("B");
  element.SetAttribute("B", "z");

  EXPECT_EQ(element.Xml(), R"(<A C="x" D="3" A="y" B="z"/>)");
}

TEST(ElementTest, RemovingAMissingAttributeDoesNothing) {
  const auto element = Parsed("<A B='1'/>");
  element.RemoveAttribute("C");
  EXPECT_THAT(AttributeNames(element), ElementsAre("B"));
}

TEST(ElementTest, AttributeValuesSurviveExactly) {
  const Form rows[] = {
      {"<>&\"'", "&lt;&gt;&amp;&quot;'", "<>&\"'"},
      {"a\tb", "a&#9;b", "a\tb"},
      {"a\r\nb\rc\nd", "a&#13;&#10;b&#13;c&#10;d", "a\r\nb\rc\nd"},
      {"  two  blanks  ", "  two  blanks  ", "  two  blanks  "},
      {"&amp;&#38;", "&amp;amp;&amp;#38;", "&amp;&#38;"},
      {"\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x97\xBA", "\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x97\xBA",
       "\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x97\xBA"},
      {"]]>", "]]&gt;", "]]>"},
  };
  for (const Form& row : rows) {
    const auto element = Element::Create("A");
    element.SetAttribute("V", row.set);
    EXPECT_EQ(element.GetAttribute("V"), Value(row.set));
    EXPECT_EQ(element.Xml(), "<A V=\"" + std::string(row.written) + "\"/>");
    EXPECT_EQ(Reloaded(element).GetAttribute("V"), Value(row.reloaded));
  }
}

TEST(ElementTest, TextsSurviveWithLineFeedsAsLineEnds) {
  const Form rows[] = {
      {"plain", "plain", "plain"},
      {"<>&\"'", "&lt;&gt;&amp;\"'", "<>&\"'"},
      {"a\r\nb", "a\r\nb", "a\nb"},
      {"a\nb", "a\r\nb", "a\nb"},
      {"a\rb", "a\r\nb", "a\nb"},
      {"\n\r\r\n", "\r\n\r\n\r\n", "\n\n\n"},
      {"a\tb", "a\tb", "a\tb"},
      {"   ", "   ", "   "},
      {"trailing\n", "trailing\r\n", "trailing\n"},
      {"]]>", "]]&gt;", "]]>"},
      {"\xF0\x9F\x97\xBA", "\xF0\x9F\x97\xBA", "\xF0\x9F\x97\xBA"},
  };
  for (const Form& row : rows) {
    const auto element = Element::Create("A");
    element.SetText(row.set);
    EXPECT_EQ(element.Text(), row.set);
    EXPECT_EQ(element.Xml(), "<A>" + std::string(row.written) + "</A>");
    EXPECT_EQ(Reloaded(element).Text(), row.reloaded);
    EXPECT_EQ(Reloaded(element).Xml(), element.Xml());
  }
}

TEST(ElementTest, ForbiddenCharactersAreReplaced) {
  const std::pair<std::string_view, std::string_view> rows[] = {
      {"a\0b"sv,
       "a\xEF\xBF\xBD"
       "b"},
      {"\x01", "\xEF\xBF\xBD"},
      {"\x1F", "\xEF\xBF\xBD"},
      {"\x7F", "\x7F"},
      {"\xEF\xBF\xBE", "\xEF\xBF\xBD"},                          // U+FFFE
      {"\xEF\xBF\xBF", "\xEF\xBF\xBD"},                          // U+FFFF
      {"\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},  // a surrogate
      {"\xE9t\xE9", "\xEF\xBF\xBDt\xEF\xBF\xBD"},
      {"\xC0\xAF", "\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"\xEF\xBF\xBD", "\xEF\xBF\xBD"},
  };
  for (const auto& [set, kept] : rows) {
    const auto element = Element::Create("A");
    element.SetAttribute("V", set);
    element.SetText(set);
    EXPECT_EQ(element.GetAttribute("V"), Value(kept));
    EXPECT_EQ(element.Text(), kept);
    EXPECT_EQ(Reloaded(element).Xml(), element.Xml());
  }
}

TEST(ElementTest, TextIsThatOfTheWholeSubtree) {
  const auto element = Parsed("<A> x<B>y<C/><!--no-->z</B><?no no?><![CDATA[<w>]]> </A>");
  EXPECT_EQ(element.Text(), " xyz<w> ");
}

TEST(ElementTest, SetTextReplacesAllChildren) {
  const auto element = Parsed("<A>x<B/><!--c-->y</A>");
  element.SetText("new");
  EXPECT_EQ(element.Xml(), "<A>new</A>");
}

TEST(ElementTest, SettingTheEmptyTextLeavesNoChildren) {
  const auto element = Parsed("<A>x<B/></A>");
  element.SetText("");
  EXPECT_EQ(element.FirstChild(), nullptr);
  EXPECT_EQ(element.Xml(), "<A/>");
}

TEST(ElementTest, OnlyEmptyTextsMakeAnEmptyElement) {
  const auto element = Element::Create("A");
  element.Append(CreateText(""));
  element.Append(CreateText(""));
  EXPECT_EQ(element.Xml(), "<A/>");
}

TEST(ElementTest, XmlOfAnInnerElementIsThatElementAlone) {
  const auto root = Parsed("<A>\n<B N='1'><C/>t</B>\n</A>");
  EXPECT_EQ(root.Child("B").Xml(), R"(<B N="1"><C/>t</B>)");
}

TEST(ElementTest, CommentsAreCreatedAndWritten) {
  const auto element = Element::Create("A");
  element.Append(CreateComment(" <a> & \"b\" \r - \x01"));
  EXPECT_EQ(element.Xml(), "<A><!-- <a> & \"b\" \r\n - \xEF\xBF\xBD--></A>");
  EXPECT_EQ(Reloaded(element).Xml(), element.Xml());
}

TEST(ElementTest, CommentsThatNoReaderAcceptsAreRefused) {
  for (const auto text : {"--", "a--b", "-", "a-", "a--"}) {
    EXPECT_RUNTIME_ERROR(static_cast<void>(CreateComment(text)), kInvalidCall);
  }
}

}  // namespace
}  // namespace kvdm::xml
