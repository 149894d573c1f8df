// Changes of documents, element by element: what differs between two states, and how it is carried
// over to a third.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace kvdm {

class XmlParser;

// The texts of what is stored, by the names of the documents below. A document that is missing is
// left alone.
using Documents = std::map<std::string, std::string>;

inline constexpr char kCatalogueDocument[] = "catalogue";  // XML: the study areas
inline constexpr char kProjectDocument[] = "project";      // XML: the metadata document
inline constexpr char kSettingsDocument[] = "settings";    // a JSON object, as those that follow
inline constexpr char kStateDocument[] = "state";
inline constexpr char kDrivesDocument[] = "drives";

// One element that was added, removed or replaced. An element that moved is removed and added. An
// item is what has a NAME or GUID; what is around items are collections.
struct Change {
  std::string document;
  std::string collection;   // the tags that lead to where it stands; "" for the whole document
  std::string guid;         // of an item
  std::string name;         // of an item or a JSON value; the tag of a collection
  std::size_t number = 0;   // among those with the same GUID or, without one, name
  std::size_t place = 0;    // its position among the elements there
  std::string before = {};  // its text; "" when it is added
  std::string after = {};   // its text; "" when it is removed

  bool operator==(const Change&) const = default;
};
using Changes = std::vector<Change>;

// What leads from one text of a document to another. Nothing, at once, for equal texts. Where the
// texts differ in more than items and empty collections, and for what is no document, one change of
// the whole document.
[[nodiscard]] Changes ChangesBetween(XmlParser& parser, const std::string& document,
                                     std::string_view before, std::string_view after);

// The same of all documents that both have.
[[nodiscard]] Changes ChangesBetween(XmlParser& parser, const Documents& before,
                                     const Documents& after);

// The changes that lead back.
[[nodiscard]] Changes Inverse(Changes changes);

struct Applied {
  Documents documents;
  Changes refused;  // of elements that are not what they were before, and additions of such
                    // that are there
};

// Carries changes over to documents, which may have changed elsewhere meanwhile: what others
// changed stays as it is. A collection that others use by now stays, and is not refused.
[[nodiscard]] Applied Apply(XmlParser& parser, Documents documents, const Changes& changes);

// Whether documents are as the changes left them.
[[nodiscard]] bool Holds(XmlParser& parser, const Documents& documents, const Changes& changes);

}  // namespace kvdm
