#include "platform/portable/catalogue_update.h"

#include <algorithm>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include <kvdm/platform/error.h>
#include <kvdm/platform/platform.h>

#include "platform/portable/catalogue_areas.h"
#include "platform/xml/document.h"
#include "platform/xml/limits.h"

namespace kvdm {
namespace {

using xml::Element;

std::string OverLimits() {
  return "the stored catalogue is over a limit of documents: " +
         std::to_string(xml::kMaxDocumentBytes) + " bytes, " + std::to_string(xml::kMaxValueBytes) +
         " bytes in one value, " + std::to_string(xml::kMaxAttributes) +
         " attributes at one element, " + std::to_string(xml::kMaxDepth) +
         " elements within each other";
}

// The study areas of a catalogue text.
class Catalogue {
 public:
  // Empty when the text has no root or can't be loaded.
  Catalogue(XmlParser& parser, std::string_view text) {
    if (document_.LoadXml(parser, UpToNul(text))) areas_ = AreasIn(document_.DocumentElement());
  }

  [[nodiscard]] Element Root() const { return document_.DocumentElement(); }
  [[nodiscard]] const std::vector<Area>& Areas() const { return areas_; }
  [[nodiscard]] const xml::Document& Document() const { return document_; }

 private:
  xml::Document document_;
  std::vector<Area> areas_;
};

using AreaRefs = std::vector<const Area*>;

AreaRefs RefsTo(const std::vector<Area>& areas) {
  AreaRefs refs;
  for (const Area& area : areas) refs.push_back(&area);
  return refs;
}

// How sure it must be that two study areas are the same.
enum class Identity { kCertain, kLikely };

// Which study areas of two texts are the same: those with one GUID; where it need only be likely,
// of the rest those that differ in nothing else and those with one folder; and where a GUID is
// missing those with one name.
class Pairs {
 public:
  Pairs(const AreaRefs& before, const AreaRefs& after, Identity identity = Identity::kLikely) {
    Match(before, after, [](const Area& area) { return area.guid; });
    if (identity == Identity::kLikely) {
      Match(before, after, [](const Area& area) { return Canonical(area.element, kAreaGuid); });
      Match(before, after, FolderOf);
    }
    Match(
        before, after, [](const Area& area) { return area.name; },
        [](const Area& a, const Area& b) { return a.guid.empty() || b.guid.empty(); });
  }

  // Null for one that has no counterpart.
  [[nodiscard]] const Area* After(const Area& before) const { return Of(after_, before); }
  [[nodiscard]] const Area* Before(const Area& after) const { return Of(before_, after); }

 private:
  using Map = std::map<const Area*, const Area*>;

  static const Area* Of(const Map& map, const Area& area) {
    const auto found = map.find(&area);
    return found == map.end() ? nullptr : found->second;
  }

  static bool Always(const Area&, const Area&) { return true; }

  // Pairs those without a counterpart that have the same `mark`, in their order.
  template <class Mark, class Condition = decltype(&Always)>
  void Match(const AreaRefs& before, const AreaRefs& after, Mark mark,
             Condition may_be_the_same = &Always) {
    std::map<decltype(mark(*after[0])), std::deque<const Area*>> free;
    for (const Area* area : after) {
      if (!Before(*area)) free[mark(*area)].push_back(area);
    }
    for (const Area* area : before) {
      const auto found = After(*area) ? free.end() : free.find(mark(*area));
      if (found == free.end() || found->first.empty() || found->second.empty()) continue;
      if (!may_be_the_same(*area, *found->second.front())) continue;
      after_[area] = found->second.front();
      before_[found->second.front()] = area;
      found->second.pop_front();
    }
  }

  Map after_;
  Map before_;
};

class Merge {
 public:
  Merge(const Catalogue& base, const Catalogue& wanted, const Catalogue& stored)
      : base_(RefsTo(base.Areas())),
        wanted_(RefsTo(wanted.Areas())),
        stored_(RefsTo(stored.Areas())),
        root_(stored.Root()),
        here_(base_, wanted_),
        there_(base_, stored_),
        added_(Added(wanted_, here_), Added(stored_, there_)) {}

  void Run() {
    for (const Area* area : wanted_) Put(*area);
    for (const Area* area : base_) {
      if (!here_.After(*area)) Delete(*area);
    }
  }

  // A stored study area that gave way.
  struct GaveWay {
    const Area* stored;
    const Area* base;  // null when it was added since
    std::string text;  // as it was stored
    std::string note;
  };
  std::vector<GaveWay> gave_way;
  std::vector<std::string> notes;

 private:
  static AreaRefs Added(AreaRefs areas, const Pairs& pairs) {
    std::erase_if(areas, [&](const Area* area) { return pairs.Before(*area) != nullptr; });
    return areas;
  }

  void Put(const Area& wanted) {
    const Area* base = here_.Before(wanted);
    if (base && Canonical(base->element) == Canonical(wanted.element)) return;
    const Area* stored = base ? there_.After(*base) : added_.After(wanted);
    if (!base || !stored || FolderOf(*base) != FolderOf(wanted)) Free(FolderOf(wanted), stored);
    if (!stored) return Append(wanted.element, base != nullptr);
    const Element& target = stored->element;
    const std::string before = target.Xml();
    const auto none = base ? nullptr : Element::Create(kArea);
    if (!ApplyChange(base ? base->element : none, wanted.element, target)) return;
    gave_way.push_back({stored, base, before,
                        NoteOn(target,
                               "was changed elsewhere too; what was stored is kept in the "
                               "history.")});
  }

  // Study areas other than `owner` that got `folder` elsewhere give way: no two share one.
  void Free(const std::u32string& folder, const Area* owner) {
    if (folder.empty()) return;
    for (const Area* stored : stored_) {
      if (stored == owner || !stored->element.Parent() || FolderOf(*stored) != folder) continue;
      const Area* base = there_.Before(*stored);
      if (base && FolderOf(*base) == folder) continue;
      gave_way.push_back({stored, base, stored->element.Xml(),
                          NoteOn(stored->element,
                                 "has a folder that belongs to another one now; "
                                 "it is kept in the history.")});
      root_.Remove(stored->element);
    }
  }

  void Append(const Element& wanted, bool was_there) {
    if (was_there) {
      notes.push_back(NoteOn(wanted, "was deleted elsewhere while it was changed here; it stays."));
    }
    const std::string name = TextOf(wanted, kAreaName);
    const bool has_twin = std::ranges::any_of(stored_, [&](const Area* area) {
      return area->element.Parent() && TextOf(area->element, kAreaName) == name;
    });
    if (has_twin) notes.push_back(NoteOn(wanted, "has the name of one that was added elsewhere."));
    root_.Append(wanted);
  }

  void Delete(const Area& base) {
    const Area* stored = there_.After(base);
    if (!stored) return;
    if (Canonical(stored->element) == Canonical(base.element)) {
      return root_.Remove(stored->element);
    }
    notes.push_back(
        NoteOn(stored->element, "was changed elsewhere while it was deleted here; it stays."));
  }

  static std::string NoteOn(const Element& area, std::string_view what) {
    return "The study area " + NameOf(area) + " " + TextOf(area, kAreaGuid) + " " +
           std::string(what);
  }

  AreaRefs base_;
  AreaRefs wanted_;
  AreaRefs stored_;
  Element root_;  // of the stored text
  Pairs here_;    // from the base to what is wanted
  Pairs there_;   // from the base to what is stored
  Pairs added_;   // from what was added here to what was added elsewhere
};

}  // namespace

std::string UpToNul(std::string_view text) { return std::string(text.substr(0, text.find('\0'))); }

std::vector<std::pair<Element, Element>> SameAreas(const Element& before, const Element& after) {
  const auto old_areas = AreasIn(before);
  const auto new_areas = AreasIn(after);
  const Pairs pairs(RefsTo(old_areas), RefsTo(new_areas), Identity::kCertain);
  std::vector<std::pair<Element, Element>> same;
  for (const Area& area : old_areas) {
    if (const Area* now = pairs.After(area)) same.emplace_back(area.element, now->element);
  }
  return same;
}

bool ChangesNothing(const TextUpdate& update) {
  const auto areas = [](std::vector<TextUpdate::Piece> pieces) {
    std::erase_if(pieces, [](const TextUpdate::Piece& piece) { return piece.key.empty(); });
    return pieces;
  };
  return areas(update.Base()) == areas(update.Wanted());
}

CatalogueUpdate::CatalogueUpdate(XmlParser& parser, std::string_view base, std::string wanted,
                                 std::function<bool(char32_t)> holds)
    : parser_(parser), base_(UpToNul(base)), wanted_(std::move(wanted)), holds_(std::move(holds)) {}

std::vector<TextUpdate::Piece> CatalogueUpdate::PiecesOf(const std::string& text) const {
  const Catalogue catalogue(parser_, text);
  std::vector<Piece> pieces;
  for (const Area& area : catalogue.Areas()) {
    const std::string& key = area.guid.empty() ? area.name : area.guid;
    pieces.push_back({key, pieces.size(), area.element.Xml()});
  }
  for (const Area& area : catalogue.Areas()) catalogue.Root().Remove(area.element);
  pieces.push_back({"", pieces.size(), catalogue.Document().Xml()});
  return pieces;
}

std::vector<std::size_t> CatalogueUpdate::Cuts(std::string_view text) const {
  const std::string start = std::string("<") + kArea;
  std::vector<std::size_t> cuts;
  for (auto at = text.find(start); at != text.npos; at = text.find(start, at + start.size())) {
    const auto after = text.substr(at + start.size(), 1);
    if (after.find_first_of(" \t\r\n/>") == 0) cuts.push_back(at);
  }
  return cuts;
}

std::optional<TextUpdate::Unopposed> CatalogueUpdate::IfUnopposed() const {
  if (base_.empty() || wanted_.empty()) return std::nullopt;
  return Unopposed{base_, wanted_};
}

TextUpdate::Outcome CatalogueUpdate::On(const std::optional<RegistryValue>& stored) const {
  notes_.clear();
  if (!stored) return {wanted_};
  if (stored->type != RegistryType::kText) return {wanted_, true};
  const std::string_view text = std::string_view(stored->data).substr(0, stored->data.find('\0'));
  if (text.empty()) return {wanted_};
  // Whoever read a text that is no document can want nothing but an empty one.
  const bool is_base = text == base_ && !wanted_.empty();
  return is_base ? Outcome{wanted_} : Merged(text);
}

TextUpdate::Outcome CatalogueUpdate::Merged(std::string_view text) const {
  const Catalogue stored(parser_, text);
  if (!stored.Root()) {
    if (xml::IsWellFormed(parser_, text)) {
      throw RuntimeError(kOutOfMemory, "Registry", OverLimits());
    }
    return {wanted_, true};
  }
  if (wanted_.empty()) return {std::string(text)};
  const Catalogue wanted(parser_, wanted_);
  Required(wanted.Root());
  const Catalogue base(parser_, base_);
  Merge merge(base, wanted, stored);
  merge.Run();
  notes_ = std::move(merge.notes);
  Outcome outcome{stored.Document().Xml(holds_)};
  for (auto& area : merge.gave_way) {
    outcome.kept.push_back(Storable(area.text));
    notes_.push_back(std::move(area.note));
  }
  return outcome;
}

CatalogueReading CatalogueUpdate::ReadAgain(const std::string& text) const {
  notes_.clear();
  if (text.empty()) return {wanted_, "", ""};
  const Catalogue stored(parser_, text);
  if (!stored.Root()) {
    throw RuntimeError(kInvalidCall, "Registry", "the stored catalogue can't be parsed");
  }
  if (wanted_.empty()) return {text, text, text};
  const Catalogue wanted(parser_, wanted_);
  const Catalogue base(parser_, base_);
  const Catalogue next_base(parser_, text);
  Merge merge(base, wanted, stored);
  merge.Run();
  notes_ = std::move(merge.notes);
  for (const auto& area : merge.gave_way) {
    const auto place = static_cast<std::size_t>(area.stored - stored.Areas().data());
    const Element& in_base = next_base.Areas()[place].element;
    if (in_base.Parent()) next_base.Root().Remove(in_base);
    if (area.base != nullptr) next_base.Root().Append(area.base->element);
  }
  return {stored.Document().Xml(), merge.gave_way.empty() ? text : next_base.Document().Xml(holds_),
          text};
}

std::string CatalogueUpdate::Storable(const std::string& element) const {
  xml::Document document;
  document.LoadXml(parser_, element);
  return document.Xml(holds_);
}

namespace {

// Keeps what the update needs, and logs its notes.
class LastingUpdate final : public TextUpdate {
 public:
  LastingUpdate(const Platform& platform, std::string_view base, std::string wanted)
      : parser_(platform.xml_parser),
        log_(platform.log),
        update_(*parser_, base, std::move(wanted),
                [registry = platform.registry](char32_t character) {
                  return registry->Holds(character);
                }) {}

  [[nodiscard]] std::vector<Piece> Base() const override { return update_.Base(); }
  [[nodiscard]] std::vector<Piece> Wanted() const override { return update_.Wanted(); }
  [[nodiscard]] std::vector<std::size_t> Cuts(std::string_view text) const override {
    return update_.Cuts(text);
  }
  [[nodiscard]] std::optional<Unopposed> IfUnopposed() const override {
    return update_.IfUnopposed();
  }
  [[nodiscard]] Outcome On(const std::optional<RegistryValue>& stored) const override {
    Outcome outcome = update_.On(stored);
    for (const std::string& note : update_.Notes()) log_->Note(note);
    return outcome;
  }

 private:
  std::shared_ptr<XmlParser> parser_;
  std::shared_ptr<Log> log_;
  CatalogueUpdate update_;
};

}  // namespace

std::shared_ptr<TextUpdate> MakeCatalogueUpdate(const Platform& platform, std::string_view base,
                                                std::string wanted) {
  return std::make_shared<LastingUpdate>(platform, base, std::move(wanted));
}

}  // namespace kvdm
