// What holds for every tree.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "tests/platform/xml/parsed.h"

namespace kvdm::xml {
namespace {

// Any bytes, with a liking for those that matter.
rc::Gen<std::string> AnyText() {
  const auto piece = rc::gen::oneOf(
      rc::gen::element<std::string>(
          "\r", "\n", "\r\n", "\t", " ", "<", ">", "&", "\"", "'", "]]>", "--", "?>", "&#13;",
          "&amp;", std::string(1, '\0'), "\xEF\xBB\xBF", "\xEF\xBF\xBE", "\xED\xA0\x80", "\xC3\xA9",
          "\xF0\x9F\x97\xBA", "\xF4\x90\x80\x80", "\xC2\x85", "\xE2\x80\xA8"),
      rc::gen::container<std::string>(rc::gen::arbitrary<char>()));
  return rc::gen::map(rc::gen::container<std::vector<std::string>>(piece), [](const auto& pieces) {
    std::string text;
    for (const auto& part : pieces) text += part;
    return text;
  });
}

std::string AnyName() { return *rc::gen::element<std::string>("A", "B", "C-1.x", "\xC3\xA9\xFF"); }

Node AnyComment() {
  std::string text = *AnyText();
  std::erase(text, '-');
  return CreateComment(text);
}

Element AnyElement(int depth);

Node AnyNode(int depth) {
  switch (*rc::gen::inRange(0, 4)) {
    case 0:
      return CreateText(*AnyText());
    case 1:
      return AnyComment();
    default:
      return AnyElement(depth);
  }
}

Element AnyElement(int depth) {
  const auto element = Element::Create(AnyName());
  for (int i = *rc::gen::inRange(0, 3); i > 0; --i) element.SetAttribute(AnyName(), *AnyText());
  if (depth == 0) {
    element.SetText(*AnyText());
    return element;
  }
  for (int i = *rc::gen::inRange(0, 4); i > 0; --i) element.Append(AnyNode(depth - 1));
  return element;
}

std::vector<std::string> Values(const Element& element) {
  std::vector<std::string> values;
  for (const Attribute& attribute : element.Attributes()) {
    values.push_back(attribute.name + "=" + attribute.value);
  }
  return values;
}

// The child of those with the tag that comes first and has the value, found by walking.
Element Scanned(const Element& parent, std::string_view tag, std::string_view name,
                const Value& value) {
  for (auto node = parent.FirstChild(); node; node = node.Next()) {
    if (node.Type() != NodeType::kElement) continue;
    auto element = Element(node);
    if (element.Tag() == tag && element.GetAttribute(name) == value) return element;
  }
  return nullptr;
}

// Removes, appends or changes one of the children of `root` or one of those that were removed.
void ChangeSomething(const Element& root, std::vector<Element>& elements) {
  const auto element = elements[*rc::gen::inRange<std::size_t>(0, elements.size())];
  const auto name = *rc::gen::element<std::string>("N", "M");
  switch (*rc::gen::inRange(0, 5)) {
    case 0:
      root.Append(element);
      break;
    case 1:
      if (element.Parent() != nullptr) root.Remove(element);
      break;
    case 2:
      element.RemoveAttribute(name);
      break;
    default:
      element.SetAttribute(name, *rc::gen::inRange(0, 4));
  }
}

void CheckEveryLookUp(const Element& root) {
  for (const std::string tag : {"A", "B"}) {
    for (const std::string name : {"N", "M"}) {
      for (int value = 0; value < 4; ++value) {
        const std::string key = std::to_string(value);
        RC_ASSERT(root.Child(tag, name, key) == Scanned(root, tag, name, Value(key)));
      }
    }
    const auto children = root.Children(tag);
    RC_ASSERT(root.Child(tag) == (children.empty() ? nullptr : children.front()));
  }
}

RC_GTEST_PROP(XmlPropertyTest, WhatWasSetIsSavedLoadedAndSavedAlike, ()) {
  Document document;
  if (*rc::gen::arbitrary<bool>()) document.AddDeclaration();
  document.SetDocumentElement(AnyElement(3));
  const std::string saved = document.Xml();
  RC_ASSERT(Reloaded(saved) == saved);
}

RC_GTEST_PROP(XmlPropertyTest, AttributesAreLoadedExactlyAsTheyStood, ()) {
  const auto element = AnyElement(0);
  RC_ASSERT(Values(Reloaded(element)) == Values(element));
}

RC_GTEST_PROP(XmlPropertyTest, IndexAnswersAsAWalkDoes, ()) {
  constexpr std::size_t kFewHere = 8;
  const std::size_t few = FewChildren();
  IndexMoreChildrenThan(kFewHere);
  const auto root = Element::Create("R");
  std::vector<Element> elements;
  for (int i = *rc::gen::inRange(5, 25); i > 0; --i) {
    elements.push_back(Element::Create(*rc::gen::element<std::string>("A", "B")));
    root.Append(elements.back());
  }
  for (int i = *rc::gen::inRange(1, 40); i > 0; --i) {
    ChangeSomething(root, elements);
    CheckEveryLookUp(root);
  }
  IndexMoreChildrenThan(few);
}

}  // namespace
}  // namespace kvdm::xml
