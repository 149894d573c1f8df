// Appending, removing, and how long nodes live.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include "platform/xml/node.h"
#include "tests/platform/xml/parsed.h"
#include "tests/throws_number.h"

namespace kvdm::xml {
namespace {

using testing::ElementsAre;

std::vector<std::string> Forms(const std::vector<Element>& elements) {
  std::vector<std::string> forms;
  for (const auto& element : elements) forms.push_back(element.Xml());
  return forms;
}

TEST(TreeTest, AppendedChildrenComeLast) {
  const auto root = Element::Create("A");
  root.Append(Element::Create("B"));
  root.Append(CreateText("t"));
  root.Append(Element::Create("C"));
  EXPECT_EQ(root.Xml(), "<A><B/>t<C/></A>");
}

TEST(TreeTest, ChildrenKnowTheirParentAndTheNextChild) {
  const auto root = Parsed("<A><B/>t</A>");
  const auto first = root.FirstChild();

  EXPECT_EQ(first.Parent(), root);
  EXPECT_EQ(first.Next().Type(), NodeType::kText);
  EXPECT_EQ(first.Next().Next(), nullptr);
  EXPECT_EQ(root.Parent(), nullptr);
}

TEST(TreeTest, NodeTypesAreTold) {
  std::vector<NodeType> types;
  const auto root = Parsed("<A>t<B/><!--c--><?i d?></A>");
  for (auto node = root.FirstChild(); node; node = node.Next()) types.push_back(node.Type());
  EXPECT_THAT(types, ElementsAre(NodeType::kText, NodeType::kElement, NodeType::kComment,
                                 NodeType::kInstruction));
}

TEST(TreeTest, AppendMovesTheChildFromItsFormerParent) {
  const auto first = Parsed("<A><B N='1'/><C/></A>");
  const auto second = Element::Create("D");
  second.Append(first.Child("B"));

  EXPECT_EQ(first.Xml(), "<A><C/></A>");
  EXPECT_EQ(second.Xml(), R"(<D><B N="1"/></D>)");
}

TEST(TreeTest, AppendingAChildAgainMovesItToTheEnd) {
  const auto root = Parsed("<A><B/><C/><D/></A>");
  root.Append(root.Child("B"));
  EXPECT_EQ(root.Xml(), "<A><C/><D/><B/></A>");
}

TEST(TreeTest, AppendRefusesNothingItselfAndWhatHoldsIt) {
  const auto root = Parsed("<A><B><C/></B></A>");
  const auto inner = root.Child("B").Child("C");

  EXPECT_RUNTIME_ERROR(root.Append(nullptr), kInvalidCall);
  EXPECT_RUNTIME_ERROR(inner.Append(inner), kInvalidCall);
  EXPECT_RUNTIME_ERROR(inner.Append(root), kInvalidCall);
  EXPECT_EQ(root.Xml(), "<A><B><C/></B></A>");
}

TEST(TreeTest, RemoveTakesOutFirstMiddleAndLast) {
  const auto root = Parsed("<A><B/><C/><D/></A>");
  root.Remove(root.Child("C"));
  EXPECT_EQ(root.Xml(), "<A><B/><D/></A>");
  root.Remove(root.Child("D"));
  root.Append(Element::Create("E"));
  EXPECT_EQ(root.Xml(), "<A><B/><E/></A>");
  root.Remove(root.FirstChild());
  root.Remove(root.FirstChild());
  EXPECT_EQ(root.Xml(), "<A/>");
}

TEST(TreeTest, RemoveRefusesWhatIsNoDirectChild) {
  const auto root = Parsed("<A><B><C/></B></A>");
  const auto child = root.Child("B");

  EXPECT_RUNTIME_ERROR(root.Remove(root.Child("B").Child("C")), kInvalidCall);
  EXPECT_RUNTIME_ERROR(root.Remove(nullptr), kInvalidCall);
  root.Remove(child);
  EXPECT_RUNTIME_ERROR(root.Remove(child), kInvalidCall);
}

TEST(TreeTest, RemovedElementStaysUsable) {
  const auto root = Parsed("<A><B N='1'><C/></B><D/></A>");
  const auto removed = root.Child("B");
  root.Remove(removed);
  removed.SetAttribute("N", "2");
  removed.Append(Element::Create("E"));

  EXPECT_EQ(removed.Parent(), nullptr);
  EXPECT_EQ(removed.Next(), nullptr);
  EXPECT_EQ(removed.Xml(), R"(<B N="2"><C/><E/></B>)");
  EXPECT_NE(removed.Child("C"), nullptr);
}

TEST(TreeTest, HeldElementsOutliveTheirDocument) {
  auto document = std::make_unique<Document>();
  ASSERT_TRUE(Load(*document, "<A><B><C/></B><D/></A>"));
  const auto held = document->DocumentElement().Child("B");
  document.reset();
  held.Child("C").SetText("t");

  EXPECT_EQ(held.Parent(), nullptr);
  EXPECT_EQ(held.Next(), nullptr);
  EXPECT_EQ(held.Xml(), "<B><C>t</C></B>");
}

TEST(TreeTest, OrphansCanBeAppendedElsewhere) {
  auto root = Parsed("<A><B/><C/><B/></A>");
  const auto orphan = root.Child("C");
  root = nullptr;
  const auto other = Element::Create("D");
  other.Append(orphan);
  EXPECT_EQ(other.Xml(), "<D><C/></D>");
}

TEST(TreeTest, ChildrenReplacedByATextBecomeOrphans) {
  const auto root = Parsed("<A><B/><C/></A>");
  const auto child = root.Child("B");
  root.SetText("t");

  EXPECT_EQ(child.Parent(), nullptr);
  EXPECT_EQ(child.Next(), nullptr);
}

TEST(TreeTest, HandlesKeepNothingAboveThemAlive) {
  auto root = Parsed("<A><B/></A>");
  const auto child = root.Child("B");
  EXPECT_TRUE(child.Parent());
  root = nullptr;
  EXPECT_FALSE(child.Parent());
}

// The bytes that are taken from malloc.
std::size_t BytesInUse() {
  const auto info = ::mallinfo2();
  return info.uordblks + info.hblkhd;
}

TEST(TreeTest, MemoryOfRemovedNodesIsUsedAgain) {
  constexpr int kRounds = 20'000;
  constexpr std::size_t kLittle = 1'000'000;
  const auto root = Element::Create("A");
  const std::size_t before = BytesInUse();
  for (int i = 0; i < kRounds; ++i) {
    const auto child = root.CreateNear("B");
    child.SetAttribute("N", i);
    child.SetAttribute("M", std::string(100, 'm'));
    child.SetAttribute("M", std::string(200, 'm'));
    child.Append(child.CreateNear("C"));
    root.Append(child);
    ASSERT_EQ(root.Child("B", "N", std::to_string(i)), child);
    if (i >= 50) root.Remove(root.FirstChild());
  }
  root.SetText("");
  EXPECT_LT(BytesInUse(), before + kLittle);
}

TEST(TreeTest, ElementsMovedToAnotherTreeAreThereForWhoHoldsThem) {
  const auto root = Parsed("<A><B N='1'><C/></B></A>");
  const auto moved = root.Child("B");
  const auto inner = moved.Child("C");
  const auto other = Parsed("<D/>");
  const auto held_before = moved;
  other.Append(moved);
  inner.SetAttribute("M", "2");
  moved.SetAttribute("N", "3");

  EXPECT_EQ(root.Xml(), "<A/>");
  EXPECT_EQ(other.Xml(), R"(<D><B N="3"><C M="2"/></B></D>)");
  EXPECT_EQ(held_before, other.Child("B"));
  EXPECT_EQ(inner.Parent(), moved);
  root.Append(moved);
  EXPECT_EQ(root.Child("B"), held_before);
  EXPECT_EQ(root.Child("B").Child("C"), inner);
}

TEST(TreeTest, WhatIsHeldBelowSomethingReplacedStaysUsable) {
  const auto root = Parsed("<A><B><C N='1'/></B></A>");
  const auto held = root.Child("B").Child("C");
  root.SetText("t");
  held.SetAttribute("N", "2");

  EXPECT_FALSE(held.Parent());
  EXPECT_EQ(held.Xml(), R"(<C N="2"/>)");
  root.Append(held);
  EXPECT_EQ(root.Xml(), R"(<A>t<C N="2"/></A>)");
}

TEST(TreeTest, AMillionSiblingsAreFreedOneAfterTheOther) {
  auto root = Element::Create("A");
  for (int i = 0; i < 1'000'000; ++i) root.Append(CreateText("x"));
  const Node first = root.FirstChild();
  root = nullptr;
  EXPECT_FALSE(first.Next());
}

TEST(TreeTest, ChildrenAreThoseWithTheTagInDocumentOrder) {
  const auto root = Parsed("<A><B N='1'/>t<C/><B N='2'/><D><B N='3'/></D></A>");
  EXPECT_THAT(Forms(root.Children("B")), ElementsAre(R"(<B N="1"/>)", R"(<B N="2"/>)"));
  EXPECT_TRUE(root.Children("b").empty());
}

TEST(TreeTest, ChildrenAreAsTheyStandWhenAskedFor) {
  const auto root = Parsed("<A><B/><B/></A>");
  const auto children = root.Children("B");
  for (const auto& child : children) root.Remove(child);
  EXPECT_EQ(children.size(), 2U);
  EXPECT_TRUE(root.Children("B").empty());
}

TEST(TreeTest, NamePrefixesMustBeDeclaredWhereAnElementGoes) {
  const auto root = Parsed("<A xmlns:p='urn:p'><p:B p:n='1'/></A>");
  const auto child = Element(root.FirstChild());
  const auto elsewhere = Element::Create("C");

  EXPECT_RUNTIME_ERROR(elsewhere.Append(child), kInvalidCall);
  EXPECT_EQ(root.Xml(), R"(<A xmlns:p="urn:p"><p:B p:n="1"/></A>)");
  root.Append(elsewhere);
  elsewhere.Append(child);
  EXPECT_EQ(root.Xml(), R"(<A xmlns:p="urn:p"><C><p:B p:n="1"/></C></A>)");
}

TEST(TreeTest, ElementsWithTheirOwnDeclarationsGoAnywhere) {
  const auto root = Element::Create("A");
  root.Append(Parsed("<p:B xmlns:p='urn:p' p:n='1' xml:lang='en'/>"));
  EXPECT_EQ(Reloaded(root).Xml(), root.Xml());
}

TEST(TreeTest, TwoPrefixesMustNotMakeTwoAttributesOne) {
  const auto child =
      Parsed("<A xmlns:p='urn:p' xmlns:q='urn:q'><B p:n='1' q:n='2'/></A>").Child("B");
  const auto same = Parsed("<A xmlns:p='urn:p' xmlns:q='urn:p'/>");
  EXPECT_RUNTIME_ERROR(same.Append(child), kInvalidCall);
}

TEST(TreeTest, PrefixDeclarationsCanNotBeSetOrRemoved) {
  const auto root = Parsed("<p:A xmlns:p='urn:p' p:n='1'/>");
  root.SetAttribute("p:n", "2");

  EXPECT_RUNTIME_ERROR(root.RemoveAttribute("xmlns:p"), kInvalidCall);
  EXPECT_RUNTIME_ERROR(root.SetAttribute("xmlns:p", ""), kInvalidCall);
  EXPECT_RUNTIME_ERROR(root.SetAttribute("xmlns", "urn:q"), kInvalidCall);
  EXPECT_EQ(root.Xml(), R"(<p:A xmlns:p="urn:p" p:n="2"/>)");
}

}  // namespace
}  // namespace kvdm::xml
