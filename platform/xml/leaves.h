// The nodes without children.
#pragma once

#include <string>

#include "platform/xml/node.h"

namespace kvdm::xml {

class TextNode final : public Node {
 public:
  explicit TextNode(std::string text);

 private:
  void Write(Serializer& serializer) const override;
  void AddText(std::string& text) const override { text += text_; }

  std::string text_;
};

class CommentNode final : public Node {
 public:
  explicit CommentNode(std::string text);

 private:
  void Write(Serializer& serializer) const override;
  void AddText(std::string& /*text*/) const override {}

  std::string text_;
};

class InstructionNode final : public Node {
 public:
  InstructionNode(std::string target, std::string data);

 private:
  void Write(Serializer& serializer) const override;
  void AddText(std::string& /*text*/) const override {}

  std::string target_;
  std::string data_;
};

}  // namespace kvdm::xml
