// Typed values in XML documents: one element a value, with the attributes TYPE and VALUE.
//
//   <ENTRY PATH="Velk/Kelvaro8/GUID" TYPE="Text" VALUE="{...}"/>
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <kvdm/platform/value.h>

#include "platform/xml/document.h"

namespace kvdm {

// Stores `value` in `element`, exactly. Types are Text, Boolean, Long, Double, Date, Null and
// Empty, and Bytes for a text with characters that XML can't hold, in hexadecimal. What is too long
// for one attribute goes on in child elements MORE.
void PutValue(const xml::Element& element, const Value& value);

// The value that PutValue stored. Run-time error 13, saying what is wrong, for any other content.
Value ValueIn(const xml::Element& element);

// The text of the attribute `name`. Run-time error 13, saying so, when it is missing.
std::string TextAttribute(const xml::Element& element, std::string_view name);

// Makes `child` the last child of `root`, on a line of its own.
void AppendLine(const xml::Element& root, const xml::Element& child);

// The text of a document with the root `root`, its declaration first.
std::string DocumentText(const xml::Element& root);

// The root of the document in `bytes`. An automation failure, saying what is wrong, when it is not
// well-formed or its root has another tag.
xml::Element LoadRoot(XmlParser& parser, std::string_view bytes, std::string_view tag);

}  // namespace kvdm
