#include <gtest/gtest.h>

#include "platform/xml/namespaces.h"
#include "platform/xml/pieces.h"
#include "tests/platform/xml/parsed.h"
#include "tests/xml_notes.h"

namespace kvdm::xml {
namespace {

// Whether the rules of namespaces allow `text`, as a parser has it and as the check has it.
bool Allows(std::string_view text) {
  NamespaceCheck check;
  XmlNotes ignored;
  const bool checked = ReportPieces(text, check);
  EXPECT_EQ(checked, MakeXmlParser()->Parse(text, XmlEncoding::kUtf8, ignored)) << text;
  return checked;
}

TEST(NamespaceCheckTest, AllowsWhatIsDeclared) {
  for (const auto text : {
           "<a xmlns='u'/>",
           "<a xmlns='' xml:lang='en' b='1'/>",
           "<p:a xmlns:p='u' p:b='' b=''/>",
           "<p:a p:b='' xmlns:p='u'/>",
           "<a xmlns:p='u'><b><p:c p:d=''/></b><p:e/></a>",
           "<a xmlns:p='u'><b xmlns:p='v'><p:c/></b><p:e/></a>",
           "<a xmlns:p='u' xmlns:q='v' p:b='' q:b=''/>",
           "<a xmlns:p='u' xmlns='u' p:b='' b=''/>",
           "<a xmlns:xml='http://www.w3.org/XML/1998/namespace'/>",
           "<xml:a/>",
           "<a xmlns:p='not a uri'/>",
           "<?i a:b?><a/>",
       }) {
    EXPECT_TRUE(Allows(text)) << text;
  }
}

TEST(NamespaceCheckTest, RefusesWhatIsNot) {
  for (const auto text : {
           "<p:a/>",
           "<a p:b=''/>",
           "<a><b xmlns:p='u'/><p:c/></a>",
           "<a xmlns:p='u'><b xmlns:p='v'/></a><!-- --><?p:i?>",
           "<a xmlns:p=''/>",
           "<a xmlns:p='u'><b xmlns:p=''/></a>",
           "<a:b:c xmlns:a='u'/>",
           "<:a/>",
           "<a:/>",
           "<a:1 xmlns:a='u'/>",
           "<a :b=''/>",
           "<a xmlns:=''/>",
           "<a xmlns:p='u' xmlns:q='u' p:b='' q:b=''/>",
           "<a xmlns:p='u' xmlns:q='&#117;' p:b='' q:b=''/>",
           "<xmlns:a/>",
           "<a xmlns:xmlns='u'/>",
           "<a xmlns:xml='u'/>",
           "<a xmlns='http://www.w3.org/XML/1998/namespace'/>",
           "<a xmlns='http://www.w3.org/2000/xmlns/'/>",
           "<a xmlns:p='http://www.w3.org/XML/1998/namespace'/>",
           "<a xmlns:p='http://www.w3.org/2000/xmlns/'/>",
       }) {
    EXPECT_FALSE(Allows(text)) << text;
  }
}

}  // namespace
}  // namespace kvdm::xml
