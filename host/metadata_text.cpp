#include "host/metadata_text.h"

#include <fmt/format.h>

#include <algorithm>

#include "platform/xml/attribute_scan.h"
#include "platform/xml/document.h"
#include "platform/xml/limits.h"
#include "platform/xml/pieces.h"

namespace kvdm {
namespace {

std::string Over(std::size_t limit, std::string_view of) {
  return fmt::format("has more than {} {}", limit, of);
}

// Remembers the first limit that a document is over.
class LimitFinder : public XmlHandler {
 public:
  bool StartElement(std::string_view tag, Attributes attributes) override {
    deepest_ = std::max(deepest_, ++depth_);
    Require(tag.size(), xml::kMaxNameBytes, "bytes in one tag");
    for (const auto& [name, value] : attributes) {
      Require(name.size(), xml::kMaxNameBytes, "bytes in the name of one attribute");
      Require(value.size(), xml::kMaxValueBytes, "bytes in one attribute");
    }
    text_ = 0;
    return problem_.empty();
  }
  bool EndElement() override {
    --depth_;
    text_ = 0;
    return true;
  }
  // Texts come in pieces.
  bool Characters(std::string_view text) override {
    Require(text_ += text.size(), xml::kMaxValueBytes, "bytes in one text");
    return problem_.empty();
  }
  bool Comment(std::string_view) override { return EndsText(); }
  bool Instruction(std::string_view, std::string_view) override { return EndsText(); }

  [[nodiscard]] const std::string& Problem() const { return problem_; }
  // Parsers keep the limit of depth themselves, and go no further.
  [[nodiscard]] bool WasAsDeepAsMayBe() const { return deepest_ >= xml::kMaxDepth; }

 private:
  bool EndsText() {
    text_ = 0;
    return true;
  }

  void Require(std::size_t count, std::size_t limit, std::string_view what) {
    if (count <= limit || !problem_.empty()) return;
    problem_ = Over(limit, what);
  }

  std::size_t depth_ = 0;
  std::size_t deepest_ = 0;
  std::size_t text_ = 0;
  std::string problem_;
};

std::string Problem(XmlParser& parser, std::string_view text) {
  if (text.size() > xml::kMaxInputBytes) return Over(xml::kMaxInputBytes, "bytes");
  if (!HasAttributesWithin(text, xml::kMaxAttributes)) {
    return Over(xml::kMaxAttributes, "attributes at one element");
  }
  // Not from the parser: some judge a text before they report any of it.
  LimitFinder finder;
  ReportPieces(WithLineFeeds(text), finder);
  if (!finder.Problem().empty()) return finder.Problem();
  if (xml::IsWellFormed(parser, text)) return Over(xml::kMaxDocumentBytes, "bytes");
  if (finder.WasAsDeepAsMayBe()) return Over(xml::kMaxDepth, "elements within each other");
  return "is not well-formed XML";
}

}  // namespace

std::string DocumentProblem(XmlParser& parser, std::string_view what, std::string_view text) {
  if (xml::Document().LoadXml(parser, text)) return "";
  return fmt::format("{} {}.", what, Problem(parser, text));
}

}  // namespace kvdm
