// The element tree: elements, texts, comments and instructions.
//
// Nodes are shared: whoever holds one keeps it and everything below it alive and editable, also
// after it was removed from its parent and after its document went away. Nothing else keeps a node
// alive.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/value.h>

namespace kvdm::xml {

class Branch;
class ChildIndex;
class Element;
class Serializer;

enum class NodeType { kElement = 1, kText = 3, kInstruction = 7, kComment = 8, kDocument = 9 };

class Node : public std::enable_shared_from_this<Node> {
 public:
  virtual ~Node() = default;
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;

  [[nodiscard]] NodeType Type() const { return type_; }
  // The element that holds this node; null for a root and for a removed or orphaned node.
  [[nodiscard]] Element* Parent() const;
  // The next node under the same parent; null after the last.
  [[nodiscard]] std::shared_ptr<Node> Next() const { return next_; }

 protected:
  // `form_bytes` is the size of the text form, `text_bytes` that of the text that a text node has.
  Node(NodeType type, std::size_t form_bytes, std::size_t text_bytes = 0)
      : type_(type), form_bytes_(form_bytes), text_bytes_(text_bytes) {}

  [[nodiscard]] std::size_t FormBytes() const { return form_bytes_; }

 private:
  friend class Branch;
  friend class ChildIndex;
  friend class Element;
  friend class TreeBuilder;

  virtual void Write(Serializer& serializer) const = 0;
  virtual void AddText(std::string& text) const = 0;

  NodeType type_;
  std::size_t form_bytes_;  // everything below included
  std::size_t text_bytes_;
  std::size_t text_run_bytes_ = 0;  // of this text and the texts right before it
  Branch* parent_ = nullptr;
  Node* previous_ = nullptr;
  std::shared_ptr<Node> next_;
  std::uint64_t sequence_ = 0;  // grows from sibling to sibling
};

// A node with children: an element, or the top level of a document.
class Branch : public Node {
 public:
  ~Branch() override;

  [[nodiscard]] std::shared_ptr<Node> FirstChild() const { return first_child_; }

  // Makes `child` the last child; it leaves its former parent. Run-time error 5 when it is Nothing,
  // holds this element, or uses a name prefix that is not declared here.
  void Append(const std::shared_ptr<Node>& child);
  // Run-time error 5 when `child` is not a direct child; 7 when the texts around it, which a reader
  // takes for one, are larger than one text may be.
  void Remove(const std::shared_ptr<Node>& child);

 protected:
  // The text form takes `own_bytes` without content; `closing_bytes` more and the content's when
  // there is content. Each child takes `line_end_bytes` more than its own text form.
  Branch(NodeType type, std::size_t own_bytes, std::size_t closing_bytes,
         std::size_t line_end_bytes);

  // Counts a change of the tree that this is in.
  void CountChange();
  // The changes counted while this was the top of its tree.
  [[nodiscard]] std::uint64_t Changes() const { return changes_; }

  // Changes the size of the text form; false, with nothing changed, when that of the whole tree
  // would exceed its limit.
  bool Grow(std::ptrdiff_t own_bytes, std::ptrdiff_t content_bytes);

  [[nodiscard]] bool HasContent() const { return content_bytes_ != 0; }
  void WriteChildren(Serializer& serializer, std::string_view after_each) const;
  void AddText(std::string& text) const override;
  // Makes `child`, or nothing, the only child; false, with nothing changed, when that would exceed
  // a limit.
  bool ReplaceChildren(const std::shared_ptr<Node>& child);
  // The index over the children; null while there are too few to need one.
  [[nodiscard]] ChildIndex* Index() const;

 private:
  friend class Element;
  friend class TreeBuilder;

  // Appends a node without a parent; false, with nothing changed, when that exceeds a limit.
  bool TryAppend(const std::shared_ptr<Node>& child);

  [[nodiscard]] bool Holds(const Node& node) const;
  [[nodiscard]] bool HasRoomFor(const Node& child) const;
  [[nodiscard]] static bool CanLeave(const Node& child);
  [[nodiscard]] std::size_t Depth() const;
  [[nodiscard]] std::size_t Height() const;
  // What `child` takes of the content's size.
  [[nodiscard]] std::ptrdiff_t Share(const Node& child) const;
  void AddBytes(std::ptrdiff_t own_bytes, std::ptrdiff_t content_bytes);
  void Link(const std::shared_ptr<Node>& child);
  void Unlink(Node& child);
  void ReleaseChildren();

  std::size_t own_bytes_;
  std::size_t content_bytes_ = 0;
  std::size_t closing_bytes_;
  std::size_t line_end_bytes_;
  std::shared_ptr<Node> first_child_;
  Node* last_child_ = nullptr;
  std::size_t child_count_ = 0;
  std::uint64_t last_sequence_ = 0;
  std::uint64_t changes_ = 0;
  mutable std::unique_ptr<ChildIndex> index_;
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
class Element : public Branch {
 public:
  // A new element without a parent. Run-time error 5 when `tag` is no XML name.
  static std::shared_ptr<Element> Create(std::string_view tag);

  [[nodiscard]] const std::string& Tag() const { return tag_; }

  // The attribute's text; Null when it is missing.
  [[nodiscard]] Value GetAttribute(std::string_view name) const;
  // Stores the text form of `value`; a new attribute comes last, an existing one keeps its place.
  // Run-time error 13 for Null, 5 when `name` is no XML name.
  void SetAttribute(std::string_view name, const Value& value);
  // Does nothing when it is missing.
  void RemoveAttribute(std::string_view name);
  [[nodiscard]] const std::vector<Attribute>& Attributes() const { return attributes_; }

  // All text below this element, in document order, untrimmed.
  [[nodiscard]] std::string Text() const;
  // Replaces all children by one text; by nothing for "".
  void SetText(std::string_view text);

  // The child elements with the tag `tag`, in document order, as they now stand.
  [[nodiscard]] std::vector<std::shared_ptr<Element>> Children(std::string_view tag) const;

  // The first child element with the tag `tag`, in document order; Nothing when there is none.
  // Takes constant time, however many children there are.
  [[nodiscard]] std::shared_ptr<Element> Child(std::string_view tag) const;

  // The first of them whose attribute `attribute` has the value `key`; comparison is exact.
  // Run-time error -2147467259 for a key that holds a double quote.
  //
  //   node->Child("ANALYSIS", "NAME", "_North_")
  [[nodiscard]] std::shared_ptr<Element> Child(std::string_view tag, std::string_view attribute,
                                               std::string_view key) const;

  // The text form of this element alone, without a line end after it.
  [[nodiscard]] std::string Xml() const;

 private:
  friend class TreeBuilder;

  Element(std::string tag, std::vector<Attribute> attributes);

  void Write(Serializer& serializer) const override;
  [[nodiscard]] std::vector<Attribute>::iterator FindAttribute(std::string_view name);
  void ChangeAttribute(Attribute& attribute, std::string text);
  void AddAttribute(std::string name, std::string text);
  // The index over this element and its siblings; null when there is none.
  [[nodiscard]] ChildIndex* SiblingIndex() const;
  [[nodiscard]] std::vector<Element*> ChildrenWithTag(const std::string& tag) const;
  [[nodiscard]] Element* FirstMatch(const std::string& tag, const std::string& attribute,
                                    const std::string& key) const;

  std::string tag_;
  std::vector<Attribute> attributes_;
};

std::shared_ptr<Node> CreateText(std::string_view text);
// Run-time error 5 when `text` holds "--" or ends in "-".
std::shared_ptr<Node> CreateComment(std::string_view text);

}  // namespace kvdm::xml
