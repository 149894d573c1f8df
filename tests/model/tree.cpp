#include "tests/model/tree.h"

#include <algorithm>

namespace kvdm::model {
namespace {

constexpr int kInvalidNull = 94;
constexpr int kBadQuery = -2147467259;

std::string Escaped(std::string text) {
  text = Replaced(std::move(text), "&", "&amp;");
  text = Replaced(std::move(text), "<", "&lt;");
  return Replaced(std::move(text), ">", "&gt;");
}

std::string AttributeText(const std::string& value) {
  std::string text = Replaced(Escaped(value), "\"", "&quot;");
  text = Replaced(std::move(text), "\t", "&#9;");
  text = Replaced(std::move(text), "\n", "&#10;");
  return Replaced(std::move(text), "\r", "&#13;");
}

// Every line end as LF.
std::string WithPlainLineEnds(std::string text) {
  return Replaced(Replaced(std::move(text), "\r\n", "\n"), "\r", "\n");
}

std::string NodeText(const Node& node) {
  if (node.tag.empty()) return "<!--" + node.text + "-->";
  std::string text = "<" + node.tag;
  for (const auto& [name, value] : node.attributes) {
    text += " " + name + "=\"" + AttributeText(value) + "\"";
  }
  std::string content = Replaced(WithPlainLineEnds(Escaped(node.text)), "\n", "\r\n");
  for (const auto& child : node.children) content += NodeText(*child);
  return content.empty() ? text + "/>" : text + ">" + content + "</" + node.tag + ">";
}

// XML has no control characters but TAB, CR and LF.
std::string Storable(std::string_view value) {
  std::string storable;
  for (const char c : value) {
    const bool is_control =
        static_cast<unsigned char>(c) < ' ' && c != '\t' && c != '\r' && c != '\n';
    is_control ? storable += "\uFFFD" : storable += c;
  }
  return storable;
}

}  // namespace

std::optional<std::string> Node::Get(std::string_view name) const {
  for (const auto& [attribute, value] : attributes) {
    if (attribute == name) return value;
  }
  return std::nullopt;
}

std::string Node::Required(std::string_view name) const {
  auto value = Get(name);
  if (!value) throw Fault{kInvalidNull};
  return *value;
}

void Node::Set(std::string_view name, std::string_view value) {
  for (auto& [attribute, old_value] : attributes) {
    if (attribute != name) continue;
    old_value = Storable(value);
    return;
  }
  attributes.emplace_back(name, Storable(value));
}

void Node::SetText(std::string_view value) { text = Storable(value); }

NodeRef Node::Append(const std::string& new_tag) {
  children.push_back(MakeNode(new_tag));
  return children.back();
}

void Node::Remove(const NodeRef& child) { std::erase(children, child); }

NodeRef Node::Child(std::string_view wanted_tag) const {
  const auto found =
      std::ranges::find(children, wanted_tag, [](auto& child) { return child->tag; });
  return found == children.end() ? nullptr : *found;
}

NodeRef Node::Find(std::string_view wanted_tag, std::string_view attribute,
                   std::string_view key) const {
  if (key.find('"') != std::string_view::npos) throw Fault{kBadQuery};
  const std::string stored = Storable(key);
  for (const auto& child : children) {
    if (child->tag == wanted_tag && child->Get(attribute) == stored) return child;
  }
  return nullptr;
}

NodeRef MakeNode(std::string tag, Attributes attributes, std::vector<NodeRef> children,
                 std::string text) {
  return std::make_shared<Node>(
      Node{std::move(tag), std::move(attributes), std::move(children), std::move(text)});
}

std::string DocumentText(const NodeRef& root, bool has_declaration) {
  if (!root) return {};
  const std::string declaration = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n";
  return (has_declaration ? declaration : "") + NodeText(*root) + "\r\n";
}

NodeRef Reloaded(const NodeRef& root) {
  if (!root) return nullptr;
  auto copy = MakeNode(root->tag, root->attributes, {}, WithPlainLineEnds(root->text));
  for (const auto& child : root->children) copy->children.push_back(Reloaded(child));
  return copy;
}

std::string Replaced(std::string text, std::string_view what, std::string_view with) {
  for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
  return text;
}

}  // namespace kvdm::model
