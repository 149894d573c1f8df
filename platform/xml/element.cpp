#include <algorithm>
#include <utility>

#include <kvdm/platform/error.h>

#include "platform/xml/child_index.h"
#include "platform/xml/limits.h"
#include "platform/xml/node.h"
#include "platform/xml/serializer.h"
#include "platform/xml/xml_text.h"

namespace kvdm::xml {
namespace {

std::string NewName(std::string name) {
  if (!IsPlainName(name)) throw RuntimeError(kInvalidCall);
  if (name.size() > kMaxNameBytes) throw RuntimeError(kOutOfMemory);
  return name;
}

// The size of "<tag/>" with its attributes.
std::size_t EmptyElementBytes(const std::string& tag, const std::vector<Attribute>& attributes) {
  std::size_t bytes = std::string_view("</>").size() + tag.size();
  for (const Attribute& attribute : attributes) {
    bytes += AttributeBytes(attribute.name, attribute.value);
  }
  return bytes;
}

// What "<tag>" and "</tag>" take more than "<tag/>".
std::size_t ClosingBytes(const std::string& tag) {
  return std::string_view("</>").size() + tag.size() - std::string_view("/").size();
}

std::ptrdiff_t Signed(std::size_t bytes) { return static_cast<std::ptrdiff_t>(bytes); }

bool HasValue(const Element& element, const std::string& name, const std::string& value) {
  return std::ranges::any_of(element.Attributes(), [&](const Attribute& attribute) {
    return attribute.name == name && attribute.value == value;
  });
}

std::shared_ptr<Element> Shared(Element* element) {
  return element == nullptr ? nullptr
                            : std::static_pointer_cast<Element>(element->shared_from_this());
}

}  // namespace

Element::Element(std::string tag, std::vector<Attribute> attributes)
    : Branch(NodeType::kElement, EmptyElementBytes(tag, attributes), ClosingBytes(tag), 0),
      tag_(std::move(tag)),
      attributes_(std::move(attributes)) {}

std::shared_ptr<Element> Element::Create(std::string_view tag) {
  return std::shared_ptr<Element>(new Element(NewName(Sanitized(tag)), {}));
}

Value Element::GetAttribute(std::string_view name) const {
  const auto found = std::ranges::find(attributes_, Sanitized(name), &Attribute::name);
  if (found == attributes_.end()) return Null();
  return found->value;
}

void Element::SetAttribute(std::string_view name, const Value& value) {
  if (value.IsNull()) throw RuntimeError(kTypeMismatch);
  std::string key = Sanitized(name);
  std::string text = SanitizedValue(ToText(value));
  if (IsNamespaceDeclaration(key)) throw RuntimeError(kInvalidCall);
  const auto found = FindAttribute(key);
  if (found == attributes_.end()) {
    AddAttribute(NewName(std::move(key)), std::move(text));
  } else {
    ChangeAttribute(*found, std::move(text));
  }
}

void Element::AddAttribute(std::string name, std::string text) {
  if (attributes_.size() == kMaxAttributes) throw RuntimeError(kOutOfMemory);
  attributes_.reserve(attributes_.size() + 1);
  if (!Grow(Signed(AttributeBytes(name, text)), 0)) throw RuntimeError(kOutOfMemory);
  CountChange();
  attributes_.push_back({std::move(name), std::move(text)});
  if (ChildIndex* index = SiblingIndex()) index->AddAttribute(*this, attributes_.back());
}

void Element::ChangeAttribute(Attribute& attribute, std::string text) {
  const auto bytes = Signed(AttributeBytes(attribute.name, text)) -
                     Signed(AttributeBytes(attribute.name, attribute.value));
  if (!Grow(bytes, 0)) throw RuntimeError(kOutOfMemory);
  CountChange();
  ChildIndex* index = SiblingIndex();
  if (index != nullptr) index->RemoveAttribute(*this, attribute);
  attribute.value = std::move(text);
  if (index != nullptr) index->AddAttribute(*this, attribute);
}

void Element::RemoveAttribute(std::string_view name) {
  const auto found = FindAttribute(Sanitized(name));
  if (found == attributes_.end()) return;
  if (IsNamespaceDeclaration(found->name)) throw RuntimeError(kInvalidCall);
  Grow(-Signed(AttributeBytes(found->name, found->value)), 0);
  CountChange();
  if (ChildIndex* index = SiblingIndex()) index->RemoveAttribute(*this, *found);
  attributes_.erase(found);
}

std::string Element::Text() const {
  std::string text;
  AddText(text);
  return text;
}

void Element::SetText(std::string_view text) {
  const std::shared_ptr<Node> child = text.empty() ? nullptr : CreateText(text);
  if (!ReplaceChildren(child)) throw RuntimeError(kOutOfMemory);
}

std::vector<std::shared_ptr<Element>> Element::Children(std::string_view tag) const {
  const std::string name = Sanitized(tag);
  std::vector<std::shared_ptr<Element>> children;
  for (Element* child : ChildrenWithTag(name)) children.push_back(Shared(child));
  return children;
}

std::shared_ptr<Element> Element::Child(std::string_view tag) const {
  return Shared(FirstMatch(Sanitized(tag), {}, {}));
}

std::shared_ptr<Element> Element::Child(std::string_view tag, std::string_view attribute,
                                        std::string_view key) const {
  if (key.find('"') != std::string_view::npos) throw RuntimeError(kAutomationFailure);
  return Shared(FirstMatch(Sanitized(tag), Sanitized(attribute), Sanitized(key)));
}

std::vector<Element*> Element::ChildrenWithTag(const std::string& tag) const {
  if (ChildIndex* index = Index()) return index->All(tag, first_child_.get());
  std::vector<Element*> children;
  for (Node* child = first_child_.get(); child != nullptr; child = child->next_.get()) {
    if (child->Type() != NodeType::kElement) continue;
    auto* element = static_cast<Element*>(child);
    if (element->tag_ == tag) children.push_back(element);
  }
  return children;
}

Element* Element::FirstMatch(const std::string& tag, const std::string& attribute,
                             const std::string& key) const {
  if (ChildIndex* index = Index()) {
    return index->First(tag, attribute, key, first_child_.get());
  }
  for (Element* child : ChildrenWithTag(tag)) {
    if (attribute.empty() || HasValue(*child, attribute, key)) return child;
  }
  return nullptr;
}

std::vector<Attribute>::iterator Element::FindAttribute(std::string_view name) {
  return std::ranges::find(attributes_, name, &Attribute::name);
}

ChildIndex* Element::SiblingIndex() const {
  return parent_ == nullptr ? nullptr : parent_->index_.get();
}

std::string Element::Xml() const {
  std::string text;
  text.reserve(FormBytes());
  Serializer serializer(text);
  Write(serializer);
  return text;
}

void Element::Write(Serializer& serializer) const {
  serializer.Markup("<");
  serializer.Name(tag_);
  for (const Attribute& attribute : attributes_) {
    serializer.Markup(" ");
    serializer.Name(attribute.name);
    serializer.Markup("=\"");
    serializer.AttributeValue(attribute.value);
    serializer.Markup("\"");
  }
  if (!HasContent()) return serializer.Markup("/>");
  serializer.Markup(">");
  WriteChildren(serializer, {});
  serializer.Markup("</");
  serializer.Name(tag_);
  serializer.Markup(">");
}

}  // namespace kvdm::xml
