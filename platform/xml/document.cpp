#include "platform/xml/document.h"

#include <exception>
#include <utility>
#include <vector>

#include <kvdm/platform/error.h>

#include "platform/xml/limits.h"
#include "platform/xml/serializer.h"

namespace kvdm::xml {
namespace {

// The first characters of a text, without a byte order mark; of UTF-16 every other byte, which is
// what counts as long as they are ASCII.
std::string Beginning(std::string_view bytes) {
  constexpr std::size_t kEnough = 16;
  constexpr std::string_view kIgnored("\0\xEF\xBB\xBF\xFE\xFF", 6);
  std::string beginning(bytes.substr(0, kEnough));
  std::erase_if(beginning, [=](char byte) { return kIgnored.find(byte) != kIgnored.npos; });
  return beginning;
}

bool StartsWithDeclaration(std::string_view bytes) {
  constexpr std::string_view kStart = "<?xml";
  const std::string beginning = Beginning(bytes);
  if (!beginning.starts_with(kStart)) return false;
  const std::string_view rest = std::string_view(beginning).substr(kStart.size());
  return rest.find_first_of(" \t\r\n") == 0;
}

// Builds a tree from what a parser reports. Refuses whatever exceeds a limit.
class TreeBuilder final : public XmlHandler {
 public:
  // Below `top`, which lives longer than the builder.
  TreeBuilder(Tree& tree, Number top) : tree_(tree), current_(top) {}

  bool StartElement(std::string_view tag, Attributes attributes) override {
    if (tag.size() > kMaxNameBytes || attributes.size() > kMaxAttributes) return false;
    if (!AddPendingText() || !Add(tree_.NewNode(NodeType::kElement, tag))) return false;
    current_ = tree_.node(current_).last;
    Number last = 0;
    for (const auto& [name, value] : attributes) {
      if (name.size() > kMaxNameBytes || value.size() > kMaxValueBytes) return false;
      last = tree_.AddAttribute(current_, last, name, value);
    }
    return IsWithinLimit();
  }
  bool EndElement() override {
    const bool added = AddPendingText();
    current_ = tree_.node(current_).parent;
    return added;
  }
  bool Characters(std::string_view text) override {
    if (text.size() > kMaxValueBytes - pending_text_.size()) return false;
    pending_text_ += text;
    return true;
  }
  bool Comment(std::string_view text) override {
    return AddPendingText() && Add(tree_.NewNode(NodeType::kComment, {}, text));
  }
  bool Instruction(std::string_view target, std::string_view data) override {
    return AddPendingText() && Add(tree_.NewNode(NodeType::kInstruction, target, data));
  }

 private:
  bool Add(Number node) {
    tree_.Link(current_, node);
    return IsWithinLimit();
  }
  bool AddPendingText() {
    if (pending_text_.empty()) return true;
    const Number text = tree_.NewNode(NodeType::kText, {}, pending_text_);
    pending_text_.clear();
    return Add(text);
  }
  [[nodiscard]] bool IsWithinLimit() const { return tree_.Bytes() <= kMaxDocumentBytes; }

  Tree& tree_;
  Number current_;
  std::string pending_text_;
};

}  // namespace

Document::Document() : level_(Node::InNewTree(NodeType::kDocument)) {}

bool Document::LoadXml(XmlParser& parser, std::string_view text) {
  return Parse(parser, text, XmlEncoding::kUtf8);
}

bool Document::Load(XmlParser& parser, std::string_view bytes) {
  return Parse(parser, bytes, XmlEncoding::kAsDeclared);
}

bool Document::Parse(XmlParser& parser, std::string_view text, XmlEncoding encoding) {
  Node loaded = Node::InNewTree(NodeType::kDocument);
  Node empty = Node::InNewTree(NodeType::kDocument);
  earlier_changes_ = Changes() + 1;
  level_ = std::move(empty);
  if (loaded.Home().Load(text, loaded.number())) {
    level_ = loaded;
    return true;
  }
  loaded = Node::InNewTree(NodeType::kDocument);
  TreeBuilder builder(loaded.Home(), loaded.number());
  if (StartsWithDeclaration(text)) loaded.Home().Declare();
  if (!parser.Parse(text, encoding, builder)) return false;
  level_ = loaded;
  return true;
}

Element Document::DocumentElement() const {
  Node node = level_.FirstChild();
  while (node && node.Type() != NodeType::kElement) node = node.Next();
  return Element(node);
}

void Document::SetDocumentElement(const Element& root) {
  const Element old_root = DocumentElement();
  if (!old_root) return level_.AppendNode(root);
  if (root == old_root) return;

  // Nodes are only ever appended, so all that follows the old root is appended again after the new
  // one, or after the old one when the new one is refused.
  Node follower = old_root.Next();
  level_.RemoveNode(old_root);
  std::exception_ptr refusal;
  try {
    level_.AppendNode(root);
  } catch (...) {
    refusal = std::current_exception();
    level_.AppendNode(old_root);
  }
  const Element placed = DocumentElement();
  while (follower && !(follower == placed)) {
    const Node next = follower.Next();
    level_.AppendNode(follower);
    follower = next;
  }
  if (refusal) std::rethrow_exception(refusal);
}

void Document::AddDeclaration() {
  Tree& tree = level_.Home();
  if (tree.IsDeclared()) return;
  if (!tree.HasRoom(kDeclaration.size())) throw RuntimeError(kOutOfMemory);
  tree.Declare();
}

std::uint64_t Document::Changes() const { return earlier_changes_ + level_.Home().Changes(); }

std::string Document::Xml() const { return Xml(nullptr); }
std::string Document::Xml(const std::function<bool(char32_t)>& holds) const { return Xml(&holds); }

std::string Document::Xml(const std::function<bool(char32_t)>* holds) const {
  if (!DocumentElement()) return {};
  if (holds != nullptr) return TextForm(level_.Home(), level_.number(), holds);
  std::vector<WrittenElement> fresh;
  std::string text = TextForm(level_.Home(), level_.number(), nullptr, &fresh);
  level_.Home().Keep(text, fresh);
  return text;
}

bool IsWellFormed(XmlParser& parser, std::string_view text) {
  IgnoringHandler handler;
  return parser.Parse(text, XmlEncoding::kUtf8, handler);
}

}  // namespace kvdm::xml
