// Look-ups of children.
#include <gtest/gtest.h>

#include "tests/platform/xml/parsed.h"
#include "tests/throws_number.h"

namespace kvdm::xml {
namespace {

// An element with so many children that look-ups use an index.
Element Crowd(int size) {
  const auto root = Element::Create("A");
  for (int i = 0; i < size; ++i) {
    const auto child = Element::Create("B");
    child.SetAttribute("N", i);
    root.Append(child);
  }
  return root;
}

// The mark of a found element; "" for Nothing.
std::string Mark(const Element& found) {
  return found ? ToText(found.GetAttribute("M")) : std::string();
}

TEST(ChildTest, IsTheFirstMatchInDocumentOrder) {
  const auto root = Parsed(
      "<A><B N='x' M='1'/><C N='v' M='2'/><B N='v' M='3'><B N='u' M='4'/></B><B N='v' M='5'/>"
      "<D N='' M='9'/></A>");
  EXPECT_EQ(Mark(root.Child("B")), "1");
  EXPECT_EQ(Mark(root.Child("D")), "9");
  EXPECT_EQ(root.Child("b"), nullptr);
  EXPECT_EQ(root.Child("A"), nullptr);
  EXPECT_EQ(root.Child(""), nullptr);
  struct Row {
    std::string_view tag, attribute, key, mark;
  };
  for (const auto& [tag, attribute, key, mark] : {Row{"B", "N", "v", "3"},
                                                  {"C", "N", "v", "2"},
                                                  {"D", "N", "", "9"},
                                                  {"B", "N", "V", ""},
                                                  {"B", "n", "v", ""},
                                                  {"B", "N", "v ", ""},
                                                  {"B", "N", "u", ""},
                                                  {"B", "MISSING", "", ""}}) {
    EXPECT_EQ(Mark(root.Child(tag, attribute, key)), mark) << tag << attribute << key;
  }
}

TEST(ChildTest, KeysHoldAnyCharacterButTheDoubleQuote) {
  for (const auto key : {"it's", "a&b", "<a>", "x]", "[@N='1']", "a\tb", "a\r\nb", "  ", "$HOME\\",
                         "\xC3\xA9", "\xF0\x9F\x97\xBA", "5.0", "\xFF", "\x01"}) {
    const auto root = Element::Create("A");
    const auto child = Element::Create("B");
    child.SetAttribute("N", key);
    root.Append(child);
    EXPECT_EQ(root.Child("B", "N", key), child) << key;
  }
}

TEST(ChildTest, AKeyWithADoubleQuoteIsAnError) {
  const auto root = Parsed("<A><B N='x' GUID='9'/><C/></A>");
  for (const auto key : {"x\" or \"1\"=\"1", "\"", "x\"", "x\"]"}) {
    EXPECT_RUNTIME_ERROR(static_cast<void>(root.Child("B", "N", key)), kAutomationFailure);
  }
}

TEST(ChildTest, AppendedChildrenAreFound) {
  const auto root = Crowd(100);
  ASSERT_EQ(root.Child("B", "N", "100"), nullptr);
  const auto child = Element::Create("B");
  child.SetAttribute("N", "100");
  root.Append(child);
  EXPECT_EQ(root.Child("B", "N", "100"), child);
}

TEST(ChildTest, RemovedChildrenAreNotFound) {
  const auto root = Crowd(100);
  root.Remove(root.Child("B", "N", "50"));
  EXPECT_EQ(root.Child("B", "N", "50"), nullptr);
}

TEST(ChildTest, TheFirstOfEqualsIsFoundAlsoAfterAChange) {
  const auto root = Crowd(100);
  const auto early = root.Child("B", "N", "10");
  const auto late = root.Child("B", "N", "90");
  early.SetAttribute("N", "90");
  EXPECT_EQ(root.Child("B", "N", "90"), early);
  early.RemoveAttribute("N");
  EXPECT_EQ(root.Child("B", "N", "90"), late);
  early.SetAttribute("N", "90");
  root.Append(early);
  EXPECT_EQ(root.Child("B", "N", "90"), late);
}

TEST(ChildTest, TextReplacesWhatWasFound) {
  const auto root = Crowd(100);
  ASSERT_NE(root.Child("B", "N", "50"), nullptr);
  root.SetText("t");
  EXPECT_EQ(root.Child("B", "N", "50"), nullptr);
  for (int i = 0; i < 100; ++i) root.Append(Element::Create("B"));
  EXPECT_EQ(root.Child("B"), root.Children("B").front());
}

TEST(ChildTest, ManyDifferentLookUpsStayRight) {
  const auto root = Crowd(100);
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < 40; ++i) {
      const std::string name = "N" + std::to_string(i);
      const auto child = root.Child("B", "N", std::to_string(i));
      child.SetAttribute(name, round);
      EXPECT_EQ(root.Child("B", name, std::to_string(round)), child);
    }
  }
}

}  // namespace
}  // namespace kvdm::xml
