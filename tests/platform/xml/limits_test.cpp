// What exceeds a limit is refused and changes nothing, by setters and loaders alike.
#include "platform/xml/limits.h"

#include <gtest/gtest.h>

#include "tests/platform/xml/parsed.h"
#include "tests/throws_number.h"

namespace kvdm::xml {
namespace {

const std::string& LargestValue() {
  static const std::string kValue(kMaxValueBytes, 'v');
  return kValue;
}

// Elements within elements; the innermost is `innermost`.
Element Chain(std::size_t depth, Element* innermost = nullptr) {
  const auto root = Element::Create("A");
  auto element = root;
  while (--depth > 0) {
    const auto child = Element::Create("A");
    element.Append(child);
    element = child;
  }
  if (innermost != nullptr) *innermost = element;
  return root;
}

std::string ChainText(std::size_t depth) {
  std::string text;
  for (std::size_t i = 0; i < depth; ++i) text += "<A>";
  for (std::size_t i = 0; i < depth; ++i) text += "</A>";
  return text;
}

std::string WithAttributes(std::size_t count) {
  std::string text = "<A";
  for (std::size_t i = 0; i < count; ++i) text += " a" + std::to_string(i) + "='>'";
  return text + "/>";
}

// An element whose text form has exactly `bytes`.
Element Sized(std::size_t bytes) {
  const auto root = Element::Create("A");
  for (std::size_t left = bytes; left > kMaxValueBytes + 100; left -= kMaxValueBytes + 7) {
    const auto child = Element::Create("B");
    child.SetText(LargestValue());
    root.Append(child);
  }
  const auto child = Element::Create("C");
  child.SetAttribute("v", "");
  root.Append(child);
  child.SetAttribute("v", std::string(bytes - root.Xml().size(), 'v'));
  return root;
}

TEST(LimitsTest, AppendKeepsTheDepth) {
  Element innermost;
  const auto root = Chain(kMaxDepth, &innermost);
  const std::string before = root.Xml();

  EXPECT_RUNTIME_ERROR(innermost.Append(Element::Create("B")), kOutOfMemory);
  EXPECT_EQ(root.Xml(), before);
  innermost.Append(CreateText("t"));
  EXPECT_EQ(Reloaded(root).Xml(), root.Xml());
}

TEST(LimitsTest, AppendCountsTheHeightOfWhatIsAppended) {
  Element innermost;
  const auto root = Chain(kMaxDepth - 10, &innermost);

  EXPECT_RUNTIME_ERROR(innermost.Append(Chain(11)), kOutOfMemory);
  innermost.Append(Chain(10));
  EXPECT_EQ(Reloaded(root).Xml(), root.Xml());
}

TEST(LimitsTest, LoadKeepsTheDepth) {
  Document document;
  EXPECT_TRUE(Load(document, ChainText(kMaxDepth)));
  EXPECT_FALSE(Load(document, ChainText(kMaxDepth + 1)));
  EXPECT_FALSE(Load(document, ChainText(100'000)));
}

TEST(LimitsTest, SetAttributeKeepsTheNumberOfAttributes) {
  const auto element = Parsed(WithAttributes(kMaxAttributes));

  EXPECT_RUNTIME_ERROR(element.SetAttribute("B", "1"), kOutOfMemory);
  EXPECT_TRUE(element.GetAttribute("B").IsNull());
  element.SetAttribute("a0", "changed");
  element.RemoveAttribute("a1");
  element.SetAttribute("B", "1");
  EXPECT_EQ(Reloaded(element).Xml(), element.Xml());
}

TEST(LimitsTest, LoadKeepsTheNumberOfAttributes) {
  Document document;
  EXPECT_TRUE(Load(document, WithAttributes(kMaxAttributes)));
  EXPECT_FALSE(Load(document, WithAttributes(kMaxAttributes + 1)));
  EXPECT_FALSE(Load(document, WithAttributes(200'000)));
}

TEST(LimitsTest, WhatOnlyLooksLikeAttributesIsNotCounted) {
  std::string quotes;
  for (std::size_t i = 0; i < kMaxAttributes + 1; ++i) quotes += " a='\"' ";
  for (const auto& text :
       {"<A>" + quotes + "</A>", "<A><!--<A" + quotes + "--></A>",
        "<A><![CDATA[<A" + quotes + "]]></A>", "<A><?i <A" + quotes + "?></A>"}) {
    Document document;
    EXPECT_TRUE(Load(document, text)) << text.substr(0, 20);
  }
}

TEST(LimitsTest, NamesKeepTheirLength) {
  const std::string longest(kMaxNameBytes, 'n');
  const auto element = Element::Create(longest);
  element.SetAttribute(longest, "v");

  EXPECT_RUNTIME_ERROR(Element::Create(longest + "n"), kOutOfMemory);
  EXPECT_RUNTIME_ERROR(element.SetAttribute(longest + "n", "v"), kOutOfMemory);
  EXPECT_EQ(Reloaded(element).Xml(), element.Xml());
  EXPECT_EQ(Reloaded("<" + longest + "n/>"), "");
  EXPECT_EQ(Reloaded("<A " + longest + "n=''/>"), "");
}

TEST(LimitsTest, ValuesKeepTheirLength) {
  const auto element = Parsed("<A v='old'>old</A>");

  EXPECT_RUNTIME_ERROR(element.SetAttribute("v", LargestValue() + "v"), kOutOfMemory);
  EXPECT_RUNTIME_ERROR(element.SetText(LargestValue() + "v"), kOutOfMemory);
  EXPECT_RUNTIME_ERROR(static_cast<void>(CreateText(LargestValue() + "v")), kOutOfMemory);
  EXPECT_EQ(element.Xml(), R"(<A v="old">old</A>)");
}

TEST(LimitsTest, LargestValuesAreLoadedAgain) {
  const auto element = Element::Create("A");
  element.SetAttribute("v", LargestValue());
  element.SetText(LargestValue());
  EXPECT_EQ(Reloaded(element).Text().size(), kMaxValueBytes);
  EXPECT_EQ(Reloaded("<A v='" + LargestValue() + "v'/>"), "");
  EXPECT_EQ(Reloaded("<A>v<![CDATA[" + LargestValue() + "]]></A>"), "");
}

TEST(LimitsTest, ReplacedBytesCountAsWhatReplacesThem) {
  const std::string invalid(kMaxValueBytes / 3 + 1, '\xFF');
  EXPECT_RUNTIME_ERROR(Element::Create("A").SetText(invalid), kOutOfMemory);
}

TEST(LimitsTest, NeighbouringTextsCountAsOne) {
  const auto root = Element::Create("A");
  root.Append(CreateText(LargestValue()));

  EXPECT_RUNTIME_ERROR(root.Append(CreateText("v")), kOutOfMemory);
  root.Append(Element::Create("B"));
  root.Append(CreateText("v"));
  EXPECT_EQ(Reloaded(root).Xml(), root.Xml());
}

TEST(LimitsTest, TextsStayApartWhenTheyAreTooLargeForOne) {
  const auto root = Element::Create("A");
  root.Append(CreateText(LargestValue()));
  const auto between = Element::Create("B");
  root.Append(between);
  root.Append(CreateText("v"));
  root.Append(CreateText("w"));

  EXPECT_RUNTIME_ERROR(root.Remove(between), kOutOfMemory);
  EXPECT_RUNTIME_ERROR(Element::Create("C").Append(between), kOutOfMemory);
  EXPECT_EQ(between.Parent(), root);
  root.Remove(root.FirstChild());
  root.Remove(between);
  EXPECT_EQ(root.Xml(), "<A>vw</A>");
}

TEST(LimitsTest, WholeDocumentsKeepTheirSize) {
  constexpr std::string_view kLineEnd = "\r\n";
  const auto root = Sized(kMaxDocumentBytes - kLineEnd.size());
  Document document;
  document.SetDocumentElement(root);
  const std::string saved = document.Xml();
  ASSERT_EQ(saved.size(), kMaxDocumentBytes);
  const auto child = root.Child("C");

  EXPECT_RUNTIME_ERROR(document.AddDeclaration(), kOutOfMemory);
  EXPECT_RUNTIME_ERROR(child.SetAttribute("w", ""), kOutOfMemory);
  EXPECT_RUNTIME_ERROR(child.SetText("t"), kOutOfMemory);
  EXPECT_RUNTIME_ERROR(root.Append(CreateText("t")), kOutOfMemory);
  EXPECT_TRUE(document.Xml() == saved);

  child.SetAttribute("v", "");
  document.AddDeclaration();
  EXPECT_LT(document.Xml().size(), kMaxDocumentBytes);
}

TEST(LimitsTest, CommentsCountAsTheyAreWritten) {
  constexpr std::string_view kWritten = "<!--a\r\nb-->";
  const auto root = Sized(kMaxDocumentBytes - kWritten.size());

  EXPECT_RUNTIME_ERROR(root.Append(CreateComment("a\nbc")), kOutOfMemory);
  root.Append(CreateComment("a\nb"));
  EXPECT_EQ(root.Xml().size(), kMaxDocumentBytes);
}

TEST(LimitsTest, LoadKeepsTheSizeOfDocuments) {
  Document document;
  document.SetDocumentElement(Sized(kMaxDocumentBytes - 2));
  const std::string saved = document.Xml();

  EXPECT_TRUE(Reloaded(saved) == saved);
  EXPECT_EQ(Reloaded("<!---->" + saved), "");
}

TEST(LimitsTest, ARefusedMoveLeavesTheChildWhereItIs) {
  const auto full = Sized(kMaxDocumentBytes);
  const auto root = Parsed("<A><B/><C/></A>");

  EXPECT_RUNTIME_ERROR(full.Append(root.Child("B")), kOutOfMemory);
  EXPECT_EQ(root.Xml(), "<A><B/><C/></A>");
  full.Append(full.Child("B"));
  EXPECT_EQ(full.Xml().size(), kMaxDocumentBytes);
}

TEST(LimitsTest, InputsKeepTheirSize) {
  std::string text(kMaxInputBytes + 1, ' ');
  text.replace(0, 4, "<A/>");
  EXPECT_EQ(Reloaded(text), "");
}

}  // namespace
}  // namespace kvdm::xml
