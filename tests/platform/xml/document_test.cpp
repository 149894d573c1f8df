// Documents and their text form.
#include <gtest/gtest.h>

#include <functional>

#include "tests/platform/xml/parsed.h"
#include "tests/throws_number.h"

namespace kvdm::xml {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view kDeclaration = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n";

std::string Declared(std::string_view rest) { return std::string(kDeclaration) += rest; }

bool HoldsAscii(char32_t character) { return character < 0x80; }

TEST(DocumentTest, IsEmptyAtFirst) {
  const Document document;
  EXPECT_EQ(document.DocumentElement(), nullptr);
  EXPECT_EQ(document.Xml(), "");
}

TEST(DocumentTest, LoadedTextIsWrittenInTheOneForm) {
  const std::pair<std::string_view, std::string> rows[] = {
      {"<A/>", "<A/>\r\n"},
      {"<A></A>", "<A/>\r\n"},
      {" \n<A/>\n\n", "<A/>\r\n"},
      {"<A b='1'  c = \"'\" />", "<A b=\"1\" c=\"'\"/>\r\n"},
      {"<?xml version='1.0'?><A/>", Declared("<A/>\r\n")},
      {"<?xml version='1.0' encoding='utf-8' standalone='yes'?>\n<A/>", Declared("<A/>\r\n")},
      {"<?xml\tversion='1.1'?><A/>", Declared("<A/>\r\n")},
      {"\xEF\xBB\xBF<?xml version='1.0'?><A/>", Declared("<A/>\r\n")},
      {"\xEF\xBB\xBF<A/>", "<A/>\r\n"},
      {"<?xml-stylesheet href='x'?><A/>", "<?xml-stylesheet href='x'?>\r\n<A/>\r\n"},
      {"<!--c--><A/><?i  d ?><!--e\nf-->", "<!--c-->\r\n<A/>\r\n<?i d ?>\r\n<!--e\r\nf-->\r\n"},
      {"<A><!--x\r\ny--><?i?></A>", "<A><!--x\r\ny--><?i?></A>\r\n"},
      {"<A>\n  <B/>\n</A>", "<A>\r\n  <B/>\r\n</A>\r\n"},
      {"<A>a&#13;b&#13;&#10;c</A>", "<A>a\r\nb\r\nc</A>\r\n"},
      {"<A><![CDATA[<&]]]]><![CDATA[>]]></A>", "<A>&lt;&amp;]]&gt;</A>\r\n"},
      {"<A b='x\ty\r\nz&#10;'/>", "<A b=\"x y z&#10;\"/>\r\n"},
      {"<A>&lt;&#x41;&#66;</A>", "<A>&lt;AB</A>\r\n"},
      {"<A b='&amp;#38;&amp;amp;&lt;&quot;&apos;'/>",
       "<A b=\"&amp;#38;&amp;amp;&lt;&quot;'\"/>\r\n"},
      {"<A xmlns='urn:a' c='1' xmlns:p='urn:p&amp;'><p:B p:d='2'/></A>",
       "<A xmlns=\"urn:a\" xmlns:p=\"urn:p&amp;\" c=\"1\"><p:B p:d=\"2\"/></A>\r\n"},
  };
  for (const auto& [text, form] : rows) {
    EXPECT_EQ(Reloaded(text), form) << text;
    EXPECT_EQ(Reloaded(form), form);
  }
}

TEST(DocumentTest, AdjacentCharacterDataIsOneText) {
  const auto root = Parsed("<A>a<![CDATA[b]]>&amp;c</A>");
  EXPECT_EQ(root.FirstChild().Next(), nullptr);
  EXPECT_EQ(root.Text(), "ab&c");
}

TEST(DocumentTest, IsEmptyAfterAFailedLoad) {
  Document document;
  ASSERT_TRUE(Load(document, "<?xml version='1.0'?><A/>"));
  const auto held = document.DocumentElement();

  EXPECT_FALSE(Load(document, "<?xml version='1.0'?><B><C></B>"));
  EXPECT_EQ(document.DocumentElement(), nullptr);
  EXPECT_EQ(document.Xml(), "");
  EXPECT_EQ(held.Xml(), "<A/>");
  document.SetDocumentElement(Element::Create("D"));
  EXPECT_EQ(document.Xml(), "<D/>\r\n");
}

TEST(DocumentTest, IsEmptyAfterAnErrorOfTheParser) {
  class BrokenParser final : public XmlParser {
   public:
    bool Parse(std::string_view /*text*/, XmlEncoding /*encoding*/, XmlHandler& handler) override {
      handler.StartElement("A", {});
      throw RuntimeError(kDeviceUnavailable);
    }
  };
  Document document;
  ASSERT_TRUE(Load(document, "<B/>"));
  BrokenParser parser;

  EXPECT_RUNTIME_ERROR(document.LoadXml(parser, "<A/>"), kDeviceUnavailable);
  EXPECT_EQ(document.DocumentElement(), nullptr);
}

TEST(DocumentTest, FilesAreReadInTheirDeclaredEncoding) {
  const std::pair<std::string_view, std::string> rows[] = {
      {"<A>\xC3\xA9</A>"sv, "<A>\xC3\xA9</A>\r\n"},
      {"<?xml version='1.0' encoding='windows-1252'?><A>\x80</A>"sv,
       Declared("<A>\xE2\x82\xAC</A>\r\n")},
      {"\xFF\xFE<\0A\0/\0>\0"sv, "<A/>\r\n"},
      {"\xFF\xFE<\0?\0x\0m\0l\0 \0v\0e\0r\0s\0i\0o\0n\0=\0'\0001\0.\0000\0'\0?\0>\0<\0A\0/\0>\0"sv,
       Declared("<A/>\r\n")},
  };
  for (const auto& [bytes, form] : rows) {
    const auto parser = MakeXmlParser();
    Document document;
    EXPECT_TRUE(document.Load(*parser, bytes));
    EXPECT_EQ(document.Xml(), form);
  }
}

TEST(DocumentTest, RootOfAnEmptyDocumentIsAdded) {
  Document document;
  document.AddDeclaration();
  document.SetDocumentElement(Element::Create("A"));
  EXPECT_EQ(document.Xml(), Declared("<A/>\r\n"));
}

TEST(DocumentTest, DeclarationIsAddedOnce) {
  Document document;
  ASSERT_TRUE(Load(document, "<!--c--><A/>"));
  document.AddDeclaration();
  document.AddDeclaration();
  EXPECT_EQ(document.Xml(), Declared("<!--c-->\r\n<A/>\r\n"));
}

TEST(DocumentTest, NewRootTakesThePlaceOfTheOld) {
  Document document;
  ASSERT_TRUE(Load(document, "<?xml version='1.0'?><!--a--><A/><!--b--><?c?>"));
  const auto old = document.DocumentElement();
  const auto root = Element::Create("B");
  document.SetDocumentElement(root);

  EXPECT_EQ(document.Xml(), Declared("<!--a-->\r\n<B/>\r\n<!--b-->\r\n<?c?>\r\n"));
  EXPECT_EQ(document.DocumentElement(), root);
  EXPECT_EQ(root.Parent(), nullptr);
  EXPECT_EQ(old.Xml(), "<A/>");
}

TEST(DocumentTest, SettingTheRootAgainChangesNothing) {
  Document document;
  ASSERT_TRUE(Load(document, "<A/><!--b-->"));
  document.SetDocumentElement(document.DocumentElement());
  EXPECT_EQ(document.Xml(), "<A/>\r\n<!--b-->\r\n");
}

TEST(DocumentTest, AnInnerElementCanBecomeTheRoot) {
  Document document;
  ASSERT_TRUE(Load(document, "<A><B/></A>"));
  document.SetDocumentElement(document.DocumentElement().Child("B"));
  EXPECT_EQ(document.Xml(), "<B/>\r\n");
}

TEST(DocumentTest, RefusedRootLeavesTheOldOne) {
  Document document;
  ASSERT_TRUE(Load(document, "<!--a--><A/><!--b-->"));
  const auto prefixed = Parsed("<R xmlns:p='urn:p'><p:B/></R>").FirstChild();

  EXPECT_RUNTIME_ERROR(document.SetDocumentElement(nullptr), kInvalidCall);
  EXPECT_RUNTIME_ERROR(document.SetDocumentElement(Element(prefixed)), kInvalidCall);
  EXPECT_EQ(document.Xml(), "<!--a-->\r\n<A/>\r\n<!--b-->\r\n");
}

TEST(DocumentTest, RootLeavesTheDocumentForAnElement) {
  Document document;
  ASSERT_TRUE(Load(document, "<A/>"));
  const auto parent = Element::Create("B");
  parent.Append(document.DocumentElement());
  EXPECT_EQ(document.DocumentElement(), nullptr);
  EXPECT_EQ(document.Xml(), "");
}

TEST(DocumentTest, WhatAStoreCanNotHoldIsWrittenAsReferences) {
  Document document;
  ASSERT_TRUE(
      Load(document, "<A b='\xC3\xA9&lt;\xE2\x82\xAC'>\n\xF0\x9F\x97\xBA<!--\xC3\xA9--></A>"));
  const std::string text = document.Xml(HoldsAscii);

  EXPECT_EQ(text, "<A b=\"&#233;&lt;&#8364;\">\r\n&#128506;<!--?--></A>\r\n");
  EXPECT_EQ(Parsed(text).GetAttribute("b"), Value("\xC3\xA9<\xE2\x82\xAC"));
  EXPECT_EQ(Parsed(text).Text(), "\n\xF0\x9F\x97\xBA");
}

TEST(DocumentTest, WhatAStoreHoldsIsWrittenAsItIs) {
  Document document;
  ASSERT_TRUE(Load(document, "<\xC3\x89 b='\xC3\xA9'/>"));
  EXPECT_EQ(document.Xml([](char32_t) { return true; }), document.Xml());
}

TEST(DocumentTest, ReplacedCharactersNeverEndAnInstruction) {
  Document document;
  ASSERT_TRUE(Load(document, "<A><?i a\xC3\xA9> ?\xC3\xA9> \xC3\xA9?></A>"));
  const std::string text = document.Xml(HoldsAscii);
  EXPECT_EQ(text, "<A><?i a_> ?_> ?\?></A>\r\n");
  EXPECT_EQ(Reloaded(text), text);
}

TEST(DocumentTest, NamesThatAStoreCanNotHoldAreErrors) {
  for (const auto text : {"<\xC3\x89/>", "<A \xC3\xA9='1'/>", "<A><?\xC3\xA9?></A>"}) {
    Document document;
    ASSERT_TRUE(Load(document, text));
    EXPECT_RUNTIME_ERROR(static_cast<void>(document.Xml(HoldsAscii)), kInvalidCall);
  }
}

TEST(DocumentTest, EachChangeOfTheTreeIsCounted) {
  Document document;
  ASSERT_TRUE(Load(document, "<A><B N='1'/><C/></A>"));
  const auto root = document.DocumentElement();
  const auto child = root.Child("B");
  const std::function<void()> changes[] = {
      [&] { child.SetAttribute("N", "2"); },
      [&] { child.SetAttribute("M", "2"); },
      [&] { child.RemoveAttribute("M"); },
      [&] { child.SetText("t"); },
      [&] { child.SetText(""); },
      [&] { root.Append(root.Child("B")); },
      [&] { root.Append(CreateComment("c")); },
      [&] { root.Remove(root.Child("C")); },
      [&] { document.AddDeclaration(); },
      [&] { document.SetDocumentElement(Element::Create("D")); },
      [&] { ASSERT_TRUE(Load(document, "<E/>")); },
      [&] { ASSERT_FALSE(Load(document, "<E>")); },
  };
  std::uint64_t before = document.Changes();
  std::string text = document.Xml();
  for (const auto& change : changes) {
    change();
    EXPECT_NE(document.Xml(), text);
    EXPECT_GT(document.Changes(), before) << text;
    before = document.Changes();
    text = document.Xml();
  }
}

TEST(DocumentTest, WhatChangesNothingIsNotCounted) {
  Document document;
  ASSERT_TRUE(Load(document, "<?xml version='1.0'?><A><B N='1'/></A>"));
  const auto root = document.DocumentElement();
  const std::uint64_t before = document.Changes();

  EXPECT_RUNTIME_ERROR(root.SetAttribute("N", Null()), kTypeMismatch);
  EXPECT_RUNTIME_ERROR(root.Append(root), kInvalidCall);
  root.RemoveAttribute("missing");
  document.AddDeclaration();
  static_cast<void>(root.Child("B", "N", "1"));
  static_cast<void>(document.Xml());
  EXPECT_EQ(document.Changes(), before);
}

}  // namespace
}  // namespace kvdm::xml
