// The study areas of a catalogue as elements: what tells them apart, and a three-way merge of one.
#pragma once

#include <string>
#include <vector>

#include "platform/xml/node.h"

namespace kvdm {

inline constexpr char kArea[] = "STUDYAREA";
inline constexpr char kAreaGuid[] = "GUID";
inline constexpr char kAreaName[] = "NAME";

// A study area, and what tells it from the others there.
struct Area {
  xml::Element element;
  std::string guid;  // "" when it is missing or another one has it too
  std::string name;  // with a number that tells it from others of that name
};

// Those below a root.
[[nodiscard]] std::vector<Area> AreasIn(const xml::Element& root);

// The folder as files are found in it; "" for none.
[[nodiscard]] std::u32string FolderOf(const Area& area);

// The name as people know it: it is stored between two "_".
[[nodiscard]] std::string NameOf(const xml::Element& area);

// The attribute's text; "" when it is missing.
[[nodiscard]] std::string TextOf(const xml::Element& element, const char* attribute);

// Canonical text of an element: the same for any order of attributes and elements and any way of
// writing; without the attribute `ignored`. The marks between the parts can't be in an XML
// text.
[[nodiscard]] std::string Canonical(const xml::Element& element, const char* ignored = "");

// Carries what changed from `base` to `wanted` over to `target`: attribute by attribute and child
// by child, children told apart by tag, name, and a number where these repeat. Whether `target` had
// changed in the same places to something else, which is lost then.
bool ApplyChange(const xml::Element& base, const xml::Element& wanted, const xml::Element& target);

}  // namespace kvdm
