#include "platform/xml/pieces.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "platform/xml/limits.h"
#include "tests/platform/xml/parsed.h"
#include "tests/xml_notes.h"

namespace kvdm::xml {
namespace {

using testing::ElementsAre;

// The pieces of `text`; nothing when it is refused.
std::optional<std::vector<std::string>> PiecesOf(std::string_view text) {
  XmlNotes handler;
  if (!ReportPieces(WithLineFeeds(text), handler)) return std::nullopt;
  return handler.notes;
}

std::vector<std::string> Parsed(std::string_view text) {
  XmlNotes handler;
  EXPECT_TRUE(MakeXmlParser()->Parse(text, XmlEncoding::kUtf8, handler)) << text;
  return handler.notes;
}

std::string NestedText(std::size_t depth) {
  std::string text;
  for (std::size_t i = 0; i < depth; ++i) text += "<A>";
  for (std::size_t i = 0; i < depth; ++i) text += "</A>";
  return text;
}

TEST(PiecesTest, LineEndsBecomeLineFeeds) {
  EXPECT_EQ(WithLineFeeds("1\r\n2\r3\n4\r\r\n5\n\r"), "1\n2\n3\n4\n\n5\n\n");
  EXPECT_EQ(WithLineFeeds(""), "");
}

TEST(PiecesTest, AreReportedInOrder) {
  EXPECT_THAT(PiecesOf("<?xml version='1.0'?><!--c--><a b='1'>x<b/>y<![CDATA[&]]>&lt;<?i  d ?></a>"
                       "<?j?>")
                  .value(),
              ElementsAre("!c", "<a b=1", "\"x", "<b", ">", "\"y&<", "?i|d ", ">", "?j|"));
}

TEST(PiecesTest, AreThoseOfAParser) {
  for (const std::string_view text :
       {"<a/>", "\n<a\n b = '1'\tc=\"2\"\r\n/>\n", "<a></a >",
        "<p:a b='1' xmlns:p='u&amp;' p:c='2' xmlns=''><b/></p:a>",
        "<a b='1\t2\r\n3\r4\n5&#9;&#10;&#13;&amp;&lt;&#38;&amp;#38;'/>",
        "<a b='>' c='\"' d=\"'\" e='/'>></a>",
        "<a>&lt;&gt;&amp;&quot;&apos;&#65;&#x1F5FA;&#x00000000041;</a>",
        "<a>1\r\n2\r3\n4&#13;5<!--\r\n\r--><?i x\r\ny\rz?><![CDATA[\r\n\r]]></a>",
        "<a><![CDATA[]]></a>", "<a><![CDATA[<b>&amp;]]]]><![CDATA[>]]></a>",
        "<a><!----><!-- <b c=''> --><?i?><?i ?><?i <b>?></a>",
        "<?xml version='1.0' encoding='utf-8'?>\r\n<!--1--><a>\xC3\xA9<\xC3\x89 \xC3\x89=''/></a>"
        "<?i\r\nd?>\n<!--2-->"}) {
    EXPECT_EQ(PiecesOf(text).value(), Parsed(text)) << text;
  }
}

TEST(PiecesTest, NoFurtherThanWhereNoTextCanGoOn) {
  for (const auto text : {"<",
                          "<a",
                          "<a ",
                          "<a b",
                          "<a b=",
                          "<a b=1/>",
                          "<a b='1/>",
                          "<a b='&'/>",
                          "<a b='&c;'/>",
                          "</a>",
                          "<a></a",
                          "<a/></a>",
                          "<a>&</a>",
                          "<a>&b</a>",
                          "<a>&b;</a>",
                          "<a>&#;</a>",
                          "<a>&#x;</a>",
                          "<a>&#x110000;</a>",
                          "<a>&#-1;</a>",
                          "<a>&#99999999999;</a>",
                          "<!--",
                          "<a><![CDATA[</a>",
                          "<?i",
                          "<!DOCTYPE a><a/>",
                          "<a><!DOCTYPE a></a>",
                          "<!"}) {
    EXPECT_EQ(PiecesOf(text), std::nullopt) << text;
  }
}

TEST(PiecesTest, NoDeeperThanDocuments) {
  EXPECT_NE(PiecesOf(NestedText(kMaxDepth)), std::nullopt);
  EXPECT_EQ(PiecesOf(NestedText(kMaxDepth + 1)), std::nullopt);
}

}  // namespace
}  // namespace kvdm::xml
