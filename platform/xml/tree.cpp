#include "platform/xml/tree.h"

#include <algorithm>

#include "platform/xml/serializer.h"

namespace kvdm::xml {

Tree::~Tree() {
  for (const Move& move : moved_) move.tree->Release(move.number);
}

Number Tree::FindChild(Number parent, Number tag) const {
  Number child = node(parent).first;
  while (child != 0 && (node(child).type != NodeType::kElement || node(child).name != tag)) {
    child = node(child).next;
  }
  return child;
}

Number Tree::FindChild(Number parent, Number tag, Number attribute, std::string_view key) {
  const Number index = node(parent).index;
  if (index != 0) return indexes_[index].Find(records_, parent, tag, attribute, key);
  std::size_t few = FewChildren();
  for (Number child = node(parent).first; child != 0; child = node(child).next) {
    if (few-- == 0) {
      records_.nodes[parent].index = indexes_.Take();
      return FindChild(parent, tag, attribute, key);
    }
    if (node(child).type != NodeType::kElement || node(child).name != tag) continue;
    const Number own = FindAttribute(child, attribute);
    if (own != 0 && TextOf(AttributeAt(own).value) == key) return child;
  }
  return 0;
}

bool Tree::HasContent(Number parent, Number except) const {
  Number child = node(parent).first;
  while (child != 0 && (child == except || IsEmptyText(child))) child = node(child).next;
  return child != 0;
}

bool Tree::Load(std::string_view text, Number top) {
  if (text.size() > kMaxDocumentBytes || !ReadWrittenForm(text, records_, top)) return false;
  bytes_ = text.size();
  is_declared_ = text.starts_with(kDeclaration);
  ++changes_;
  return true;
}

Number Tree::NewNode(NodeType type, std::string_view name, std::string_view text) {
  const Number tag = name.empty() ? 0 : records_.names.Add(name);
  const Piece piece = NewText(text);
  const Number number = records_.nodes.Take();
  NodeRecord& record = records_.nodes[number];
  record.type = type;
  record.name = tag;
  record.text = piece;
  bytes_ += OwnBytes(number);
  return number;
}

Number Tree::AddAttribute(Number element, Number last, std::string_view name,
                          std::string_view value) {
  const Number name_number = records_.names.Add(name);
  const Piece piece = NewText(value);
  const Number number = records_.AttachAttribute(element, last, name_number, piece);
  bytes_ += AttributeBytes(number);
  Changed(element);
  if (ChildIndex* index = IndexOver(element)) index->AddAttribute(records_, number);
  return number;
}

void Tree::ChangeAttribute(Number attribute, std::string_view value) {
  AttributeRecord& record = records_.attributes[attribute];
  const bool fits = records_.texts.Fits(record.value, value);
  const Piece added = fits ? Piece() : NewText(value);
  ChildIndex* index = IndexOver(record.owner);
  if (index != nullptr) index->RemoveAttribute(records_, attribute);
  bytes_ -= AttributeBytes(attribute);
  if (!fits) records_.texts.Drop(record.value);
  record.value = fits ? records_.texts.Overwrite(record.value, value) : added;
  bytes_ += AttributeBytes(attribute);
  Changed(record.owner);
  if (index != nullptr) index->AddAttribute(records_, attribute);
}

void Tree::EraseAttribute(Number attribute) noexcept {
  const Number owner = AttributeAt(attribute).owner;
  if (ChildIndex* index = IndexOver(owner)) index->RemoveAttribute(records_, attribute);
  Number* link = &records_.nodes[owner].attributes;
  while (*link != attribute) link = &records_.attributes[*link].next;
  *link = AttributeAt(attribute).next;
  bytes_ -= AttributeBytes(attribute);
  Changed(owner);
  FreeAttribute(attribute);
}

void Tree::Declare() {
  bytes_ += is_declared_ ? 0 : kDeclaration.size();
  ++changes_;
  is_declared_ = true;
}

void Tree::Link(Number parent, Number child) noexcept {
  bytes_ += LinkBytes(parent, IsEmptyText(child));
  records_.Attach(parent, child);
  Changed(parent);
  if (const Number index = node(parent).index) indexes_[index].Add(records_, child);
}

void Tree::Unlink(Number child) noexcept {
  if (ChildIndex* index = IndexOver(child)) index->Remove(records_, child);
  bytes_ += UnlinkBytes(child);
  const NodeRecord record = node(child);
  NodeRecord& above = records_.nodes[record.parent];
  (record.previous == 0 ? above.first : records_.nodes[record.previous].next) = record.next;
  (record.next == 0 ? above.last : records_.nodes[record.next].previous) = record.previous;
  for (Number next = record.next; next != 0 && node(next).type == NodeType::kText;
       next = node(next).next) {
    records_.CountRun(next);
  }
  Changed(record.parent);
  Orphan(child);
}

void Tree::UnlinkChildren(Number parent) noexcept {
  if (node(parent).first == 0) return;
  DropIndex(parent);
  Changed(parent);
  NodeRecord& record = records_.nodes[parent];
  while (record.first != 0) {
    const Number child = record.first;
    bytes_ += UnlinkBytes(child);
    record.first = node(child).next;
    (record.first == 0 ? record.last : records_.nodes[record.first].previous) = 0;
    Orphan(child);
  }
}

// Without a parent, a record lives only if it is held.
void Tree::Orphan(Number child) noexcept {
  NodeRecord& record = records_.nodes[child];
  record.parent = record.previous = record.next = 0;
  if (record.holds == 0) Free(child);
}

void Tree::Free(Number number) noexcept {
  Empty(number);
  if (node(number).type == NodeType::kMoved) {
    const auto found = std::ranges::find(moved_, number, &Move::from);
    const Move move = *found;
    moved_.erase(found);
    move.tree->Release(move.number);
  }
  records_.nodes.Give(number);
}

// Leaves a record of which nothing but its number is used.
void Tree::Empty(Number number) noexcept {
  UnlinkChildren(number);
  DropIndex(number);
  bytes_ -= OwnBytes(number);
  NodeRecord& record = records_.nodes[number];
  while (const Number attribute = record.attributes) {
    record.attributes = AttributeAt(attribute).next;
    FreeAttribute(attribute);
  }
  records_.texts.Drop(record.text);
  record.text = {};
}

void Tree::DropIndex(Number parent) noexcept {
  Number& index = records_.nodes[parent].index;
  if (index != 0) indexes_.Give(std::exchange(index, 0));
}

void Tree::FreeAttribute(Number attribute) noexcept {
  records_.texts.Drop(AttributeAt(attribute).value);
  records_.attributes.Give(attribute);
}

ChildIndex* Tree::IndexOver(Number child) {
  const Number parent = node(child).parent;
  const Number index = parent == 0 ? 0 : node(parent).index;
  return index == 0 ? nullptr : &indexes_[index];
}

Piece Tree::NewText(std::string_view text, bool is_form) {
  if (text.empty()) return {};
  if (records_.texts.IsWasteful()) {
    for (Number i = 1; i < records_.nodes.End(); ++i) DropIndex(i);
    records_.texts.MoveTogether([&](const auto& move) {
      for (Number i = 1; i < records_.nodes.End(); ++i) move(records_.nodes[i].text);
      for (Number i = 1; i < records_.attributes.End(); ++i) move(records_.attributes[i].value);
    });
  }
  return is_form ? records_.texts.AddForm(text) : records_.texts.Add(text);
}

void Tree::Changed(Number number) noexcept {
  ++changes_;
  for (; number != 0; number = node(number).parent) {
    records_.texts.Drop(std::exchange(records_.nodes[number].text, {}));
  }
}

void Tree::Keep(std::string_view text, const std::vector<WrittenElement>& fresh) {
  for (const auto& [element, at, size] : fresh) {
    if (!records_.texts.HasRoomFor(size)) return;
    records_.nodes[element].text = NewText(text.substr(at, size), true);
  }
}

Number Tree::Import(Tree& from, Number number) {
  std::vector<Move> moves;
  const Number copy = Copy(from, number, moves);
  if (from.node(number).parent != 0) from.Unlink(number);
  for (const Move& move : moves) {
    from.Empty(move.from);
    from.records_.nodes[move.from].type = NodeType::kMoved;
    Hold(move.number);
    from.moved_.push_back(move);  // There is room for it.
  }
  return copy;
}

Number Tree::Copy(Tree& from, Number number, std::vector<Move>& moves) {
  const NodeRecord& record = from.node(number);
  const std::string_view name =
      record.name == 0 ? std::string_view() : from.NameAt(record.name).text;
  const std::string_view text =
      record.type == NodeType::kElement ? std::string_view() : from.TextOf(record.text);
  const Number copy = NewNode(record.type, name, text);
  try {
    if (record.holds != 0) {
      moves.push_back({number, this, copy});
      from.moved_.reserve(from.moved_.size() + moves.size());
    }
    Number last = 0;
    for (Number own = record.attributes; own != 0; own = from.AttributeAt(own).next) {
      const AttributeRecord& attribute = from.AttributeAt(own);
      last =
          AddAttribute(copy, last, from.NameAt(attribute.name).text, from.TextOf(attribute.value));
    }
    for (Number child = record.first; child != 0; child = from.node(child).next) {
      Link(copy, Copy(from, child, moves));
    }
  } catch (...) {
    Free(copy);
    throw;
  }
  return copy;
}

std::size_t Tree::OwnBytes(Number number) const {
  const NodeRecord& record = node(number);
  switch (record.type) {
    case NodeType::kText:
      return BytesOf(record.text, Place::kText);
    case NodeType::kComment:
      return CommentBytes(BytesOf(record.text, Place::kRemark));
    case NodeType::kInstruction:
      return InstructionBytes(NameAt(record.name).text, BytesOf(record.text, Place::kRemark));
    case NodeType::kElement:
      break;
    default:
      return 0;
  }
  std::size_t bytes = EmptyElementBytes(NameAt(record.name).text);
  for (Number own = record.attributes; own != 0; own = AttributeAt(own).next) {
    bytes += AttributeBytes(own);
  }
  return bytes;
}

std::size_t Tree::AttributeBytes(Number attribute) const {
  const AttributeRecord& record = AttributeAt(attribute);
  return xml::AttributeBytes(NameAt(record.name).text, BytesOf(record.value, Place::kAttribute));
}

std::size_t Tree::BytesOf(Piece text, Place place) const {
  return text.is_plain ? text.size : EscapedBytes(TextOf(text), place);
}

std::size_t Tree::ContentBytes(Number number) const {
  const NodeRecord& record = node(number);
  if (!HasContent(number)) return 0;
  std::size_t bytes = ClosingBytes(NameAt(record.name).text);
  for (Number child = record.first; child != 0; child = node(child).next) {
    bytes += FormBytes(child);
  }
  return bytes;
}

std::ptrdiff_t Tree::LinkBytes(Number parent, bool is_empty_text) const {
  const NodeRecord& record = node(parent);
  if (record.type == NodeType::kDocument) return kLineEnd.size();
  if (is_empty_text || HasContent(parent)) return 0;
  return static_cast<std::ptrdiff_t>(ClosingBytes(NameAt(record.name).text));
}

std::ptrdiff_t Tree::UnlinkBytes(Number child) const {
  const Number parent = node(child).parent;
  if (parent == 0) return 0;
  const NodeRecord& above = node(parent);
  if (above.type == NodeType::kDocument) return -static_cast<std::ptrdiff_t>(kLineEnd.size());
  if (IsEmptyText(child) || HasContent(parent, child)) return 0;
  return -static_cast<std::ptrdiff_t>(ClosingBytes(NameAt(above.name).text));
}

std::pair<Tree*, Number> Tree::MovedTo(Number number) const {
  const auto found = std::ranges::find(moved_, number, &Move::from);
  return {found->tree, found->number};
}

}  // namespace kvdm::xml
