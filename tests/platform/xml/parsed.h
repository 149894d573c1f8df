// Elements and documents from their text forms.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include "platform/xml/document.h"
#include "platform/xml_parser.h"

namespace kvdm::xml {

inline bool Load(Document& document, std::string_view text) {
  const auto parser = MakeXmlParser();
  return document.LoadXml(*parser, text);
}

// The root of a document that is gone.
inline Element Parsed(std::string_view text) {
  Document document;
  EXPECT_TRUE(Load(document, text)) << text;
  return document.DocumentElement();
}

// The text form after loading `text`; "" when that fails.
inline std::string Reloaded(std::string_view text) {
  Document document;
  return Load(document, text) ? document.Xml() : std::string();
}

// `element` after saving and loading its document.
inline Element Reloaded(const Element& element) { return Parsed(element.Xml()); }

}  // namespace kvdm::xml
