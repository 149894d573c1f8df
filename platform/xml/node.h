// The element tree: elements, texts, comments and instructions.
//
// A handle is a small value that refers to one of them, or to nothing. Whoever has a handle keeps
// what it refers to and everything below that alive and editable, also after it was removed from
// its parent and after its document went away. Nothing else keeps a node alive; its memory is used
// again after that.
#pragma once

#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kvdm/platform/value.h>

#include "platform/xml/tree.h"

namespace kvdm::xml {

class Element;

class Node {
 public:
  // Nothing.
  Node(std::nullptr_t = nullptr) noexcept {}  // NOLINT(google-explicit-constructor)
  Node(const Node& other) noexcept : Node(other.tree_, other.number_) {}
  Node(Node&& other) noexcept
      : tree_(std::exchange(other.tree_, nullptr)), number_(other.number_) {}
  Node& operator=(Node other) noexcept {
    std::swap(tree_, other.tree_);
    std::swap(number_, other.number_);
    return *this;
  }
  ~Node() {
    if (tree_ != nullptr) tree_->Release(number_);
  }

  explicit operator bool() const { return tree_ != nullptr; }
  // Whether both refer to the same node, or to nothing.
  friend bool operator==(const Node& one, const Node& other);

  [[nodiscard]] NodeType Type() const { return Record().type; }
  // The element that holds this node; Nothing for a root and for a removed or orphaned node.
  [[nodiscard]] Element Parent() const;
  // The next node under the same parent; Nothing after the last.
  [[nodiscard]] Node Next() const;
  [[nodiscard]] Node FirstChild() const;

 protected:
  friend class Document;
  friend Node CreateText(std::string_view text);
  friend Node CreateComment(std::string_view text);

  Node(Tree* tree, Number number) noexcept : tree_(tree), number_(number) {
    if (tree_ != nullptr) tree_->Hold(number_);
  }
  // Another node of the same tree; Nothing for 0.
  [[nodiscard]] Node At(Number number) const { return {number == 0 ? nullptr : tree_, number}; }

  // The tree that has the node now.
  [[nodiscard]] Tree& Home() const {
    if (tree_->node(number_).type == NodeType::kMoved) Follow();
    return *tree_;
  }
  [[nodiscard]] const NodeRecord& Record() const { return Home().node(number_); }
  [[nodiscard]] Number number() const {
    static_cast<void>(Home());
    return number_;
  }

  static Node InNewTree(NodeType type, std::string_view text = {});
  void AppendNode(const Node& child) const;
  void RemoveNode(const Node& child) const;

 private:
  void Follow() const;
  [[nodiscard]] bool Holds(const Node& node) const;
  [[nodiscard]] bool HasRoomFor(const Node& child) const;
  [[nodiscard]] bool CanLeave() const;

  mutable Tree* tree_ = nullptr;
  mutable Number number_ = 0;
};

struct Attribute {
  std::string name;
  std::string value;
};

// Texts and attribute values are kept exactly as set, save that characters which XML forbids and
// bytes that are not UTF-8 become U+FFFD, in names and look-ups alike. What would exceed a limit
// (limits.h) is refused with run-time error 7 and changes nothing.
//
// Names that are set have no prefix. Loaded ones may; the declarations of their prefixes are
// attributes that can't be set or removed (run-time error 5).
class Element : public Node {
 public:
  // Nothing.
  Element(std::nullptr_t = nullptr) noexcept {}  // NOLINT(google-explicit-constructor)
  // `node` where it is an element; else Nothing.
  explicit Element(Node node);

  // A new element without a parent. Run-time error 5 when `tag` is no XML name.
  static Element Create(std::string_view tag);
  // The same, where it can be appended to this element or near it without being copied.
  [[nodiscard]] Element CreateNear(std::string_view tag) const;

  [[nodiscard]] const std::string& Tag() const { return Home().NameAt(Record().name).text; }

  // Makes `child` the last child; it leaves its former parent. Run-time error 5 when it is Nothing,
  // holds this element, or uses a name prefix that is not declared here.
  void Append(const Node& child) const { AppendNode(child); }
  // Run-time error 5 when `child` is not a direct child; 7 when the texts around it, which a reader
  // takes for one, are larger than one text may be.
  void Remove(const Node& child) const { RemoveNode(child); }

  // The attribute's text; Null when it is missing.
  [[nodiscard]] Value GetAttribute(std::string_view name) const;
  // Stores the text form of `value`; a new attribute comes last, an existing one keeps its place.
  // Run-time error 13 for Null, 5 when `name` is no XML name.
  void SetAttribute(std::string_view name, const Value& value) const;
  template <std::convertible_to<std::string_view> Text>
  void SetAttribute(std::string_view name, const Text& text) const {
    StoreAttribute(name, text);
  }
  // Does nothing when it is missing.
  void RemoveAttribute(std::string_view name) const;
  [[nodiscard]] std::vector<Attribute> Attributes() const;

  // All text below this element, in document order, untrimmed.
  [[nodiscard]] std::string Text() const;
  // Replaces all children by one text; by nothing for "".
  void SetText(std::string_view text) const;

  // The child elements with the tag `tag`, in document order, as they now stand.
  [[nodiscard]] std::vector<Element> Children(std::string_view tag) const;

  // The first child element with the tag `tag`, in document order; Nothing when there is none.
  [[nodiscard]] Element Child(std::string_view tag) const;

  // The first of them whose attribute `attribute` has the value `key`; comparison is exact. Takes
  // constant time, however many children there are.
  // Run-time error -2147467259 for a key that holds a double quote.
  //
  //   node.Child("ANALYSIS", "NAME", "_North_")
  [[nodiscard]] Element Child(std::string_view tag, std::string_view attribute,
                              std::string_view key) const;

  // The text form of this element alone, without a line end after it.
  [[nodiscard]] std::string Xml() const;

 private:
  using Node::Node;

  [[nodiscard]] Element ElementAt(Number number) const {
    return {number == 0 ? nullptr : &Home(), number};
  }
  void StoreAttribute(std::string_view name, std::string_view given) const;
  void AddAttribute(std::string_view name, std::string_view text) const;
};

// `element`; run-time error 91 when it is Nothing.
const Element& Required(const Element& element);

Node CreateText(std::string_view text);
// Run-time error 5 when `text` holds "--" or ends in "-".
Node CreateComment(std::string_view text);

}  // namespace kvdm::xml
