// Small XML texts, well-formed and not, each for one thing that XML has a rule for.
#pragma once

#include <string_view>

namespace kvdm::faults {

using std::string_view_literals::operator""sv;

inline constexpr std::string_view kSamples[] = {
    // Well-formed.
    "<a/>"sv,
    "<?xml version='1.0'?><a></a>"sv,
    "<?xml version=\"1.0\" encoding=\"utf-8\" standalone='yes' ?>\r\n<a b='c'/>\r\n"sv,
    "<!--before--><a/><!--after--><?i after?>"sv,
    "<a><b c='1' d=\"2\"><e/></b>text<f></f></a>"sv,
    "<a>&lt;&gt;&amp;&quot;&apos;&#65;&#x1F5FA;</a>"sv,
    "<a b='&lt;&gt;&amp;&quot;&apos;&#9;&#10;&#13;'/>"sv,
    "<a>1\r\n2\r3\n4&#13;5</a>"sv,
    "<a b='1\t2\r\n3\r4\n5'/>"sv,
    "<a><![CDATA[<b>&amp;]] >]]></a>"sv,
    "<a><![CDATA[x]]]]><![CDATA[>y]]></a>"sv,
    "<a><!-- <b> & --><?target some data?><?empty?></a>"sv,
    "<p:a xmlns:p='urn:p' p:b='1'><p:c/></p:a>"sv,
    "<a xmlns='urn:a'><b xmlns=''/></a>"sv,
    "<a xml:lang='en' xml:space='preserve'> </a>"sv,
    "<a xmlns:xml='http://www.w3.org/XML/1998/namespace'/>"sv,
    "<a xmlns:p='urn:1' xmlns:q='urn:2' p:x='' q:x='' x=''/>"sv,
    "<\xC3\xA9l\xC3\xA9ment \xC3\xA4='\xE5\x8C\x97'>\xE5\x8C\x97</\xC3\xA9l\xC3\xA9ment>"sv,
    "\xEF\xBB\xBF<a b='\xC3\xA9'/>"sv,
    "<?xml version='1.0' encoding='ISO-8859-1'?><a b='\xE9'>\xFF</a>"sv,
    "<?xml version='1.0' encoding='US-ASCII'?><a>plain</a>"sv,
    "\xFF\xFE<\0a\0>\0\xE9\0<\0/\0a\0>\0"sv,
    "\xFE\xFF\0<\0a\0/\0>"sv,
    "<a\n b = '1'\tc=\"2\"\r\n/>\n"sv,
    "<a.b-c_d1><e:f xmlns:e='u'/></a.b-c_d1>"sv,
    "<KVDATACOLLECTION><ANALYSISCOLLECTION><ANALYSIS NAME=\"_Sales_\" GUID=\"{1}\"><PARAM "
    "NAME=\"a\" VALUE=\"1\"/><COMMENTS>two\r\nlines</COMMENTS></ANALYSIS></ANALYSISCOLLECTION>"
    "</KVDATACOLLECTION>"sv,
    // Not well-formed.
    ""sv,
    "text"sv,
    "<a>"sv,
    "<a></b>"sv,
    "<a/><b/>"sv,
    "<a b='1' b='2'/>"sv,
    "<a b=1/>"sv,
    "<a b='<'/>"sv,
    "<a>&b;</a>"sv,
    "<a>&#0;</a>"sv,
    "<a>&#xFFFE;</a>"sv,
    "<a>]]></a>"sv,
    "<a><!-- -- --></a>"sv,
    "<a><?xml version='1.0'?></a>"sv,
    " <?xml version='1.0'?><a/>"sv,
    "<?xml version='1.0' encoding='utf-8'standalone='yes'?><a/>"sv,
    "<a>\x01</a>"sv,
    "<a>\xEF\xBF\xBF</a>"sv,
    "<a>\xC3</a>"sv,
    "<a>\xED\xA0\x80</a>"sv,
    "<1a/>"sv,
    "<p:a/>"sv,
    "<a xmlns:p=''/>"sv,
    "<a xmlns:p='u' xmlns:q='u' p:x='' q:x=''/>"sv,
    "<a xmlns:xmlns='u'/>"sv,
    "<a xmlns:xml='u'/>"sv,
    // With a document type declaration.
    "<!DOCTYPE a><a/>"sv,
    "<?xml version='1.0'?><!DOCTYPE a [<!ENTITY b 'c'><!ELEMENT a ANY>]><a>&b;</a>"sv,
    "<!DOCTYPE a SYSTEM 'a.dtd'><a>x</a>"sv,
};

}  // namespace kvdm::faults
