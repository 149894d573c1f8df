#include <algorithm>

#include <kvdm/platform/document_tree.h>
#include <kvdm/platform/error.h>

#include "platform/xml/document.h"
#include "platform/xml/xml_input.h"
#include "platform/xml_parser.h"

namespace kvdm {
namespace {

using Kind = DocumentNode::Kind;

// Collects the pieces of a document.
class Collector final : public XmlHandler {
 public:
  bool StartElement(std::string_view tag, Attributes attributes) override {
    DocumentNode& element = open_.emplace_back(DocumentNode{Kind::kElement, std::string(tag)});
    for (const auto& [name, value] : attributes) element.attributes.emplace_back(name, value);
    return true;
  }
  bool EndElement() override {
    DocumentNode element = std::move(open_.back());
    open_.pop_back();
    return Add(std::move(element));
  }
  bool Characters(std::string_view text) override {
    auto& siblings = Siblings();
    if (!siblings.empty() && siblings.back().kind == Kind::kText) {
      siblings.back().text += text;
      return true;
    }
    return Add({Kind::kText, "", std::string(text)});
  }
  bool Comment(std::string_view text) override {
    return Add({Kind::kComment, "", std::string(text)});
  }
  bool Instruction(std::string_view target, std::string_view data) override {
    return Add({Kind::kInstruction, std::string(target), std::string(data)});
  }

  std::vector<DocumentNode> nodes;

 private:
  std::vector<DocumentNode>& Siblings() { return open_.empty() ? nodes : open_.back().children; }
  bool Add(DocumentNode node) {
    Siblings().push_back(std::move(node));
    return true;
  }

  std::vector<DocumentNode> open_;
};

void AppendEscaped(std::string_view text, std::string& out) {
  for (const char character : text) {
    switch (character) {
      case '&':
      case '<':
      case '>':
      case '"':
      case '\t':
      case '\n':
      case '\r':
        out += "&#" + std::to_string(static_cast<int>(character)) + ";";
        break;
      default:
        out += character;
    }
  }
}

// Some text of a node, which need not be the one that the component writes.
void AppendNode(const DocumentNode& node, std::string& out) {
  switch (node.kind) {
    case Kind::kText:
      return AppendEscaped(node.text, out);
    case Kind::kComment:
      out += "<!--" + node.text + "-->";
      return;
    case Kind::kInstruction:
      out += "<?" + node.name + " " + node.text + "?>";
      return;
    case Kind::kElement:
      break;
  }
  out += "<" + node.name;
  for (const auto& [name, value] : node.attributes) {
    out += " " + name + "=\"";
    AppendEscaped(value, out);
    out += '"';
  }
  if (node.children.empty()) {
    out += "/>";
    return;
  }
  out += '>';
  for (const DocumentNode& child : node.children) AppendNode(child, out);
  out += "</" + node.name + ">";
}

void Load(XmlParser& parser, const DocumentTree& tree, xml::Document& document) {
  std::string text = tree.is_declared ? "<?xml version=\"1.0\" encoding=\"utf-8\"?>" : "";
  for (const DocumentNode& node : tree.nodes) AppendNode(node, text);
  if (document.LoadXml(parser, text)) return;
  throw RuntimeError(xml::IsWellFormed(parser, text) ? kOutOfMemory : kInvalidCall);
}

}  // namespace

std::string DocumentNode::Attribute(std::string_view attribute) const {
  const auto found =
      std::ranges::find(attributes, attribute, &decltype(attributes)::value_type::first);
  return found == attributes.end() ? std::string() : found->second;
}

void DocumentNode::SetAttribute(std::string_view attribute, std::string_view value) {
  const auto found =
      std::ranges::find(attributes, attribute, &decltype(attributes)::value_type::first);
  if (found == attributes.end()) {
    attributes.emplace_back(attribute, value);
  } else {
    found->second = value;
  }
}

const DocumentNode* DocumentNode::Child(std::string_view tag) const {
  const auto found = std::ranges::find_if(children, [&](const DocumentNode& child) {
    return child.kind == Kind::kElement && child.name == tag;
  });
  return found == children.end() ? nullptr : &*found;
}

const DocumentNode* DocumentTree::Root() const {
  const auto found = std::ranges::find(nodes, Kind::kElement, &DocumentNode::kind);
  return found == nodes.end() ? nullptr : &*found;
}

DocumentNode* DocumentTree::Root() {
  const auto found = std::ranges::find(nodes, Kind::kElement, &DocumentNode::kind);
  return found == nodes.end() ? nullptr : &*found;
}

std::optional<DocumentTree> ReadDocumentTree(XmlParser& parser, std::string_view text) {
  // Judged as the component judges it, with its limits.
  xml::Document document;
  if (!document.LoadXml(parser, text)) return std::nullopt;
  Collector collector;
  if (!parser.Parse(text, XmlEncoding::kUtf8, collector)) return std::nullopt;
  return DocumentTree{DeclarationOf(text).has_value(), std::move(collector.nodes)};
}

std::string DocumentTreeText(XmlParser& parser, const DocumentTree& tree) {
  if (tree.Root() == nullptr) return "";
  xml::Document document;
  Load(parser, tree, document);
  return document.Xml();
}

std::string ElementText(XmlParser& parser, const DocumentNode& element) {
  xml::Document document;
  Load(parser, {false, {element}}, document);
  return document.DocumentElement().Xml();
}

}  // namespace kvdm
