// Kinds of items, and finding the items that commands name: by name, or by "{GUID}".
//
// A kind is a class of static members: the words for its items, where they are and how they are
// shown. The commands that kinds have in common (host/commands/item_commands.h) are templates over
// kinds.
#pragma once

#include <fmt/format.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kvdm/kvdm.h>
#include <kvdm/platform/file_system.h>

#include "host/checks.h"
#include "host/session.h"
#include "host/text.h"

namespace kvdm {

// What is the same for most kinds; a kind hides what is different for it. It adds
//
//   kWord, for lists kPlural   in sentences: "study area", "study areas"
//   kCommand                   below 'kvdm': "area"
//   All(session)               its items, in the collection's order
//   Find(session, selector)    the one item that is meant; see TheOnlyOne
//   Columns(item)              the fields in lists that follow name and guid
template <class SomeItem>
struct ItemKind {
  using Item = SomeItem;
  using Ref = std::shared_ptr<Item>;
  static constexpr bool kInRegistry = false;  // where all projects share them
  static constexpr char kChosenBy[] = "a name or {GUID} of its own";

  static std::string NameOf(const Ref& item) { return item->Name(); }
  static std::string GuidOf(const Ref& item) { return item->GUID(); }
  // Where an item is that has a taken name, as ", in ..."; "" for what is in the project itself.
  static std::string WhereOf(const Ref&) { return ""; }
  // Fails when a command may not change an item that it found.
  static void RequireChangeable(Session&, const Ref&) {}
};

template <class Kind>
[[nodiscard]] Record RowOf(const typename Kind::Ref& item) {
  Record row = {{"name", Kind::NameOf(item)}, {"guid", Kind::GuidOf(item)}};
  for (auto& column : Kind::Columns(item)) row.push_back(std::move(column));
  return row;
}

template <class Kind>
[[nodiscard]] std::vector<Record> RowsOf(const std::vector<typename Kind::Ref>& items) {
  std::vector<Record> rows;
  for (const auto& item : items) rows.push_back(RowOf<Kind>(item));
  return rows;
}

[[nodiscard]] inline bool IsGuid(std::string_view selector) {
  return selector.starts_with('{') && selector.ends_with('}');
}

template <class Kind>
[[nodiscard]] std::vector<typename Kind::Ref> ItemsNamed(std::vector<typename Kind::Ref> items,
                                                         std::string_view name) {
  std::erase_if(items, [&](const auto& item) { return Kind::NameOf(item) != name; });
  return items;
}

// Those of `items` that `selector` means: those with that "{GUID}", else those with that name.
template <class Kind>
[[nodiscard]] std::vector<typename Kind::Ref> ItemsMeant(std::vector<typename Kind::Ref> items,
                                                         const std::string& selector) {
  auto found = items;
  std::erase_if(found, [&](const auto& item) { return Kind::GuidOf(item) != selector; });
  if (IsGuid(selector) && !found.empty()) return found;
  return ItemsNamed<Kind>(std::move(items), selector);
}

using Names = std::vector<std::string>;

// The names of a kind's items, sooner than by looking at each item.
template <class Kind>
[[nodiscard]] Names NamesOf(Session& session);

// The one of the items that `selector` was found to mean; `names` are those that a misspelt one may
// mean. Failure kNotFound when there is none,
// kConflict with the candidates when there are several.
template <class Kind>
[[nodiscard]] typename Kind::Ref TheOnlyOne(const std::vector<typename Kind::Ref>& found,
                                            const std::string& selector, const Names& names = {}) {
  if (found.size() == 1) return found.front();
  if (found.empty()) {
    const std::string nearest = Nearest(selector, names);
    throw Failure(
        ExitCode::kNotFound,
        fmt::format("There is no {} {}.{} 'kvdm {} list' shows what there is.", Kind::kWord,
                    selector, nearest.empty() ? "" : fmt::format(" Did you mean {}?", nearest),
                    Kind::kCommand));
  }
  throw Failure(ExitCode::kConflict,
                fmt::format("{} means {} items. Say which one by {}.", selector, found.size(),
                            Kind::kChosenBy),
                RowsOf<Kind>(found));
}

// `where` that one is, as the rest of the sentence that says so.
template <class Kind>
[[noreturn]] void NameIsTaken(std::string_view name, std::string_view where = "") {
  throw Failure(ExitCode::kConflict,
                fmt::format("Another {} is named {}{}. Choose another name, or rename that one.",
                            Kind::kWord, name, where));
}

// Failure kConflict when one of `items` other than `except` has the name.
template <class Kind>
void RequireFreeName(const std::vector<typename Kind::Ref>& items, std::string_view name,
                     const std::string& except = {}) {
  for (const auto& item : ItemsNamed<Kind>(items, name)) {
    if (Kind::GuidOf(item) != except) NameIsTaken<Kind>(name, Kind::WhereOf(item));
  }
}

// A kind of which the component has a collection, with the operations
//
//   kCollection                of the data manager
//   kNames, kGuids             of the collection, whose lists have the same order
//   kGet, kGetByGuid
template <class Kind, class SomeItem>
struct CollectionKind : ItemKind<SomeItem> {
  using Ref = std::shared_ptr<SomeItem>;

  // Fails when what the collection is read from can't be read.
  static void RequireReadable(Session&) {}
  // Fails when there is a reason known why the collection has no list of names.
  static void RequireList(Session&) {}

  // Failure kRefused when the component has no such collection.
  static auto Collection(Session& session) {
    Kind::RequireReadable(session);
    return Reached(std::invoke(Kind::kCollection, session.Manager()));
  }

  // Of items that share an identifier the component finds only the first by it; the others are
  // found by name. Failure kRefused when it has no list of them.
  static std::vector<Ref> All(Session& session) {
    const auto collection = Collection(session);
    const NameListRef names = std::invoke(Kind::kNames, *collection);
    if (!names) Kind::RequireList(session);
    const NameListRef guids = Reached(std::invoke(Kind::kGuids, *collection));
    const bool parallel = names && names->Count() == guids->Count();
    std::vector<Ref> items;
    for (int i = 1; i <= guids->Count(); ++i) {
      Ref item = std::invoke(Kind::kGetByGuid, *collection, ToText(guids->Item(i)));
      const std::string name = parallel ? ToText(names->Item(i)) : "";
      if (parallel && item && item->Name() != name) {
        item = std::invoke(Kind::kGet, *collection, name);
      }
      if (item) items.push_back(std::move(item));
    }
    return items;
  }

  static Ref Find(Session& session, const std::string& selector) {
    if (Ref item = OnlyOneOf(session, selector)) return item;
    const auto found = ItemsMeant<Kind>(All(session), selector);
    return TheOnlyOne<Kind>(found, selector, found.empty() ? NamesOf<Kind>(session) : Names());
  }

  // The item that was just made under a name. Failure kRefused when the component does not have it.
  static Ref Made(Session& session, std::string_view name) {
    const auto items = ItemsNamed<Kind>(All(session), name);
    if (!items.empty()) return items.back();
    throw Failure(ExitCode::kRefused,
                  fmt::format("The component did not keep the new {} {}.", Kind::kWord, name));
  }

 private:
  // The item that a selector means, when the lists have it once: sooner than by looking at all.
  static Ref OnlyOneOf(Session& session, const std::string& selector) {
    const auto collection = Collection(session);
    const bool by_guid = IsGuid(selector);
    const auto list = [&] {
      return std::invoke(by_guid ? Kind::kGuids : Kind::kNames, *collection);
    };
    const std::string name = fmt::format("{} {}", Kind::kCommand, by_guid);
    if (session.CountIn(name, list, selector) != 1) return nullptr;
    return std::invoke(by_guid ? Kind::kGetByGuid : Kind::kGet, *collection, selector);
  }

  template <class Thing>
  static Thing Reached(Thing thing) {
    if (thing) return thing;
    throw Failure(
        ExitCode::kRefused,
        fmt::format("The {} list can't be reached. 'kvdm status' tells more.", Kind::kWord));
  }
};

template <class Kind>
Names NamesOf(Session& session) {
  std::vector<std::string> names;
  if constexpr (requires { Kind::kCollection; }) {
    const NameListRef list = std::invoke(Kind::kNames, *Kind::Collection(session));
    for (int i = 1; list && i <= list->Count(); ++i) names.push_back(ToText(list->Item(i)));
  } else {
    for (const auto& item : Kind::All(session)) names.push_back(Kind::NameOf(item));
  }
  return names;
}

// Failure kUnsafe for a new name that not all systems take as it is, and for one that differs from
// another item's in letter case only; `except` is the item's own name.
template <class Kind>
void RequirePortable(Session& session, std::string_view name, std::string_view except = {}) {
  RequirePortableName(name);
  for (const std::string& other : NamesOf<Kind>(session)) {
    if (other != except) RequireOtherThanInCase(name, other);
  }
}

// What the help says of an argument that names an item: "The store layer, by name or {GUID}".
[[nodiscard]] std::string SelectorHelp(std::string_view kind);

// Failure kUsage for a text that is not a "{GUID}" in its full form.
void RequireGuid(std::string_view text);

// Failure kRefused when the component answered that it did not delete an item.
void RequireDeleted(bool deleted);

// Removes a folder that is empty, given by its path with a separator at the end.
void RemoveEmptyFolder(FileSystem& files, std::string_view folder);

// Asks on the terminal whether to go on. Failure kUnsafe where nobody can be asked, kRefused when
// the answer is not yes.
void RequireConsent(std::string_view question);

// A path of the component with a separator at its end; "" for none.
[[nodiscard]] std::string WithSeparator(std::string folder);

// A path as the documents need it, from one in the component's form, which stays, or the system's;
// a relative one is below the current folder. "" stays.
[[nodiscard]] std::string FullPath(const std::string& path);

// A time as the documents need it, from that form or ISO 8601. Failure kUsage for what is none; ""
// stays.
[[nodiscard]] std::string TimeArgument(const std::string& text);

// The text that an argument gives: itself, or standard input for "-". Line ends become LF. Failure
// kUnreadable for input that is too long or not UTF-8, kUsage for input that can't be stored.
[[nodiscard]] std::string TextArgument(const std::string& argument);

// `text` with LF at line ends, whatever they are, however often its CR was doubled.
[[nodiscard]] std::string WithPlainLineEnds(std::string_view text);

}  // namespace kvdm
