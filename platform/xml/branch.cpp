#include <algorithm>
#include <utility>

#include <kvdm/platform/error.h>

#include "platform/xml/child_index.h"
#include "platform/xml/limits.h"
#include "platform/xml/namespaces.h"
#include "platform/xml/node.h"
#include "platform/xml/serializer.h"

namespace kvdm::xml {
namespace {

// Up to so many children are walked through as fast as looked up.
std::size_t few_children = 8;

Element* AsElement(Branch* branch) {
  const bool is_element = branch != nullptr && branch->Type() == NodeType::kElement;
  return is_element ? static_cast<Element*>(branch) : nullptr;
}

}  // namespace

void IndexMoreChildrenThan(std::size_t count) { few_children = count; }
Element* Node::Parent() const { return AsElement(parent_); }

Branch::Branch(NodeType type, std::size_t own_bytes, std::size_t closing_bytes,
               std::size_t line_end_bytes)
    : Node(type, own_bytes),
      own_bytes_(own_bytes),
      closing_bytes_(closing_bytes),
      line_end_bytes_(line_end_bytes) {}

Branch::~Branch() { ReleaseChildren(); }

void Branch::Append(const std::shared_ptr<Node>& child) {
  if (!child || Holds(*child)) throw RuntimeError(kInvalidCall);
  if (!CanStandUnder(*child, AsElement(this))) throw RuntimeError(kInvalidCall);
  Branch* former = child->parent_;
  if (former == nullptr) {
    if (!TryAppend(child)) throw RuntimeError(kOutOfMemory);
    return;
  }
  if (!CanLeave(*child) || !HasRoomFor(*child)) throw RuntimeError(kOutOfMemory);
  former->AddBytes(0, -former->Share(*child));
  if (!Grow(0, Share(*child))) {
    former->AddBytes(0, former->Share(*child));
    throw RuntimeError(kOutOfMemory);
  }
  former->Unlink(*child);
  Link(child);
}

void Branch::Remove(const std::shared_ptr<Node>& child) {
  if (!child || child->parent_ != this) throw RuntimeError(kInvalidCall);
  if (!CanLeave(*child)) throw RuntimeError(kOutOfMemory);
  AddBytes(0, -Share(*child));
  Unlink(*child);
}

bool Branch::TryAppend(const std::shared_ptr<Node>& child) {
  if (!HasRoomFor(*child) || !Grow(0, Share(*child))) return false;
  Link(child);
  return true;
}

bool Branch::Holds(const Node& node) const {
  const Node* holder = this;
  while (holder != nullptr && holder != &node) holder = holder->parent_;
  return holder != nullptr;
}

bool Branch::HasRoomFor(const Node& child) const {
  if (child.Type() == NodeType::kElement) {
    return Depth() + static_cast<const Branch&>(child).Height() <= kMaxDepth;
  }
  if (child.Type() != NodeType::kText || last_child_ == nullptr) return true;
  return last_child_->text_run_bytes_ + child.text_bytes_ <= kMaxValueBytes;
}

// Texts on both sides of something else become neighbours when it goes.
bool Branch::CanLeave(const Node& child) {
  if (child.Type() == NodeType::kText || child.previous_ == nullptr) return true;
  std::size_t run_bytes = 0;
  for (const Node* next = child.next_.get(); next != nullptr && next->Type() == NodeType::kText;
       next = next->next_.get()) {
    run_bytes = next->text_run_bytes_;
  }
  return child.previous_->text_run_bytes_ + run_bytes <= kMaxValueBytes;
}

std::size_t Branch::Depth() const {
  std::size_t depth = 0;
  for (const Branch* branch = this; branch != nullptr; branch = branch->parent_) {
    if (branch->Type() == NodeType::kElement) ++depth;
  }
  return depth;
}

std::size_t Branch::Height() const {
  std::size_t height = 0;
  for (const Node* child = first_child_.get(); child != nullptr; child = child->next_.get()) {
    if (child->Type() != NodeType::kElement) continue;
    height = std::max(height, static_cast<const Branch*>(child)->Height());
  }
  return height + 1;
}

std::ptrdiff_t Branch::Share(const Node& child) const {
  return static_cast<std::ptrdiff_t>(child.form_bytes_ + line_end_bytes_);
}

bool Branch::Grow(std::ptrdiff_t own_bytes, std::ptrdiff_t content_bytes) {
  AddBytes(own_bytes, content_bytes);
  const Branch* top = this;
  while (top->parent_ != nullptr) top = top->parent_;
  if (top->form_bytes_ <= kMaxDocumentBytes) return true;
  AddBytes(-own_bytes, -content_bytes);
  return false;
}

void Branch::CountChange() {
  Branch* top = this;
  while (top->parent_ != nullptr) top = top->parent_;
  ++top->changes_;
}

void Branch::AddBytes(std::ptrdiff_t own_bytes, std::ptrdiff_t content_bytes) {
  own_bytes_ += own_bytes;
  for (Branch* branch = this; branch != nullptr; branch = branch->parent_) {
    branch->content_bytes_ += content_bytes;
    const std::size_t before = branch->form_bytes_;
    branch->form_bytes_ = branch->own_bytes_;
    if (branch->HasContent()) {
      branch->form_bytes_ += branch->closing_bytes_ + branch->content_bytes_;
    }
    content_bytes = static_cast<std::ptrdiff_t>(branch->form_bytes_ - before);
  }
}

void Branch::Link(const std::shared_ptr<Node>& child) {
  CountChange();
  child->parent_ = this;
  child->previous_ = last_child_;
  child->sequence_ = ++last_sequence_;
  child->text_run_bytes_ = child->text_bytes_;
  if (child->Type() == NodeType::kText && last_child_ != nullptr) {
    child->text_run_bytes_ += last_child_->text_run_bytes_;
  }
  (last_child_ == nullptr ? first_child_ : last_child_->next_) = child;
  last_child_ = child.get();
  ++child_count_;
  if (index_) index_->Add(*child);
}

void Branch::Unlink(Node& child) {
  CountChange();
  if (index_) index_->Remove(child);
  Node* previous = std::exchange(child.previous_, nullptr);
  std::shared_ptr<Node> next = std::move(child.next_);
  child.parent_ = nullptr;
  (next ? next->previous_ : last_child_) = previous;
  std::size_t run_bytes = previous == nullptr ? 0 : previous->text_run_bytes_;
  for (Node* node = next.get(); node != nullptr && node->Type() == NodeType::kText;
       node = node->next_.get()) {
    run_bytes += node->text_bytes_;
    node->text_run_bytes_ = run_bytes;
  }
  (previous == nullptr ? first_child_ : previous->next_) = std::move(next);
  --child_count_;
}

// One after the other, so that many siblings don't nest their destructors.
void Branch::ReleaseChildren() {
  std::shared_ptr<Node> child = std::move(first_child_);
  while (child) {
    child->parent_ = nullptr;
    child->previous_ = nullptr;
    std::shared_ptr<Node> next = std::move(child->next_);
    child = std::move(next);
  }
}

bool Branch::ReplaceChildren(const std::shared_ptr<Node>& child) {
  const std::ptrdiff_t share = child ? Share(*child) : 0;
  if (!Grow(0, share - static_cast<std::ptrdiff_t>(content_bytes_))) return false;
  CountChange();
  index_.reset();
  ReleaseChildren();
  last_child_ = nullptr;
  child_count_ = 0;
  if (child) Link(child);
  return true;
}

ChildIndex* Branch::Index() const {
  if (child_count_ <= few_children) return nullptr;
  if (!index_) index_ = std::make_unique<ChildIndex>();
  return index_.get();
}

void Branch::WriteChildren(Serializer& serializer, std::string_view after_each) const {
  for (const Node* child = first_child_.get(); child != nullptr; child = child->next_.get()) {
    child->Write(serializer);
    serializer.Markup(after_each);
  }
}

void Branch::AddText(std::string& text) const {
  for (const Node* child = first_child_.get(); child != nullptr; child = child->next_.get()) {
    child->AddText(text);
  }
}

}  // namespace kvdm::xml
