#include "platform/portable/catalogue_update.h"

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "platform/error.h"
#include "platform/xml/document.h"

namespace kvdm {
namespace {

using xml::Element;
using ElementRef = std::shared_ptr<Element>;

constexpr char kArea[] = "STUDYAREA";
constexpr char kGuid[] = "GUID";
constexpr char kName[] = "NAME";
constexpr char kFolder[] = "DIRNAME";

std::string TextOf(const Element& element, const char* attribute) {
  const Value value = element.GetAttribute(attribute);
  return value.IsNull() ? std::string() : ToText(value);
}

std::vector<ElementRef> ElementsIn(const Element& parent) {
  std::vector<ElementRef> elements;
  for (auto node = parent.FirstChild(); node; node = node->Next()) {
    if (auto element = std::dynamic_pointer_cast<Element>(node)) elements.push_back(element);
  }
  return elements;
}

// What an element says, whatever the order of its attributes and the way in which it was written;
// without the attribute `ignored`. The marks between the parts can't be in an XML text.
std::string Canonical(const Element& element, const char* ignored = "") {
  std::map<std::string, std::string> attributes;
  for (const auto& [name, value] : element.Attributes()) {
    if (name != ignored) attributes.emplace(name, value);
  }
  std::string text = '\1' + element.Tag();
  for (const auto& [name, value] : attributes) text += '\2' + name + '\3' + value;
  const auto children = ElementsIn(element);
  if (children.empty()) text += '\4' + element.Text();
  for (const auto& child : children) text += Canonical(*child);
  return text + '\5';
}

// The elements in `parent`, in their order, each with what tells it from the others: tag, name, and
// a number where these repeat.
std::vector<std::pair<std::string, ElementRef>> Keyed(const Element& parent) {
  std::vector<std::pair<std::string, ElementRef>> keyed;
  std::map<std::string, int> numbers;
  for (const auto& child : ElementsIn(parent)) {
    const std::string key = child->Tag() + '\1' + TextOf(*child, kName) + '\1';
    keyed.emplace_back(key + std::to_string(numbers[key]++), child);
  }
  return keyed;
}

std::map<std::string, ElementRef> ByKey(const Element& parent) {
  const auto keyed = Keyed(parent);
  return {keyed.begin(), keyed.end()};
}

template <class Map>
ElementRef Find(const Map& elements, const std::string& key) {
  const auto found = elements.find(key);
  return found == elements.end() ? nullptr : found->second;
}

// Carries what changed from `base` to `wanted` over to `target`.
class Change {
 public:
  // Whether `target` had changed in the same places to something else, which is lost then.
  static bool Apply(const Element& base, const Element& wanted, Element& target) {
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

  void Elements(const Element& base, const Element& wanted, Element& target) {
    Attributes(base, wanted, target);
    const bool are_leaves =
        ElementsIn(base).empty() && ElementsIn(wanted).empty() && ElementsIn(target).empty();
    if (are_leaves && Replaces(base.Text(), wanted.Text(), target.Text())) {
      target.SetText(wanted.Text());
    }
    Children(base, wanted, target);
  }

  void Attributes(const Element& base, const Element& wanted, Element& target) {
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

  void Children(const Element& base, const Element& wanted, Element& target) {
    const auto old = ByKey(base);
    const auto now = ByKey(target);
    const auto kept = ByKey(wanted);
    for (const auto& [key, child] : Keyed(wanted)) {
      Child(Find(old, key), child, Find(now, key), target);
    }
    for (const auto& [key, before] : old) {
      const auto there = Find(kept, key) ? nullptr : Find(now, key);
      if (there && Canonical(*there) == Canonical(*before)) target.Remove(there);
    }
  }

  void Child(const ElementRef& base, const ElementRef& wanted, const ElementRef& now,
             Element& target) {
    if (base && Canonical(*base) == Canonical(*wanted)) return;
    if (now) return Elements(base ? *base : *Element::Create(wanted->Tag()), *wanted, *now);
    target.Append(wanted);
  }

  bool collides_ = false;
};

// The study areas of a catalogue text.
class Catalogue {
 public:
  // Empty when the text has no root or can't be loaded.
  Catalogue(XmlParser& parser, const std::string& text) {
    if (!document_.LoadXml(parser, text)) return;
    areas_ = document_.DocumentElement()->Children(kArea);
    std::map<std::string, int> uses;
    for (const auto& area : areas_) ++uses[TextOf(*area, kGuid)];
    std::map<std::string, int> numbers;
    for (const auto& area : areas_) {
      const std::string guid = TextOf(*area, kGuid);
      const std::string name = TextOf(*area, kName);
      const bool is_told = !guid.empty() && uses[guid] == 1;
      keys_.push_back(is_told ? guid : name + '\1' + std::to_string(numbers[name]++));
      by_key_.emplace(keys_.back(), area);
    }
  }

  [[nodiscard]] ElementRef Root() const { return document_.DocumentElement(); }
  [[nodiscard]] const std::vector<ElementRef>& Areas() const { return areas_; }
  [[nodiscard]] const std::string& KeyOf(std::size_t area) const { return keys_[area]; }
  [[nodiscard]] ElementRef Find(const std::string& key) const { return kvdm::Find(by_key_, key); }
  [[nodiscard]] bool Has(const std::string& key) const { return by_key_.contains(key); }
  [[nodiscard]] const xml::Document& Document() const { return document_; }

 private:
  xml::Document document_;
  std::vector<ElementRef> areas_;
  std::vector<std::string> keys_;  // of the areas, one each
  std::map<std::string, ElementRef> by_key_;
};

std::string Described(const Element& area) {
  return "The study area " + TextOf(area, kName) + " " + TextOf(area, kGuid);
}

class Merge {
 public:
  Merge(const Catalogue& base, const Catalogue& wanted, const Catalogue& stored)
      : base_(base), wanted_(wanted), stored_(stored) {
    for (const auto& area : stored.Areas()) {
      const std::string folder = TextOf(*area, kFolder);
      if (!folder.empty()) by_folder_.emplace(folder, area);
    }
    for (std::size_t i = 0; i < base.Areas().size(); ++i) {
      if (!wanted.Has(base.KeyOf(i))) Gone(i);
    }
  }

  void Run() {
    for (std::size_t i = 0; i < wanted_.Areas().size(); ++i) Put(i);
    for (const auto& [area, key] : gone_) Delete(*area, key);
  }

  std::vector<std::string> kept;  // stored study areas that gave way
  std::vector<std::string> notes;

 private:
  // A study area of the base that the wanted text does not have under its key; it may have it under
  // another one.
  void Gone(std::size_t index) {
    const auto& area = base_.Areas()[index];
    gone_.emplace(area, base_.KeyOf(index));
    renamed_.emplace(Canonical(*area, kGuid), area);
    const std::string folder = TextOf(*area, kFolder);
    if (!folder.empty()) renamed_.emplace('\6' + folder, area);
  }

  // The base and its key of a wanted study area; none for one that was added. What was found is no
  // longer gone.
  std::pair<ElementRef, std::string> BaseOf(const Element& wanted, const std::string& key) {
    if (auto base = base_.Find(key)) return {base, key};
    for (const auto& mark : {Canonical(wanted, kGuid), '\6' + TextOf(wanted, kFolder)}) {
      const auto base = Find(renamed_, mark);
      const auto node = base ? gone_.extract(base) : decltype(gone_)::node_type();
      if (node) return {base, node.mapped()};
    }
    return {nullptr, key};
  }

  // Where the store has a study area: under the key, else the one with its folder.
  ElementRef Stored(const Element& area, const std::string& key) const {
    if (auto found = stored_.Find(key)) return found;
    return Find(by_folder_, TextOf(area, kFolder));
  }

  void Put(std::size_t index) {
    const ElementRef& wanted = wanted_.Areas()[index];
    const auto [base, key] = BaseOf(*wanted, wanted_.KeyOf(index));
    if (base && Canonical(*base) == Canonical(*wanted)) return;
    const ElementRef there = Stored(base ? *base : *wanted, key);
    if (!there) return Append(wanted, base != nullptr);
    const std::string before = there->Xml();
    if (!Change::Apply(base ? *base : *Element::Create(kArea), *wanted, *there)) return;
    kept.push_back(before);
    notes.push_back(Described(*there) +
                    " was changed elsewhere too; what was stored is kept in the history.");
  }

  void Append(const ElementRef& wanted, bool was_there) {
    if (was_there) {
      notes.push_back(Described(*wanted) +
                      " was deleted elsewhere while it was changed here; it stays.");
    }
    const std::string name = TextOf(*wanted, kName);
    const bool has_twin = std::ranges::any_of(
        stored_.Areas(), [&](const ElementRef& area) { return TextOf(*area, kName) == name; });
    if (has_twin) {
      notes.push_back(Described(*wanted) + " has the name of one that was added elsewhere.");
    }
    stored_.Root()->Append(wanted);
  }

  void Delete(const Element& base, const std::string& key) {
    const ElementRef there = Stored(base, key);
    if (!there) return;
    if (Canonical(*there) == Canonical(base)) return stored_.Root()->Remove(there);
    notes.push_back(Described(*there) +
                    " was changed elsewhere while it was deleted here; it stays.");
  }

  const Catalogue& base_;
  const Catalogue& wanted_;
  const Catalogue& stored_;
  std::map<std::string, ElementRef> by_folder_;  // of the stored ones
  std::map<ElementRef, std::string> gone_;       // with their keys
  std::map<std::string, ElementRef> renamed_;    // of those that are gone, by what they can keep
};

// Takes everything and keeps nothing.
class IgnoringHandler final : public XmlHandler {
 public:
  bool StartElement(std::string_view, Attributes) override { return true; }
  bool EndElement() override { return true; }
  bool Characters(std::string_view) override { return true; }
  bool Comment(std::string_view) override { return true; }
  bool Instruction(std::string_view, std::string_view) override { return true; }
};

bool IsWellFormed(XmlParser& parser, const std::string& text) {
  IgnoringHandler handler;
  return parser.Parse(text, XmlEncoding::kUtf8, handler);
}

}  // namespace

std::string UpToNul(std::string text) {
  text.resize(std::min(text.size(), text.find('\0')));
  return text;
}

CatalogueUpdate::CatalogueUpdate(XmlParser& parser, std::string base, std::string wanted,
                                 std::function<bool(char32_t)> holds)
    : parser_(parser),
      base_(std::move(base)),
      wanted_(std::move(wanted)),
      holds_(std::move(holds)) {}

std::vector<TextUpdate::Piece> CatalogueUpdate::PiecesOf(const std::string& text) const {
  const Catalogue catalogue(parser_, text);
  std::vector<Piece> pieces;
  for (std::size_t i = 0; i < catalogue.Areas().size(); ++i) {
    pieces.push_back({catalogue.KeyOf(i), i, catalogue.Areas()[i]->Xml()});
  }
  for (const auto& area : catalogue.Areas()) catalogue.Root()->Remove(area);
  pieces.push_back({"", pieces.size(), catalogue.Document().Xml()});
  return pieces;
}

bool CatalogueUpdate::ChangesNothing() const {
  const auto areas = [this](const std::string& text) {
    std::vector<Piece> pieces = PiecesOf(text);
    pieces.pop_back();
    return pieces;
  };
  return areas(base_) == areas(wanted_);
}

TextUpdate::Outcome CatalogueUpdate::On(const std::optional<RegistryValue>& stored) const {
  notes_.clear();
  if (!stored) return {wanted_};
  if (stored->type != RegistryType::kText) return {wanted_, true};
  const std::string text = UpToNul(stored->data);
  const bool is_base = text == base_ && !wanted_.empty();
  return is_base || text.empty() ? Outcome{wanted_} : Merged(text);
}

TextUpdate::Outcome CatalogueUpdate::Merged(const std::string& text) const {
  const Catalogue stored(parser_, text);
  if (!stored.Root()) {
    if (IsWellFormed(parser_, text)) {
      throw RuntimeError(kOutOfMemory, "Registry",
                         "the stored catalogue is larger than a document may be");
    }
    return {wanted_, true};
  }
  if (wanted_.empty()) return {text};
  const Catalogue wanted(parser_, wanted_);
  Required(wanted.Root());
  const Catalogue base(parser_, base_);
  Merge merge(base, wanted, stored);
  merge.Run();
  notes_ = std::move(merge.notes);
  Outcome outcome{stored.Document().Xml(holds_)};
  for (const std::string& element : merge.kept) outcome.kept.push_back(Storable(element));
  return outcome;
}

std::string CatalogueUpdate::Storable(const std::string& element) const {
  xml::Document document;
  document.LoadXml(parser_, element);
  return document.Xml(holds_);
}

}  // namespace kvdm
