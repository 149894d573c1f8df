// The model's documents: plain trees of named values, and the text they must have.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kvdm::model {

struct Node;
using NodeRef = std::shared_ptr<Node>;
using Attributes = std::vector<std::pair<std::string, std::string>>;

// What an operation of the model fails with.
struct Fault {
  int number = 0;
  std::string unsent_message = {};
};

// An element; one without a tag is a comment.
struct Node {
  std::string tag;
  Attributes attributes = {};
  std::vector<NodeRef> children = {};
  std::string text = {};

  // Nothing when it is missing.
  [[nodiscard]] std::optional<std::string> Get(std::string_view name) const;
  // Fault 94 when it is missing.
  [[nodiscard]] std::string Required(std::string_view name) const;
  // The place of an attribute never changes; a new one goes last.
  void Set(std::string_view name, std::string_view value);
  void SetText(std::string_view value);

  NodeRef Append(const std::string& new_tag);
  void Remove(const NodeRef& child);
  [[nodiscard]] NodeRef Child(std::string_view wanted_tag) const;
  // The first child of the tag whose attribute has the value `key`; the fault of a bad query when
  // the key holds a double quote.
  [[nodiscard]] NodeRef Find(std::string_view wanted_tag, std::string_view attribute,
                             std::string_view key) const;
};

NodeRef MakeNode(std::string tag, Attributes attributes = {}, std::vector<NodeRef> children = {},
                 std::string text = {});

// A document: "" without a root.
[[nodiscard]] std::string DocumentText(const NodeRef& root, bool has_declaration);

// What is read back from the text of `root`; shares nothing with it.
[[nodiscard]] NodeRef Reloaded(const NodeRef& root);

[[nodiscard]] std::string Replaced(std::string text, std::string_view what, std::string_view with);

}  // namespace kvdm::model
