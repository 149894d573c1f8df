#include "platform/xml/tree_builder.h"

#include <utility>
#include <vector>

#include "platform/xml/leaves.h"
#include "platform/xml/limits.h"

namespace kvdm::xml {

bool TreeBuilder::StartElement(std::string_view tag, Attributes attributes) {
  if (tag.size() > kMaxNameBytes || attributes.size() > kMaxAttributes) return false;
  std::vector<Attribute> kept;
  kept.reserve(attributes.size());
  for (auto& [name, value] : attributes) {
    if (name.size() > kMaxNameBytes || value.size() > kMaxValueBytes) return false;
    kept.push_back({std::move(name), std::move(value)});
  }
  const std::shared_ptr<Element> element(new Element(std::string(tag), std::move(kept)));
  if (!Add(element)) return false;
  current_ = element.get();
  return true;
}

bool TreeBuilder::EndElement() {
  if (!AddPendingText()) return false;
  current_ = current_->parent_;
  return true;
}

bool TreeBuilder::Characters(std::string_view text) {
  if (text.size() > kMaxValueBytes - pending_text_.size()) return false;
  pending_text_ += text;
  return true;
}

bool TreeBuilder::Comment(std::string_view text) {
  return Add(std::make_shared<CommentNode>(std::string(text)));
}

bool TreeBuilder::Instruction(std::string_view target, std::string_view data) {
  return Add(std::make_shared<InstructionNode>(std::string(target), std::string(data)));
}

bool TreeBuilder::Add(const std::shared_ptr<Node>& node) {
  return AddPendingText() && current_->TryAppend(node);
}

bool TreeBuilder::AddPendingText() {
  if (pending_text_.empty()) return true;
  return current_->TryAppend(std::make_shared<TextNode>(std::exchange(pending_text_, {})));
}

}  // namespace kvdm::xml
