// What every XML parser does.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "platform/xml_parser.h"
#include "tests/contract/implementations.h"
#include "tests/throws_number.h"
#include "tests/xml_notes.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using namespace std::string_view_literals;

// Accepts all but elements called STOP, which it refuses, and THROW, at which it fails.
class Picky final : public XmlHandler {
 public:
  bool StartElement(std::string_view tag, Attributes /*attributes*/) override {
    ++started;
    if (tag == "THROW") throw RuntimeError(kDeviceUnavailable);
    return tag != "STOP";
  }
  bool EndElement() override { return true; }
  bool Characters(std::string_view /*text*/) override { return true; }
  bool Comment(std::string_view /*text*/) override { return true; }
  bool Instruction(std::string_view /*target*/, std::string_view /*data*/) override { return true; }

  int started = 0;
};

class XmlParserContractTest : public testing::TestWithParam<Implementation<XmlParser>> {
 protected:
  bool Accepts(std::string_view text, XmlEncoding encoding = XmlEncoding::kUtf8) {
    XmlNotes ignored;
    return GetParam().make()->Parse(text, encoding, ignored);
  }

  std::vector<std::string> Reported(std::string_view text,
                                    XmlEncoding encoding = XmlEncoding::kUtf8) {
    XmlNotes handler;
    EXPECT_TRUE(GetParam().make()->Parse(text, encoding, handler)) << text;
    return handler.notes;
  }
};

INSTANTIATE_TEST_SUITE_P(All, XmlParserContractTest,
                         testing::Values(Implementation<XmlParser>{SystemName(), MakeXmlParser}),
                         kByName);

TEST_P(XmlParserContractTest, AcceptsWellFormedTexts) {
  for (const auto text : {"<a/>",
                          "<a></a>",
                          " \r\n\t<a/>",
                          "<a/> \n",
                          "\xEF\xBB\xBF<a/>",
                          "<?xml version='1.0'?><a/>",
                          "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n<a/>",
                          "<?xml version='1.1'?><a/>",
                          "<?xml version='1.0' standalone='yes'?><a/>",
                          "<?xml version='1.0' encoding='windows-1252'?><a>\xC3\xA9</a>",
                          "<?xml version='1.0' encoding='utf-16'?><a/>",
                          "<?xml version='1.0' encoding='no-such-encoding'?><a/>",
                          "<a/><!--c--><?i?>",
                          "<!--c--><a/>",
                          "<a b='1' c=\"2\"/>",
                          "<a b = '1' />",
                          "<a b='>'/>",
                          "<a>]]</a>",
                          "<a>></a>",
                          "<a>&lt;&gt;&amp;&quot;&apos;&#65;&#x1F5FA;&#9;</a>",
                          "<a><![CDATA[<b>&]]></a>",
                          "<a><![CDATA[]]></a>",
                          "<a><!----></a>",
                          "<a xmlns='u'/>",
                          "<p:a xmlns:p='u' p:b=''/>",
                          "<a xml:lang='en'/>",
                          "<a xmlns='not a uri'/>",
                          "<a>\x7F\xC2\x80\xEF\xBF\xBD</a>",
                          "<\xC3\x89/>"}) {
    EXPECT_TRUE(Accepts(text)) << text;
  }
}

TEST_P(XmlParserContractTest, RefusesMalformedTexts) {
  for (const auto text : {""sv,
                          " "sv,
                          "a"sv,
                          "<"sv,
                          "<a"sv,
                          "<a>"sv,
                          "</a>"sv,
                          "<a></b>"sv,
                          "<a><b></a></b>"sv,
                          "<a/><b/>"sv,
                          "<a/>x"sv,
                          "x<a/>"sv,
                          "<a/>&#32;"sv,
                          " <?xml version='1.0'?><a/>"sv,
                          "\n<?xml version='1.0'?><a/>"sv,
                          "<!--c--><?xml version='1.0'?><a/>"sv,
                          "<?xml version='1.0'?>"sv,
                          "<?xml?><a/>"sv,
                          "<?xml version='1.0'><a/>"sv,
                          "<?xml encoding='utf-8'?><a/>"sv,
                          "<?xml version='2.0'?><a/>"sv,
                          "<?xml version='1.0'encoding='utf-8'?><a/>"sv,
                          "<?xml version='1.0' encoding='utf-8'standalone='yes'?><a/>"sv,
                          "<?xml version='1.0' standalone='yes' encoding='utf-8'?><a/>"sv,
                          "<a b='1' b='2'/>"sv,
                          "<a b=1/>"sv,
                          "<a b/>"sv,
                          "<a b='1'c='2'/>"sv,
                          "<a b='<'/>"sv,
                          "<a b='1\"/>"sv,
                          "<1/>"sv,
                          "< a/>"sv,
                          "<a><</a>"sv,
                          "<a>&</a>"sv,
                          "<a>&b</a>"sv,
                          "<a>&b;</a>"sv,
                          "<a b='&c;'/>"sv,
                          "<a>]]></a>"sv,
                          "<a>&#0;</a>"sv,
                          "<a>&#1;</a>"sv,
                          "<a>&#xD800;</a>"sv,
                          "<a>&#xFFFE;</a>"sv,
                          "<a>&#x110000;</a>"sv,
                          "<a>\x01</a>"sv,
                          "<a b='\x1F'/>"sv,
                          "<a><!--\x01--></a>"sv,
                          "<a>\xEF\xBF\xBE</a>"sv,
                          "<a>\xEF\xBF\xBF</a>"sv,
                          "<a>\xED\xA0\x80</a>"sv,
                          "<a>\xC0\xAF</a>"sv,
                          "<a>\xE9</a>"sv,
                          "<a>\xF4\x90\x80\x80</a>"sv,
                          "<a>\xC3</a>"sv,
                          "<a>\0</a>"sv,
                          "<a/>\0"sv,
                          "<a/>\0<b/>"sv,
                          "<a><!--b--c--></a>"sv,
                          "<a><!--b---></a>"sv,
                          "<a><!--b</a>"sv,
                          "<a><![CDATA[b</a>"sv,
                          "<a><?b</a>"sv,
                          "<a><?\?></a>"sv,
                          "<a><?xml b?></a>"sv,
                          "<![CDATA[a]]>"sv,
                          "<p:a/>"sv,
                          "<a p:b=''/>"sv,
                          "<a xmlns:p=''/>"sv,
                          "<a:b:c xmlns:a='u'/>"sv,
                          "<:a/>"sv,
                          "<a:/>"sv,
                          "<a xmlns:p='u' xmlns:q='u' p:b='' q:b=''/>"sv,
                          "<a xmlns:p='u' xmlns:p='v'/>"sv,
                          "<a xmlns:xml='u'/>"sv,
                          "\xEF\xBB\xBF\xEF\xBB\xBF<a/>"sv,
                          "\xFF\xFE<\0a\0/\0>\0"sv}) {
    EXPECT_FALSE(Accepts(text)) << text;
  }
}

TEST_P(XmlParserContractTest, RefusesDocumentTypesAtOnce) {
  const std::string_view laughs =
      "<!DOCTYPE a [<!ENTITY x 'ha'><!ENTITY y '&x;&x;&x;'>]><a>&y;&y;</a>";
  for (const std::string_view text :
       {"<!DOCTYPE a><a/>"sv, "<!DOCTYPE a SYSTEM 'file:///etc/hostname'><a/>"sv,
        "<!DOCTYPE a [<!ENTITY x SYSTEM 'file:///etc/hostname'>]><a>&x;</a>"sv,
        "<!DOCTYPE a [<!ATTLIST a b CDATA 'c'>]><a/>"sv, "<a><!DOCTYPE a></a>"sv, laughs}) {
    Picky handler;
    EXPECT_FALSE(GetParam().make()->Parse(text, XmlEncoding::kUtf8, handler)) << text;
    EXPECT_LE(handler.started, text.starts_with("<a>") ? 1 : 0) << text;
  }
}

TEST_P(XmlParserContractTest, ReportsThePiecesInOrder) {
  EXPECT_THAT(
      Reported("<?xml version='1.0'?><!--c--><a b='1'>x<b/>y<![CDATA[&]]>&lt;<?i  d ?></a><?j?>"),
      ElementsAre("!c", "<a b=1", "\"x", "<b", ">", "\"y&<", "?i|d ", ">", "?j|"));
}

TEST_P(XmlParserContractTest, ReportsWhiteSpaceInsideElements) {
  EXPECT_THAT(Reported(" <a> <b/>\n</a> "), ElementsAre("<a", "\" ", "<b", ">", "\"\n", ">"));
}

TEST_P(XmlParserContractTest, ReportsLineEndsAsLineFeeds) {
  EXPECT_THAT(Reported("<a>1\r\n2\r3\n4&#13;5<!--\r\n\r--><?i x\r\ny\rz?><![CDATA[\r\n\r]]></a>"),
              ElementsAre("<a", "\"1\n2\n3\n4\r5", "!\n\n", "?i|x\ny\nz", "\"\n\n", ">"));
}

TEST_P(XmlParserContractTest, NormalizesAttributeValues) {
  EXPECT_THAT(Reported("<a b='1\t2\r\n3\r4\n5&#9;&#10;&#13;&amp;&lt;&#38;&amp;#38;'/>"),
              ElementsAre("<a b=1 2 3 4 5\t\n\r&<&&#38;", ">"));
}

TEST_P(XmlParserContractTest, ReportsNamesAsWrittenAndDeclarationsFirst) {
  EXPECT_THAT(Reported("<p:a b='1' xmlns:p='u&amp;' p:c='2' xmlns=''><b/></p:a>"),
              ElementsAre("<p:a xmlns:p=u& xmlns= b=1 p:c=2", "<b", ">", ">"));
}

TEST_P(XmlParserContractTest, ReportsNoDeclarationOfThePrefixXml) {
  EXPECT_THAT(Reported("<a b='1' xmlns:xml='http://www.w3.org/XML/1998/namespace' "
                       "xml:space='preserve' xmlns:p='u'/>"),
              ElementsAre("<a xmlns:p=u b=1 xml:space=preserve", ">"));
}

TEST_P(XmlParserContractTest, ReadsFilesInTheirEncoding) {
  const std::pair<std::string_view, std::string_view> rows[] = {
      {"<a b='\xC3\xA9'/>", "\xC3\xA9"},
      {"\xEF\xBB\xBF<?xml version='1.0' encoding='iso-8859-1'?><a b='\xC3\xA9'/>", "\xC3\xA9"},
      {"<?xml version='1.0' encoding=\"ISO-8859-1\"?><a b='\xE9'/>", "\xC3\xA9"},
      {"<?xml version='1.0' encoding = 'windows-1252' ?><a b='\x80'/>", "\xE2\x82\xAC"},
      {"<?xml version='1.0' encoding='UTF-8'?><a b='\xC3\xA9'/>", "\xC3\xA9"},
      {"<?xml-x encoding='iso-8859-1'?><a b='\xC3\xA9'/>", "\xC3\xA9"},
      {"\xFF\xFE<\0a\0 \0b\0=\0'\0\xE9\0'\0/\0>\0"sv, "\xC3\xA9"},
      {"\xFE\xFF\0<\0a\0 \0b\0=\0'\0\xE9\0'\0/\0>"sv, "\xC3\xA9"},
  };
  for (const auto& [bytes, value] : rows) {
    const auto notes = Reported(bytes, XmlEncoding::kAsDeclared);
    EXPECT_THAT(notes, testing::Contains("<a b=" + std::string(value))) << bytes;
  }
}

TEST_P(XmlParserContractTest, RefusesFilesThatDoNotFitTheirEncoding) {
  for (const std::string_view bytes :
       {"<a>\xE9</a>"sv, "\xEF\xBB\xBF<a>\xE9</a>"sv,
        "<?xml version='1.0' encoding='utf-8'?><a>\xE9</a>"sv,
        "<?xml version='1.0' encoding='windows-1252'?><a>\x81</a>"sv,
        "<?xml version='1.0' encoding='no-such-encoding'?><a/>"sv,
        "<?xml version='1.0' encoding='utf-8//IGNORE'?><a>\xE9</a>"sv,
        "<?xml version='1.0' encoding=''?><a/>"sv, "<?xml version='1.0' encoding='utf-16'?><a/>"sv,
        "\xFF\xFE<\0a\0/\0>"sv, "\xFF\xFE<\0a\0>\0\x00\xD8<\0/\0a\0>\0"sv, "\xFF\xFE"sv}) {
    EXPECT_FALSE(Accepts(bytes, XmlEncoding::kAsDeclared)) << bytes;
  }
}

TEST_P(XmlParserContractTest, StopsWhenTheHandlerRefuses) {
  Picky handler;
  EXPECT_FALSE(GetParam().make()->Parse("<a><STOP/><b/></a>", XmlEncoding::kUtf8, handler));
  EXPECT_EQ(handler.started, 2);
}

TEST_P(XmlParserContractTest, LetsErrorsOfTheHandlerThrough) {
  Picky handler;
  EXPECT_RUNTIME_ERROR(GetParam().make()->Parse("<a><THROW/><b/></a>", XmlEncoding::kUtf8, handler),
                       kDeviceUnavailable);
  EXPECT_EQ(handler.started, 2);
}

TEST_P(XmlParserContractTest, ParsesAgainAfterAFailure) {
  const auto parser = GetParam().make();
  Picky handler;
  EXPECT_FALSE(parser->Parse("<a><STOP/></a>", XmlEncoding::kUtf8, handler));
  EXPECT_TRUE(parser->Parse("<a/>", XmlEncoding::kUtf8, handler));
}

}  // namespace
}  // namespace kvdm
