#include "platform/xml/document.h"

#include <exception>
#include <utility>

#include <kvdm/platform/error.h>

#include "platform/xml/serializer.h"
#include "platform/xml/tree_builder.h"

namespace kvdm::xml {
namespace {

constexpr std::string_view kDeclaration = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n";
constexpr std::string_view kAfterChild = "\r\n";

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

}  // namespace

// The top level: the declaration, and each node followed by a line end.
class Document::Level final : public Branch {
 public:
  Level() : Branch(NodeType::kDocument, 0, 0, kAfterChild.size()) {}

  // False when the text form would get too large.
  bool Declare() {
    if (is_declared_) return true;
    is_declared_ = Grow(static_cast<std::ptrdiff_t>(kDeclaration.size()), 0);
    CountChange();
    return is_declared_;
  }

  using Branch::Changes;

  [[nodiscard]] std::shared_ptr<Element> Root() const {
    auto node = FirstChild();
    while (node && node->Type() != NodeType::kElement) node = node->Next();
    return std::static_pointer_cast<Element>(node);
  }

  [[nodiscard]] std::string Xml(const Serializer::Holds* holds) const {
    std::string text;
    text.reserve(FormBytes());
    Serializer serializer(text, holds);
    Write(serializer);
    return text;
  }

 private:
  void Write(Serializer& serializer) const override {
    if (is_declared_) serializer.Markup(kDeclaration);
    WriteChildren(serializer, kAfterChild);
  }

  bool is_declared_ = false;
};

Document::Document() : level_(std::make_shared<Level>()) {}

bool Document::LoadXml(XmlParser& parser, std::string_view text) {
  return Parse(parser, text, XmlEncoding::kUtf8);
}

bool Document::Load(XmlParser& parser, std::string_view bytes) {
  return Parse(parser, bytes, XmlEncoding::kAsDeclared);
}

bool Document::Parse(XmlParser& parser, std::string_view text, XmlEncoding encoding) {
  const auto loaded = std::make_shared<Level>();
  earlier_changes_ = Changes() + 1;
  level_ = std::make_shared<Level>();
  TreeBuilder builder(*loaded);
  if (StartsWithDeclaration(text) && !loaded->Declare()) return false;
  if (!parser.Parse(text, encoding, builder)) return false;
  level_ = loaded;
  return true;
}

std::shared_ptr<Element> Document::DocumentElement() const { return level_->Root(); }

void Document::SetDocumentElement(const std::shared_ptr<Element>& root) {
  const auto old_root = DocumentElement();
  if (!old_root) return level_->Append(root);
  if (root == old_root) return;

  // Nodes are only ever appended, so all that follows the old root is appended again after the new
  // one, or after the old one when the new one is refused.
  auto follower = old_root->Next();
  level_->Remove(old_root);
  std::exception_ptr refusal;
  try {
    level_->Append(root);
  } catch (...) {
    refusal = std::current_exception();
    level_->Append(old_root);
  }
  const auto placed = DocumentElement();
  while (follower && follower != placed) level_->Append(std::exchange(follower, follower->Next()));
  if (refusal) std::rethrow_exception(refusal);
}

void Document::AddDeclaration() {
  if (!level_->Declare()) throw RuntimeError(kOutOfMemory);
}

std::uint64_t Document::Changes() const { return earlier_changes_ + level_->Changes(); }

std::string Document::Xml() const { return Xml(nullptr); }
std::string Document::Xml(const std::function<bool(char32_t)>& holds) const { return Xml(&holds); }

std::string Document::Xml(const std::function<bool(char32_t)>* holds) const {
  return DocumentElement() ? level_->Xml(holds) : std::string();
}

bool IsWellFormed(XmlParser& parser, std::string_view text) {
  IgnoringHandler handler;
  return parser.Parse(text, XmlEncoding::kUtf8, handler);
}

}  // namespace kvdm::xml
