// An element tree: keeps its records consistent, counts who holds them, and knows no rules of XML;
// those are Element's (node.h) and TreeBuilder's.
//
// A record lives as long as it has a parent or a handle holds it. What makes something leaves the
// tree as it was when memory runs out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/xml/child_index.h"
#include "platform/xml/limits.h"
#include "platform/xml/records.h"
#include "platform/xml/serializer.h"

namespace kvdm::xml {

class Tree {
 public:
  Tree() = default;
  Tree(const Tree&) = delete;
  Tree& operator=(const Tree&) = delete;
  ~Tree();

  [[nodiscard]] const NodeRecord& node(Number number) const { return records_.nodes[number]; }
  [[nodiscard]] const AttributeRecord& AttributeAt(Number number) const {
    return records_.attributes[number];
  }
  [[nodiscard]] const Name& NameAt(Number number) const { return records_.names[number]; }
  [[nodiscard]] const Names& AllNames() const { return records_.names; }
  [[nodiscard]] std::string_view TextOf(Piece piece) const { return records_.texts[piece]; }
  // The attribute of an element that has the name; 0 when it is missing.
  [[nodiscard]] Number FindAttribute(Number element, Number name) const {
    return records_.FindAttribute(element, name);
  }
  // The first child element with the tag; 0 when there is none.
  [[nodiscard]] Number FindChild(Number parent, Number tag) const;
  // The first of them with the value `key` of the attribute.
  [[nodiscard]] Number FindChild(Number parent, Number tag, Number attribute, std::string_view key);

  // Of which nothing is written.
  [[nodiscard]] bool IsEmptyText(Number number) const {
    return node(number).type == NodeType::kText && node(number).text.size == 0;
  }
  // Whether it has a child, other than `except`, that is no empty text.
  [[nodiscard]] bool HasContent(Number parent, Number except = 0) const;

  // Makes `text` the tree, below the record `top`, which is all that there is. False when it is not
  // written as trees are: the tree is then of no use.
  bool Load(std::string_view text, Number top);

  // Keeps the forms of elements that are unchanged since `text` was written, to copy them.
  void Keep(std::string_view text, const std::vector<WrittenElement>& fresh);

  // A new record without a parent. `name` is an element's tag or an instruction's target.
  Number NewNode(NodeType type, std::string_view name = {}, std::string_view text = {});
  // Adds an attribute after `last`, the last that the element has.
  Number AddAttribute(Number element, Number last, std::string_view name, std::string_view value);
  void ChangeAttribute(Number attribute, std::string_view value);
  void EraseAttribute(Number attribute) noexcept;
  // The document has a declaration from now on.
  void Declare();

  // Makes `child`, which has no parent, the last child.
  void Link(Number parent, Number child) noexcept;
  // Takes `child` away from its parent. It is freed unless it is held.
  void Unlink(Number child) noexcept;
  void UnlinkChildren(Number parent) noexcept;
  // Moves what `from` has as `number`, which is held, into this tree, without a parent. Who held
  // something of it there holds it here.
  Number Import(Tree& from, Number number);

  // The size of the text form of `number`, all below it included; of what is below it alone; and of
  // everything that is in this tree.
  [[nodiscard]] std::size_t FormBytes(Number number) const {
    return OwnBytes(number) + ContentBytes(number);
  }
  [[nodiscard]] std::size_t ContentBytes(Number number) const;
  [[nodiscard]] std::size_t Bytes() const { return bytes_; }
  // What linking one more child adds, and unlinking one, without the child's own form.
  [[nodiscard]] std::ptrdiff_t LinkBytes(Number parent, bool is_empty_text) const;
  [[nodiscard]] std::ptrdiff_t UnlinkBytes(Number child) const;
  [[nodiscard]] bool HasRoom(std::ptrdiff_t more) const {
    return more <= 0 || bytes_ + static_cast<std::size_t>(more) <= kMaxDocumentBytes;
  }

  [[nodiscard]] std::uint64_t Changes() const { return changes_; }
  [[nodiscard]] bool IsDeclared() const { return is_declared_; }

  // For handles. The tree is deleted with the last one.
  void Hold(Number number) noexcept {
    ++handles_;
    ++records_.nodes[number].holds;
  }
  // A record that went to another tree and came back holds one here: until it is free the handle
  // counts.
  void Release(Number number) noexcept {
    NodeRecord& record = records_.nodes[number];
    if (--record.holds == 0 && record.parent == 0 && handles_ > 1) Free(number);
    if (--handles_ == 0) delete this;
  }
  // Where a record that was moved to another tree is now.
  [[nodiscard]] std::pair<Tree*, Number> MovedTo(Number number) const;

 private:
  struct Move {
    Number from;
    Tree* tree;  // holds `number` there
    Number number;
  };

  Number Copy(Tree& from, Number number, std::vector<Move>& moves);
  void Orphan(Number child) noexcept;
  void Free(Number number) noexcept;
  void Empty(Number number) noexcept;
  void DropIndex(Number parent) noexcept;
  void FreeAttribute(Number attribute) noexcept;
  [[nodiscard]] ChildIndex* IndexOver(Number child);
  Piece NewText(std::string_view text, bool is_form = false);
  // Something that the text form of `number` shows is another now.
  void Changed(Number number) noexcept;
  // The text form without children.
  [[nodiscard]] std::size_t OwnBytes(Number number) const;
  [[nodiscard]] std::size_t AttributeBytes(Number attribute) const;
  [[nodiscard]] std::size_t BytesOf(Piece text, Place place) const;

  Records records_;
  Pool<ChildIndex> indexes_;
  std::vector<Move> moved_;
  std::size_t bytes_ = 0;
  std::size_t handles_ = 0;
  std::uint64_t changes_ = 0;
  bool is_declared_ = false;
};

}  // namespace kvdm::xml
