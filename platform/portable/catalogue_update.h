// A three-way merge of the study area catalogue: what one data manager changed is applied to what
// the store holds by now, so that nobody overwrites what somebody else wrote.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kvdm/platform/registry.h>

#include "platform/xml/node.h"
#include "platform/xml_parser.h"

namespace kvdm {

// The text up to its first NUL, which is all that a reader takes.
[[nodiscard]] std::string UpToNul(std::string_view text);

// Whether an update leads to the study areas that it starts from.
[[nodiscard]] bool ChangesNothing(const TextUpdate& update);

// The study areas below two roots that are the same, in pairs: those with one GUID, and where a
// GUID is missing or stands twice those with one name and number.
[[nodiscard]] std::vector<std::pair<xml::Element, xml::Element>> SameAreas(
    const xml::Element& before, const xml::Element& after);

// A catalogue that was read again by one who had changed it.
struct CatalogueReading {
  std::string text;    // what is stored, with the changes made here; "" for nothing stored
  std::string base;    // what the next update starts from
  std::string stored;  // what is stored
};

// The rules:
//
// - Stored is the base, missing or empty: the wanted text as it is.
// - Stored is no text or not well-formed: kept, then replaced by the wanted text.
// - Otherwise study area by study area, told apart by GUID. One whose GUID is not found is the one
//   that is the same in all else, has the same folder or, when a GUID is missing or stands twice,
//   has the same name and number.
// - Changed or added here and there: merged by attribute, property and comment. The same one
//   changed in both places: what is wanted here stands, and the element as it was stored is kept.
// - Changed in one place and deleted in the other: changed stands.
// - One that gets a folder here which another one got elsewhere: the other is kept and goes.
// - The root, its comments and what else stands under it stay as stored. An empty wanted
//   text changes nothing.
class CatalogueUpdate final : public TextUpdate {
 public:
  // `holds` tells which characters the store has; `parser` must outlive this.
  CatalogueUpdate(XmlParser& parser, std::string_view base, std::string wanted,
                  std::function<bool(char32_t)> holds);

  // A piece for each study area, under its key, and the text without them under "".
  [[nodiscard]] std::vector<Piece> Base() const override { return PiecesOf(base_); }
  [[nodiscard]] std::vector<Piece> Wanted() const override { return PiecesOf(wanted_); }

  // The starts of the study areas. Something else that looks like one, as in a comment, counts too.
  [[nodiscard]] std::vector<std::size_t> Cuts(std::string_view text) const override;

  [[nodiscard]] std::optional<Unopposed> IfUnopposed() const override;

  // Run-time error 7 for a stored text that is well-formed but larger than a document may be.
  [[nodiscard]] Outcome On(const std::optional<RegistryValue>& stored) const override;

  // What On makes of the stored `text`, for one who goes on with it and stores nothing yet. Study
  // areas that give way are in the new base as they were in the old one, so that the next update
  // finds them changed elsewhere, and keeps them. Run-time error 5 for a text that is not
  // well-formed.
  [[nodiscard]] CatalogueReading ReadAgain(const std::string& text) const;

  // Hands over the wanted text.
  std::string TakeWanted() { return std::move(wanted_); }

  // What people should know of the last outcome, a sentence each.
  [[nodiscard]] const std::vector<std::string>& Notes() const { return notes_; }

 private:
  [[nodiscard]] std::vector<Piece> PiecesOf(const std::string& text) const;
  // What becomes of a stored text that is neither missing nor the base.
  [[nodiscard]] Outcome Merged(std::string_view text) const;
  // An element's text with nothing in it that the store does not have.
  [[nodiscard]] std::string Storable(const std::string& element) const;

  XmlParser& parser_;
  std::string base_;
  std::string wanted_;
  std::function<bool(char32_t)> holds_;
  mutable std::vector<std::string> notes_;
};

}  // namespace kvdm
