// Builds a document's tree from what a parser reports.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/xml/node.h"
#include "platform/xml_parser.h"

namespace kvdm::xml {

// Refuses whatever exceeds a limit.
class TreeBuilder final : public XmlHandler {
 public:
  // Appends to `top`, which lives longer than the builder.
  explicit TreeBuilder(Branch& top) : current_(&top) {}

  bool StartElement(std::string_view tag, Attributes attributes) override;
  bool EndElement() override;
  bool Characters(std::string_view text) override;
  bool Comment(std::string_view text) override;
  bool Instruction(std::string_view target, std::string_view data) override;

 private:
  bool Add(const std::shared_ptr<Node>& node);
  bool AddPendingText();

  Branch* current_;
  std::string pending_text_;
};

}  // namespace kvdm::xml
