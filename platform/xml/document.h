// A document: its declaration, its root element, and the comments and instructions around it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/xml/node.h"
#include "platform/xml_parser.h"

namespace kvdm::xml {

// The text form is exact and the same on every platform. The declaration, where the document has
// one, is <?xml version="1.0" encoding="utf-8"?> CR LF; every node of the document's own level is
// followed by CR LF; nothing is indented. Line ends of texts are CR LF, never references; TAB, CR
// and LF in attribute values are references. A loaded document keeps its white space. Saving,
// loading and saving again gives identical bytes.
class Document {
 public:
  Document();
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;

  // Replaces the content by that of `text`, UTF-8 whatever its declaration says. False when it
  // can't be parsed; the document is then empty.
  bool LoadXml(XmlParser& parser, std::string_view text);
  // The same for the bytes of a file, in the encoding that they declare.
  bool Load(XmlParser& parser, std::string_view bytes);

  // The root element; Nothing in an empty document.
  [[nodiscard]] Element DocumentElement() const;
  // Replaces the root, or adds it after all that is there. Run-time error 5 and 7 as of an append.
  void SetDocumentElement(const Element& root);

  void AddDeclaration();

  // A number that grows with each change of what the text form shows, loads included. The same
  // number as before means the same text form; another one may be of a change that was taken back.
  [[nodiscard]] std::uint64_t Changes() const;

  // The text form; "" without a root element.
  [[nodiscard]] std::string Xml() const;

  // The text form for a store that holds only the characters for which `holds` answers true: others
  // are written as numeric character references, and in comments and instructions, which can't have
  // references, as "?" ("_" where "?" would end an instruction). ASCII is held without asking.
  // Run-time error 5 when a name can't be held.
  [[nodiscard]] std::string Xml(const std::function<bool(char32_t)>& holds) const;

 private:
  bool Parse(XmlParser& parser, std::string_view text, XmlEncoding encoding);
  [[nodiscard]] std::string Xml(const std::function<bool(char32_t)>* holds) const;

  Node level_;  // of which the nodes of the top level are children
  std::uint64_t earlier_changes_ = 0;
};

// Whether `text`, UTF-8 whatever its declaration says, is well-formed, however large it is.
[[nodiscard]] bool IsWellFormed(XmlParser& parser, std::string_view text);

}  // namespace kvdm::xml
