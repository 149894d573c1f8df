#include "platform/xml/leaves.h"

#include <utility>

#include <kvdm/platform/error.h>

#include "platform/xml/limits.h"
#include "platform/xml/serializer.h"
#include "platform/xml/xml_text.h"

namespace kvdm::xml {
namespace {

constexpr std::string_view kCommentStart = "<!--";
constexpr std::string_view kCommentEnd = "-->";
constexpr std::string_view kInstructionStart = "<?";
constexpr std::string_view kInstructionEnd = "?>";

std::size_t InstructionBytes(std::string_view target, std::string_view data) {
  const std::size_t blank = data.empty() ? 0 : 1;
  return kInstructionStart.size() + target.size() + blank + RemarkBytes(data) +
         kInstructionEnd.size();
}

}  // namespace

TextNode::TextNode(std::string text)
    : Node(NodeType::kText, TextBytes(text), text.size()), text_(std::move(text)) {}

void TextNode::Write(Serializer& serializer) const { serializer.Text(text_); }

CommentNode::CommentNode(std::string text)
    : Node(NodeType::kComment, kCommentStart.size() + RemarkBytes(text) + kCommentEnd.size()),
      text_(std::move(text)) {}

void CommentNode::Write(Serializer& serializer) const {
  serializer.Markup(kCommentStart);
  serializer.Remark(text_);
  serializer.Markup(kCommentEnd);
}

InstructionNode::InstructionNode(std::string target, std::string data)
    : Node(NodeType::kInstruction, InstructionBytes(target, data)),
      target_(std::move(target)),
      data_(std::move(data)) {}

void InstructionNode::Write(Serializer& serializer) const {
  serializer.Markup(kInstructionStart);
  serializer.Name(target_);
  if (!data_.empty()) {
    serializer.Markup(" ");
    serializer.Remark(data_);
  }
  serializer.Markup(kInstructionEnd);
}

std::shared_ptr<Node> CreateText(std::string_view text) {
  return std::make_shared<TextNode>(SanitizedValue(text));
}

std::shared_ptr<Node> CreateComment(std::string_view text) {
  if (text.ends_with('-') || text.find("--") != std::string_view::npos) {
    throw RuntimeError(kInvalidCall);
  }
  return std::make_shared<CommentNode>(Sanitized(text));
}

}  // namespace kvdm::xml
