// The look-up expressions.
#include <gtest/gtest.h>

#include "tests/platform/xml/parsed.h"
#include "tests/throws_number.h"

namespace kvdm::xml {
namespace {

// An element with so many children that look-ups use an index.
std::shared_ptr<Element> Crowd(int size) {
  const auto root = Element::Create("A");
  for (int i = 0; i < size; ++i) {
    const auto child = Element::Create("B");
    child->SetAttribute("N", i);
    root->Append(child);
  }
  return root;
}

std::string LookUp(std::string_view key) {
  return std::string("./B[@N=\"").append(key).append("\"]");
}

// The mark of what `expression` finds; "" for Nothing.
std::string Found(const Element& element, std::string_view expression) {
  const auto found = element.SelectSingleNode(expression);
  return found ? ToText(found->GetAttribute("M")) : std::string();
}

TEST(QueryTest, FindsTheFirstMatchInDocumentOrder) {
  const auto root = Parsed(
      "<A><B N='x' M='1'/><C N='v' M='2'/><B N='v' M='3'><B N='v' M='4'/></B><B N='v' M='5'/>"
      "<D><B N='w' M='6'/></D><D><B N='z' M='7'/><E N='z' M='8'/></D><D N='' M='9'/></A>");
  const std::pair<std::string_view, std::string_view> rows[] = {
      {"B", "1"},
      {"./B", "1"},
      {"./B[@N=\"v\"]", "3"},
      {"B[@N=\"v\"]", "3"},
      {"./B[@N = \"v\"]", "3"},
      {"./B[@N= \"v\"]", "3"},
      {"./B[@N =\"v\"]", "3"},
      {"./C[@N=\"v\"]", "2"},
      {"B/B", "4"},
      {"./D/B[@N=\"z\"]", "7"},
      {"./D/E", "8"},
      {"./D[@N=\"\"]", "9"},
      {"./B[@N=\"V\"]", ""},
      {"./B[@n=\"v\"]", ""},
      {"./b", ""},
      {"./B[@N=\"v \"]", ""},
      {"./D/B[@N=\"v\"]", ""},
      {"./B[@MISSING=\"\"]", ""},
      {"./A", ""},
      {"A", ""},
  };
  for (const auto& [expression, mark] : rows)
    EXPECT_EQ(Found(*root, expression), mark) << expression;
}

TEST(QueryTest, KeysHoldAnyCharacterButTheDoubleQuote) {
  for (const auto key : {"it's", "a&b", "<a>", "x]", "[@N='1']", "a\tb", "a\r\nb", "  ", "$HOME\\",
                         "\xC3\xA9", "\xF0\x9F\x97\xBA", "5.0", "\xFF", "\x01"}) {
    const auto root = Element::Create("A");
    const auto child = Element::Create("B");
    child->SetAttribute("N", key);
    root->Append(child);
    EXPECT_EQ(root->SelectSingleNode(LookUp(key)), child) << key;
  }
}

TEST(QueryTest, AnythingElseIsAnError) {
  const auto root = Parsed("<A><B N='x' GUID='9'/></A>");
  for (const auto expression : {"",
                                ".",
                                "./",
                                "/B",
                                "//B",
                                "./B/",
                                "./B//C",
                                "../B",
                                "*",
                                "./*",
                                "@N",
                                "./@N",
                                "B C",
                                " B",
                                "B ",
                                "./B[1]",
                                "./B[@N]",
                                "./B[@N=x]",
                                "./B[@N='x']",
                                "./B[@N=\"x\"",
                                "./B[@N=\"x",
                                "./B[@N=\"x\"]]",
                                "./B[@N=\"x\"] ",
                                "./B[@N  =\"x\"]",
                                "./B[@N=  \"x\"]",
                                "./B[ @N=\"x\"]",
                                "./B [@N=\"x\"]",
                                "./B[@N=\"x\" ]",
                                "./B[@=\"x\"]",
                                "./B[N=\"x\"]",
                                "./B[@N!=\"x\"]",
                                "./B[@N=\"x\"]/C",
                                "./1",
                                "./B[@1=\"x\"]",
                                "./B|./C",
                                "text()",
                                "././B"}) {
    EXPECT_RUNTIME_ERROR(static_cast<void>(root->SelectSingleNode(expression)), kAutomationFailure);
  }
}

TEST(QueryTest, AKeyNeverBecomesPartOfTheExpression) {
  const auto root = Parsed("<A><B N='x' GUID='9'/><C/></A>");
  for (const auto key :
       {"x\" or \"1\"=\"1", "zz\" or @GUID=\"9", "x\"] | ./B[\"1\"=\"1", "\"", "x\"", "x\"]"}) {
    EXPECT_RUNTIME_ERROR(static_cast<void>(root->SelectSingleNode(LookUp(key))),
                         kAutomationFailure);
  }
}

TEST(QueryTest, PathsLookIntoEveryElementOfTheWay) {
  const auto root = Element::Create("A");
  for (int i = 0; i < 20; ++i) {
    const auto child = Crowd(20);
    root->Append(child);
    child->SelectSingleNode("B[@N=\"7\"]")->SetAttribute("M", i);
  }
  EXPECT_EQ(Found(*root, "./A/B[@M=\"13\"]"), "13");
  EXPECT_EQ(Found(*root, "./A/B[@N=\"7\"]"), "0");
}

TEST(QueryTest, AppendedChildrenAreFound) {
  const auto root = Crowd(100);
  ASSERT_EQ(root->SelectSingleNode("B[@N=\"100\"]"), nullptr);
  const auto child = Element::Create("B");
  child->SetAttribute("N", "100");
  root->Append(child);
  EXPECT_EQ(root->SelectSingleNode("B[@N=\"100\"]"), child);
}

TEST(QueryTest, RemovedChildrenAreNotFound) {
  const auto root = Crowd(100);
  root->Remove(root->SelectSingleNode("B[@N=\"50\"]"));
  EXPECT_EQ(root->SelectSingleNode("B[@N=\"50\"]"), nullptr);
}

TEST(QueryTest, TheFirstOfEqualsIsFoundAlsoAfterAChange) {
  const auto root = Crowd(100);
  const auto early = root->SelectSingleNode("B[@N=\"10\"]");
  const auto late = root->SelectSingleNode("B[@N=\"90\"]");
  early->SetAttribute("N", "90");
  EXPECT_EQ(root->SelectSingleNode("B[@N=\"90\"]"), early);
  early->RemoveAttribute("N");
  EXPECT_EQ(root->SelectSingleNode("B[@N=\"90\"]"), late);
  early->SetAttribute("N", "90");
  root->Append(early);
  EXPECT_EQ(root->SelectSingleNode("B[@N=\"90\"]"), late);
}

TEST(QueryTest, TextReplacesWhatWasFound) {
  const auto root = Crowd(100);
  ASSERT_NE(root->SelectSingleNode("B[@N=\"50\"]"), nullptr);
  root->SetText("t");
  EXPECT_EQ(root->SelectSingleNode("B[@N=\"50\"]"), nullptr);
  for (int i = 0; i < 100; ++i) root->Append(Element::Create("B"));
  EXPECT_EQ(root->SelectSingleNode("B"), root->Children("B").front());
}

TEST(QueryTest, ManyDifferentLookUpsStayRight) {
  const auto root = Crowd(100);
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < 40; ++i) {
      const std::string name = "N" + std::to_string(i);
      const auto child = root->SelectSingleNode("B[@N=\"" + std::to_string(i) + "\"]");
      child->SetAttribute(name, round);
      const std::string expression = "B[@" + name + "=\"" + std::to_string(round) + "\"]";
      EXPECT_EQ(root->SelectSingleNode(expression), child);
    }
  }
}

}  // namespace
}  // namespace kvdm::xml
