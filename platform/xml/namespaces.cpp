#include "platform/xml/namespaces.h"

#include <algorithm>
#include <set>
#include <utility>

#include "platform/xml/xml_text.h"

namespace kvdm {
namespace {

using xml::IsNamespaceDeclaration;
using xml::IsPlainName;
using xml::kXmlNamespace;
using xml::PrefixOf;

constexpr std::string_view kXml = "xml";
constexpr std::string_view kXmlns = "xmlns";
constexpr std::string_view kXmlnsNamespace = "http://www.w3.org/2000/xmlns/";

std::string_view LocalNameOf(std::string_view name) {
  const auto colon = name.find(':');
  return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

bool IsQualifiedName(std::string_view name) {
  const bool has_prefix = name.find(':') != std::string_view::npos;
  return IsPlainName(LocalNameOf(name)) && (!has_prefix || IsPlainName(PrefixOf(name)));
}

bool CanBeDeclared(std::string_view prefix, std::string_view space) {
  if (prefix == kXml) return space == kXmlNamespace;
  const bool is_reserved = space == kXmlNamespace || space == kXmlnsNamespace;
  return prefix != kXmlns && !is_reserved && !space.empty();
}

bool IsAllowed(std::string_view name, std::string_view value) {
  if (!IsQualifiedName(name)) return false;
  if (name == kXmlns) return value != kXmlNamespace && value != kXmlnsNamespace;
  return !IsNamespaceDeclaration(name) || CanBeDeclared(LocalNameOf(name), value);
}

// Whether the attributes' prefixes are declared, and no two are the same attribute.
template <class Attributes, class NamespaceOf>
bool AreBoundAndApart(const Attributes& attributes, const NamespaceOf& namespace_of) {
  std::set<std::pair<std::string, std::string_view>> names;
  return std::ranges::all_of(attributes, [&](const auto& attribute) {
    const std::string_view name = attribute.name;
    if (PrefixOf(name).empty() || IsNamespaceDeclaration(name)) return true;
    std::string space(namespace_of(PrefixOf(name)));
    return !space.empty() && names.emplace(std::move(space), LocalNameOf(name)).second;
  });
}

// Judges a tree as if it stood under another parent than it does.
class Placement {
 public:
  Placement(const xml::Node& tree, const xml::Element& parent) : tree_(tree), parent_(parent) {}

  [[nodiscard]] bool Holds(const xml::Element& element) const {
    const auto namespace_of = [&](std::string_view prefix) { return NamespaceOf(prefix, element); };
    const std::string_view prefix = PrefixOf(element.Tag());
    if (!prefix.empty() && namespace_of(prefix).empty()) return false;
    if (!AreBoundAndApart(element.Attributes(), namespace_of)) return false;
    for (auto child = element.FirstChild(); child; child = child.Next()) {
      const xml::Element below(child);
      if (below && !Holds(below)) return false;
    }
    return true;
  }

 private:
  // "" when the prefix is not declared; a declared one is never empty.
  [[nodiscard]] std::string NamespaceOf(std::string_view prefix, xml::Element scope) const {
    if (prefix == kXml) return std::string(prefix);
    const std::string declaration = "xmlns:" + std::string(prefix);
    for (; scope; scope = scope == tree_ ? parent_ : scope.Parent()) {
      const Value space = scope.GetAttribute(declaration);
      if (!space.IsNull()) return ToText(space);
    }
    return {};
  }

  const xml::Node& tree_;
  const xml::Element& parent_;
};

}  // namespace

bool xml::CanStandUnder(const Node& tree, const Element& parent) {
  const Element element(tree);
  return !element || Placement(tree, parent).Holds(element);
}

bool NamespaceCheck::StartElement(std::string_view tag, Attributes attributes) {
  const bool allowed = std::ranges::all_of(
      attributes, [](const auto& attribute) { return IsAllowed(attribute.name, attribute.value); });
  if (!allowed || !IsQualifiedName(tag)) return false;
  scopes_.emplace_back();
  for (const auto& [name, value] : attributes) {
    if (PrefixOf(name) == kXmlns) Declare(LocalNameOf(name), value);
  }
  return IsBound(tag) &&
         AreBoundAndApart(attributes, [&](std::string_view prefix) { return NamespaceOf(prefix); });
}

bool NamespaceCheck::EndElement() {
  for (const std::string& prefix : scopes_.back()) declared_.find(prefix)->second.pop_back();
  scopes_.pop_back();
  return true;
}

bool NamespaceCheck::Instruction(std::string_view target, std::string_view /*data*/) {
  return target.find(':') == std::string_view::npos;
}

void NamespaceCheck::Declare(std::string_view prefix, std::string_view space) {
  scopes_.back().emplace_back(prefix);
  declared_[scopes_.back().back()].emplace_back(space);
}

bool NamespaceCheck::IsBound(std::string_view name) const {
  const std::string_view prefix = PrefixOf(name);
  return prefix.empty() || !NamespaceOf(prefix).empty();
}

std::string_view NamespaceCheck::NamespaceOf(std::string_view prefix) const {
  if (prefix == kXml) return kXmlNamespace;
  const auto found = declared_.find(prefix);
  if (found == declared_.end() || found->second.empty()) return {};
  return found->second.back();
}

}  // namespace kvdm
