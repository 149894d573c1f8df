#include "platform/portable/catalogue_areas.h"

#include <map>
#include <set>
#include <utility>
#include <vector>

#include "platform/file_names.h"

namespace kvdm {
namespace {

using xml::Element;

constexpr char kFolder[] = "DIRNAME";

std::vector<Element> ElementsIn(const Element& parent) {
  std::vector<Element> elements;
  for (auto node = parent.FirstChild(); node; node = node.Next()) {
    if (const Element element(node); element) elements.push_back(element);
  }
  return elements;
}

// The elements in `parent`, in their order, each with what tells it from the others: tag, name, and
// a number where these repeat.
std::vector<std::pair<std::string, Element>> Keyed(const Element& parent) {
  std::vector<std::pair<std::string, Element>> keyed;
  std::map<std::string, int> numbers;
  for (const auto& child : ElementsIn(parent)) {
    const std::string key = child.Tag() + '\1' + TextOf(child, kAreaName) + '\1';
    keyed.emplace_back(key + std::to_string(numbers[key]++), child);
  }
  return keyed;
}

std::map<std::string, Element> ByKey(const Element& parent) {
  const auto keyed = Keyed(parent);
  return {keyed.begin(), keyed.end()};
}

Element Find(const std::map<std::string, Element>& elements, const std::string& key) {
  const auto found = elements.find(key);
  return found == elements.end() ? nullptr : found->second;
}

class Change {
 public:
  static bool Apply(const Element& base, const Element& wanted, const Element& target) {
    Change change;
    change.Elements(base, wanted, target);
    return change.collides_;
  }

 private:
  // Notes that `now` gives way to `wanted`. Whether there is anything to do.
  template <class Text>
  bool Replaces(const Text& base, const Text& wanted, const Text& now) {
    if (wanted == base || wanted == now) return false;
    collides_ = collides_ || now != base;
    return true;
  }

  void Elements(const Element& base, const Element& wanted, const Element& target) {
    Attributes(base, wanted, target);
    const bool are_leaves =
        ElementsIn(base).empty() && ElementsIn(wanted).empty() && ElementsIn(target).empty();
    if (are_leaves && Replaces(base.Text(), wanted.Text(), target.Text())) {
      target.SetText(wanted.Text());
    }
    Children(base, wanted, target);
  }

  void Attributes(const Element& base, const Element& wanted, const Element& target) {
    for (const auto& [name, value] : wanted.Attributes()) {
      if (Replaces(base.GetAttribute(name), Value(value), target.GetAttribute(name))) {
        target.SetAttribute(name, value);
      }
    }
    for (const auto& [name, value] : base.Attributes()) {
      if (wanted.GetAttribute(name).IsNull() &&
          Replaces(Value(value), Value(Null()), target.GetAttribute(name))) {
        target.RemoveAttribute(name);
      }
    }
  }

  void Children(const Element& base, const Element& wanted, const Element& target) {
    const auto old = ByKey(base);
    const auto now = ByKey(target);
    const auto kept = ByKey(wanted);
    for (const auto& [key, child] : Keyed(wanted)) {
      Child(Find(old, key), child, Find(now, key), target);
    }
    for (const auto& [key, before] : old) {
      const auto there = Find(kept, key) ? nullptr : Find(now, key);
      if (there && Canonical(there) == Canonical(before)) target.Remove(there);
    }
  }

  void Child(const Element& base, const Element& wanted, const Element& now,
             const Element& target) {
    if (base && Canonical(base) == Canonical(wanted)) return;
    if (now) return Elements(base ? base : Element::Create(wanted.Tag()), wanted, now);
    target.Append(wanted);
  }

  bool collides_ = false;
};

}  // namespace

std::string TextOf(const Element& element, const char* attribute) {
  const Value value = element.GetAttribute(attribute);
  return value.IsNull() ? std::string() : ToText(value);
}

std::string Canonical(const Element& element, const char* ignored) {
  std::map<std::string, std::string> attributes;
  for (const auto& [name, value] : element.Attributes()) {
    if (name != ignored) attributes.emplace(name, value);
  }
  std::string text = '\1' + element.Tag();
  for (const auto& [name, value] : attributes) {
    text.append("\2").append(name).append("\3").append(value);
  }
  std::multiset<std::string> children;
  for (const auto& child : ElementsIn(element)) children.insert(Canonical(child));
  if (children.empty()) text += '\4' + element.Text();
  for (const std::string& child : children) text += child;
  return text + '\5';
}

std::vector<Area> AreasIn(const Element& root) {
  const auto elements = root.Children(kArea);
  std::map<std::string, int> uses;
  for (const auto& element : elements) ++uses[TextOf(element, kAreaGuid)];
  std::map<std::string, int> numbers;
  std::vector<Area> areas;
  for (const auto& element : elements) {
    const std::string guid = TextOf(element, kAreaGuid);
    const std::string name = TextOf(element, kAreaName);
    areas.push_back({element, uses[guid] == 1 ? guid : std::string(),
                     name + '\1' + std::to_string(numbers[name]++)});
  }
  return areas;
}

std::u32string FolderOf(const Area& area) {
  std::string folder = TextOf(area.element, kFolder);
  if (folder.ends_with('\\')) folder.pop_back();
  return FoldedName(folder);
}

std::string NameOf(const Element& area) {
  const std::string stored = TextOf(area, kAreaName);
  const bool is_wrapped = stored.size() > 1 && stored.starts_with('_') && stored.ends_with('_');
  return is_wrapped ? stored.substr(1, stored.size() - 2) : stored;
}

bool ApplyChange(const Element& base, const Element& wanted, const Element& target) {
  return Change::Apply(base, wanted, target);
}

}  // namespace kvdm
