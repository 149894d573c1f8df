/// @file
/// Document tree: a document as plain values, for those who compare, check or rewrite what is
/// stored.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kvdm/export.h>

namespace kvdm {

class XmlParser;

/// A node of a document and everything below it. Two are equal when their texts are.
struct DocumentNode {
  /// What it is.
  enum class Kind { kElement, kText, kComment, kInstruction };

  Kind kind = Kind::kElement;  ///< decides what of the following counts
  std::string name = {};       ///< the tag of an element, the target of an instruction
  std::string text = {};       ///< of a text, comment or instruction

  /// Names and values of an element's attributes, in their order.
  std::vector<std::pair<std::string, std::string>> attributes = {};

  /// What stands in an element, in its order.
  std::vector<DocumentNode> children = {};

  bool operator==(const DocumentNode&) const = default;

  /// The value of an attribute; "" when it is missing.
  [[nodiscard]] KVDM_EXPORT std::string Attribute(std::string_view attribute) const;

  /// Gives an attribute a value. A new one comes last.
  KVDM_EXPORT void SetAttribute(std::string_view attribute, std::string_view value);

  /// The first child element with a tag; null when there is none.
  [[nodiscard]] KVDM_EXPORT const DocumentNode* Child(std::string_view tag) const;
};

/// A whole document.
struct DocumentTree {
  bool is_declared = false;         ///< whether it begins with an XML declaration
  std::vector<DocumentNode> nodes;  ///< of the document's own level; one is the root element

  bool operator==(const DocumentTree&) const = default;

  /// The root element; null when there is none.
  [[nodiscard]] KVDM_EXPORT const DocumentNode* Root() const;
  [[nodiscard]] KVDM_EXPORT DocumentNode* Root();  ///< @overload
};

/// The tree of a text in UTF-8; nothing when it is not well-formed or over a limit of documents.
[[nodiscard]] KVDM_EXPORT std::optional<DocumentTree> ReadDocumentTree(XmlParser& parser,
                                                                       std::string_view text);

/// The text of a tree as the component writes it; "" for one without a root element. Run-time error
/// 5 for a tree that is no document, 7 for one over a limit of documents.
[[nodiscard]] KVDM_EXPORT std::string DocumentTreeText(XmlParser& parser, const DocumentTree& tree);

/// The text of one element, as a document of its own.
[[nodiscard]] KVDM_EXPORT std::string ElementText(XmlParser& parser, const DocumentNode& element);

}  // namespace kvdm
