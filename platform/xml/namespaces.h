// Name prefixes: whether an element can stand at a place, in a tree or in a text, and be read
// there.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/xml/node.h"
#include "platform/xml_parser.h"

namespace kvdm {

namespace xml {

// Whether every prefix that `tree` uses is declared in it or at `parent`, which is Nothing for the
// top level, and no element would have the same attribute under two prefixes.
[[nodiscard]] bool CanStandUnder(const Node& tree, const Element& parent);

}  // namespace xml

// For parsers that don't insist on the declaration of prefixes: refuses the first piece of a text
// that breaks a rule of namespaces: a name with more than a prefix and a local name, a prefix that
// isn't declared, one that is declared as nothing or is reserved, and the same attribute under two
// prefixes.
class NamespaceCheck final : public IgnoringHandler {
 public:
  bool StartElement(std::string_view tag, Attributes attributes) override;
  bool EndElement() override;
  bool Instruction(std::string_view target, std::string_view data) override;

 private:
  void Declare(std::string_view prefix, std::string_view space);
  // Whether the prefix of `name`, if it has one, is declared.
  [[nodiscard]] bool IsBound(std::string_view name) const;
  // "" for a prefix that is not declared.
  [[nodiscard]] std::string_view NamespaceOf(std::string_view prefix) const;

  // The namespaces of each prefix, the innermost last; and what each open element declares.
  std::map<std::string, std::vector<std::string>, std::less<>> declared_;
  std::vector<std::vector<std::string>> scopes_;
};

}  // namespace kvdm
