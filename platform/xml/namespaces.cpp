#include "platform/xml/namespaces.h"

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "platform/xml/xml_text.h"

namespace kvdm::xml {
namespace {

// Judges a tree as if it stood under another parent than it does.
class Placement {
 public:
  Placement(const Node& tree, const Element* parent) : tree_(tree), parent_(parent) {}

  [[nodiscard]] bool Holds(const Element& element) const {
    return IsDeclared(PrefixOf(element.Tag()), element) && AttributesHold(element) &&
           ChildrenHold(element);
  }

 private:
  [[nodiscard]] bool ChildrenHold(const Element& element) const {
    for (auto child = element.FirstChild(); child; child = child->Next()) {
      if (child->Type() != NodeType::kElement) continue;
      if (!Holds(static_cast<const Element&>(*child))) return false;
    }
    return true;
  }

  [[nodiscard]] bool AttributesHold(const Element& element) const {
    std::set<std::pair<std::string_view, std::string_view>> names;
    return std::ranges::all_of(element.Attributes(), [&](const Attribute& attribute) {
      const std::string_view name = attribute.name;
      const std::string_view prefix = PrefixOf(name);
      if (prefix.empty() || IsNamespaceDeclaration(name)) return true;
      const std::string_view space = NamespaceOf(prefix, element);
      return !space.empty() && names.emplace(space, name.substr(prefix.size())).second;
    });
  }

  [[nodiscard]] bool IsDeclared(std::string_view prefix, const Element& element) const {
    return prefix.empty() || !NamespaceOf(prefix, element).empty();
  }

  // "" when the prefix is not declared; a declared one is never empty.
  [[nodiscard]] std::string_view NamespaceOf(std::string_view prefix,
                                             const Element& element) const {
    if (prefix == "xml") return prefix;
    const std::string declaration = "xmlns:" + std::string(prefix);
    for (const Element* scope = &element; scope != nullptr; scope = ScopeAround(scope)) {
      const auto& attributes = scope->Attributes();
      const auto found = std::ranges::find(attributes, declaration, &Attribute::name);
      if (found != attributes.end()) return found->value;
    }
    return {};
  }

  [[nodiscard]] const Element* ScopeAround(const Element* scope) const {
    return scope == &tree_ ? parent_ : scope->Parent();
  }

  const Node& tree_;
  const Element* parent_;
};

}  // namespace

bool CanStandUnder(const Node& tree, const Element* parent) {
  return tree.Type() != NodeType::kElement ||
         Placement(tree, parent).Holds(static_cast<const Element&>(tree));
}

}  // namespace kvdm::xml
