#include "platform/xml/node.h"

#include <algorithm>
#include <memory>

#include <kvdm/platform/error.h>

#include "platform/xml/limits.h"
#include "platform/xml/namespaces.h"
#include "platform/xml/serializer.h"
#include "platform/xml/xml_text.h"

namespace kvdm::xml {
namespace {

// The number of a name of the tree; 0 when it is none. All of these are clean.
Number Known(const Tree& tree, std::string_view name) {
  const Number number = tree.AllNames().Find(name);
  return number != 0 ? number : tree.AllNames().Find(Sanitized(name));
}

// Names without a prefix that are there already are good.
void CheckName(const Tree& tree, std::string_view name) {
  const Number known = tree.AllNames().Find(name);
  if (known != 0 && !tree.NameAt(known).is_prefixed) return;
  if (!IsPlainName(name)) throw RuntimeError(kInvalidCall);
  if (name.size() > kMaxNameBytes) throw RuntimeError(kOutOfMemory);
}

std::ptrdiff_t EscapedSize(std::string_view value) {
  return static_cast<std::ptrdiff_t>(EscapedBytes(value, Place::kAttribute));
}

// Whether the tree has room for a value and what comes with it besides. Where there is plenty
// nothing is counted.
template <class Besides>
void CheckRoom(const Tree& tree, std::string_view value, const Besides& besides) {
  constexpr std::size_t kPlenty = 8;
  if (tree.HasRoom(static_cast<std::ptrdiff_t>(kPlenty * (value.size() + kMaxNameBytes)))) return;
  if (!tree.HasRoom(EscapedSize(value) + besides())) throw RuntimeError(kOutOfMemory);
}

std::size_t DepthOf(const Tree& tree, Number number) {
  std::size_t depth = 0;
  for (; number != 0; number = tree.node(number).parent) {
    if (tree.node(number).type == NodeType::kElement) ++depth;
  }
  return depth;
}

std::size_t HeightOf(const Tree& tree, Number number) {
  std::size_t height = 0;
  for (Number child = tree.node(number).first; child != 0; child = tree.node(child).next) {
    if (tree.node(child).type != NodeType::kElement) continue;
    height = std::max(height, HeightOf(tree, child));
  }
  return height + 1;
}

void AddText(const Tree& tree, Number number, std::string& text) {
  for (Number child = tree.node(number).first; child != 0; child = tree.node(child).next) {
    if (tree.node(child).type == NodeType::kText) text += tree.TextOf(tree.node(child).text);
    AddText(tree, child, text);
  }
}

}  // namespace

bool operator==(const Node& one, const Node& other) {
  if (!one || !other) return !one && !other;
  return &one.Home() == &other.Home() && one.number_ == other.number_;
}

// One handle less there, one more here: the record here is held from there until then.
void Node::Follow() const {
  while (tree_->node(number_).type == NodeType::kMoved) {
    const auto [tree, number] = tree_->MovedTo(number_);
    tree->Hold(number);
    tree_->Release(number_);
    tree_ = tree;
    number_ = number;
  }
}

Element Node::Parent() const { return Element(At(Record().parent)); }
Node Node::Next() const { return At(Record().next); }
Node Node::FirstChild() const { return At(Record().first); }

void Node::AppendNode(const Node& child) const {
  if (!child || child.Holds(*this)) throw RuntimeError(kInvalidCall);
  if (child.Home().AllNames().HavePrefixes() && !CanStandUnder(child, Element(*this))) {
    throw RuntimeError(kInvalidCall);
  }
  Tree& tree = Home();
  Tree& from = child.Home();
  const bool stays = &tree == &from;
  const auto more = tree.LinkBytes(number_, from.IsEmptyText(child.number_)) +
                    (stays ? from.UnlinkBytes(child.number_)
                           : static_cast<std::ptrdiff_t>(from.FormBytes(child.number_)));
  if (!child.CanLeave() || !HasRoomFor(child) || !tree.HasRoom(more)) {
    throw RuntimeError(kOutOfMemory);
  }
  if (!stays) {
    const Number copy = tree.Import(from, child.number_);
    tree.Link(number_, copy);
    return;
  }
  if (child.Record().parent != 0) tree.Unlink(child.number_);
  tree.Link(number_, child.number_);
}

void Node::RemoveNode(const Node& child) const {
  if (!child || &child.Home() != &Home() || child.Record().parent != number_) {
    throw RuntimeError(kInvalidCall);
  }
  if (!child.CanLeave()) throw RuntimeError(kOutOfMemory);
  Home().Unlink(child.number_);
}

// Whether this is `node` or above it.
bool Node::Holds(const Node& node) const {
  const Tree& tree = node.Home();
  if (&tree != &Home()) return false;
  Number holder = node.number_;
  while (holder != 0 && holder != number_) holder = tree.node(holder).parent;
  return holder != 0;
}

bool Node::HasRoomFor(const Node& child) const {
  if (child.Type() == NodeType::kElement) {
    return DepthOf(Home(), number_) + HeightOf(child.Home(), child.number_) <= kMaxDepth;
  }
  const Number last = Record().last;
  if (child.Type() != NodeType::kText || last == 0) return true;
  return std::size_t{Home().node(last).run} + child.Record().text.size <= kMaxValueBytes;
}

// Texts on both sides of something else become neighbours when it goes.
bool Node::CanLeave() const {
  const Tree& tree = Home();
  const NodeRecord& record = Record();
  if (record.type == NodeType::kText || record.previous == 0) return true;
  std::size_t run = tree.node(record.previous).run;
  for (Number next = record.next; next != 0 && tree.node(next).type == NodeType::kText;
       next = tree.node(next).next) {
    run += tree.node(next).text.size;
  }
  return run <= kMaxValueBytes;
}

Element::Element(Node node)
    : Node(node && node.Type() == NodeType::kElement ? std::move(node) : Node()) {}

Element Element::Create(std::string_view tag) {
  const Sanitized name(tag);
  auto tree = std::make_unique<Tree>();
  CheckName(*tree, name);
  const Number number = tree->NewNode(NodeType::kElement, name);
  return {tree.release(), number};
}

Element Element::CreateNear(std::string_view tag) const {
  const Sanitized name(tag);
  Tree& tree = Home();
  CheckName(tree, name);
  if (!tree.HasRoom(static_cast<std::ptrdiff_t>(EmptyElementBytes(name)))) {
    throw RuntimeError(kOutOfMemory);
  }
  return ElementAt(tree.NewNode(NodeType::kElement, name));
}

Value Element::GetAttribute(std::string_view name) const {
  const Tree& tree = Home();
  const Number number = Known(tree, name);
  const Number own = number == 0 ? 0 : tree.FindAttribute(this->number(), number);
  if (own == 0) return Null();
  return tree.TextOf(tree.AttributeAt(own).value);
}

void Element::SetAttribute(std::string_view name, const Value& value) const {
  if (value.IsNull()) throw RuntimeError(kTypeMismatch);
  const auto* text = std::get_if<std::string>(&value.storage());
  StoreAttribute(name, text == nullptr ? ToText(value) : *text);
}

void Element::StoreAttribute(std::string_view name, std::string_view given) const {
  const Sanitized key(name);
  const SanitizedValue text(given);
  if (IsNamespaceDeclaration(key)) throw RuntimeError(kInvalidCall);
  Tree& tree = Home();
  const Number known = tree.AllNames().Find(key);
  const Number own = known == 0 ? 0 : tree.FindAttribute(number(), known);
  if (own == 0) return AddAttribute(key, text);
  const std::string_view old = tree.TextOf(tree.AttributeAt(own).value);
  CheckRoom(tree, text, [&] { return -EscapedSize(old); });
  tree.ChangeAttribute(own, text);
}

void Element::AddAttribute(std::string_view name, std::string_view text) const {
  Tree& tree = Home();
  CheckName(tree, name);
  std::size_t count = 0;
  Number last = 0;
  for (Number own = Record().attributes; own != 0; own = tree.AttributeAt(own).next) {
    last = own;
    ++count;
  }
  if (count == kMaxAttributes) throw RuntimeError(kOutOfMemory);
  CheckRoom(tree, text, [&] { return static_cast<std::ptrdiff_t>(AttributeBytes(name, 0)); });
  tree.AddAttribute(number(), last, name, text);
}

void Element::RemoveAttribute(std::string_view name) const {
  Tree& tree = Home();
  const Sanitized key(name);
  const Number known = tree.AllNames().Find(key);
  const Number own = known == 0 ? 0 : tree.FindAttribute(number(), known);
  if (own == 0) return;
  if (IsNamespaceDeclaration(key)) throw RuntimeError(kInvalidCall);
  tree.EraseAttribute(own);
}

std::vector<Attribute> Element::Attributes() const {
  const Tree& tree = Home();
  std::vector<Attribute> attributes;
  for (Number own = Record().attributes; own != 0; own = tree.AttributeAt(own).next) {
    const AttributeRecord& record = tree.AttributeAt(own);
    attributes.push_back({tree.NameAt(record.name).text, std::string(tree.TextOf(record.value))});
  }
  return attributes;
}

std::string Element::Text() const {
  std::string text;
  AddText(Home(), number(), text);
  return text;
}

void Element::SetText(std::string_view text) const {
  const SanitizedValue value(text);
  Tree& tree = Home();
  const std::size_t content =
      text.empty() ? 0 : ClosingBytes(Tag()) + EscapedBytes(value, Place::kText);
  if (!tree.HasRoom(static_cast<std::ptrdiff_t>(content - tree.ContentBytes(number())))) {
    throw RuntimeError(kOutOfMemory);
  }
  const Number child = text.empty() ? 0 : tree.NewNode(NodeType::kText, {}, value);
  tree.UnlinkChildren(number());
  if (child != 0) tree.Link(number(), child);
}

std::vector<Element> Element::Children(std::string_view tag) const {
  Tree& tree = Home();
  const Number name = Known(tree, tag);
  std::vector<Element> children;
  if (name == 0) return children;
  for (Number child = Record().first; child != 0; child = tree.node(child).next) {
    const NodeRecord& record = tree.node(child);
    if (record.type == NodeType::kElement && record.name == name) {
      children.push_back(ElementAt(child));
    }
  }
  return children;
}

Element Element::Child(std::string_view tag) const {
  const Number name = Known(Home(), tag);
  return ElementAt(name == 0 ? 0 : Home().FindChild(number(), name));
}

// What is not clean is no value of an attribute as it is.
Element Element::Child(std::string_view tag, std::string_view attribute,
                       std::string_view key) const {
  if (key.find('"') != std::string_view::npos) throw RuntimeError(kAutomationFailure);
  Tree& tree = Home();
  const Number name = Known(tree, tag);
  const Number own = Known(tree, attribute);
  if (name == 0 || own == 0) return nullptr;
  Number found = tree.FindChild(number(), name, own, key);
  if (found == 0 && !IsPlainAscii(key)) {
    found = tree.FindChild(number(), name, own, Sanitized(key));
  }
  return ElementAt(found);
}

std::string Element::Xml() const { return TextForm(Home(), number()); }

const Element& Required(const Element& element) {
  if (!element) throw RuntimeError(kObjectNotSet);
  return element;
}

Node Node::InNewTree(NodeType type, std::string_view text) {
  auto tree = std::make_unique<Tree>();
  const Number number = tree->NewNode(type, {}, text);
  return {tree.release(), number};
}

Node CreateText(std::string_view text) {
  const SanitizedValue value(text);
  return Node::InNewTree(NodeType::kText, value);
}

Node CreateComment(std::string_view text) {
  if (text.ends_with('-') || text.find("--") != std::string_view::npos) {
    throw RuntimeError(kInvalidCall);
  }
  const Sanitized value(text);
  return Node::InNewTree(NodeType::kComment, value);
}

}  // namespace kvdm::xml
